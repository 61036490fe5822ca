// What the tests of a driven engine share: a program "StartXD.exe" in the home folder, played by a function of the
// test's, which greets, answers and ends as the test tells.
#ifndef KOVADX_TESTS_API_DRIVEN_TEST_H
#define KOVADX_TESTS_API_DRIVEN_TEST_H

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "config/text_utilities.h"
#include "tests/api/client_test.h"
#include "tests/host/configured_test.h"

namespace kova {

// One life of the engine. A test sets it up before the start and looks at what is left after the stop.
struct DrivenLife {
  int greeting = 0;
  std::atomic<bool> isReady = true;
  std::atomic<bool> isDriven = true;
  std::map<int, std::function<kit::ScriptedEngine::Answer()>> answers;  // By command code; else an empty reply.
  std::function<void()> beforeGreeting;
  std::function<void()> afterGreeting;
  std::function<void()> afterLastCall;
  std::vector<kit::Bytes> received;

  // The command codes of all requests.
  std::vector<int> codes() const {
    std::vector<int> result;
    for (const kit::Bytes& request : received) result.push_back(codeOf(request));
    return result;
  }

  static int codeOf(const kit::Bytes& request) {
    std::int32_t code = 0;
    std::memcpy(&code, request.data() + sizeof code, sizeof code);
    return code;
  }
};

class DrivenTest : public ConfiguredTest {
 protected:
  using Answer = kit::ScriptedEngine::Answer;

  explicit DrivenTest(const std::string& name) : base_("\\\\.\\pipe\\1234" + name) {
    std::ofstream(std::filesystem::path(home()) / "StartXD.exe") << "program";
    SetXNameAndSHome(name.c_str(), home().c_str());
    fake::registerProgram(program(), [this](const os::ProcessStart&) { return play(); });
  }

  ~DrivenTest() override {
    SetEngineRunning(false);
    StoredIdentity() = {};
  }

  // As the library names it.
  static std::string program() {
    std::string path = home();
    DecoratePathEnd(path);
    return path + "StartXD.exe";
  }

  static Answer reply(const WireImage& image, bool closesAfter = false) { return {image.bytes(), closesAfter}; }

  // An engine's death in the middle of a call.
  static Answer death() { return {{}, true}; }

  // Waits until that function of the seam has been called so often in this test.
  static void awaitCalls(const char* function, unsigned count) {
    while (fake::callCount(function) < count) std::this_thread::yield();
  }

  // The engine's whole life; its exit code. It serves on a thread that is not the program's own, and so must not be
  // ended from outside.
  int play() {
    kit::ScriptedEngine engine(base_ + "0", [this](const kit::Bytes& request) { return answerTo(request); });
    EXPECT_EQ(engine.created(), 0);
    if (life_.beforeGreeting) life_.beforeGreeting();
    EXPECT_EQ(engine.greet(WireImage{.error = life_.greeting}.bytes()), 0);
    if (life_.afterGreeting) life_.afterGreeting();
    if (life_.greeting == 0) {
      engine.awaitEnd();
    } else {
      engine.awaitDismissal();
    }
    life_.received = engine.received();
    if (life_.afterLastCall) life_.afterLastCall();
    return 0;
  }

  const std::string base_;
  DrivenLife life_;

 private:
  Answer answerTo(const kit::Bytes& request) {
    const int code = DrivenLife::codeOf(request);
    if (const auto found = life_.answers.find(code); found != life_.answers.end()) return found->second();
    if (code == 1) return reply({.longs = {life_.isReady}});
    if (code == 2) return reply({.longs = {life_.isDriven}});
    return reply({}, code == 4);
  }
};

}  // namespace kova

#endif
