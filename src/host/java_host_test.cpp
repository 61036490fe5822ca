// The host of a Java extension: a program that connects to a socket and gets one record.
#include <atomic>
#include <memory>
#include <thread>

#include "message/JavaExtensionSmb.h"
#include "platform/os/environment.h"
#include "tests/host/child_test.h"
#include "tests/host/fake_startx.h"
#include "tests/transport/socket_test_kit.h"
#include "transport/JavaPlugInSocket.h"

namespace {

namespace os = kova::os;

using kova::OpenHost;
using kova::SocketPeer;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kJava = "C:\\kova\\JRE/bin/java.exe";

class JavaHost : public kova::ChildTest {
 protected:
  JavaHost() {
    kova::fake::setPatienceMs(1);
    JavaExtensionSmb().CleanUp();
    JavaExtensionSmb().SetCommandName("mycommand");
  }
  ~JavaHost() override {
    JavaExtensionSmb().SetDataLen(0);
    JavaExtensionSmb().CleanUp();
    if (JavaPlugInSocket* const socket = GetJavaExtSocket()) socket->CloseSocket();
    delete GetJavaExtSocket();
    SetavaExtSocket(nullptr);
    EXPECT_EQ(kova::fake::openSockets(), 0u);
  }

  static int startJava(StatisticsX& host) { return start(host, {"JavaExtension"}); }

  // The port that a started program was told.
  static int portOf(const os::ProcessStart& start) {
    return start.arguments.size() > 2 ? std::stoi(start.arguments[2]) : 0;
  }

  // A program that connects, reads so many bytes, and ends.
  void provideJava(std::size_t length, int exitCode = 0) {
    kova::fake::registerProgram(kJava, [this, length, exitCode](const os::ProcessStart& start) {
      SocketPeer peer;
      EXPECT_TRUE(peer.connect(portOf(start)));
      received_ = peer.receive(length);
      hasRead_ = true;
      return exitCode;
    });
  }

  static void setRecord(const std::string& bytes) {
    std::string data = bytes;
    JavaExtensionSmb().SetDataLen(static_cast<int>(data.size()));
    JavaExtensionSmb().SetSendBuf(data.data());
  }

