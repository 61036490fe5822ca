// The echo runtime inside this process, against the reference engine: real libraries, pipes and threads.
#include "engine/inner_runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "api/kovadx.h"
#include "config/process_values.h"
#include "engine/data_package.h"
#include "engine/serving_test.h"
#include "host/XManager.h"
#include "message/commands.h"
#include "tests/kit/kit.h"
#include "tests/kit/scratch_folder.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kConfiguration =
    "[SUPPORTED_LANG]\nX=ECHO;BARE;BROKEN;ABSENT;ENDING;NAMELESS;REFUSES;PYTHON\n"
    "[ECHO]\nLIB_NAME=kovaecho\nARGS=--verbose two\nKOVA_ECHO_A=a\nKOVA_ECHO_B=%KOVA_ECHO_A%b\n"
    "[BARE]\nLIB_NAME=kovaecho_bare\n"
    "[BROKEN]\nLIB_NAME=kovaecho_broken\n"
    "[ABSENT]\nLIB_NAME=kovanothing\n"
    "[ENDING]\nLIB_NAME=kovaecho.dll\n"
    "[NAMELESS]\nHOME=x\n"
    "[REFUSES]\nLIB_NAME=kovaecho\nARGS=--init=99115\n"
    "[PYTHON]\nLIB_NAME=kovaecho\nARGS=--pre=1\n";

// One for the process, as its configuration is.
const std::string& home() {
  static const kit::ScratchFolder folder;
  static const std::string path = [] {
    folder.write("kovadxcfg.ini", kConfiguration);
    for (const auto& file : std::filesystem::directory_iterator(KOVA_RUNTIME_DIR)) {
      if (file.path().filename().string().starts_with("kovaecho")) std::filesystem::copy(file, folder.path());
    }
    return folder.path();
  }();
  return path;
}

class InnerRuntimeTest : public ServingTest {
 protected:
  InnerRuntimeTest() : ServingTest(home()) {}

  int Start(const std::string& language = "ECHO") {
    runtime_ = std::make_unique<InnerRuntime>(language, home(), Performer());
    return runtime_->start();
  }

  int IndexOf(const std::string& language) { return GetXPipeManager()->getPipeSuit(language)->getIndex(); }

  std::unique_ptr<InnerRuntime> runtime_;
};

