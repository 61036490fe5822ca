#include "tests/kit/kit.h"

#include <filesystem>
#include <map>
#include <string>

#include "platform/os/file.h"
#include "platform/os/named_pipe.h"
#include "tests/kit/kit_system.h"
#ifdef KOVA_KIT_FAKE
#include "tests/os_fake/os_fake.h"
#endif

namespace kova::kit {
namespace {

constexpr const char* kChildArgument = "--kova-kit-child";
constexpr std::uint32_t kChildPatienceMs = 60000;

std::map<std::string, ChildFunction>& children() {
  static std::map<std::string, ChildFunction> map;
  return map;
}

// The fake backend has no programs of its own: it is told to run the child functions for this program's path.
void offerChildrenToBackend() {
#ifdef KOVA_KIT_FAKE
  fake::registerProgram(os::ProgramPath(),
                        [](const os::ProcessStart& start) { return runNamedChild(start.arguments); });
#endif
}

}  // namespace

ChildRegistration::ChildRegistration(const char* name, ChildFunction function) { children()[name] = function; }

int runNamedChild(const std::vector<std::string>& arguments) {
  if (arguments.size() < 2 || arguments[0] != kChildArgument) return -1;
  const auto found = children().find(arguments[1]);
  if (found == children().end()) return -1;
  return found->second({arguments.begin() + 2, arguments.end()});
}

os::ProcessStart childStart(const std::string& name, const std::vector<std::string>& arguments,
                            const Environment& environment) {
  offerChildrenToBackend();
  os::ProcessStart start;
  start.program = os::ProgramPath();
  start.arguments = {kChildArgument, name};
  start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
  start.environment = environment;
  return start;
}

os::Process startChild(const std::string& name, const std::vector<std::string>& arguments,
                       const Environment& environment) {
  os::Process process;
  os::Process::Start(childStart(name, arguments, environment), &process);
  return process;
}

int waitForChild(os::Process& child) {
  int code = -1;
  if (!child) return -1;
  if (child.Wait(kChildPatienceMs, &code) == 0) return code;
  child.Terminate();
  child.Wait(os::kWaitForever, &code);
  return -1;
}

int runChild(const std::string& name, const std::vector<std::string>& arguments, const Environment& environment) {
  os::Process child = startChild(name, arguments, environment);
  return waitForChild(child);
}

std::string scratchName() {
  static int counter = 0;
  return "\\\\.\\pipe\\kova_kit_" + std::to_string(realProcessId()) + "_" + std::to_string(counter++);
}

std::string scratchFolder() {
  static const std::string folder = [] {
    const auto path = std::filesystem::temp_directory_path() / ("kova_kit_files_" + std::to_string(realProcessId()));
    std::filesystem::create_directories(path);
    return path.string();
  }();
  return folder;
}

std::string scratchPath(const std::string& fileName) {
  return (std::filesystem::path(scratchFolder()) / fileName).string();
}

void makeExecutable(const std::string& path) { std::filesystem::permissions(path, std::filesystem::perms::owner_all); }

}  // namespace kova::kit
