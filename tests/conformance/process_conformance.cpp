// Processes. A child is a named function of this very program.
#include "platform/os/process.h"

#include <cstdio>
#include <string>
#include <thread>

#include "platform/os/clock.h"
#include "platform/os/environment.h"
#include "platform/os/event.h"
#include "platform/os/file.h"
#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

// The ends of a pipe between this process and a child that opens it by the name in its first argument.
class Processes : public SeamTest {
 protected:
  Processes() { EXPECT_EQ(server_.create(name_), os::kSuccess); }

  std::string name_ = kit::scratchName();
  Pipe server_;
};

KOVA_KIT_CHILD(exits_with) { return std::stoi(arguments.at(0)); }

KOVA_KIT_CHILD(tells_arguments) {
  Pipe pipe;
  if (pipe.open(arguments.at(0)) != os::kSuccess) return 1;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    if (pipe.write(arguments[i]) != os::kSuccess) return 2;
  }
  return receive(pipe).bytes == "done" ? 0 : 3;
}

KOVA_KIT_CHILD(tells_variables) {
  Pipe pipe;
  if (pipe.open(arguments.at(0)) != os::kSuccess) return 1;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    if (pipe.write(os::GetEnvironment(arguments[i]).value_or("(not set)")) != os::kSuccess) return 2;
  }
  return receive(pipe).bytes == "done" ? 0 : 3;
}

// Holds its end of a pipe open until it is ended.
KOVA_KIT_CHILD(holds_pipe) {
  Pipe pipe;
  if (pipe.open(arguments.at(0)) != os::kSuccess) return 1;
  if (pipe.write("here") != os::kSuccess) return 2;
  receive(pipe);
  return 0;
}

TEST_F(Processes, TellTheirExitCode) {
  for (const int code : {0, 7, 255}) EXPECT_EQ(kit::runChild("exits_with", {std::to_string(code)}), code);
}

TEST_F(Processes, CanBeWaitedForAgain) {
  os::Process child = kit::startChild("exits_with", {"9"});
  EXPECT_EQ(kit::waitForChild(child), 9);
  int code = 0;
  EXPECT_EQ(child.Wait(0, &code), os::kSuccess);
  EXPECT_EQ(code, 9);
}

TEST_F(Processes, GetTheirArgumentsUnchanged) {
  const std::vector<std::string> sent = {"plain",      "two words",    "",           "\"quoted\"",   "back\\slash\\",
                                         "tail\\\\\"", "$HOME %PATH%", "a\\\\b c\\", "*?;|&<>^()[]'"};
  std::vector<std::string> arguments = {name_};
  arguments.insert(arguments.end(), sent.begin(), sent.end());
  os::Process child = kit::startChild("tells_arguments", arguments);
  ASSERT_TRUE(child);
  server_.accept();
  for (const std::string& argument : sent) EXPECT_EQ(receive(server_), (Received{os::kSuccess, argument}));
  EXPECT_EQ(server_.write("done"), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child), 0);
}

TEST_F(Processes, GetTheArgumentsInATextAsProgramsTakeItApart) {
  os::ProcessStart start = kit::childStart("tells_arguments", {"not looked at"});
  start.commandLine = " " + start.arguments[0] + " \ttells_arguments " + name_ +
                      R"( plain "two words" "" \"quoted\" "say \"it\"" back\slash\ "c d\\\\" tail\\\"x)";
  os::Process child;
  ASSERT_EQ(os::Process::Start(start, &child), os::kSuccess);
  server_.accept();
  const std::vector<std::string> expected = {"plain",      "two words",     "",        "\"quoted\"",
                                             "say \"it\"", "back\\slash\\", "c d\\\\", "tail\\\"x"};
  for (const std::string& argument : expected) EXPECT_EQ(receive(server_), (Received{os::kSuccess, argument}));
  EXPECT_EQ(server_.write("done"), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child), 0);
}

