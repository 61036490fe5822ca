// Calls through the platform's own pipes, the engine on a thread of this process with pipe ends of its own.
#include <cstdio>
#include <string>
#include <thread>

#include "api/InitDxGlobal.h"
#include "api/kovadx.h"
#include "api/kovadx_ext.h"
#include "platform/os/environment.h"
#include "platform/os/process.h"
#include "tests/kit/kit.h"
#include "tests/kit/scripted_engine.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using kova::Command;
using kova::kit::Bytes;
using kova::kit::ScriptedEngine;

// A name of its own for each conversation, since all are in one process.
class CallOverPipes : public testing::Test {
 protected:
  CallOverPipes() {
    static int counter = 0;
    name_ = "CALLTEST" + std::to_string(counter++) + "X";
    SetXNameAndSHome(name_.c_str(), kova::kit::scratchFolder().c_str());
    SetKovaRunning(true);
  }

  ~CallOverPipes() override {
    FinalizeDXGlobal();
    SetKovaRunning(false);
  }

  std::string Base(int level) const {
    char pid[16];
    std::snprintf(pid, sizeof pid, "%04x", kova::os::CurrentProcessId());
    return std::string("\\\\.\\pipe\\") + pid + name_ + std::to_string(level);
  }

  const std::string& Name() const { return name_; }

  static Command CommandOf(const Bytes& request) {
    CleXDSmb message;
    message.ParseBuf(request.data(), static_cast<int>(request.size()));
    return message.GetCommandAction();
  }

  static ScriptedEngine::Answer Reply(int value, const std::string& text = "", bool closes = false) {
    CleXDSmb reply;
    reply.SetLong(value);
    reply.SetString(text);
    return {kova::kit::imageOf(reply), closes};
  }

 private:
  std::string name_;
};

TEST_F(CallOverPipes, CallsFollowEachOther) {
  ScriptedEngine engine(Base(0), [](const Bytes& request) { return Reply(static_cast<int>(request.size()), "name"); });
  ASSERT_EQ(engine.created(), 0);
  for (int i = 0; i < 100; ++i) {
    int code = -1;
    EXPECT_EQ(GetVariableCount(&code), 52);
    EXPECT_EQ(code, 0);
    EXPECT_STREQ(GetVariableName(i, &code), "name");
  }
  EXPECT_TRUE(IsBackendReady());
  EXPECT_EQ(KovaLastReceiveStatus(), 0);
  FinalizeDXGlobal();
}

TEST_F(CallOverPipes, LongTextsCrossInPieces) {
  std::string syntax(100000, 'x');
  for (std::size_t i = 0; i < syntax.size(); i += 7) syntax[i] = static_cast<char>('a' + i % 26);
  const std::string label(50001, 'L');
  ScriptedEngine engine(Base(0), [&](const Bytes&) { return Reply(1, label); });
  EXPECT_EQ(Submit(syntax.data(), static_cast<int>(syntax.size())), 0);
  EXPECT_EQ(GetVariableLabel(0, nullptr), label);
  const Bytes submitted = engine.received().at(0);
  CleXDSmb message;
  message.ParseBuf(submitted.data(), static_cast<int>(submitted.size()));
  EXPECT_EQ(message.GetSingleString(), syntax);
  FinalizeDXGlobal();
}

TEST_F(CallOverPipes, AnEngineThatDiesEndsTheCall) {
  ScriptedEngine engine(Base(0), [](const Bytes&) { return ScriptedEngine::Answer{{}, true}; });
  int code = -1;
  GetVariableCount(&code);
  EXPECT_EQ(code, 109);
  EXPECT_EQ(KovaLastReceiveStatus(), 109);
  FinalizeDXGlobal();
}

// While the first level waits for Submit, a nested run calls on a second thread, on pipes of its own.
TEST_F(CallOverPipes, ANestedRunCallsWhileTheOuterOneWaits) {
  int inner = 0;
  ScriptedEngine outer(Base(0), [&](const Bytes& request) {
    if (CommandOf(request) != Command::Submit) return Reply(1);
    XPipeSuit* const suite = GetXPipeManager()->getPipeSuit(Name());
    suite->increaseIndex();
    ScriptedEngine nested(Base(1), [](const Bytes&) { return Reply(2); });
    std::thread run([&] { inner = GetVariableCount(nullptr); });
    run.join();
    suite->decreaseIndex();
    return Reply(0);
  });
  EXPECT_EQ(GetVariableCount(nullptr), 1);
  EXPECT_EQ(Submit("NESTED.", 7), 0);
  EXPECT_EQ(inner, 2);
  EXPECT_EQ(GetVariableCount(nullptr), 1);
  FinalizeDXGlobal();
}

TEST_F(CallOverPipes, AFreshConversationFollowsFinalisation) {
  for (int round = 0; round < 3; ++round) {
    ScriptedEngine engine(Base(0), [round](const Bytes&) { return Reply(round); });
    EXPECT_EQ(GetVariableCount(nullptr), round);
    FinalizeDXGlobal();
  }
}

}  // namespace
