// The engine that this process starts and stops, played by a scripted program; its name is no listed language.
#include "api/pipe_selection.h"
#include "host/XManager.h"
#include "platform/os/environment.h"
#include "tests/api/driven_test.h"
#include "transport/KovaPipe.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"
#include "transport/message_exchange.h"

namespace {

namespace os = kova::os;

using kova::ClientCursor;
using kova::StoredIdentity;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class DrivenEngine : public kova::DrivenTest {
 protected:
  DrivenEngine() : DrivenTest("TEST") {}

  // Who the process is was forgotten with the engine before.
  void nameAgain(const std::string& folder = home()) { SetXNameAndSHome("TEST", folder.c_str()); }

  static void expectNotRunning() {
    const auto before = kova::fake::calls();
    EXPECT_FALSE(kova::IsEngineRunning());
    EXPECT_EQ(Submit("x", 1), 17);
    EXPECT_FALSE(IsBackendReady());
    EXPECT_FALSE(IsXDriven());
    StopKova();
    EXPECT_EQ(kova::fake::calls(), before) << "nothing was asked";
  }
};

TEST_F(DrivenEngine, IsStartedAndGreets) {
  ASSERT_EQ(StartKova("one two"), 0);
  const auto started = kova::fake::startedPrograms();
  ASSERT_THAT(started, SizeIs(1));
  EXPECT_EQ(started[0].program, program());
  EXPECT_EQ(started[0].commandLine, " \"\" 1234 TEST one two");
  EXPECT_TRUE(started[0].isApart && started[0].endsWithParent);
  EXPECT_THAT(started[0].environment, ElementsAre(testing::Pair("KOVA_HOME", home())));
  EXPECT_GE(kova::fake::elapsedMs(), 500U);
  EXPECT_TRUE(kova::IsEngineRunning());
  EXPECT_TRUE(IsXDriven());
  EXPECT_FALSE(kova::IsHostCreatedHere());
  EXPECT_EQ(GetXPipeManager()->getPipeSuit("TEST")->getIndex(), 0);
  EXPECT_THAT(kova::fake::calls(), Not(Contains("CreateMessagePipe " + base_ + "_s")));
  EXPECT_THAT(Traced(), AllOf(Contains("call StartKOVA"), Contains(base_ + "0xdapiresult created: error code : 0.")));
  StopKova();
  EXPECT_THAT(life_.codes(), ElementsAre(1, 2, 1, 1, 2, 4));
}

TEST_F(DrivenEngine, IsStoppedByFourRequests) {
  ASSERT_EQ(StartKova(nullptr), 0);
  Traced();
  const std::uint64_t before = kova::fake::elapsedMs();
  StopKova();
  EXPECT_THAT(life_.codes(), ElementsAre(1, 1, 2, 4));
  EXPECT_EQ(life_.received.back(), kova::WireImage{.code = 4}.bytes());
  EXPECT_THAT(Traced(), AllOf(Contains("stopkova"), Not(Contains("Cmd Dispatcher thread can't exit timely."))));
  EXPECT_GE(kova::fake::elapsedMs() - before, 1000U);
  EXPECT_EQ(kova::fake::openPipeEnds((base_ + "0xdapiresult").c_str()), 0U);
  expectNotRunning();
}

TEST_F(DrivenEngine, TheReplyToTheStopMayBearACode) {
  ASSERT_EQ(StartKova(""), 0);
  life_.answers[4] = [] { return reply({.error = 9}, true); };
  StopKova();
  expectNotRunning();
}

TEST_F(DrivenEngine, IsNotStoppedByAProcessThatDoesNotDriveIt) {
  ASSERT_EQ(StartKova(""), 0);
  life_.isDriven = false;
  StopKova();
  EXPECT_TRUE(kova::IsEngineRunning());
  life_.isReady = false;
  StopKova();
  life_.isReady = true;
  life_.isDriven = true;
  StopKova();
  EXPECT_THAT(life_.codes(), ElementsAre(1, 1, 2, 1, 1, 1, 2, 4));
}

TEST_F(DrivenEngine, WithoutAStartThereIsNothingToStop) { expectNotRunning(); }

TEST_F(DrivenEngine, IsNotStartedTwice) {
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_EQ(StartKova("-kovahome=elsewhere,"), 0);
  EXPECT_THAT(kova::fake::startedPrograms(), SizeIs(1));
  EXPECT_EQ(StoredIdentity().kovaHome, home());
  StopKova();
  EXPECT_THAT(life_.codes(), ElementsAre(1, 1, 1, 2, 4));
}

struct CommandLineRow {
  const char* label;
  const char* folder;
  const char* options;
  const char* commandLine;
};

TEST_F(DrivenEngine, TheCommandLine) {
  const CommandLineRow rows[] = {
      {"no folder, no rest", "", "", " \"\" 1234 TEST "},
      {"a folder", "C:/temp", "rest", " C:\\temp\\ 1234 TEST rest"},
      {"a folder with a blank", "C:\\my files", "rest", " \"C:\\my files\\\\\" 1234 TEST rest"},
      {"words as they are", "t", "\"a b\" c,d", " t\\ 1234 TEST \"a b\" c,d"},
      {"another folder", "t", "-temppath u rest", " u\\ 1234 TEST rest"},
      {"a name where one is told", "t", "-language=OTHER,rest", " t\\ 1234 TEST rest"},
  };
  for (const CommandLineRow& row : rows) {
    SCOPED_TRACE(row.label);
    os::SetEnvironment("KOVADXTEMP", row.folder);
    nameAgain();
    ASSERT_EQ(StartKova(row.options), 0);
    EXPECT_EQ(kova::fake::startedPrograms().back().commandLine, row.commandLine);
    StopKova();
  }
}

TEST_F(DrivenEngine, TheOptionsTellTheHomeAndTheName) {
  SetXNameAndSHome(nullptr, nullptr);
  SetKOVAHOME("elsewhere");
  const std::string options = "-kovahome=" + home() + ",-language=TEST,-temppath=u rest";
  ASSERT_EQ(StartKova(options.c_str()), 0);
  EXPECT_EQ(kova::fake::startedPrograms()[0].program, program());
  EXPECT_EQ(kova::fake::startedPrograms()[0].commandLine, " u\\ 1234 TEST rest");
  EXPECT_EQ(GetKOVAHOME(), home());
  StopKova();
}

TEST_F(DrivenEngine, WithoutItsProgramIsNotStarted) {
  const kova::kit::ScratchFolder empty;
  std::string folder = empty.path();
  nameAgain(folder);
  DecoratePathEnd(folder);
  testing::internal::CaptureStdout();
  EXPECT_EQ(StartKova(""), 17);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "No " + folder + "StartXD.exe file exists\n");
  EXPECT_THAT(kova::fake::startedPrograms(), IsEmpty());
  expectNotRunning();
}

