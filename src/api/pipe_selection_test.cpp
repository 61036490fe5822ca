// The first call of a process: who it is, where its files lie, which suite it talks through.
#include "api/pipe_selection.h"

#include "config/process_values.h"
#include "host/XManager.h"
#include "platform/os/environment.h"
#include "tests/api/client_test.h"
#include "transport/JavaPlugInSocket.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

using kova::SelectPipes;
using testing::AllOf;
using testing::Contains;
using testing::Not;

class PipeSelection : public kova::ClientTest {};

TEST_F(PipeSelection, TheFirstCallMakesTheProcessWideObjects) {
  ASSERT_EQ(kova::os::SetEnvironment("KOVADXTEMP", "D:/temp"), 0u);
  SetXNameAndSHome("TEST", "D:\\kova");
  const auto pipes = SelectPipes();
  ASSERT_TRUE(pipes);
  EXPECT_EQ(pipes.request->GetPipeName(), kRequestPipe);
  EXPECT_EQ(pipes.reply->GetPipeName(), kReplyPipe);
  EXPECT_TRUE(IsDXGlobalInit());
  EXPECT_EQ(GetXPipeManager()->getPipePath(), "D:\\temp\\");
  EXPECT_EQ(GetXPipeManager()->getPipePid(), "1234");
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("TEST")->getIndex(), 0);
  EXPECT_EQ(GetXName(), "TEST");
  EXPECT_STREQ(GetKOVAHOME(), "D:\\kova");
  EXPECT_THAT(Traced(), AllOf(Contains("InitDxGlobal>tempPath:D:\\temp\\"), Contains("InitDxGlobal>pid:1234"),
                              Contains("InitDxGlobal>xname:TEST"), Contains("InitDxGlobal>kovaHome:D:\\kova")));
}

TEST_F(PipeSelection, ASmallProcessIdIsPaddedToFourDigits) {
  kova::fake::setProcessId(0xa1);
  EXPECT_EQ(SelectPipes().request->GetPipeName(), "\\\\.\\pipe\\00a1TEST0xdapi");
}

struct EnvironmentRow {
  const char* label;
  std::vector<std::pair<const char*, const char*>> set;
  const char* folder;
};

TEST_F(PipeSelection, TheFirstFolderThatIsSetIsTaken) {
  const EnvironmentRow rows[] = {
      {"nothing set", {}, ""},
      {"all set", {{"KOVADXTEMP", "a"}, {"TEMP", "b"}, {"TMP", "c"}}, "a\\"},
      {"TEMP before TMP", {{"TEMP", "b"}, {"TMP", "c"}}, "b\\"},
      {"TMP alone", {{"TMP", "c\\"}}, "c\\"},
      {"the small one alone", {{"tmp", "d/e"}}, "d\\e\\"},
  };
  for (const EnvironmentRow& row : rows) {
    SCOPED_TRACE(row.label);
    for (const char* name : {"KOVADXTEMP", "TEMP", "TMP", "tmp"}) kova::os::SetEnvironment(name, "");
    for (const auto& [name, value] : row.set) kova::os::SetEnvironment(name, value);
    ASSERT_TRUE(SelectPipes());
    EXPECT_EQ(GetXPipeManager()->getPipePath(), row.folder);
    EXPECT_THAT(Traced(), Contains(std::string("InitDxGlobal>tempPath:") + row.folder));
    FinalizeDXGlobal();
  }
}

TEST_F(PipeSelection, AnUnnamedProcessTakesTheProcessWideName) {
  SetXNameAndSHome(nullptr, nullptr);
  EXPECT_EQ(SelectPipes().request->GetPipeName(), "\\\\.\\pipe\\1234UNNAMEDX0xdapi");
}

TEST_F(PipeSelection, AStoredNameBecomesTheProcessWideOne) {
  ASSERT_EQ(InitDxGlobal("t\\", "99ff", "HOST", ""), 0);
  EXPECT_EQ(SelectPipes().request->GetPipeName(), "\\\\.\\pipe\\99ffTEST0xdapi");
  EXPECT_EQ(GetXName(), "TEST");
}

TEST_F(PipeSelection, ASuiteThatARunHasRaisedIsTakenAsItIs) {
  InitDxGlobal("", "1234", "TEST", "");
  XPipeSuit* const suite = GetXPipeManager()->getPipeSuit("TEST");
  suite->increaseIndex();
  suite->increaseIndex();
  EXPECT_EQ(SelectPipes().request->GetPipeName(), "\\\\.\\pipe\\1234TEST1xdapi");
  EXPECT_EQ(suite->getIndex(), 1);
}

