// The blocks that an engine has its driving program run: this test is that program and hosts the echo runtime; the
// engine is a real process beside it.
#include "engine/driven_runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "api/kovadx.h"
#include "tests/kit/kit.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

using testing::StartsWith;

constexpr const char* kConfiguration =
    "[SUPPORTED_LANG]\nX=ECHO;ABSENT\n[ECHO]\nLIB_NAME=kovaecho\nARGS=--init=7\n[ABSENT]\nLIB_NAME=kovanothing\n";

// One for the process, as its configuration is: the engine's program with its library, and the runtime.
const std::string& home() {
  static const kit::ScratchFolder folder;
  static const std::string path = [] {
    folder.write("kovadxcfg.ini", kConfiguration);
    std::filesystem::copy_file(KOVA_TEST_ENGINE, folder.path("StartXD.exe"));
    for (const char* source : {KOVA_RUNTIME_DIR, KOVA_HOME_DIR}) {
      for (const auto& file : std::filesystem::directory_iterator(source)) {
        const std::string name = file.path().filename().string();
        const bool isNeeded = name.starts_with("kovaecho.") || name == "kovadx.dll";
        if (isNeeded) std::filesystem::copy_file(file, std::filesystem::path(folder.path()) / name);
      }
    }
    return folder.path();
  }();
  return path;
}

class DrivenRuntimeTest : public testing::Test {
 protected:
  ~DrivenRuntimeTest() override {
    StopKova();
    SetKovaRunning(false);
    SetXNameAndSHome(nullptr, nullptr);
  }

  static void Start(const std::string& name = "ECHO") {
    SetXNameAndSHome(name.c_str(), home().c_str());
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

}  // namespace
}  // namespace kova::engine
