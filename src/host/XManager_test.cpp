#include "host/XManager.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/transport/traced_test.h"
#include "transport/XPipeManager.h"
#include "transport/XPipeSuit.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A host that tells when it is deleted.
class Host : public StatisticsX {
 public:
  Host(std::string name, std::vector<std::string>* deleted)
      : StatisticsX(true), name_(std::move(name)), deleted_(deleted) {}
  ~Host() override { deleted_->push_back(name_); }

 protected:
  int x_init_embedded_x(int, char**) override { return 0; }
  int x_execute_x(char*) override { return 0; }
  int x_stop_embedded_x() override { return 0; }
  int x_pre_action() override { return 0; }
  int x_post_action() override { return 0; }

 private:
  std::string name_;
  std::vector<std::string>* deleted_;
};

class XManagerTest : public testing::Test {
 protected:
  StatisticsX* Add(const std::string& name, const std::string& label) {
    auto* const host = new Host(label, &deleted_);
    manager_.addStatisticsX(name, host);
    return host;
  }

  std::vector<std::string> deleted_;
  XManager manager_;
};

TEST_F(XManagerTest, KeepsHostsByName) {
  StatisticsX* const r = Add("R", "r");
  StatisticsX* const python = Add("PYTHON", "python");
  EXPECT_EQ(manager_.getStatisticsX("R"), r);
  EXPECT_EQ(manager_.getStatisticsX("PYTHON"), python);
  EXPECT_EQ(manager_.getStatisticsX("r"), nullptr);
  EXPECT_EQ(manager_.getStatisticsX("JAVA"), nullptr);
}

// A runner that goes on until somebody releases it.
class Waiting : public DriveX {
 public:
  Waiting() : DriveX("R", nullptr, nullptr) {}
  ~Waiting() override { endThread(); }

 protected:
  int runX() override {
    while (!isReleased_) std::this_thread::yield();
    return 0;
  }
  void releaseThread() override { isReleased_ = true; }

 private:
  std::atomic<bool> isReleased_ = false;
};

TEST_F(XManagerTest, ReleasesItsRunners) {
  EXPECT_TRUE(manager_.releaseRunners());
  manager_.addKovaDX(new DriveX("R", nullptr, nullptr));
  EXPECT_TRUE(manager_.releaseRunners());
  auto* const waiting = new Waiting;
  manager_.addKovaDX(waiting);
  ASSERT_EQ(waiting->startX(), 0);
  manager_.releaseRunners();
  waiting->awaitEnd();
  EXPECT_TRUE(manager_.releaseRunners());
}

// A host that looks itself up when it is deleted.
class LooksItselfUp : public Host {
 public:
  LooksItselfUp(std::vector<std::string>* deleted, XManager* manager, StatisticsX** found)
      : Host("old", deleted), manager_(manager), found_(found) {}
  ~LooksItselfUp() override { *found_ = manager_->getStatisticsX("R"); }

 private:
  XManager* manager_;
  StatisticsX** found_;
};

TEST_F(XManagerTest, TheOldHostEndsBeforeTheNewOneIsThere) {
  StatisticsX* found = nullptr;
  manager_.addStatisticsX("R", new LooksItselfUp(&deleted_, &manager_, &found));
  found = manager_.getStatisticsX("R");
  StatisticsX* const host = Add("R", "new");
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(manager_.getStatisticsX("R"), host);
}

TEST_F(XManagerTest, ANewHostReplacesTheOldOne) {
  Add("R", "old");
  StatisticsX* const host = Add("R", "new");
  EXPECT_EQ(manager_.getStatisticsX("R"), host);
  EXPECT_THAT(deleted_, ElementsAre("old"));
}

TEST_F(XManagerTest, TheSameHostAgainIsLeftAlone) {
  StatisticsX* const host = Add("R", "r");
  manager_.addStatisticsX("R", host);
  EXPECT_EQ(manager_.getStatisticsX("R"), host);
  EXPECT_THAT(deleted_, IsEmpty());
}

TEST_F(XManagerTest, ANullHostIsAnEntryToo) {
  manager_.addStatisticsX("R", nullptr);
  EXPECT_EQ(manager_.getStatisticsX("R"), nullptr);
  Add("R", "r");
  manager_.addStatisticsX("R", nullptr);
  EXPECT_THAT(deleted_, ElementsAre("r"));
  manager_.destoryStatisticsX("R");
}

TEST_F(XManagerTest, DestroysOneHost) {
  Add("R", "r");
  Add("PYTHON", "python");
  manager_.destoryStatisticsX("R");
  manager_.destoryStatisticsX("R");
  manager_.destoryStatisticsX("JAVA");
  EXPECT_EQ(manager_.getStatisticsX("R"), nullptr);
  EXPECT_THAT(deleted_, ElementsAre("r"));
}

