// The option text of StartKova: what the library takes for itself, and what it hands on to the engine.
#ifndef KOVADX_API_START_OPTIONS_H
#define KOVADX_API_START_OPTIONS_H

#include <string>

namespace kova {

struct StartOptions {
  std::string kovaHome;  // "-kovahome=": the engine's home folder.
  std::string language;  // "-language=": the external language that the process serves.
  std::string tempPath;  // "-temppath" and one character: the folder for temporary files.
  std::string rest;      // What remains; the engine gets it.
};

// Cuts the options out of the text, each where it stands first. The value of one of the first two ends with the next
// ",", which is cut out too, that of the last one with the next blank; an option that is not there has an empty value.
StartOptions parseStartOptions(const std::string& text);

}  // namespace kova

#endif
