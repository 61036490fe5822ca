#include "platform/PlugInDynamicLoadedLibrary.h"

#include <gtest/gtest.h>

#include "tests/os_fake/os_fake.h"

namespace {

using kova::fake::callCount;
using kova::fake::loadedLibraries;

class PlugInDynamicLoadedLibraryTest : public testing::Test {
 protected:
  PlugInDynamicLoadedLibraryTest() {
    kova::fake::reset();
    kova::fake::registerLibrary("/home/runtime", {{{"known", &known_}}, {}});
  }

  int known_ = 0;
};

TEST_F(PlugInDynamicLoadedLibraryTest, NothingIsLoadedAtFirst) {
  const PlugInDynamicLoadedLibrary library("/home/runtime", 1);
  EXPECT_EQ(callCount("LoadSharedLibrary"), 0u);
  EXPECT_EQ(library.GetErrorString(), "");
}

TEST_F(PlugInDynamicLoadedLibraryTest, IsLoadedOnceAndUnloadedAtItsEnd) {
  {
    PlugInDynamicLoadedLibrary library("\\home\\runtime", 0);
    EXPECT_EQ(library.LoadLibraryNow(), 0);
    EXPECT_EQ(library.LoadLibraryNow(), 0);
    EXPECT_EQ(callCount("LoadSharedLibrary"), 1u);
    EXPECT_EQ(loadedLibraries(), 1u);
  }
  EXPECT_EQ(loadedLibraries(), 0u);
}

TEST_F(PlugInDynamicLoadedLibraryTest, ASymbolLoadsTheLibrary) {
  PlugInDynamicLoadedLibrary library("/home/runtime", 0);
  EXPECT_EQ(library.GetSymbolAddress("known"), &known_);
  EXPECT_EQ(library.GetErrorString(), "");
}

TEST_F(PlugInDynamicLoadedLibraryTest, AnUnknownSymbolLeavesItsText) {
  PlugInDynamicLoadedLibrary library("/home/runtime", 0);
  EXPECT_EQ(library.GetSymbolAddress("unknown"), nullptr);
  EXPECT_EQ(library.GetErrorString(), "fake: loader error 127\r\n") << "as the platform gives it";
  EXPECT_EQ(library.GetSymbolAddress("known"), &known_);
  EXPECT_EQ(library.GetErrorString(), "") << "empty after a success";
}

TEST_F(PlugInDynamicLoadedLibraryTest, AnAbsentLibraryLeavesItsText) {
  PlugInDynamicLoadedLibrary library("/home/other", 0);
  EXPECT_EQ(library.LoadLibraryNow(), 126);
  EXPECT_EQ(library.GetSymbolAddress("known"), nullptr);
  EXPECT_EQ(library.GetErrorString(), "fake: loader error 126\r\n");
  EXPECT_EQ(callCount("FindSymbol"), 0u);
  // The failure is not kept: what has come since is loaded.
  kova::fake::registerLibrary("/home/other", {{{"known", &known_}}, {}});
  EXPECT_EQ(library.GetSymbolAddress("known"), &known_);
}

struct NameRow {
  const char* name;
  const char* decorated;
};

TEST_F(PlugInDynamicLoadedLibraryTest, NamesAreDecoratedByTheirLastFourCharacters) {
  const NameRow rows[] = {
      {"", ".dll"},
      {"rt", "rt.dll"},
      {".dll", ".dll.dll"},
      {"four", "four.dll"},
      {"fiver", "fiver"},
      {"x.so", "x.so.dll"},
      {"a.dll", "a.dll.dll"},
      {"a.DLL", "a.DLL"},
      {"lib.so.1", "lib.so.1"},
      {"a.dlls", "a.dlls"},
      {"\\home\\rt", "\\home\\rt"},
  };
  for (const NameRow& row : rows) EXPECT_EQ(PlugInDecorateDynamicPathName(row.name), row.decorated) << row.name;
}

}  // namespace
