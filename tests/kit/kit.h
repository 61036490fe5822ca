// What tests that need a second process share: named child functions of the same binary, scratch names, leak counts.
//
// A program made with kova_test(... KIT) has the kit's main: started by a test as its own child it runs the named
// function in place of the tests. After each test it checks that no descriptor, socket file or child process was left
// behind.
//
//   KOVA_KIT_CHILD(exits_with) { return std::stoi(arguments.at(0)); }
//   TEST(Process, TellsItsExitCode) { EXPECT_EQ(kova::kit::runChild("exits_with", {"7"}), 7); }
#ifndef KOVADX_TESTS_KIT_KIT_H
#define KOVADX_TESTS_KIT_KIT_H

#include <string>
#include <utility>
#include <vector>

#include "platform/os/process.h"

namespace kova::kit {

using ChildFunction = int (*)(const std::vector<std::string>& arguments);
using Environment = std::vector<std::pair<std::string, std::string>>;

// Adds a child function under a name; its result is the child's exit code. Made before main by KOVA_KIT_CHILD.
class ChildRegistration {
 public:
  ChildRegistration(const char* name, ChildFunction function);
};

// What a test hands to os::Process::Start to have a child function run: this very program with the kit's arguments.
os::ProcessStart childStart(const std::string& name, const std::vector<std::string>& arguments = {},
                            const Environment& environment = {});

// Starts a child function in a process of its own; an empty process when it can not be started.
os::Process startChild(const std::string& name, const std::vector<std::string>& arguments = {},
                       const Environment& environment = {});

// Waits for a child, for a minute at most; then it is ended and the result is -1.
int waitForChild(os::Process& child);

// Starts a child function and waits for it. Its exit code, or -1.
int runChild(const std::string& name, const std::vector<std::string>& arguments = {},
             const Environment& environment = {});

// A pipe name (\\.\pipe\...) that nobody else uses.
std::string scratchName();

// A folder of this process alone, made at the first call and removed with all it holds when the tests are over. The
// path of a new file in it.
std::string scratchFolder();
std::string scratchPath(const std::string& fileName);

// Lets a file be started as a program, where the platform asks for that.
void makeExecutable(const std::string& path);

// How many descriptors or handles this process has open; under the fake backend, how many pipe ends and sockets.
int openHandleCount();

// Runs the child function that the arguments name; -1 when they name none.
int runNamedChild(const std::vector<std::string>& arguments);

}  // namespace kova::kit

#define KOVA_KIT_CHILD(name)                                                                         \
  static int kovaKitChild_##name(const std::vector<std::string>& arguments);                         \
  static const kova::kit::ChildRegistration kovaKitRegistration_##name(#name, &kovaKitChild_##name); \
  static int kovaKitChild_##name([[maybe_unused]] const std::vector<std::string>& arguments)

#endif
