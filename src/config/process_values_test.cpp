#include "config/process_values.h"

#include <gtest/gtest.h>

#include "platform/os/environment.h"
#include "tests/os_fake/os_fake.h"

namespace {

// What the values are at load, before any test sets one.
struct AtLoad {
  std::string xName = GetXName();
  int appMode = GetAppMode();
  bool initialised = IsDXGlobalInit();
  bool inStat = IsInStat();
};
const AtLoad atLoad;

class ProcessValuesTest : public testing::Test {
 protected:
  // The one "\" is cut off: no folder is stored then.
  ProcessValuesTest() {
    kova::fake::reset();
    SetKOVAHOME("\\");
  }
  ~ProcessValuesTest() override { SetKOVAHOME("\\"); }
};

TEST_F(ProcessValuesTest, ValuesAtLoad) {
  EXPECT_EQ(atLoad.xName, "");
  EXPECT_EQ(atLoad.appMode, -1);
  EXPECT_FALSE(atLoad.initialised);
  EXPECT_FALSE(atLoad.inStat);
}

TEST_F(ProcessValuesTest, NameIsStoredInUpperCase) {
  SetXName("python");
  EXPECT_EQ(GetXName(), "PYTHON");
  SetXName("R\xE9");
  EXPECT_EQ(GetXName(), "R\xE9");
}

TEST_F(ProcessValuesTest, EmptyNameIsUnnamed) {
  SetXName("");
  EXPECT_EQ(GetXName(), "UNNAMEDX");
  kova::clearXName();
  EXPECT_EQ(GetXName(), "");
}

TEST_F(ProcessValuesTest, HomeLosesOneBackslash) {
  const struct {
    const char* label;
    const char* set;
    const char* stored;
  } cases[] = {
      {"as it is", "C:\\kova", "C:\\kova"},
      {"one at the end", "C:\\kova\\", "C:\\kova"},
      {"one of two", "C:\\kova\\\\", "C:\\kova\\"},
      {"a slash stays", "/opt/kova/", "/opt/kova/"},
  };
  for (const auto& c : cases) {
    SetKOVAHOME(c.set);
    EXPECT_STREQ(GetKOVAHOME(), c.stored) << c.label;
  }
}

TEST_F(ProcessValuesTest, NoPathSetsNoHome) {
  SetKOVAHOME("/opt/kova");
  SetKOVAHOME(nullptr);
  EXPECT_STREQ(GetKOVAHOME(), "/opt/kova");
  SetKOVAHOME("");
  EXPECT_STREQ(GetKOVAHOME(), "/opt/kova");
}

TEST_F(ProcessValuesTest, HomeIsEmptyWithoutEnvironment) { EXPECT_STREQ(GetKOVAHOME(), ""); }

TEST_F(ProcessValuesTest, HomeComesFromTheEnvironmentOnce) {
  kova::os::SetEnvironment("KOVA_HOME", "D:\\home\\");
  EXPECT_STREQ(GetKOVAHOME(), "D:\\home");
  kova::os::SetEnvironment("KOVA_HOME", "E:\\other");
  EXPECT_STREQ(GetKOVAHOME(), "D:\\home") << "the stored folder counts";
}

TEST_F(ProcessValuesTest, StoredHomeGoesBeforeTheEnvironment) {
  kova::os::SetEnvironment("KOVA_HOME", "D:\\home");
  SetKOVAHOME("/opt/kova");
  EXPECT_STREQ(GetKOVAHOME(), "/opt/kova");
}

TEST_F(ProcessValuesTest, PlainValuesAreKept) {
  SetAppMode(3);
  EXPECT_EQ(GetAppMode(), 3);
  SetAppMode(-1);
  EXPECT_EQ(GetAppMode(), -1);
  SetDXGlobalInitFin(true);
  EXPECT_TRUE(IsDXGlobalInit());
  EXPECT_FALSE(IsInStat());
  SetDXGlobalInitFin(false);
  EXPECT_FALSE(IsDXGlobalInit());
  SetInStat(true);
  EXPECT_TRUE(IsInStat());
  SetInStat(false);
  EXPECT_FALSE(IsInStat());
}

}  // namespace
