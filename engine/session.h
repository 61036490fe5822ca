// The engine's settings, as they are when it starts and as the commands change them. A plain value of the engine's
// state.
#ifndef KOVADX_ENGINE_SESSION_H
#define KOVADX_ENGINE_SESSION_H

#include <string>

namespace kova::engine {

struct Session {
  Session();

  std::string outputLanguage = "English";
  std::string locale = "C.UTF-8";  // Numbers are written with a point, texts are UTF-8.
  int outputWidth = 80;            // The characters of a line of text output.
  bool isDriven = false;           // An outside program has started this engine.

  // What the mode numbers mean lies with the programs that set them.
  int mode = 0;
  int driveMode = 0;
  int serverMode = 0;

  // The program that shows the output.
  std::string hostName = "KovaDX";
  std::string hostVersion;  // The engine's own.
  std::string hostCopyright;

  std::string queuedSyntax;  // Parts of a command that wait for their end, each with a line feed.
};

// The engine's version: "1.0.0".
std::string engineVersion();

}  // namespace kova::engine

#endif
