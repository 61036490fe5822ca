// Manager, suites and sets together: they are one naming scheme.
#include "transport/XPipeSuit.h"

#include "tests/transport/traced_test.h"
#include "transport/XPipeManager.h"
#include "transport/XPipes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class XPipeSuitTest : public kova::TracedTest {
 protected:
  XPipeManager manager_{"C:\\temp\\", "1a2b"};
};

TEST_F(XPipeSuitTest, ManagerKeepsItsTexts) {
  EXPECT_EQ(manager_.getPipePath(), "C:\\temp\\");
  EXPECT_EQ(manager_.getPipePid(), "1a2b");
  manager_.setPipePath("D:\\");
  manager_.setPipePid("0001");
  EXPECT_EQ(manager_.getPipePath(), "D:\\");
  EXPECT_EQ(manager_.getPipeSuit("R")->getPipeNamePrefix(), "\\\\.\\pipe\\0001R");
}

TEST_F(XPipeSuitTest, ASuiteIsFoundByItsExactName) {
  XPipeSuit* suit = manager_.getPipeSuit("R");
  EXPECT_EQ(manager_.getPipeSuit("R"), suit);
  EXPECT_NE(manager_.getPipeSuit("r"), suit);
  EXPECT_NE(manager_.getPipeSuit(""), suit);
  EXPECT_EQ(suit->XName(), "R");
}

TEST_F(XPipeSuitTest, RemovalForgetsTheSuiteAndItsIndex) {
  manager_.getPipeSuit("R")->increaseIndex();
  XPipeSuit* other = manager_.getPipeSuit("PYTHON");
  manager_.removePipeSuit("unknown");
  EXPECT_EQ(manager_.getPipeSuit("R")->getIndex(), 0);
  manager_.removePipeSuit("R");
  EXPECT_EQ(manager_.getPipeSuit("R")->getIndex(), -1);
  EXPECT_EQ(manager_.getPipeSuit("PYTHON"), other);
}

TEST_F(XPipeSuitTest, CleanupDestroysEverySuite) {
  manager_.getPipeSuit("R")->increaseIndex();
  manager_.getPipeSuit("PYTHON")->increaseIndex();
  ASSERT_EQ(manager_.getPipeSuit("R")->getXPipes()->GetXDAPIPipe()->CreatePipe(), 0);
  manager_.cleanup();
  EXPECT_EQ(kova::fake::openPipeEnds("\\\\.\\pipe\\1a2bR0xdapi"), 0u);
  EXPECT_EQ(manager_.getPipeSuit("R")->getIndex(), -1);
  EXPECT_EQ(manager_.getPipeSuit("PYTHON")->getIndex(), -1);
}