TEST_F(DrivenEngine, MayEndAtOnceOrNotBeAProgramAtAll) {
  kova::fake::Program shortLived;
  shortLived.exitCode = 3;
  shortLived.runsForMs = 499;
  kova::fake::Program noProgram;
  noProgram.startError = 193;
  for (const auto& kind : {shortLived, noProgram}) {
    kova::fake::registerProgram(program(), kind);
    EXPECT_EQ(StartKova(""), 99107);
    expectNotRunning();
  }
}

TEST_F(DrivenEngine, ThatFailsLeavesWhatTheProcessHadSetUpBefore) {
  ASSERT_EQ(InitDxGlobal("", "1234", "TEST", home()), 0);
  SetAppMode(1);
  kova::fake::registerProgram(program(), 1);
  EXPECT_EQ(StartKova(""), 99107);
  EXPECT_TRUE(IsDXGlobalInit());
  EXPECT_EQ(GetAppMode(), 1);
  kova::fake::registerProgram(program(), [this](const os::ProcessStart&) { return play(); });
  EXPECT_EQ(StartKova(""), 0);
  StopKova();
  EXPECT_FALSE(IsDXGlobalInit());
}

TEST_F(DrivenEngine, MayEndWithoutAGreeting) {
  kova::fake::registerProgram(program(), [](const os::ProcessStart&) {
    awaitCalls("AcceptPeer", 1);
    return 0;
  });
  EXPECT_EQ(StartKova(""), 109);
  expectNotRunning();
}

// It has to end by itself, which is waited for.
TEST_F(DrivenEngine, MayGreetWithACode) {
  std::atomic<bool> hasEnded = false;
  life_.greeting = 7;
  life_.afterGreeting = [&hasEnded] {
    awaitCalls("Process::Wait", 2);
    hasEnded = true;
  };
  EXPECT_EQ(StartKova(""), 7);
  EXPECT_TRUE(hasEnded);
  expectNotRunning();
}

