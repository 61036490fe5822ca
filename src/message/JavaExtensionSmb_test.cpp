#include "message/JavaExtensionSmb.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The record is the process's: each test begins with that of a new process.
class JavaExtensionSmbTest : public testing::Test {
 protected:
  JavaExtensionSmbTest() { Forget(); }
  ~JavaExtensionSmbTest() override { Forget(); }

  void Forget() {
    record_.CleanUp();
    record_.SetDataLen(0);
  }

  void Set(std::string bytes) {
    record_.SetDataLen(static_cast<int>(bytes.size()));
    record_.SetSendBuf(bytes.data());
  }

  // What is held; "(none)" without bytes.
  static std::string Held() {
    int length = -1;
    const char* const bytes = JavaExtensionSmb().GetSendBuf(length);
    return bytes == nullptr ? "(none)" : std::string(bytes, static_cast<std::size_t>(length));
  }

  JavaExtensionSmb record_;
};

TEST_F(JavaExtensionSmbTest, BeginsEmptyInPackageMode) {
  int length = -1;
  EXPECT_EQ(record_.GetSendBuf(length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(record_.GetDataLen(), 0);
  EXPECT_EQ(record_.GetExtensionPath(), "");
  EXPECT_EQ(record_.GetCommandName(), "");
  EXPECT_TRUE(record_.IsPackageMode());
}

TEST_F(JavaExtensionSmbTest, CopiesTheBytes) {
  std::string bytes("a\0b", 3);
  record_.SetDataLen(3);
  record_.SetSendBuf(bytes.data());
  bytes = "xyz";
  EXPECT_EQ(Held(), std::string("a\0b", 3));
}

TEST_F(JavaExtensionSmbTest, CopiesNoMoreThanTheLengthThatWasSet) {
  std::string bytes = "abcdef";
  record_.SetDataLen(2);
  record_.SetSendBuf(bytes.data());
  EXPECT_EQ(Held(), "ab");
}

TEST_F(JavaExtensionSmbTest, NewBytesReplaceTheEarlierOnes) {
  Set("a longer run of bytes");
  Set("short");
  EXPECT_EQ(Held(), "short");
}

TEST_F(JavaExtensionSmbTest, TakesTheBytesThatItHolds) {
  Set("held");
  int length = 0;
  record_.SetSendBuf(record_.GetSendBuf(length));
  EXPECT_EQ(Held(), "held");
}

TEST_F(JavaExtensionSmbTest, WithoutBytesTheEarlierOnesGo) {
  Set("held");
  record_.SetSendBuf(nullptr);
  EXPECT_EQ(Held(), "(none)");
  for (const int length : {0, -1, -2147483647 - 1}) {
    Set("held");
    record_.SetDataLen(length);
    std::string bytes = "other";
    record_.SetSendBuf(bytes.data());
    EXPECT_EQ(Held(), "(none)") << length;
    EXPECT_EQ(record_.GetDataLen(), length);
  }
}

TEST_F(JavaExtensionSmbTest, CleanUpLeavesTheLength) {
  Set("12345");
  record_.SetExtensionPath("path");
  record_.SetCommandName("command");
  record_.SetPackageMode(false);
  record_.CleanUp();
  int length = -1;
  EXPECT_EQ(record_.GetSendBuf(length), nullptr);
  EXPECT_EQ(length, 5);
  EXPECT_EQ(record_.GetDataLen(), 5);
  EXPECT_EQ(record_.GetExtensionPath(), "");
  EXPECT_EQ(record_.GetCommandName(), "");
  EXPECT_TRUE(record_.IsPackageMode());
}

TEST_F(JavaExtensionSmbTest, AllObjectsShareOneRecord) {
  {
    JavaExtensionSmb other;
    other.SetDataLen(3);
    std::string bytes = "abc";
    other.SetSendBuf(bytes.data());
    other.SetExtensionPath("path");
    other.SetCommandName("command");
    other.SetPackageMode(false);
  }
  EXPECT_EQ(Held(), "abc") << "the record outlives the object";
  EXPECT_EQ(record_.GetExtensionPath(), "path");
  EXPECT_EQ(record_.GetCommandName(), "command");
  EXPECT_FALSE(record_.IsPackageMode());
  record_.CleanUp();
  EXPECT_EQ(JavaExtensionSmb().GetCommandName(), "");
}

}  // namespace
