// kovadx: runs programs that talk to a statistics engine, and explains what travels between them.
#include <exception>
#include <string>
#include <variant>
#include <vector>

#include "command_line.h"
#include "decode_command.h"
#include "explain_command.h"
#include "monitor_command.h"
#include "run_command.h"

namespace {

int perform(const kova::program::RunOptions& options) { return kova::program::runCommand(options); }
int perform(const kova::program::DecodeOptions& options) { return kova::program::decodeCommand(options.path); }
int perform(const kova::program::ExplainOptions& options) { return kova::program::explainCommand(options.code); }
int perform(const kova::program::MonitorOptions& options) { return kova::program::monitorCommand(options); }

}  // namespace

int main(int count, char** texts) {
  try {
    int exitCode = 0;
    const auto command = kova::program::parseCommandLine(std::vector<std::string>(texts + 1, texts + count), &exitCode);
    return command ? std::visit([](const auto& options) { return perform(options); }, *command) : exitCode;
  } catch (const std::exception& error) {
    kova::program::printError(std::string("failed unexpectedly: ") + error.what());
  }
  return kova::program::kOwnFailure;
}