  std::string received_;
  std::atomic<bool> hasRead_ = false;
  XConfigOptions options_{"JAVAEXTENSION"};
  OpenHost host_{&options_, 1, true};
};

TEST_F(JavaHost, OneCommand) {
  provideJava(6, 3);
  EXPECT_EQ(startJava(host_), 0);
  ASSERT_NE(GetJavaExtSocket(), nullptr);
  EXPECT_THAT(hostsTraces(),
              ElementsAre("stat_start_java result error code : 0.", "StatisticsX::init_embedded_x error code : 0."));
  EXPECT_EQ(kova::fake::startedPrograms().at(0).commandLine, " com.qor.statistics.plugin.Extension LOCAL " +
                                                                 std::to_string(GetJavaExtSocket()->GetSocketPort()) +
                                                                 " mycommand");
  EXPECT_EQ(host_.pre_action(), 0);
  setRecord("record");
  EXPECT_EQ(execute(host_, "is not sent"), 0);
  EXPECT_EQ(received_, "record");
  EXPECT_FALSE(host_.isXProcessActive()) << "it was waited for";
  EXPECT_EQ(host_.childExitCode(0), 3);
  EXPECT_EQ(host_.post_action(), 0);
  EXPECT_EQ(host_.stop_embedded_x(), 0);
  EXPECT_THAT(
      hostsTraces(),
      ElementsAre("StatisticsX::pre_action error code : 0.", "x_execute_x SendData syntaxSocket error code : 0.",
                  "StatisticsX::execute_x error code : 0.", "StatisticsX::post_action error code : 0.",
                  "stat_stop_x: x process has already exited ", "StatisticsX::stop_embedded_x error code : 0."));
  EXPECT_EQ(kova::fake::openSockets(), 0u);
}

TEST_F(JavaHost, ASocketThatIsThereIsTaken) {
  auto* const own = new JavaPlugInSocket;
  SetavaExtSocket(own);
  provideJava(1);
  EXPECT_EQ(startJava(host_), 0);
  EXPECT_EQ(GetJavaExtSocket(), own);
  host_.stop_embedded_x();
}

TEST_F(JavaHost, ModesAndEnvironment) {
  provideJava(1);
  OpenHost remote(&options_, 0, true);
  EXPECT_EQ(startJava(remote), 0);
  EXPECT_THAT(kova::fake::startedPrograms().at(0).arguments, IsEmpty());
  EXPECT_TRUE(
      kova::fake::startedPrograms().at(0).commandLine.starts_with(" com.qor.statistics.plugin.Extension REMOTE "));
  EXPECT_EQ(os::GetEnvironment("CLASSPATH"), "C:/kova/kovajavaplugin.jar:");
  EXPECT_EQ(os::GetEnvironment("KOVADXTEMP"), "T:\\tmp\\");
  remote.stop_embedded_x();
}

// The case counts: any other word is an argument of a runtime like all.
TEST_F(JavaHost, OnlyTheExactWordIsJava) {
  kova::fake::registerProgram("C:\\kova\\startx.exe", 0);
  for (const char* word : {"javaextension", "JAVAEXTENSION", "JavaExtension ", "JavaExtensio", ""}) {
    SCOPED_TRACE(word);
    EXPECT_EQ(start(host_, {word}), 99107);
    EXPECT_EQ(kova::fake::startedPrograms().back().program, "C:\\kova\\startx.exe");
  }
  EXPECT_EQ(start(host_, {"one", "JavaExtension"}), 99107) << "it has to be the first";
  EXPECT_EQ(start(host_), 99107);
  EXPECT_EQ(kova::fake::callCount("Socket::Open"), 0u);
}

TEST_F(JavaHost, ALanguageOfAnyNameMayBeJava) {
  for (const char* name : {"ECHO", "R"}) {
    SCOPED_TRACE(name);
    XConfigOptions options(name);
    OpenHost host(&options, 1, true);
    provideJava(100);
    EXPECT_EQ(startJava(host), 0);
    const os::ProcessStart start = kova::fake::startedPrograms().back();
    EXPECT_TRUE(start.input == nullptr && start.output == nullptr) << "it has no console";
    EXPECT_EQ(host.pre_action(), 0);
    EXPECT_EQ(host.stop_embedded_x(), 99104) << "it is told over the control channel, which it does not know";
  }
  EXPECT_EQ(kova::fake::callCount("BytePipeEnd::Create"), 0u);
}

// ---- Starts that fail

TEST_F(JavaHost, ASocketThatCanNotBeMade) {
  for (const char* step : {"Socket::Open", "Socket::Listen"}) {
    SCOPED_TRACE(step);
    kova::fake::fail(step, os::kAccessDenied);
    EXPECT_EQ(startJava(host_), 99122);
    EXPECT_THAT(Traced(), ElementsAre("StatisticsX::init_embedded_x error code : 99122."));
  }
  EXPECT_THAT(kova::fake::startedPrograms(), IsEmpty());
}

TEST_F(JavaHost, AProgramThatIsNotThere) {
  EXPECT_EQ(startJava(host_), 99123);
  EXPECT_THAT(hostsTraces(), ElementsAre("stat_start_java result error code : 99123.",
                                         "StatisticsX::init_embedded_x error code : 99123."));
  EXPECT_EQ(kova::fake::openSockets(), 0u);
}

TEST_F(JavaHost, AProgramThatEndsWithoutConnecting) {
  kova::fake::Program brief;
  brief.runsForMs = 2000;
  brief.exitCode = 2;
  kova::fake::registerProgram(kJava, brief);
  EXPECT_EQ(startJava(host_), 99123);
  EXPECT_EQ(host_.childExitCode(0), 2);
  EXPECT_GE(kova::fake::elapsedMs(), 2000u) << "it was waited for as long as it lived";
  EXPECT_EQ(kova::fake::openSockets(), 0u);
}

TEST_F(JavaHost, AStartThatFailedMayBeRepeated) {
  EXPECT_EQ(startJava(host_), 99123);
  provideJava(1);
  EXPECT_EQ(startJava(host_), 0);
  host_.stop_embedded_x();
}

// ---- Runs and stops

TEST_F(JavaHost, ASecondRecordFindsNobody) {
  provideJava(1);
  ASSERT_EQ(startJava(host_), 0);
  setRecord("r");
  EXPECT_EQ(execute(host_, "x"), 0);
  Traced();
  setRecord("again");
  EXPECT_EQ(execute(host_, "x"), 99122);
  EXPECT_THAT(hostsTraces(), ElementsAre("x_execute_x SendData syntaxSocket error code : 99122.",
                                         "StatisticsX::execute_x error code : 99122."));
  host_.stop_embedded_x();
}

TEST_F(JavaHost, WithoutARecordNothingIsSent) {
  provideJava(1);
  ASSERT_EQ(startJava(host_), 0);
  ASSERT_FALSE(hasRead_);
  std::thread user([this] { EXPECT_TRUE(kova::fake::endProgram(host_.childProcessId(), 8)); });
  EXPECT_EQ(execute(host_, "x"), 0);
  user.join();
  EXPECT_FALSE(hasRead_);
  EXPECT_EQ(host_.childExitCode(0), 8);
  host_.stop_embedded_x();
}

TEST_F(JavaHost, AProgramThatStillRunsEndsWithItsConnection) {
  provideJava(100, 9);
  ASSERT_EQ(startJava(host_), 0);
  Traced();
  EXPECT_EQ(host_.stop_embedded_x(), 99104) << "nobody takes commands there";
  EXPECT_TRUE(hasRead_);
  EXPECT_EQ(host_.childExitCode(0), 9);
  EXPECT_THAT(hostsTraces(), ElementsAre("stat_stop_x cmdDispatcher sendCmd error code : 99104.",
                                         "StatisticsX::stop_embedded_x error code : 99104."));
  EXPECT_EQ(kova::fake::openSockets(), 0u);
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 0u);
}

