// Data that is moved from file to file while the caller goes on.
#include "api/file_transfers.h"

#include <thread>

#include "tests/api/client_test.h"
#include "tests/kit/scratch_folder.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

class FileTransfers : public kova::ClientTest {
 protected:
  int Transport(const std::string& source, const std::string& target, bool flag) {
    return TransportData(folder_.path(source).c_str(), folder_.path(target).c_str(), flag);
  }

  // The failures that were traced, once all transfers have ended.
  std::vector<std::string> Failures() {
    kova::TheFileTransfers().finish();
    return Traced();
  }

  kova::kit::ScratchFolder folder_;
};

TEST_F(FileTransfers, CopiesAndKeepsTheSource) {
  folder_.write("source", std::string("bytes\0\r\n", 8));
  EXPECT_EQ(Transport("source", "target", false), 0);
  EXPECT_THAT(Failures(), IsEmpty());
  EXPECT_EQ(folder_.read("target"), std::string("bytes\0\r\n", 8));
  EXPECT_TRUE(folder_.has("source"));
}

TEST_F(FileTransfers, MovesWhenItIsTold) {
  folder_.write("source", "new");
  folder_.write("target", "old and longer");
  EXPECT_EQ(Transport("source", "target", true), 0);
  EXPECT_THAT(Failures(), IsEmpty());
  EXPECT_EQ(folder_.read("target"), "new");
  EXPECT_FALSE(folder_.has("source"));
}

TEST_F(FileTransfers, TheCallReturnsBeforeTheCopyHasBegun) {
  kova::fake::holdCopies(true);
  folder_.write("source", "x");
  EXPECT_EQ(Transport("source", "target", true), 0);
  EXPECT_FALSE(folder_.has("target"));
  EXPECT_EQ(kova::TheFileTransfers().size(), 1u);
  kova::fake::holdCopies(false);
  EXPECT_THAT(Failures(), IsEmpty());
  EXPECT_EQ(folder_.read("target"), "x");
  EXPECT_FALSE(folder_.has("source"));
}

TEST_F(FileTransfers, SeveralAreUnderWayAtOnce) {
  for (int i = 0; i < 20; ++i) {
    const std::string name = std::to_string(i);
    folder_.write("source" + name, name);
    EXPECT_EQ(Transport("source" + name, "target" + name, i % 2 == 0), 0);
  }
  EXPECT_THAT(Failures(), IsEmpty());
  EXPECT_EQ(kova::TheFileTransfers().size(), 0u);
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(folder_.read("target" + std::to_string(i)), std::to_string(i));
    EXPECT_EQ(folder_.has("source" + std::to_string(i)), i % 2 != 0);
  }
}

TEST_F(FileTransfers, TheOnesThatHaveEndedAreForgottenByTheNext) {
  folder_.write("source", "x");
  Transport("source", "target", true);
  while (folder_.has("source")) std::this_thread::yield();
  kova::fake::holdCopies(true);
  do {
    Transport("source", "target", false);
  } while (kova::TheFileTransfers().size() > kova::fake::callCount("LaunchThread") - 1);
  kova::fake::holdCopies(false);
  EXPECT_THAT(Failures(), testing::Each(HasSubstr(" error code : 2.")));
}

TEST_F(FileTransfers, WithoutAnEngineRunningNothingIsMoved) {
  SetKovaRunning(false);
  folder_.write("source", "x");
  EXPECT_EQ(Transport("source", "target", true), 17);
  EXPECT_EQ(kova::TheFileTransfers().size(), 0u);
  EXPECT_TRUE(folder_.has("source"));
}

TEST_F(FileTransfers, WithoutAThreadTheCodeIsEight) {
  kova::fake::fail("LaunchThread", 8);
  folder_.write("source", "x");
  EXPECT_EQ(Transport("source", "target", true), 8);
  EXPECT_EQ(kova::TheFileTransfers().size(), 0u);
  EXPECT_TRUE(folder_.has("source"));
  EXPECT_FALSE(folder_.has("target"));
}

TEST_F(FileTransfers, FailuresAreTracedAndKeepTheSource) {
  folder_.write("source", "x");
  EXPECT_EQ(Transport("absent", "target", true), 0);
  EXPECT_THAT(Failures(), Contains(HasSubstr("absent to " + folder_.path("target") + " error code : 2.")));
  EXPECT_EQ(Transport("source", "no folder/target", true), 0);
  EXPECT_THAT(Failures(), Contains(HasSubstr("TransportData " + folder_.path("source"))));
  EXPECT_EQ(Transport("source", "source", true), 0);
  EXPECT_THAT(Failures(), Contains(HasSubstr("TransportData")));
  EXPECT_EQ(folder_.read("source"), "x");
  EXPECT_EQ(TransportData(nullptr, nullptr, true), 0);
  EXPECT_THAT(Failures(), Contains("TransportData  to  error code : 2."));
}

TEST_F(FileTransfers, AFullDiskLeavesNoHalfOfACopy) {
  folder_.write("source", "x");
  folder_.write("target", "half");
  kova::fake::fail("CopyPlainFile", 112);
  EXPECT_EQ(Transport("source", "target", true), 0);
  EXPECT_THAT(Failures(), Contains(HasSubstr(" error code : 112.")));
  EXPECT_FALSE(folder_.has("target"));
  EXPECT_TRUE(folder_.has("source"));
}

TEST_F(FileTransfers, ASourceThatCanNotBeRemovedIsTraced) {
  folder_.write("source", "x");
  kova::fake::fail("DeletePlainFile", 5);
  EXPECT_EQ(Transport("source", "target", true), 0);
  EXPECT_THAT(Failures(), Contains(HasSubstr(" error code : 5.")));
  EXPECT_TRUE(folder_.has("target"));
  EXPECT_TRUE(folder_.has("source"));
}

TEST_F(FileTransfers, TheResetWaitsForThem) {
  folder_.write("source", "x");
  EXPECT_EQ(Transport("source", "target", true), 0);
  kova::ForgetDataSets();
  EXPECT_TRUE(folder_.has("target"));
  EXPECT_FALSE(folder_.has("source"));
}

}  // namespace
