#include "tests/os_fake/os_fake.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/os/clock.h"
#include "platform/os/environment.h"
#include "platform/os/event.h"
#include "platform/os/file.h"
#include "platform/os/named_pipe.h"
#include "platform/os/process.h"
#include "platform/os/thread.h"

namespace kova::fake {
namespace {

using testing::ElementsAre;

constexpr const char* kName = "\\\\.\\pipe\\fake";

os::ProcessStart startOf(const std::string& program) {
  os::ProcessStart start;
  start.program = program;
  return start;
}

class OsFake : public testing::Test {
 protected:
  void SetUp() override { reset(); }
  void TearDown() override { EXPECT_EQ(openPipeEnds(), 0u) << "pipe ends left open"; }
};

// A connected pair of pipe ends.
class FakePipe : public OsFake {
 protected:
  void SetUp() override {
    OsFake::SetUp();
    ASSERT_EQ(os::CreateMessagePipe(kName, 8192, &server_), os::kSuccess);
    ASSERT_EQ(os::OpenPipe(kName, os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &client_), os::kSuccess);
  }
  void TearDown() override {
    os::ClosePipeHandle(client_);
    os::ClosePipeHandle(server_);
    OsFake::TearDown();
  }
  os::Error write(os::NativeHandle end, const std::string& text) {
    std::uint32_t written = 0;
    return os::WriteMessage(end, text.data(), static_cast<std::uint32_t>(text.size()), &written);
  }
  os::Error read(os::NativeHandle end, std::uint32_t size = 8192) {
    std::string area(size, '\0');
    std::uint32_t count = 77;
    const os::Error error = os::ReadMessage(end, area.data(), size, &count);
    text_ = area.substr(0, count);
    return error;
  }
  os::NativeHandle server_ = nullptr;
  os::NativeHandle client_ = nullptr;
  std::string text_;
};

TEST_F(OsFake, FailsFromTheNextCallOnAsOftenAsTold) {
  fail("SetEnvironment", 5, 1, 2);
  EXPECT_EQ(os::SetEnvironment("A", "1"), 0u);
  EXPECT_EQ(os::SetEnvironment("A", "2"), 5u);
  EXPECT_EQ(os::SetEnvironment("A", "3"), 5u);
  EXPECT_EQ(os::SetEnvironment("A", "4"), 0u);
  EXPECT_EQ(callCount("SetEnvironment"), 4u);
  EXPECT_EQ(os::GetEnvironment("A"), "4");
}

TEST_F(OsFake, FailsForEver) {
  fail("CreateMessagePipe", 8, 0, ~0u);
  os::NativeHandle pipe = &pipe;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(os::CreateMessagePipe(kName, 8192, &pipe), 8u);
  EXPECT_EQ(pipe, &pipe) << "an output is untouched on failure";
}

TEST_F(OsFake, FailureCountsFromTheCallsMadeBefore) {
  os::SetEnvironment("A", "1");
  fail("SetEnvironment", 31);
  EXPECT_EQ(os::SetEnvironment("A", "2"), 31u);
  EXPECT_EQ(os::SetEnvironment("A", "3"), 0u);
}

TEST_F(OsFake, AFailedCallWithoutAResultCodeGivesNothing) {
  os::SetEnvironment("A", "1");
  fail("GetEnvironment", 8);
  fail("FileExists", 5);
  fail("ProgramPath", 31);
  fail("OpenFile", 5);
  os::Error error = 0;
  EXPECT_EQ(os::GetEnvironment("A"), std::nullopt);
  EXPECT_FALSE(os::FileExists("."));
  EXPECT_EQ(os::ProgramPath(), "");
  EXPECT_EQ(os::OpenFile("any", "r", &error), nullptr);
  EXPECT_EQ(error, 5u);
}

TEST_F(OsFake, ListsCallsWithTheirFirstText) {
  os::SleepMs(1);
  os::GetEnvironment("HOME");
  os::TickMs();
  os::AwaitServer(kName, 0);
  EXPECT_THAT(calls(), ElementsAre("SleepMs", "GetEnvironment HOME", std::string("AwaitServer ") + kName));
}

TEST_F(OsFake, ResetForgetsScriptLogClockAndEnvironment) {
  os::SetEnvironment("A", "1");
  os::SleepMs(5);
  fail("SleepMs", 5, 0, ~0u);
  registerProgram("x", 1);
  setProcessId(7);
  reset();
  EXPECT_EQ(os::GetEnvironment("A"), std::nullopt);
  EXPECT_EQ(elapsedMs(), 0u);
  EXPECT_EQ(callCount("SleepMs"), 0u);
  EXPECT_EQ(os::CurrentProcessId(), 0x1234u);
  os::Process process;
  EXPECT_EQ(os::Process::Start(startOf("x"), &process), os::kFileNotFound);
}

TEST_F(OsFake, SleepsTakeVirtualTimeOnly) {
  const std::uint64_t before = os::TickMs();
  for (int i = 0; i < 100; ++i) os::SleepMs(100000);
  EXPECT_EQ(elapsedMs(), 10000000u);
  EXPECT_EQ(os::TickMs() - before, 10000000u);
}

TEST_F(OsFake, AYieldIsAMicrosecondOfTheTicksAlone) {
  const std::uint64_t before = os::TickUs();
  os::YieldThread();
  EXPECT_EQ(os::TickUs(), before + 1);
  EXPECT_EQ(elapsedMs(), 0u);
}

TEST_F(OsFake, LocalTimeFollowsTheVirtualClock) {
  EXPECT_EQ(os::LocalTime().tm_sec, 5);
  os::SleepMs(2500);
  EXPECT_EQ(os::LocalTime().tm_sec, 7);
  advanceMs(24 * 3600 * 1000);
  const std::tm time = os::LocalTime();
  EXPECT_EQ(time.tm_mday, 3);
  EXPECT_EQ(time.tm_mon, 0);
  EXPECT_EQ(time.tm_year, 124);
  EXPECT_EQ(time.tm_wday, 3);
  EXPECT_EQ(time.tm_yday, 2);
}

TEST_F(OsFake, AWaitThatNobodyEndsTakesItsLimitInVirtualTime) {
  setPatienceMs(1);
  os::EventHandle event = nullptr;
  ASSERT_EQ(os::CreateEventObject(false, false, nullptr, &event), os::kSuccess);
  EXPECT_EQ(os::WaitEventObject(event, 3000), os::kWaitTimeout);
  EXPECT_EQ(elapsedMs(), 3000u);
  os::CloseEventObject(event);
}

TEST_F(OsFake, AdvancedTimeEndsAWait) {
  setPatienceMs(60000);
  os::EventHandle event = nullptr;
  ASSERT_EQ(os::CreateEventObject(false, false, nullptr, &event), os::kSuccess);
  std::atomic<os::Error> result{0};
  std::thread waiter([&] { result = os::WaitEventObject(event, 3000); });
  while (result == 0) {
    advanceMs(1000);
    std::this_thread::yield();
  }
  waiter.join();
  EXPECT_EQ(result, os::kWaitTimeout);
  os::CloseEventObject(event);
}

TEST_F(FakePipe, LosesItsPeerAfterWhatWasWritten) {
  ASSERT_EQ(write(client_, "last"), os::kSuccess);
  losePeer(kName);
  EXPECT_EQ(read(server_), os::kSuccess);
  EXPECT_EQ(text_, "last");
  EXPECT_EQ(read(server_), os::kBrokenPipe);
  EXPECT_EQ(write(server_, "x"), os::kNoData);
  EXPECT_EQ(read(client_), os::kBrokenPipe);
  EXPECT_EQ(write(client_, "x"), os::kNoData);
}

TEST_F(FakePipe, LosingThePeerWakesAReader) {
  std::thread killer([this] {
    while (callCount("ReadMessage") == 0) std::this_thread::yield();
    losePeer(kName);
  });
  EXPECT_EQ(read(server_), os::kBrokenPipe);
  killer.join();
}

TEST_F(FakePipe, LosesNobodyOfAnotherName) {
  losePeer("\\\\.\\pipe\\other");
  EXPECT_EQ(write(client_, "x"), os::kSuccess);
}

TEST_F(FakePipe, ShortensOneRead) {
  ASSERT_EQ(write(client_, "abcdef"), os::kSuccess);
  shortNextRead(2);
  EXPECT_EQ(read(server_), os::kMoreData);
  EXPECT_EQ(text_, "ab");
  EXPECT_EQ(read(server_), os::kSuccess);
  EXPECT_EQ(text_, "cdef");
}

TEST_F(FakePipe, AScriptedFailureLosesNoMessage) {
  ASSERT_EQ(write(client_, "kept"), os::kSuccess);
  fail("ReadMessage", 31);
  EXPECT_EQ(read(server_), 31u);
  EXPECT_EQ(text_, "") << "the count is stored on failure too";
  EXPECT_EQ(read(server_), os::kSuccess);
  EXPECT_EQ(text_, "kept");
}

TEST_F(FakePipe, WriterWaitsUntilTheUnreadFitsThePipe) {
  ASSERT_EQ(write(client_, std::string(8192, 'a')), os::kSuccess);
  std::atomic<bool> written{false};
  std::thread writer([&] {
    EXPECT_EQ(write(client_, "b"), os::kSuccess);
    written = true;
  });
  while (callCount("WriteMessage") < 2) std::this_thread::yield();
  EXPECT_FALSE(written);
  EXPECT_EQ(read(server_), os::kSuccess);
  writer.join();
  EXPECT_EQ(read(server_), os::kSuccess);
  EXPECT_EQ(text_, "b");
}

TEST_F(FakePipe, TakesOneClientAnInstanceAndSeesBusyFromOutside) {
  os::NativeHandle second = nullptr;
  os::NativeHandle other = nullptr;
  EXPECT_EQ(os::OpenPipe(kName, os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &other), os::kPipeBusy);
  EXPECT_EQ(os::AwaitServer(kName, 10), os::kSemTimeout);
  ASSERT_EQ(os::CreateMessagePipe(kName, 8192, &second), os::kSuccess);
  EXPECT_EQ(os::AwaitServer(kName, os::kWaitForever), os::kSuccess);
  ASSERT_EQ(os::OpenPipe(kName, os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &other), os::kSuccess);
  EXPECT_EQ(openPipeEnds(kName), 4u);
  os::ClosePipeHandle(other);
  os::ClosePipeHandle(second);
}

TEST_F(OsFake, RunsAProgramInVirtualTime) {
  registerProgram("bin\\tool.exe", {.exitCode = 259, .runsForMs = 5000, .body = {}});
  os::Process process;
  os::ProcessStart start = startOf("bin/tool.exe");
  start.arguments = {"-x"};
  ASSERT_EQ(os::Process::Start(start, &process), os::kSuccess);
  int code = -1;
  EXPECT_EQ(process.Wait(1000, &code), os::kWaitTimeout);
  EXPECT_EQ(code, -1);
  EXPECT_EQ(process.Wait(os::kWaitForever, &code), os::kSuccess);
  EXPECT_EQ(code, 259);
  EXPECT_EQ(elapsedMs(), 5000u);
  ASSERT_EQ(startedPrograms().size(), 1u);
  EXPECT_THAT(startedPrograms()[0].arguments, ElementsAre("-x"));
}

TEST_F(OsFake, RefusesToStartAsScripted) {
  registerProgram("locked", {.exitCode = 0, .body = {}, .startError = 5});
  os::Process process;
  EXPECT_EQ(os::Process::Start(startOf("locked"), &process), 5u);
  EXPECT_FALSE(process);
  EXPECT_TRUE(startedPrograms().empty());
}

TEST_F(OsFake, EndsARunningProgram) {
  struct Row {
    const char* label;
    void (*end)(os::Process&);
    int code;
  };
  const Row rows[] = {
      {"by itself", [](os::Process& process) { EXPECT_TRUE(endProgram(process.Id(), 3)); }, 3},
      {"terminated", [](os::Process& process) { EXPECT_EQ(process.Terminate(), os::kSuccess); }, 137},
      {"interrupted", [](os::Process& process) { EXPECT_EQ(process.Interrupt(), os::kSuccess); }, 130},
  };
  registerProgram("server", {.exitCode = 0, .runsForMs = os::kWaitForever, .body = {}});
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    os::Process process;
    ASSERT_EQ(os::Process::Start(startOf("server"), &process), os::kSuccess);
    EXPECT_EQ(process.Wait(0, nullptr), os::kWaitTimeout);
    row.end(process);
    int code = -1;
    EXPECT_EQ(process.Wait(os::kWaitForever, &code), os::kSuccess);
    EXPECT_EQ(code, row.code);
    EXPECT_FALSE(endProgram(process.Id(), 9));
    EXPECT_EQ(process.Terminate(), os::kSuccess) << "of a program that has ended already";
  }
}

TEST_F(OsFake, ABodyIsAProcessOfItsOwn) {
  os::SetEnvironment("KEPT", "parent");
  os::SetEnvironment("GONE", "parent");
  std::string seen;
  std::uint32_t id = 0;
  registerProgram("child", [&](const os::ProcessStart& start) {
    seen = os::GetEnvironment("KEPT").value_or("-") + os::GetEnvironment("GONE").value_or("-") +
           os::GetEnvironment("NEW").value_or("-");
    os::SetEnvironment("KEPT", "child");
    id = os::CurrentProcessId();
    return static_cast<int>(start.arguments.size());
  });
  os::Process process;
  os::ProcessStart start = startOf("child");
  start.arguments = {"a", "b"};
  start.environment = {{"GONE", ""}, {"NEW", "+"}};
  ASSERT_EQ(os::Process::Start(start, &process), os::kSuccess);
  int code = -1;
  ASSERT_EQ(process.Wait(os::kWaitForever, &code), os::kSuccess);
  EXPECT_EQ(code, 2);
  EXPECT_EQ(seen, "parent-+");
  EXPECT_EQ(id, process.Id());
  EXPECT_EQ(os::GetEnvironment("KEPT"), "parent");
}

TEST_F(OsFake, ATerminatedBodyLosesItsPipes) {
  registerProgram("child", [](const os::ProcessStart&) {
    os::NativeHandle pipe = nullptr;
    std::uint32_t read = 0;
    char area = 0;
    while (os::OpenPipe(kName, os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &pipe) != os::kSuccess)
      os::YieldThread();
    os::ReadMessage(pipe, &area, 1, &read);
    return 0;
  });
  os::NativeHandle server = nullptr;
  ASSERT_EQ(os::CreateMessagePipe(kName, 8192, &server), os::kSuccess);
  os::Process process;
  ASSERT_EQ(os::Process::Start(startOf("child"), &process), os::kSuccess);
  const os::Error accepted = os::AcceptPeer(server);
  EXPECT_TRUE(accepted == os::kSuccess || accepted == os::kPipeConnected) << accepted;
  EXPECT_EQ(process.Terminate(), os::kSuccess);
  std::uint32_t read = 0;
  char area = 0;
  EXPECT_EQ(os::ReadMessage(server, &area, 1, &read), os::kBrokenPipe);
  os::ClosePipeHandle(server);
}

TEST_F(OsFake, AChildThatEndsWithItsParentDoes) {
  registerProgram("grandchild", {.exitCode = 0, .runsForMs = os::kWaitForever, .body = {}});
  std::atomic<std::uint32_t> grandchild{0};
  registerProgram("child", [&](const os::ProcessStart&) {
    os::Process process;
    os::ProcessStart start = startOf("grandchild");
    start.endsWithParent = true;
    EXPECT_EQ(os::Process::Start(start, &process), os::kSuccess);
    grandchild = process.Id();
    return 0;
  });
  os::Process process;
  ASSERT_EQ(os::Process::Start(startOf("child"), &process), os::kSuccess);
  ASSERT_EQ(process.Wait(os::kWaitForever, nullptr), os::kSuccess);
  EXPECT_NE(grandchild, 0u);
  EXPECT_FALSE(endProgram(grandchild, 0)) << "it has ended already";
}

TEST_F(OsFake, RequestsTheEnd) {
  static int requests;
  requests = 0;
  EXPECT_FALSE(requestEnd());
  ASSERT_EQ(os::SetEndRequestHandler([] { ++requests; }), os::kSuccess);
  EXPECT_TRUE(requestEnd());
  EXPECT_EQ(requests, 1);
  ASSERT_EQ(os::SetEndRequestHandler(nullptr), os::kSuccess);
  EXPECT_FALSE(requestEnd());
}

TEST_F(OsFake, KillsAThreadAtItsNextCall) {
  static std::atomic<bool> survived;
  survived = false;
  os::EventHandle event = nullptr;
  ASSERT_EQ(os::CreateEventObject(true, false, nullptr, &event), os::kSuccess);
  os::ThreadHandle thread = nullptr;
  const auto body = [](void* argument) -> std::uint32_t {
    os::WaitEventObject(argument, os::kWaitForever);
    survived = true;
    return 0;
  };
  ASSERT_EQ(os::LaunchThread(body, event, &thread), os::kSuccess);
  while (callCount("WaitEventObject") == 0) std::this_thread::yield();
  ASSERT_EQ(os::KillThread(thread), os::kSuccess);
  std::uint32_t code = 0;
  EXPECT_EQ(os::WaitThread(thread, os::kWaitForever, &code), os::kSuccess);
  EXPECT_EQ(code, 0xFFFFFFFFu);
  os::SetEventObject(event);
  EXPECT_EQ(os::WaitEventObject(event, 0), os::kSuccess);
  EXPECT_FALSE(survived);
  os::CloseThread(thread);
  os::CloseEventObject(event);
}

TEST_F(OsFake, FilesAreTheMachinesOwn) {
  const std::filesystem::path folder = testing::TempDir();
  const std::string path = (folder / "kova_os_fake_test.txt").string();
  std::FILE* const file = os::OpenFile(path, "w", nullptr);
  ASSERT_NE(file, nullptr);
  std::fclose(file);
  EXPECT_TRUE(std::filesystem::exists(path));
  EXPECT_EQ(os::DeletePlainFile(path), os::kSuccess);
  EXPECT_EQ(os::DeletePlainFile(path), os::kFileNotFound);
}

TEST_F(OsFake, TellsScriptedPaths) {
  setProgramPath("/p");
  setModulePath("/m");
  EXPECT_EQ(os::ProgramPath(), "/p");
  EXPECT_EQ(os::ModulePath(kName), "/m");
  EXPECT_EQ(os::ModulePath(nullptr), "");
}

}  // namespace
}  // namespace kova::fake
