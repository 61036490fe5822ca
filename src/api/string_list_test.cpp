// The lists of texts that are read through a handle.
#include "api/string_list.h"

#include "tests/api/client_test.h"

namespace {

class StringLists : public kova::ClientTest {};

TEST_F(StringLists, GiveTheirTextsByPosition) {
  StartEngine({.texts = {"first", "", "third"}});
  int code = -1;
  void* const list = GetHandleList(&code);
  EXPECT_EQ(code, 0);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(GetStringListLength(list), 3);
  EXPECT_STREQ(GetStringFromList(list, 0), "first");
  EXPECT_STREQ(GetStringFromList(list, 1), "");
  EXPECT_STREQ(GetStringFromList(list, 2), "third");
  RemoveStringList(list);
}

TEST_F(StringLists, GiveAnEmptyTextOutsideTheirRange) {
  StartEngine({.texts = {"only"}});
  void* const list = EvaluateXPath("h", "/", "//text()", nullptr);
  EXPECT_STREQ(GetStringFromList(list, GetStringListLength(list)), "");
  EXPECT_STREQ(GetStringFromList(list, -1), "");
  EXPECT_STREQ(GetStringFromList(list, 0x7fffffff), "");
  RemoveStringList(list);
}

TEST_F(StringLists, StayWhileOtherCallsAreMade) {
  StartEngine({.texts = {"text"}});
  void* const first = GetOMSTagList(nullptr);
  void* const second = GetOMSTagList(nullptr);
  EXPECT_NE(first, second);
  RemoveStringList(second);
  SetKovaRunning(false);
  EXPECT_STREQ(GetVariableName(0, nullptr), "text");
  EXPECT_STREQ(GetStringFromList(first, 0), "text");
  RemoveStringList(first);
}

TEST_F(StringLists, MayBeEmptyOrNull) {
  StartEngine(kova::WireImage{});
  void* const empty = GetHandleList(nullptr);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(GetStringListLength(empty), 0);
  RemoveStringList(empty);
  EXPECT_EQ(GetStringListLength(nullptr), 0);
  EXPECT_STREQ(GetStringFromList(nullptr, 0), "");
  RemoveStringList(nullptr);
}

}  // namespace