TEST_F(PipeSelection, ANestedRunHasPipesOfItsOwn) {
  const auto outer = SelectPipes();
  XPipeSuit* const suite = GetXPipeManager()->getPipeSuit("TEST");
  suite->increaseIndex();
  const auto inner = SelectPipes();
  EXPECT_EQ(inner.reply->GetPipeName(), "\\\\.\\pipe\\1234TEST1xdapiresult");
  suite->decreaseIndex();
  EXPECT_EQ(SelectPipes().request, outer.request);
}

TEST_F(PipeSelection, WithoutAPipeManagerThereAreNoPipes) {
  SetDXGlobalInitFin(true);
  EXPECT_FALSE(SelectPipes());
}

TEST_F(PipeSelection, FinalisationLeavesTheJavaSocketAlone) {
  ASSERT_TRUE(SelectPipes());
  int standIn = 0;
  auto* const socket = reinterpret_cast<JavaPlugInSocket*>(&standIn);
  EXPECT_EQ(GetJavaExtSocket(), nullptr);
  SetavaExtSocket(socket);
  FinalizeDXGlobal();
  EXPECT_EQ(GetJavaExtSocket(), socket);
  SetavaExtSocket(nullptr);
}

TEST_F(PipeSelection, FinalisationForgetsTheSuite) {
  ASSERT_TRUE(SelectPipes());
  FinalizeDXGlobal();
  EXPECT_EQ(GetXPipeManager(), nullptr);
  EXPECT_EQ(kova::fake::openPipeEnds(kReplyPipe), 0u);
  const auto pipes = SelectPipes();
  ASSERT_TRUE(pipes);
  EXPECT_TRUE(pipes.reply->IsPipeCreated());
}

TEST_F(PipeSelection, CallsWorkAfterFinalisation) {
  for (int round = 0; round < 3; ++round) {
    StartEngine({.longs = {round}});
    EXPECT_EQ(GetVariableCount(nullptr), round);
    EndConversation();
  }
}

using InitDxGlobalTest = PipeSelection;

TEST_F(InitDxGlobalTest, MakesAllAndTracesFourLines) {
  SetInStat(true);
  EXPECT_EQ(InitDxGlobal("D:\\t\\", "0a1b", "python", "D:\\home\\"), 0);
  EXPECT_NE(GetXManager(), nullptr);
  EXPECT_NE(GetXPipeManager(), nullptr);
  EXPECT_TRUE(IsDXGlobalInit());
  EXPECT_FALSE(IsInStat());
  EXPECT_EQ(GetXName(), "PYTHON");
  EXPECT_STREQ(GetKOVAHOME(), "D:\\home");
  EXPECT_THAT(Traced(), testing::ElementsAre("InitDxGlobal>tempPath:D:\\t\\", "InitDxGlobal>pid:0a1b",
                                             "InitDxGlobal>xname:python", "InitDxGlobal>kovaHome:D:\\home\\"));
}

TEST_F(InitDxGlobalTest, ASecondOneChangesNothing) {
  InitDxGlobal("a\\", "0001", "ONE", "");
  XManager* const hosts = GetXManager();
  XPipeManager* const pipes = GetXPipeManager();
  Traced();
  EXPECT_EQ(InitDxGlobal("b\\", "0002", "TWO", "elsewhere"), 0);
  EXPECT_EQ(GetXManager(), hosts);
  EXPECT_EQ(GetXPipeManager(), pipes);
  EXPECT_EQ(GetXName(), "ONE");
  EXPECT_THAT(Traced(), testing::IsEmpty());
}

TEST_F(InitDxGlobalTest, FinalisationBeginsAfresh) {
  DxTracer* const tracer = GetDxTracer();
  InitDxGlobal("a\\", "0001", "ONE", "");
  SetAppMode(1);
  FinalizeDXGlobal();
  EXPECT_EQ(GetXManager(), nullptr);
  EXPECT_EQ(GetXPipeManager(), nullptr);
  EXPECT_FALSE(IsDXGlobalInit());
  EXPECT_EQ(GetXName(), "");
  EXPECT_EQ(GetAppMode(), -1);
  EXPECT_EQ(GetDxTracer(), tracer);
  InitDxGlobal("b\\", "0002", "", "");
  EXPECT_EQ(GetXPipeManager()->getPipePid(), "0002");
  EXPECT_EQ(GetXName(), "UNNAMEDX");
}

TEST_F(InitDxGlobalTest, FinalisationOfNothingIsHarmless) {
  FinalizeDXGlobal();
  FinalizeDXGlobal();
  EXPECT_EQ(GetAppMode(), -1);
}

TEST_F(InitDxGlobalTest, SettersStoreWithoutOwning) {
  XManager own;
  XManager* const before = GetXManager();
  SetXManager(&own);
  EXPECT_EQ(GetXManager(), &own);
  SetXManager(before);
}

}  // namespace
