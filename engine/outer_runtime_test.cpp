// The echo runtime in a process of its own, against the reference engine: the real program, pipes and threads.
#include "engine/outer_runtime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "api/InitDxGlobal.h"
#include "config/process_values.h"
#include "engine/data_package.h"
#include "engine/serving_test.h"
#include "host/OutpStatisticsX.h"
#include "host/XManager.h"
#include "tests/kit/kit.h"
#include "tests/kit/kit_system.h"
#include "tests/kit/scratch_folder.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kConfiguration =
    "[SUPPORTED_LANG]\nX=ECHO;ABSENT;REFUSES\n"
    "[ECHO]\nLIB_NAME=kovaecho\nARGS=--verbose two\nKOVA_ECHO_A=a\n"
    "[ABSENT]\nLIB_NAME=kovanothing\n"
    "[REFUSES]\nLIB_NAME=kovaecho\nARGS=--init=99115\n";

// One for the process, as its configuration is: what the child's program needs, and the runtime.
const std::string& home() {
  static const kit::ScratchFolder folder;
  static const std::string path = [] {
    folder.write("kovadxcfg.ini", kConfiguration);
    for (const char* source : {KOVA_RUNTIME_DIR, KOVA_HOME_DIR}) {
      for (const auto& file : std::filesystem::directory_iterator(source)) {
        const std::string name = file.path().filename().string();
        const bool isNeeded = name.starts_with("kovaecho.") || name.starts_with("startx") || name == "kovadx.dll" ||
                              name.starts_with("libkovadx.so.");
        if (isNeeded) std::filesystem::copy_file(file, std::filesystem::path(folder.path()) / name);
      }
    }
    return folder.path();
  }();
  return path;
}

class OuterRuntimeTest : public ServingTest {
 protected:
  OuterRuntimeTest() : ServingTest(home()) { SetAppMode(1); }

  int Start(const std::string& language = "ECHO") {
    runtime_ = std::make_unique<OuterRuntime>(language, Performer());
    return runtime_->start();
  }

  static bool KillChild() {
    auto* const host = dynamic_cast<OutpStatisticsX*>(GetXManager()->getStatisticsX("ECHO"));
    return host != nullptr && kit::killProcess(host->childProcessId());
  }

  static int IndexOf(const std::string& language) { return GetXPipeManager()->getPipeSuit(language)->getIndex(); }

  std::unique_ptr<OuterRuntime> runtime_;
};

TEST_F(OuterRuntimeTest, LinesAreRunAndShown) {
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(runtime_->run({"first", "second"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("first", "second"));
  EXPECT_EQ(runtime_->run({"before", "return 7", "behind"}), 7);
  EXPECT_THAT(Shown(), ElementsAre("before"));
  EXPECT_EQ(runtime_->run({}), 0);
  EXPECT_EQ(runtime_->run({"calls"}), 0);
  EXPECT_EQ(Shown().at(0).substr(0, 32), "init 1, pre 4, execute 4, post 3");
  EXPECT_FALSE(runtime_->childEnd().exitCode.has_value());
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_EQ(runtime_->childEnd().exitCode, 0);
}

TEST_F(OuterRuntimeTest, StartsAgainAfterAStop) {
  for (int turn = 0; turn < 3; ++turn) {
    ASSERT_EQ(Start(), 0);
    EXPECT_EQ(runtime_->start(), 0) << "started already";
    EXPECT_EQ(runtime_->run({"turn " + std::to_string(turn)}), 0);
    EXPECT_EQ(runtime_->stop(), 0);
    EXPECT_EQ(runtime_->run({"x"}), 99115);
    EXPECT_EQ(IndexOf("ECHO"), -1);
    EXPECT_EQ(GetXManager()->getStatisticsX("ECHO"), nullptr);
  }
  EXPECT_THAT(Shown(), ElementsAre("turn 0", "turn 1", "turn 2"));
}

TEST_F(OuterRuntimeTest, CallsReachTheEngine) {
  DataSet penguins;
  std::string problem;
  ASSERT_TRUE(readDataPackage(KOVA_SOURCE_DIR "/examples/penguins", &penguins, &problem)) << problem;
  engine_.open(std::move(penguins));
  ASSERT_EQ(Start(), 0);
  for (int run = 0; run < 3; ++run) {
    EXPECT_EQ(runtime_->run(std::vector<std::string>(500, "variables")), 0);
    EXPECT_THAT(Shown(), testing::AllOf(testing::SizeIs(500), testing::Each("7")));
  }
}

TEST_F(OuterRuntimeTest, RunsNest) {
  ASSERT_EQ(Start(), 0);
  std::vector<int> indexes;
  onSubmit_ = [&](const std::string& text) {
    indexes.push_back(IndexOf("ECHO"));
    const int depth = std::stoi(text);
    const int code = depth == 0 ? 5 : runtime_->run({"submit " + std::to_string(depth - 1), "behind " + text});
    return code;
  };
  for (int turn = 0; turn < 2; ++turn) {
    indexes.clear();
    EXPECT_EQ(runtime_->run({"submit 3"}), 5) << "the innermost code comes back";
    EXPECT_THAT(indexes, ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(IndexOf("ECHO"), 0);
  }
}

TEST_F(OuterRuntimeTest, AFailedPreActionEndsTheRunAndTheNextIsGood) {
  ASSERT_EQ(Start(), 0);
  EXPECT_EQ(runtime_->run({"pre 12"}), 0);
  EXPECT_EQ(runtime_->run({"pre 0"}), 12);
  EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(OuterRuntimeTest, ARuntimeThatDoesNotStartIsToldOfByTheRun) {
  const struct {
    const char* language;
    int code;
  } rows[] = {{"ABSENT", 99114}, {"REFUSES", 99115}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.language);
    ASSERT_EQ(Start(row.language), 0);
    EXPECT_EQ(runtime_->run({"x"}), row.code);
    EXPECT_EQ(runtime_->stop(), 0);
    EXPECT_EQ(runtime_->childEnd().exitCode, 0);
  }
}

TEST_F(OuterRuntimeTest, ALanguageThatIsNotListed) {
  EXPECT_EQ(Start("NONE"), 99120);
  EXPECT_EQ(runtime_->run({"x"}), 99115);
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_FALSE(runtime_->childEnd().exitCode.has_value());
}

TEST_F(OuterRuntimeTest, AChildThatIsKilledEndsItsRunAndTheNextStartIsGood) {
  ASSERT_EQ(Start(), 0);
  onSubmit_ = [&](const std::string&) {
    EXPECT_TRUE(KillChild());
    return 0;
  };
  bool isReached = false;
  EXPECT_EQ(runtime_->run({"submit x", "behind"}, &isReached), 109);
  EXPECT_TRUE(isReached);
  EXPECT_EQ(runtime_->childEnd(10000).exitCode, 137);
  EXPECT_EQ(runtime_->run({"x"}, &isReached), 99104);
  EXPECT_FALSE(isReached);
  EXPECT_EQ(runtime_->stop(), 0);
  EXPECT_EQ(runtime_->childEnd().exitCode, 137);
  ASSERT_EQ(runtime_->start(), 0);
  EXPECT_EQ(runtime_->run({"again"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("again"));
}

TEST_F(OuterRuntimeTest, NothingStopsWhileABlockRuns) {
  ASSERT_EQ(Start(), 0);
  onSubmit_ = [&](const std::string&) { return runtime_->stop(); };
  EXPECT_EQ(runtime_->run({"submit x"}), 170);
  EXPECT_EQ(runtime_->stop(), 0);
}

}  // namespace
}  // namespace kova::engine
