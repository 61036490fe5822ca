// The names and the advice of error codes, as a program asks for them.
#include <gtest/gtest.h>

#include "api/kovadx_ext.h"

namespace {

TEST(ErrorTexts, TellNameAndAdvice) {
  EXPECT_STREQ(KovaErrorName(0), "None");
  EXPECT_STREQ(KovaErrorName(17), "EngineNotStarted");
  EXPECT_STREQ(KovaErrorAdvice(10), "Positions run from 0 to the variable count less 1.");
  EXPECT_STREQ(KovaErrorName(999988), "PythonSetUpFailed");
}

TEST(ErrorTexts, AreEmptyForAnotherNumber) {
  for (const int code : {-1, 98999, 2147483647}) {
    EXPECT_STREQ(KovaErrorName(code), "") << code;
    EXPECT_STREQ(KovaErrorAdvice(code), "") << code;
  }
}

}  // namespace