TEST_F(XPipeSuitTest, ANewSuiteHasNoPipes) {
  XPipeSuit* suit = manager_.getPipeSuit("PYTHON");
  EXPECT_EQ(suit->getIndex(), -1);
  EXPECT_EQ(suit->getXPipes(), nullptr);
  EXPECT_EQ(suit->getXPipes(0), nullptr);
  EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(XPipeSuitTest, ASetTracesItsFourNamesInOrder) {
  manager_.getPipeSuit("PYTHON")->increaseIndex();
  EXPECT_THAT(Traced(),
              ElementsAre("syntax:\\\\.\\pipe\\1a2bPYTHON0syntax", "syntaxresult:\\\\.\\pipe\\1a2bPYTHON0syntaxresult",
                          "xdapi:\\\\.\\pipe\\1a2bPYTHON0xdapi", "xdapiresult:\\\\.\\pipe\\1a2bPYTHON0xdapiresult"));
  EXPECT_EQ(kova::fake::callCount("CreateMessagePipe"), 0u) << "the ends are only named";
}

TEST_F(XPipeSuitTest, ASetGivesItsFourEnds) {
  XPipes set("\\\\.\\pipe\\base7");
  EXPECT_EQ(set.GetSyntaxPipe()->GetPipeName(), "\\\\.\\pipe\\base7syntax");
  EXPECT_EQ(set.GetSyntaxResultPipe()->GetPipeName(), "\\\\.\\pipe\\base7syntaxresult");
  EXPECT_EQ(set.GetXDAPIPipe()->GetPipeName(), "\\\\.\\pipe\\base7xdapi");
  EXPECT_EQ(set.GetXDAPIResultPipe()->GetPipeName(), "\\\\.\\pipe\\base7xdapiresult");
  EXPECT_EQ(set.GetXDAPIPipe(), set.GetXDAPIPipe());
  EXPECT_EQ(XPipes::PIPE_BUF_SIZE, 8192);
}

TEST_F(XPipeSuitTest, ANestedRunGetsPipesOfItsOwn) {
  XPipeSuit* suit = manager_.getPipeSuit("R");
  suit->increaseIndex();
  XPipes* outer = suit->getXPipes();
  suit->increaseIndex();
  EXPECT_EQ(suit->getIndex(), 1);
  EXPECT_EQ(suit->getXPipes()->GetXDAPIPipe()->GetPipeName(), "\\\\.\\pipe\\1a2bR1xdapi");
  EXPECT_EQ(suit->getXPipes(0), outer);
  EXPECT_EQ(suit->getXPipes(2), nullptr);
  EXPECT_EQ(suit->getXPipes(-1), nullptr);

  suit->decreaseIndex();
  EXPECT_EQ(suit->getIndex(), 0);
  EXPECT_EQ(suit->getXPipes(), outer);
  EXPECT_EQ(suit->getXPipes(1), nullptr);
  Traced();
  suit->increaseIndex();
  EXPECT_EQ(Traced().size(), 4u) << "the nested set was destroyed and is made anew";
}

TEST_F(XPipeSuitTest, TheFirstSetStaysWhenItsRunEnds) {
  XPipeSuit* suit = manager_.getPipeSuit("R");
  suit->increaseIndex();
  XPipes* first = suit->getXPipes();
  suit->decreaseIndex();
  EXPECT_EQ(suit->getIndex(), -1);
  EXPECT_EQ(suit->getXPipes(), nullptr);
  EXPECT_EQ(suit->getXPipes(0), nullptr);
  suit->increaseIndex();
  EXPECT_EQ(suit->getXPipes(), first);
}

TEST_F(XPipeSuitTest, TheLastSetIsTheCurrentOneOrTheOneThatStays) {
  XPipeSuit* suit = manager_.getPipeSuit("R");
  EXPECT_EQ(suit->getLastXPipes(), nullptr);
  suit->increaseIndex();
  XPipes* first = suit->getXPipes();
  EXPECT_EQ(suit->getLastXPipes(), first);
  suit->increaseIndex();
  EXPECT_EQ(suit->getLastXPipes(), suit->getXPipes(1));
  suit->decreaseIndex();
  EXPECT_EQ(suit->getLastXPipes(), first);
  suit->decreaseIndex();
  EXPECT_EQ(suit->getLastXPipes(), first);
  suit->decreaseIndex();
  EXPECT_EQ(suit->getLastXPipes(), first);
}

TEST_F(XPipeSuitTest, AnUnmatchedDecreaseLeavesNoCurrentSet) {
  XPipeSuit* suit = manager_.getPipeSuit("R");
  suit->decreaseIndex();
  suit->decreaseIndex();
  EXPECT_EQ(suit->getIndex(), -3);
  suit->increaseIndex();
  EXPECT_EQ(suit->getXPipes(), nullptr);

  XPipeSuit* used = manager_.getPipeSuit("PYTHON");
  used->increaseIndex();
  used->decreaseIndex();
  used->decreaseIndex();
  used->increaseIndex();
  EXPECT_EQ(used->getIndex(), -1);
  EXPECT_EQ(used->getXPipes(), nullptr);
}

TEST_F(XPipeSuitTest, NothingSeparatesNameAndIndex) {
  XPipeSuit* suit = manager_.getPipeSuit("R1");
  suit->increaseIndex();
  EXPECT_EQ(suit->getXPipes()->GetSyntaxPipe()->GetPipeName(), "\\\\.\\pipe\\1a2bR10syntax");
}

TEST_F(XPipeSuitTest, DestructionEndsTheLastSetFirst) {
  {
    XPipeSuit suit("R", &manager_);
    suit.increaseIndex();
    suit.increaseIndex();
    suit.getXPipes(0)->GetXDAPIPipe()->CreatePipe();
    suit.getXPipes(1)->GetXDAPIPipe()->CreatePipe();
    Traced();
  }
  EXPECT_THAT(Traced(), ElementsAre("\\\\.\\pipe\\1a2bR1xdapi ClosePipe error code : 0.",
                                    "\\\\.\\pipe\\1a2bR0xdapi ClosePipe error code : 0."));
}

TEST_F(XPipeSuitTest, TheNextControlChannelIsANewOne) {
  XPipeSuit* suit = manager_.getPipeSuit("R");
  suit->dropCmdDispatcher();  // There is none yet.
  suit->getCmdDispatcher(false);
  EXPECT_EQ(suit->getCmdDispatcher(true), suit->getCmdDispatcher(false)) << "later flags are ignored";
  EXPECT_EQ(kova::fake::openPipeEnds("\\\\.\\pipe\\1a2bR_c"), 1u);
  suit->dropCmdDispatcher();
  EXPECT_EQ(kova::fake::openPipeEnds("\\\\.\\pipe\\1a2bR_c"), 0u);
  suit->getCmdDispatcher(true);
  EXPECT_EQ(kova::fake::openPipeEnds("\\\\.\\pipe\\1a2bR_s"), 1u) << "and its flag counts";
  EXPECT_EQ(kova::fake::openPipeEnds("\\\\.\\pipe\\1a2bR_c"), 0u);
}

TEST(ProcessWideXPipeManager, IsStoredAsItIs) {
  EXPECT_EQ(GetXPipeManager(), nullptr);
  XPipeManager own("", "");
  SetXPipeManager(&own);
  EXPECT_EQ(GetXPipeManager(), &own);
  SetXPipeManager(nullptr);
  EXPECT_EQ(GetXPipeManager(), nullptr);
}

}  // namespace
