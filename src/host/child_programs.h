// Where the programs that are started as processes lie. Each stated path is taken when a file is
// there; a platform whose programs have no ".exe" looks for its own form then. Where none is there it is the stated one
// that is given: what is told of a missing program names it.
#ifndef KOVADX_HOST_CHILD_PROGRAMS_H
#define KOVADX_HOST_CHILD_PROGRAMS_H

#include <string>

namespace kova {

// The program that loads a runtime's library: "startx.exe" of the engine's home folder, or the one for 32 bits.
std::string startxProgram(const std::string& kovaHome, bool on32);

// The console of R below R's own home folder.
std::string rConsoleProgram(const std::string& rHome);

// The engine's own Java, else the one that JAVA_HOME names.
std::string javaProgram(const std::string& kovaHome);

// The text as an argument among others: an empty one would vanish from the command line, and those behind it move up.
inline std::string orQuotes(const std::string& text) { return text.empty() ? "\"\"" : text; }

// The engine as a program, in its home folder.
std::string engineProgram(const std::string& kovaHome);

}  // namespace kova

#endif
