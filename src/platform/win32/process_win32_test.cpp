#include "platform/os/process.h"

#include <gtest/gtest.h>

#include "platform/win32/system_win32.h"
#include "tests/kit/kit.h"

namespace kova::os {
namespace {

constexpr int kNotTold = 10;

// How its first window is to be shown.
KOVA_KIT_CHILD(tells_how_it_is_shown) {
  STARTUPINFOA startup{};
  GetStartupInfoA(&startup);
  return (startup.dwFlags & STARTF_USESHOWWINDOW) != 0 ? startup.wShowWindow : kNotTold;
}

struct ShownRow {
  const char* label;
  bool hasInput;
  bool hasOutput;
  int shown;
};

constexpr ShownRow kShownRows[] = {
    {"this program's own streams", false, false, kNotTold},
    {"an input", true, false, SW_HIDE},
    {"an output", false, true, SW_HIDE},
    {"both", true, true, SW_HIDE},
};

TEST(Win32Process, OneThatIsTalkedToShowsNoWindow) {
  for (const ShownRow& row : kShownRows) {
    SCOPED_TRACE(row.label);
    BytePipeEnd childsInput;
    BytePipeEnd input;
    BytePipeEnd output;
    BytePipeEnd childsOutput;
    ASSERT_EQ(BytePipeEnd::Create(&childsInput, &input), kSuccess);
    ASSERT_EQ(BytePipeEnd::Create(&output, &childsOutput), kSuccess);
    ProcessStart start = kit::childStart("tells_how_it_is_shown");
    start.isApart = true;
    start.input = row.hasInput ? &childsInput : nullptr;
    start.output = row.hasOutput ? &childsOutput : nullptr;
    Process child;
    ASSERT_EQ(Process::Start(start, &child), kSuccess);
    EXPECT_EQ(kit::waitForChild(child), row.shown);
  }
}

}  // namespace
}  // namespace kova::os