TEST_F(Processes, GetThisEnvironmentAndTheirOwn) {
  os::SetEnvironment("KOVA_CONFORMANCE_KEPT", "kept");
  os::SetEnvironment("KOVA_CONFORMANCE_CHANGED", "before");
  os::SetEnvironment("KOVA_CONFORMANCE_REMOVED", "before");
  os::Process child = kit::startChild("tells_variables",
                                      {name_, "KOVA_CONFORMANCE_KEPT", "KOVA_CONFORMANCE_CHANGED",
                                       "KOVA_CONFORMANCE_REMOVED", "KOVA_CONFORMANCE_ADDED"},
                                      {{"KOVA_CONFORMANCE_CHANGED", "after=1"},
                                       {"KOVA_CONFORMANCE_REMOVED", ""},
                                       {"KOVA_CONFORMANCE_ADDED", "with blanks"}});
  ASSERT_TRUE(child);
  server_.accept();
  for (const char* value : {"kept", "after=1", "(not set)", "with blanks"}) {
    EXPECT_EQ(receive(server_), (Received{os::kSuccess, value}));
  }
  EXPECT_EQ(server_.write("done"), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child), 0);
  EXPECT_EQ(os::GetEnvironment("KOVA_CONFORMANCE_CHANGED"), "before") << "the caller's own stays";
  for (const char* name : {"KEPT", "CHANGED", "REMOVED"}) {
    os::SetEnvironment(std::string("KOVA_CONFORMANCE_") + name, "");
  }
}

TEST_F(Processes, ThatRunGive258AndCanBeTerminated) {
  os::Process child = kit::startChild("holds_pipe", {name_});
  ASSERT_TRUE(child);
  server_.accept();
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, "here"}));
  EXPECT_NE(child.Id(), 0u);
  EXPECT_NE(child.Id(), os::CurrentProcessId());
  int code = 5;
  EXPECT_EQ(child.Wait(0, &code), os::kWaitTimeout);
  EXPECT_EQ(child.Wait(10, &code), os::kWaitTimeout);
  EXPECT_EQ(code, 5) << "untouched on failure";
  EXPECT_EQ(child.Terminate(), os::kSuccess);
  EXPECT_EQ(child.Wait(os::kWaitForever, &code), os::kSuccess);
  EXPECT_EQ(code, kit::kBackend.terminatedCode);
  EXPECT_EQ(child.Terminate(), os::kSuccess) << "also when it has ended";
}

TEST_F(Processes, ThatDieBreakTheirPipes) {
  os::Process child = kit::startChild("holds_pipe", {name_});
  ASSERT_TRUE(child);
  server_.accept();
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, "here"}));
  ASSERT_EQ(server_.write(""), os::kSuccess);
  ASSERT_EQ(child.Terminate(), os::kSuccess);
  EXPECT_EQ(receive(server_), (Received{os::kBrokenPipe, ""}));
  EXPECT_EQ(server_.write("x"), os::kNoData);
  int code = 0;
  EXPECT_EQ(child.Wait(os::kWaitForever, &code), os::kSuccess);
}

// A copy of a pipe end in another child would hide that this process has closed it.
TEST_F(Processes, GetNoCopyOfAnOpenPipe) {
  Connection pipe;
  os::Process child = kit::startChild("holds_pipe", {name_});
  ASSERT_TRUE(child);
  server_.accept();
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, "here"}));
  pipe.client.close();
  EXPECT_EQ(receive(pipe.server), (Received{os::kBrokenPipe, ""}));
  EXPECT_EQ(server_.write("end"), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child), 0);
}

TEST_F(Processes, OfNoSuchProgramGive2) {
  os::ProcessStart start;
  os::Process process;
  for (const char* program :
       {"kova_no_such_program", "no_such_folder\\kova_no_such_program", "./kova_no_such_program"}) {
    start.program = program;
    EXPECT_EQ(os::Process::Start(start, &process), os::kFileNotFound) << program;
  }
  EXPECT_FALSE(process) << "untouched on failure";
}