TEST_F(DrivenEngine, AfterAFailedStartTheNextOneIsGood) {
  life_.greeting = 7;
  EXPECT_EQ(StartKova(""), 7);
  kova::fake::registerProgram(program(), 1);
  EXPECT_EQ(StartKova(""), 99107);
  life_.greeting = 0;
  kova::fake::registerProgram(program(), [this](const os::ProcessStart&) { return play(); });
  ASSERT_EQ(StartKova(""), 0);
  StopKova();
  EXPECT_THAT(life_.codes(), ElementsAre(1, 1, 2, 4));
}

TEST_F(DrivenEngine, AfterAFailedStartTheProcessMayHaveAnotherNameAndHome) {
  SetXNameAndSHome("WRONG", "nowhere");
  testing::internal::CaptureStdout();
  EXPECT_EQ(StartKova(""), 17);
  testing::internal::GetCapturedStdout();
  nameAgain();
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_EQ(kova::fake::startedPrograms()[0].commandLine, " \"\" 1234 TEST ");
  StopKova();
}

TEST_F(DrivenEngine, LeavesNothingOfItselfInTheProcess) {
  for (int life = 0; life < 3; ++life) {
    SCOPED_TRACE(life);
    nameAgain();
    SetRTempFolderToKOVA("r");
    ASSERT_EQ(StartKova("-temppath=t rest"), 0);
    SetAppMode(1);
    kova::KeepSharedText("kept");
    kova::clientCursor = new CursorDataSmb();
    kova::TheNewValues().add("x", 1.0);
    kova::TheDataSetCaches().isInDataStep = true;
    StopKova();
    EXPECT_STREQ(GetRTempFolderToKOVA(), "");
    EXPECT_EQ(StoredIdentity().xName + StoredIdentity().kovaHome + StoredIdentity().tempFolder, "");
    EXPECT_EQ(GetXName(), "");
    EXPECT_EQ(GetAppMode(), -1);
    EXPECT_EQ(GetXPipeManager(), nullptr);
    EXPECT_EQ(GetXManager(), nullptr);
    EXPECT_FALSE(IsDXGlobalInit());
    EXPECT_EQ(ClientCursor(), nullptr);
    EXPECT_FALSE(kova::TheDataSetCaches().isInDataStep);
    CleXDSmb request;
    kova::TheNewValues().append(request);
    EXPECT_THAT(request.GetDoubleData().GetData(), IsEmpty());
    EXPECT_EQ(kova::fake::openPipeEnds(), 0U);
  }
}

TEST_F(DrivenEngine, MayDieInACallAndBeStartedAgain) {
  ASSERT_EQ(StartKova(""), 0);
  life_.answers[0] = [] { return death(); };
  EXPECT_EQ(Submit("x", 1), 109);
  EXPECT_FALSE(IsBackendReady());
  StopKova();
  EXPECT_TRUE(kova::IsEngineRunning()) << "it was never stopped";
  life_.answers.clear();
  SetRTempFolderToKOVA("r");
  ASSERT_EQ(StartKova("again"), 0);
  EXPECT_EQ(kova::fake::startedPrograms().back().commandLine, " \"\" 1234 TEST again");
  EXPECT_STREQ(GetRTempFolderToKOVA(), "r") << "who the process is stays";
  EXPECT_EQ(Submit("x", 1), 0);
  StopKova();
  EXPECT_THAT(life_.codes(), ElementsAre(0, 1, 1, 2, 4));
}

// One that lives on is of no use any more. It waits on the thread that is ended with it.
TEST_F(DrivenEngine, ThatIsNotReadyGivesWayToANewOne) {
  kova::fake::registerProgram(program(), [this](const os::ProcessStart&) {
    KovaPipe requests(base_ + "0xdapi");
    KovaPipe replies(base_ + "0xdapiresult");
    CleXDSmb greeting;
    EXPECT_EQ(requests.CreatePipe(), 0);
    EXPECT_EQ(replies.KOVACreateFile(), 0);
    EXPECT_EQ(SendData(&replies, greeting), 0);
    return requests.ConnectPipe();
  });
  ASSERT_EQ(StartKova(""), 0);
  SetKovaRunning(false);
  kova::fake::registerProgram(program(), [this](const os::ProcessStart&) { return play(); });
  ASSERT_EQ(StartKova(""), 0);
  EXPECT_THAT(kova::fake::startedPrograms(), SizeIs(2));
  EXPECT_TRUE(IsXDriven());
  StopKova();
}

}  // namespace
