// The blocks that an engine has its driving program run: this test is that program and hosts the echo runtime; the
// engine is a real process beside it.
#include "engine/driven_runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "api/kovadx.h"
#include "platform/os/clock.h"
#include "platform/os/named_pipe.h"
#include "platform/os/process_watch.h"
#include "tests/kit/kit.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

using testing::StartsWith;

constexpr const char* kConfiguration =
    "[SUPPORTED_LANG]\nX=ECHO;ABSENT\n[ECHO]\nLIB_NAME=kovaecho\nARGS=--init=7\n[ABSENT]\nLIB_NAME=kovanothing\n";

// The engine's program with its library, and the runtime.
class Home {
 public:
  explicit Home(const char* configuration) {
    folder_.write("kovadxcfg.ini", configuration);
    std::filesystem::copy_file(KOVA_TEST_ENGINE, folder_.path("StartXD.exe"));
    for (const char* source : {KOVA_RUNTIME_DIR, KOVA_HOME_DIR}) {
      for (const auto& file : std::filesystem::directory_iterator(source)) {
        const std::string name = file.path().filename().string();
        const bool isNeeded = name.starts_with("kovaecho.") || name == "kovadx.dll";
        if (isNeeded) std::filesystem::copy_file(file, folder_.path(name));
      }
    }
  }

  std::string path() const { return folder_.path(); }

 private:
  kit::ScratchFolder folder_;
};

// The first one, whose configuration the process keeps.
std::string home() {
  static const Home theHome(kConfiguration);
  return theHome.path();
}

// Drives an engine of that home folder, has it carry out the text, and stays.
KOVA_KIT_CHILD(drives_until_it_is_killed) {
  SetXNameAndSHome("ECHO", arguments.at(0).c_str());
  if (StartKova("") != 0) return 1;
  Submit(arguments.at(1).c_str(), static_cast<int>(arguments.at(1).size()));
  os::SleepMs(60000);
  return 0;
}

// The id that an engine writes when it is told to touch a file; waits for it.
std::uint32_t idIn(const std::string& path) {
  for (;;) {
    std::ifstream file(path);
    std::uint32_t id = 0;
    char end = 0;
    if (file >> id >> end) return id;
    os::SleepMs(1);
  }
}

class DrivenRuntimeTest : public testing::Test {
 protected:
  ~DrivenRuntimeTest() override {
    StopKova();
    SetKovaRunning(false);
    SetXNameAndSHome(nullptr, nullptr);
  }

  static void Start(const std::string& name = "ECHO", const std::string& engineHome = home()) {
    SetXNameAndSHome(name.c_str(), engineHome.c_str());
    ASSERT_EQ(StartKova("\"" KOVA_SOURCE_DIR "/examples/penguins\""), 0);
  }

  static int Say(const std::string& text) { return Submit(text.c_str(), static_cast<int>(text.size())); }

  static std::string SettingOf(const char* name) {
    char* value = nullptr;
    EXPECT_EQ(GetSetting(name, "", &value), 0);
    return value == nullptr ? "" : value;
  }
  static std::string Shown() { return SettingOf("SHOWN"); }
};

TEST_F(DrivenRuntimeTest, BlocksRunInThisProcessAndStartNothing) {
  Start();
  EXPECT_EQ(Say("run first;second"), 0);
  EXPECT_EQ(Shown(), "first|second");
  EXPECT_EQ(Say("run before;return 5;behind"), 5);
  EXPECT_EQ(Shown(), "before");
  EXPECT_EQ(Say("run calls"), 0);
  EXPECT_THAT(Shown(), StartsWith("init 0, pre 3, execute 3, post 2, stop 0"));
  EXPECT_EQ(SettingOf("REACHED"), "yes");
}

TEST_F(DrivenRuntimeTest, ABlocksCallsReachTheEngine) {
  Start();
  for (int run = 0; run < 20; ++run) {
    EXPECT_EQ(Say("run variables"), 0);
    EXPECT_EQ(Shown(), "7");
  }
  int code = -1;
  EXPECT_EQ(GetVariableCount(&code), 7) << "and so do this process's own, between the blocks";
}