TEST_F(Processes, OfATextFileAreRefused) {
  os::ProcessStart start;
  start.program = kit::scratchPath("text.exe");
  Error error = 0;
  std::FILE* file = os::OpenFile(start.program, "w", &error);
  ASSERT_NE(file, nullptr) << error;
  std::fputs("This is no program.\n", file);
  std::fclose(file);
  kit::makeExecutable(start.program);
  os::Process process;
  EXPECT_EQ(os::Process::Start(start, &process), kit::kBackend.startTextFile);
  EXPECT_EQ(os::DeletePlainFile(start.program), os::kSuccess);
}

TEST_F(Processes, AreMovedWithTheirHandle) {
  os::Process child = kit::startChild("exits_with", {"4"});
  const std::uint32_t id = child.Id();
  os::Process other = std::move(child);
  EXPECT_FALSE(child);
  EXPECT_TRUE(other);
  EXPECT_EQ(other.Id(), id);
  child = std::move(other);
  EXPECT_EQ(kit::waitForChild(child), 4);
}

TEST_F(Processes, NoneGives6) {
  os::Process none;
  int code = 5;
  EXPECT_EQ(none.Id(), 0u);
  EXPECT_EQ(none.Wait(0, &code), os::kInvalidHandle);
  EXPECT_EQ(none.Interrupt(), os::kInvalidHandle);
  EXPECT_EQ(none.Terminate(), os::kInvalidHandle);
}

TEST_F(Processes, EndWithTheirParent) {
  os::Process child = kit::startChild("starts_holder", {name_});
  ASSERT_TRUE(child);
  server_.accept();
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, "here"}));
  ASSERT_EQ(child.Terminate(), os::kSuccess);
  // The grandchild holds the other end: its death is seen by it.
  EXPECT_EQ(receive(server_), (Received{os::kBrokenPipe, ""}));
  int code = 0;
  EXPECT_EQ(child.Wait(os::kWaitForever, &code), os::kSuccess);
}

KOVA_KIT_CHILD(starts_holder) {
  os::ProcessStart start = kit::childStart("holds_pipe", arguments);
  start.endsWithParent = true;
  os::Process grandchild;
  int code = 0;
  if (os::Process::Start(start, &grandchild) != os::kSuccess) return 1;
  grandchild.Wait(os::kWaitForever, &code);
  return code;
}

// Tells how its own child, which holds the pipe of the second argument, is doing.
KOVA_KIT_CHILD(starts_holder_on_a_thread_that_ends) {
  os::ProcessStart start = kit::childStart("holds_pipe", {arguments.at(1)});
  start.endsWithParent = true;
  os::Process grandchild;
  Error error = os::kGeneralFailure;
  std::thread([&] { error = os::Process::Start(start, &grandchild); }).join();
  if (error != os::kSuccess) return 1;
  Pipe pipe;
  if (pipe.open(arguments.at(0)) != os::kSuccess) return 2;
  if (pipe.write("started") != os::kSuccess) return 3;
  int code = 0;
  return grandchild.Wait(os::kWaitForever, &code) == os::kSuccess ? code : 4;
}

TEST_F(Processes, ThatEndWithTheirParentOutliveTheThreadThatStartedThem) {
  Pipe holder;
  const std::string holderName = kit::scratchName();
  ASSERT_EQ(holder.create(holderName), os::kSuccess);
  os::Process child = kit::startChild("starts_holder_on_a_thread_that_ends", {name_, holderName});
  ASSERT_TRUE(child);
  holder.accept();
  EXPECT_EQ(receive(holder), (Received{os::kSuccess, "here"}));
  server_.accept();
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, "started"}));
  EXPECT_EQ(holder.write("end"), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child), 0) << "the grandchild ended by itself";
}

// Starts a child that holds the pipe, and ends as it is told.
KOVA_KIT_CHILD(starts_holder_and_ends) {
  os::Process grandchild = kit::startChild("holds_pipe", {arguments.at(0)});
  if (readOwnInput('.') == "kill") os::EndWithChildren();
  return 21;
}

// Starts it apart, with the pipe that tells it when to end.
class Apart : public Processes {
 protected:
  Apart() { EXPECT_EQ(os::BytePipeEnd::Create(&childsInput_, &input_), os::kSuccess); }

