#include "platform/PlugInSynchEvent.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/os/event.h"
#include "platform/os/process.h"

namespace {

using kova::os::kSuccess;
using kova::os::kWaitTimeout;
using kova::os::WaitEventObject;

class OpenEvent : public PlugInSynchEvent {
 public:
  OpenEvent() : PlugInSynchEvent(false, false, nullptr) {}
  using PlugInSynchEvent::ClearReplyEvent;
  using PlugInSynchEvent::ReplyEvent;
};

std::string scratchName(const char* name) { return std::string(name) + std::to_string(kova::os::CurrentProcessId()); }

// Takes the signal of an auto-reset event away.
bool isSignalled(const PlugInSynchEvent& event) { return WaitEventObject(event.Handle(), 0) == kSuccess; }

TEST(PlugInSynchEvent, InitialState) {
  EXPECT_FALSE(isSignalled(PlugInSynchEvent(false, false, nullptr)));
  EXPECT_TRUE(isSignalled(PlugInSynchEvent(false, true, nullptr)));
  EXPECT_TRUE(isSignalled(PlugInSynchEvent(true, true, nullptr)));
}

TEST(PlugInSynchEvent, AutoResetReleasesOneWait) {
  PlugInSynchEvent event(false, false, nullptr);
  event.Signal();
  event.WaitForSignal();
  EXPECT_FALSE(isSignalled(event));
  event.Signal();
  event.Signal();
  event.WaitForSignal(0);
  EXPECT_FALSE(isSignalled(event));
}

TEST(PlugInSynchEvent, ManualResetStaysUntilUnsignal) {
  PlugInSynchEvent event(true, false, nullptr);
  event.Signal();
  event.WaitForSignal();
  event.WaitForSignal();
  EXPECT_TRUE(isSignalled(event));
  event.Unsignal();
  EXPECT_FALSE(isSignalled(event));
}

TEST(PlugInSynchEvent, WaitForNoTimeReturnsAtOnce) {
  PlugInSynchEvent event(false, false, nullptr);
  event.WaitForSignal(0);
  EXPECT_FALSE(isSignalled(event));
}

TEST(PlugInSynchEvent, WaitIsReleasedByAnotherThread) {
  PlugInSynchEvent event(false, false, nullptr);
  std::thread other([&] { event.Signal(); });
  event.WaitForSignal();
  other.join();
  EXPECT_FALSE(isSignalled(event));
}

TEST(PlugInSynchEvent, NamedEventThatExistsIsOpened) {
  const std::string name = scratchName("kova_named_event_");
  PlugInSynchEvent first(true, true, name.c_str());
  PlugInSynchEvent second(false, false, name.c_str());
  EXPECT_TRUE(isSignalled(second));
  second.Unsignal();
  EXPECT_FALSE(isSignalled(first));
  PlugInSynchEvent other(true, false, scratchName("kova_other_event_").c_str());
  first.Signal();
  EXPECT_FALSE(isSignalled(other));
}

TEST(PlugInSynchEvent, ReplyGivenBeforeTheQuestionAnswersItAtOnce) {
  OpenEvent event;
  event.Reply();
  event.SignalAndWaitForReply();
  EXPECT_TRUE(isSignalled(event)) << "the question was put all the same";
}

TEST(PlugInSynchEvent, ClearedReplyAnswersNobody) {
  OpenEvent event;
  event.Reply();
  event.ClearReplyEvent();
  EXPECT_FALSE(isSignalled(*event.ReplyEvent()));
  event.ClearReplyEvent();
  event.ClearReplyEvent();
}

TEST(PlugInSynchEvent, ReplyEventIsMadeOnce) {
  OpenEvent event;
  PlugInSynchEvent* const reply = event.ReplyEvent();
  EXPECT_EQ(event.ReplyEvent(), reply);
  event.Reply();
  EXPECT_TRUE(isSignalled(*reply));
}

TEST(PlugInSynchEvent, EachQuestionTakesOneReply) {
  constexpr int kAskers = 3;
  constexpr int kQuestions = 2000;
  PlugInSynchEvent event(false, false, nullptr);
  std::atomic<int> answered{0};
  std::thread answerer([&] {
    for (int i = 0; i < kAskers * kQuestions; ++i) {
      event.WaitForSignal();
      ++answered;
      event.Reply();
    }
  });
  std::atomic<int> inTurn{0};
  std::vector<std::thread> askers;
  for (int asker = 0; asker < kAskers; ++asker) {
    askers.emplace_back([&] {
      for (int i = 0; i < kQuestions; ++i) {
        event.SignalAndWaitForReply();
        ++inTurn;
      }
    });
  }
  for (std::thread& asker : askers) asker.join();
  answerer.join();
  EXPECT_EQ(answered, kAskers * kQuestions);
  EXPECT_EQ(inTurn, kAskers * kQuestions);
}

}  // namespace