TEST_F(XManagerTest, StopsAllInTheOrderOfTheirNames) {
  Add("R", "r");
  Add("JAVA", "java");
  Add("PYTHON", "python");
  manager_.stopX();
  EXPECT_THAT(deleted_, ElementsAre("java", "python", "r"));
  EXPECT_EQ(manager_.getStatisticsX("R"), nullptr);
  Add("R", "again");
  manager_.cleanup();
  EXPECT_THAT(deleted_, ElementsAre("java", "python", "r", "again"));
}

TEST_F(XManagerTest, DeletesItsHostsAtItsEnd) {
  {
    XManager manager;
    manager.addStatisticsX("R", new Host("r", &deleted_));
  }
  EXPECT_THAT(deleted_, ElementsAre("r"));
}

// A runner that tells when it is deleted.
class Runner : public DriveX {
 public:
  Runner(const std::string& name, std::vector<std::string>* deleted)
      : DriveX(name, nullptr, nullptr), deleted_(deleted) {}
  ~Runner() override { deleted_->push_back("runner of " + XName()); }

 private:
  std::vector<std::string>* deleted_;
};

TEST_F(XManagerTest, RunnersNeedNeitherPipesNorTrace) {
  EXPECT_EQ(manager_.getBackKovaDX(), nullptr);
  manager_.addKovaDX(nullptr);
  EXPECT_EQ(manager_.getBackKovaDX(), nullptr);
  auto* const runner = new Runner("ECHO", &deleted_);
  manager_.addKovaDX(runner);
  EXPECT_EQ(manager_.getBackKovaDX(), runner);
  EXPECT_EQ(runner->getIndex(), 0);
  manager_.destoryKovaDX(nullptr);
  manager_.destoryKovaDX(runner);
  EXPECT_EQ(manager_.getBackKovaDX(), nullptr);
  EXPECT_THAT(deleted_, ElementsAre("runner of ECHO"));
}

TEST_F(XManagerTest, HostsEndBeforeRunners) {
  Add("R", "r");
  Add("ECHO", "echo");
  manager_.addKovaDX(new Runner("ONE", &deleted_));
  manager_.addKovaDX(new Runner("TWO", &deleted_));
  manager_.cleanup();
  EXPECT_THAT(deleted_, ElementsAre("echo", "r", "runner of TWO", "runner of ONE"));
}

// With pipes and trace.
class RunnerStack : public kova::TracedTest {
 protected:
  RunnerStack() { SetXPipeManager(&pipes_); }
  ~RunnerStack() override { SetXPipeManager(nullptr); }

  Runner* Push(const std::string& name) {
    auto* const runner = new Runner(name, &deleted_);
    manager_.addKovaDX(runner);
    return runner;
  }
  int IndexOf(const std::string& name) { return pipes_.getPipeSuit(name)->getIndex(); }

  std::vector<std::string> deleted_;
  XPipeManager pipes_{"t\\", "1234"};
  XManager manager_;
};

TEST_F(RunnerStack, ARunRaisesItsPipesAndNamesTheTrace) {
  Runner* const outer = Push("ECHO");
  EXPECT_EQ(outer->getIndex(), 0);
  EXPECT_EQ(GetDxTracer()->getXName(), "ECHO");
  Runner* const other = Push("R");
  EXPECT_EQ(other->getIndex(), 0);
  EXPECT_EQ(GetDxTracer()->getXName(), "R");
  Runner* const inner = Push("ECHO");
  EXPECT_EQ(inner->getIndex(), 1);
  EXPECT_EQ(manager_.getBackKovaDX(), inner);
  EXPECT_EQ(IndexOf("ECHO"), 1);
  EXPECT_EQ(IndexOf("R"), 0);
}

TEST_F(RunnerStack, OnlyTheLastRunEnds) {
  Runner* const outer = Push("ECHO");
  Runner* const inner = Push("ECHO");
  manager_.destoryKovaDX(outer);
  EXPECT_EQ(manager_.getBackKovaDX(), inner);
  EXPECT_EQ(IndexOf("ECHO"), 1);
  EXPECT_THAT(deleted_, IsEmpty());
  manager_.destoryKovaDX(inner);
  EXPECT_EQ(manager_.getBackKovaDX(), outer);
  EXPECT_EQ(IndexOf("ECHO"), 0);
  manager_.destoryKovaDX(outer);
  EXPECT_EQ(IndexOf("ECHO"), -1);
  EXPECT_EQ(deleted_.size(), 2u);
}

TEST_F(RunnerStack, CleanupLowersEveryIndex) {
  Push("ECHO");
  Push("ECHO");
  Push("R");
  manager_.cleanup();
  EXPECT_EQ(IndexOf("ECHO"), -1);
  EXPECT_EQ(IndexOf("R"), -1);
  EXPECT_EQ(deleted_.size(), 3u);
}

TEST_F(XManagerTest, TheProcessesOwnIsPlainlyStored) {
  EXPECT_EQ(GetXManager(), nullptr);
  SetXManager(&manager_);
  EXPECT_EQ(GetXManager(), &manager_);
  SetXManager(nullptr);
  EXPECT_EQ(GetXManager(), nullptr);
}

}  // namespace