TEST_F(JavaHost, AnotherThreadMayTerminateIt) {
  OutpStatisticsX::terminateChildren();
  provideJava(1);
  ASSERT_EQ(startJava(host_), 0);
  std::thread user([] { OutpStatisticsX::terminateChildren(); });
  EXPECT_EQ(execute(host_, "x"), 0);
  user.join();
  EXPECT_EQ(host_.childExitCode(0), 137);
  EXPECT_EQ(host_.stop_embedded_x(), 0);
  OutpStatisticsX::terminateChildren();
  EXPECT_EQ(kova::fake::callCount("Process::Terminate"), 1u) << "where there is a process";
}

TEST_F(JavaHost, DestructionStops) {
  provideJava(100);
  {
    OutpStatisticsX host(&options_, 1, true);
    ASSERT_EQ(startJava(host), 0);
  }
  EXPECT_TRUE(hasRead_);
}

TEST_F(JavaHost, ACommandAfterTheOther) {
  for (const char* record : {"one", "two"}) {
    provideJava(3);
    ASSERT_EQ(startJava(host_), 0);
    setRecord(record);
    EXPECT_EQ(execute(host_, ""), 0);
    EXPECT_EQ(received_, record);
    EXPECT_EQ(host_.stop_embedded_x(), 0);
    JavaExtensionSmb().SetCommandName("mycommand");
  }
}

// The next start of the same host may be of another kind.
TEST_F(JavaHost, AStartAfterItNeedNotBeJava) {
  provideJava(100);
  ASSERT_EQ(startJava(host_), 0);
  host_.stop_embedded_x();
  kova::fake::registerProgram("C:\\kova\\startx.exe",
                              [](const os::ProcessStart&) { return kova::FakeStartx("JAVAEXTENSION").serve(); });
  ASSERT_EQ(start(host_), 0);
  EXPECT_EQ(host_.pre_action(), 99104) << "it is asked, and has no level";
  EXPECT_EQ(host_.stop_embedded_x(), 0);
}

TEST_F(JavaHost, WithoutDrivingNothingIsStarted) {
  OpenHost host(&options_, 1, false);
  EXPECT_EQ(startJava(host), 0);
  EXPECT_EQ(host.stop_embedded_x(), 0);
  EXPECT_THAT(kova::fake::startedPrograms(), IsEmpty());
  EXPECT_EQ(GetJavaExtSocket(), nullptr);
}

}  // namespace
