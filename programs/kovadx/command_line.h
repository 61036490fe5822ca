// The kovadx command line.
#ifndef KOVADX_PROGRAMS_KOVADX_COMMAND_LINE_H
#define KOVADX_PROGRAMS_KOVADX_COMMAND_LINE_H

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kova::program {

// What kovadx itself ends with when it, and not the program that it runs, fails.
constexpr int kOwnFailure = 125;
constexpr int kNotRunnable = 126;
constexpr int kNotFound = 127;

// What "kovadx run" was asked for.
struct RunOptions {
  std::string data;                  // A Data Package's descriptor or folder; empty for an engine without data.
  std::string name = "EXTERNAL";     // The instance name, in upper case.
  std::string home;                  // The home folder; empty for kovadx's own.
  std::string save;                  // The descriptor that the data are saved to at the end; empty for none.
  std::string output;                // Where the report is written; empty for none.
  std::string language;              // The language, in upper case, of a script that kovadx hosts; or empty.
  std::string process;               // "inside" or "child": where the script's runtime is; or empty.
  std::string script;                // That script.
  std::vector<std::string> program;  // The program and its arguments; empty when there is a script.
};

// What "kovadx decode" and "kovadx explain" were asked for.
struct DecodeOptions {
  std::string path;
};
struct ExplainOptions {
  std::string code;  // Empty for all of them.
};

// What "kovadx monitor" was asked for.
struct MonitorOptions {
  std::string name;    // What the suite's pipe names begin with: the process-id text and the instance name.
  unsigned count = 0;  // How many lines are printed; 0 for no end.
};

using Command = std::variant<RunOptions, DecodeOptions, ExplainOptions, MonitorOptions>;

// Reads the arguments (without kovadx itself). Nothing when there is nothing to do: the help or the version has then
// been printed, or an error in one line, and *exitCode is what kovadx ends with.
std::optional<Command> parseCommandLine(std::vector<std::string> arguments, int* exitCode);

// Prints "kovadx: <message>" on the error stream.
void printError(const std::string& message);

}  // namespace kova::program

#endif