  void start() {
    os::ProcessStart start = kit::childStart("starts_holder_and_ends", {name_});
    start.isApart = true;
    start.input = &childsInput_;
    ASSERT_EQ(os::Process::Start(start, &child_), os::kSuccess);
    server_.accept();
    EXPECT_EQ(receive(server_), (Received{os::kSuccess, "here"}));
  }

  os::BytePipeEnd childsInput_;
  os::BytePipeEnd input_;
  os::Process child_;
};

TEST_F(Apart, WhatTheyStartIsKilledWhenTheyHaveEnded) {
  start();
  EXPECT_EQ(input_.Write("end.", 4), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child_), 21);
  EXPECT_EQ(receive(server_), (Received{os::kBrokenPipe, ""}));
}

TEST_F(Apart, WhatTheyStartIsTerminatedWithThem) {
  start();
  EXPECT_EQ(child_.Terminate(), os::kSuccess);
  EXPECT_EQ(receive(server_), (Received{os::kBrokenPipe, ""}));
  EXPECT_EQ(kit::waitForChild(child_), kit::kBackend.terminatedCode);
  EXPECT_EQ(child_.Terminate(), os::kSuccess) << "also when it has ended";
}

TEST_F(Apart, TheyCanEndThemselvesWithWhatTheyStarted) {
  start();
  EXPECT_EQ(input_.Write("kill.", 5), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child_), kit::kBackend.terminatedCode);
  EXPECT_EQ(receive(server_), (Received{os::kBrokenPipe, ""}));
}

KOVA_KIT_CHILD(tells_whether_its_input_is_empty) { return readOwnInput('.').empty() ? 31 : 1; }

TEST_F(Apart, TheyReadNothingWhenTheyAreGivenNothing) {
  os::ProcessStart start = kit::childStart("tells_whether_its_input_is_empty");
  start.isApart = true;
  ASSERT_EQ(os::Process::Start(start, &child_), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child_), 31);
}

TEST_F(Apart, TheyCanEndWithTheirParentToo) {
  os::ProcessStart start = kit::childStart("exits_with", {"6"});
  start.isApart = true;
  start.endsWithParent = true;
  ASSERT_EQ(os::Process::Start(start, &child_), os::kSuccess);
  EXPECT_EQ(kit::waitForChild(child_), 6);
}

os::EventHandle endRequested = nullptr;

KOVA_KIT_CHILD(ends_on_request) {
  if (os::CreateEventObject(true, false, nullptr, &endRequested) != os::kSuccess) return 1;
  if (os::SetEndRequestHandler([] { os::SetEventObject(endRequested); }) != os::kSuccess) return 2;
  Pipe pipe;
  if (pipe.open(arguments.at(0)) != os::kSuccess) return 3;
  if (pipe.write("here") != os::kSuccess) return 4;
  if (os::WaitEventObject(endRequested, os::kWaitForever) != os::kSuccess) return 5;
  return os::SetEndRequestHandler(nullptr) == os::kSuccess ? 33 : 6;
}

TEST_F(Processes, AreInterruptedWhereThePlatformCan) {
  os::Process child = kit::startChild("ends_on_request", {name_});
  ASSERT_TRUE(child);
  server_.accept();
  EXPECT_EQ(receive(server_), (Received{os::kSuccess, "here"}));
  const Error interrupted = child.Interrupt();
  EXPECT_EQ(interrupted, kit::kBackend.interrupt);
  if (interrupted != os::kSuccess) child.Terminate();
  EXPECT_EQ(kit::waitForChild(child), kit::kBackend.interruptedCode);
}

TEST_F(Processes, TheEndRequestHandlerIsSetAndTakenBack) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(os::SetEndRequestHandler([] {}), os::kSuccess);
    EXPECT_EQ(os::SetEndRequestHandler([] {}), os::kSuccess);
    EXPECT_EQ(os::SetEndRequestHandler(nullptr), os::kSuccess);
    EXPECT_EQ(os::SetEndRequestHandler(nullptr), os::kSuccess);
  }
}

}  // namespace
}  // namespace kova::conformance