TEST_F(InnerRuntimeTest, LinesAreRunAndShown) {
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(runtime_->run({"first", "second"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("first", "second"));
  EXPECT_EQ(runtime_->run({"before", "return 7", "behind"}), 7);
  EXPECT_THAT(Shown(), ElementsAre("before"));
  EXPECT_EQ(runtime_->run({}), 0);
  EXPECT_EQ(runtime_->run({"calls"}), 0);
  EXPECT_EQ(Shown().at(0).substr(0, 32), "init 1, pre 4, execute 4, post 3");
}

TEST_F(InnerRuntimeTest, TheRuntimeGetsArgumentsAndEnvironment) {
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(runtime_->run({"arguments", "environment KOVA_ECHO_B"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("--verbose\ntwo", "ab"));
}

TEST_F(InnerRuntimeTest, CallsReachTheEngine) {
  DataSet penguins;
  std::string problem;
  ASSERT_TRUE(readDataPackage(KOVA_SOURCE_DIR "/examples/penguins", &penguins, &problem)) << problem;
  engine_.open(std::move(penguins));
  ASSERT_EQ(Start(), 0);
  const std::vector<std::string> lines(2000, "variables");
  EXPECT_EQ(runtime_->run(lines), 0);
  EXPECT_THAT(Shown(), testing::AllOf(testing::SizeIs(2000), testing::Each("7")));
}

TEST_F(InnerRuntimeTest, TheEnginesCodeIsTheLines) {
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(runtime_->run({"variables", "behind"}), 98004);
  EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(InnerRuntimeTest, WithoutOptionalEntryPointsNothingIsShown) {
  ASSERT_EQ(Start("BARE"), 0);
  EXPECT_EQ(runtime_->run({"text", "calls"}), 0);
  EXPECT_THAT(Shown(), IsEmpty());
}

struct FaultRow {
  const char* language;
  int code;
};

TEST_F(InnerRuntimeTest, WhatIsConfiguredWrongHasItsCode) {
  const FaultRow rows[] = {{"NONE", 99120},   {"echo", 99120},   {"NAMELESS", 99118}, {"ABSENT", 99114},
                           {"ENDING", 99114}, {"BROKEN", 99114}, {"REFUSES", 99115}};
  for (const FaultRow& row : rows) {
    SCOPED_TRACE(row.language);
    EXPECT_EQ(Start(row.language), row.code);
    EXPECT_EQ(runtime_->run({"x"}), 99115);
    EXPECT_EQ(runtime_->stop(), 0);
    EXPECT_EQ(GetXManager()->getBackKovaDX(), nullptr) << "nothing is left behind";
    EXPECT_EQ(IndexOf(row.language), -1);
  }
}

TEST_F(InnerRuntimeTest, PythonsNoHasACodeOfItsOwn) {
  ASSERT_EQ(Start("PYTHON"), 0);
  EXPECT_EQ(runtime_->run({"x"}), 999988);
  EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(InnerRuntimeTest, AFailedPreActionEndsTheRun) {
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(runtime_->run({"pre 12", "post 13"}), 0) << "what the post action gives changes nothing";
  EXPECT_EQ(runtime_->run({"x"}), 12);
  EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(InnerRuntimeTest, TellsWhetherTheRuntimeWasGivenTheLines) {
  bool areReached = true;
  EXPECT_EQ(InnerRuntime("ECHO", home(), Performer()).run({"x"}, &areReached), 99115);
  EXPECT_FALSE(areReached) << "not started";
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(runtime_->run({"pre 12", "return 99115"}, &areReached), 99115);
  EXPECT_TRUE(areReached) << "a block may end with any code";
  EXPECT_EQ(runtime_->run({"x"}, &areReached), 12);
  EXPECT_FALSE(areReached);
}

TEST_F(InnerRuntimeTest, RunsNestEightDeep) {
  ASSERT_EQ(Start(), 0);
  std::vector<int> indexes;
  onSubmit_ = [&](const std::string& text) {
    indexes.push_back(IndexOf("ECHO"));
    const int left = std::stoi(text);
    if (left == 0) return 0;
    const int code = runtime_->run({"down " + text, "submit " + std::to_string(left - 1), "up " + text});
    EXPECT_EQ(IndexOf("ECHO"), indexes.at(static_cast<std::size_t>(8 - left))) << "as before the nested run";
    return code;
  };
  for (int round = 0; round < 2; ++round) {
    indexes.clear();
    EXPECT_EQ(runtime_->run({"submit 8", "variables"}), 98004) << "the outer run goes on over its own pipes";
    EXPECT_THAT(indexes, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(Shown(), ElementsAre("down 8", "down 7", "down 6", "down 5", "down 4", "down 3", "down 2", "down 1",
                                     "up 1", "up 2", "up 3", "up 4", "up 5", "up 6", "up 7", "up 8"));
  }
}

TEST_F(InnerRuntimeTest, ANestedCodeReachesTheOuterBlock) {
  ASSERT_EQ(Start(), 0);
  onSubmit_ = [&](const std::string& text) { return runtime_->run({text}); };
  EXPECT_EQ(runtime_->run({"submit return 5", "behind"}), 5);
  EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(InnerRuntimeTest, AStopOutOfOrderStopsNothing) {
  ASSERT_EQ(Start(), 0);
  int stopped = -1;
  onSubmit_ = [&](const std::string&) {
    stopped = runtime_->stop();
    return 0;
  };
  EXPECT_EQ(runtime_->run({"submit x", "still here"}), 0);
  EXPECT_EQ(stopped, 170);
  EXPECT_THAT(Shown(), ElementsAre("still here"));
}

TEST_F(InnerRuntimeTest, ARuntimeThatWasStoppedBehindItsBackIsNotAskedToRun) {
  ASSERT_EQ(Start(), 0);
  GetXManager()->getStatisticsX("ECHO")->stop_embedded_x();
  EXPECT_EQ(runtime_->run({"x"}), 99115);
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->run({"x"}), 0);
}

// A thread that the script has left behind must not try to reach pipes that are about to go.
TEST_F(InnerRuntimeTest, CallsAreRefusedBeforeTheirPipesGo) {
  int code = -1;
  runtime_ =
      std::make_unique<InnerRuntime>("ECHO", home(), Performer(), [&code](int) { code = FreeStringArray(nullptr, 0); });
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->run({"shown"}), 0);
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_EQ(code, 17);
}

TEST_F(InnerRuntimeTest, StopsAndStartsAgain) {
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(runtime_->start(), 0) << "it is started";
  for (int cycle = 0; cycle < 50; ++cycle) {
    EXPECT_EQ(runtime_->run({"stop 3", "cycle"}), 0);
    EXPECT_EQ(runtime_->stop(), 3);
    EXPECT_EQ(runtime_->stop(), 0);
    EXPECT_EQ(SetMode(1), 17) << "nobody serves calls";
    ASSERT_EQ(runtime_->start(), 0);
  }
  EXPECT_EQ(runtime_->run({"calls"}), 0);
  EXPECT_THAT(Shown().back(), testing::HasSubstr("init 51, "));
}

}  // namespace
}  // namespace kova::engine