TEST_F(DrivenRuntimeTest, RunsNest) {
  Start();
  for (int turn = 0; turn < 3; ++turn) {
    EXPECT_EQ(Say("run one;submit run submit run three;submit run two;variables"), 0);
    EXPECT_EQ(Shown(), "one|three|two|7");
    EXPECT_EQ(Say("run submit run submit run return 9;behind"), 9);
    EXPECT_EQ(Shown(), "");
  }
}

TEST_F(DrivenRuntimeTest, AFailedPreActionEndsTheRunAndTheNextIsGood) {
  Start();
  EXPECT_EQ(Say("run pre 12"), 0);
  EXPECT_EQ(Say("run pre 0;x"), 12);
  EXPECT_EQ(Shown(), "");
  EXPECT_EQ(Say("run submit run inner;outer"), 12) << "the runtime was not told otherwise";
  EXPECT_EQ(Shown(), "");
}

TEST_F(DrivenRuntimeTest, ALanguageWhoseRuntimeCanNotBeLoaded) {
  Start("ABSENT");
  for (int run = 0; run < 2; ++run) {
    EXPECT_EQ(Say("run x"), 99114);
    EXPECT_EQ(Say("nothing"), 0);
  }
}

TEST_F(DrivenRuntimeTest, ANameThatIsNoLanguageHasNoBlocks) {
  Start("OTHER");
  EXPECT_EQ(Say("run x"), 99115);
  EXPECT_EQ(SettingOf("REACHED"), "no");
}

// Whoever of the two knows of no blocks, nobody waits for the other.
TEST_F(DrivenRuntimeTest, AnotherHomeMayListOtherLanguages) {
  Start();
  StopKova();
  const Home other("[SUPPORTED_LANG]\nX=OTHER\n[OTHER]\nLIB_NAME=kovaecho\n");
  for (const char* name : {"ECHO", "OTHER", "ECHO"}) {
    SCOPED_TRACE(name);
    Start(name, other.path());
    EXPECT_EQ(Say("run x"), 99115);
    EXPECT_EQ(Say("nothing"), 0);
    StopKova();
    EXPECT_FALSE(IsBackendReady());
  }
}

TEST_F(DrivenRuntimeTest, NothingStopsWhileABlockRuns) {
  Start();
  EXPECT_EQ(Say("run submit stop"), 170);
  EXPECT_EQ(Say("run still here"), 0);
  EXPECT_EQ(Shown(), "still here");
}

TEST_F(DrivenRuntimeTest, StopsAndStartsAgain) {
  for (int life = 0; life < 3; ++life) {
    Start();
    EXPECT_EQ(Say("run submit run x"), 0);
    StopKova();
    EXPECT_EQ(Say("run x"), 17);
  }
}

TEST_F(DrivenRuntimeTest, AnEngineThatDiesInABlockEndsItAndTheNextStartIsGood) {
  for (const char* text : {"die", "run submit die;behind", "run submit run submit die"}) {
    SCOPED_TRACE(text);
    Start();
    EXPECT_EQ(Say(text), 109);
    StopKova();
    Start();
    EXPECT_EQ(Say("run submit run again"), 0);
    EXPECT_EQ(Shown(), "again");
    StopKova();
  }
}

// Whatever it is doing.
TEST_F(DrivenRuntimeTest, TheEngineEndsWithAProgramThatIsKilled) {
  constexpr std::uint64_t kEngineIsGoneMs = 2000 + 2000;  // What is promised, and what a busy machine may add.
  int number = 0;
  for (const std::string text : {"touch ", "work ", "run submit touch FILE;forever", "run submit work "}) {
    SCOPED_TRACE(text);
    const std::string path = kit::scratchPath("engine" + std::to_string(++number));
    const std::size_t place = text.find("FILE");
    const std::string said = place == std::string::npos ? text + path : std::string(text).replace(place, 4, path);
    os::Process program = kit::startChild("drives_until_it_is_killed", {home(), said});
    os::ProcessWatch watch;
    ASSERT_EQ(os::ProcessWatch::Open(idIn(path), &watch), os::kSuccess);
    const std::uint64_t killed = os::TickMs();
    program.Terminate();
    EXPECT_EQ(watch.Wait(), os::kSuccess);
    EXPECT_LT(os::TickMs() - killed, kEngineIsGoneMs);
    program.Wait(os::kWaitForever, nullptr);
  }
  os::SweepStalePipes("ECHO");
}

}  // namespace
}  // namespace kova::engine
