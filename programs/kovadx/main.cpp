// kovadx: runs programs that talk to a statistics engine.
#include <exception>
#include <string>
#include <vector>

#include "command_line.h"
#include "run_command.h"

int main(int count, char** texts) {
  try {
    int exitCode = 0;
    const auto options = kova::program::parseCommandLine(std::vector<std::string>(texts + 1, texts + count), &exitCode);
    return options ? kova::program::runCommand(*options) : exitCode;
  } catch (const std::exception& error) {
    kova::program::printError(std::string("failed unexpectedly: ") + error.what());
  }
  return kova::program::kOwnFailure;
}
