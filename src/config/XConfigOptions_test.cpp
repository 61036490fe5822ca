#include "config/XConfigOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const char* const kDefinedKeys[] = {"LIB_NAME",
                                    "HOME",
                                    "ARGS",
                                    "X",
                                    "KovadxVersion",
                                    "KovadxVersionMajor",
                                    "KovadxVersionMinor",
                                    "KovadxVersionPatch",
                                    "KovadxFixPack",
                                    "TRACE",
                                    "INNER_PROCESS",
                                    "NESTABLE",
                                    "WORK_ON_32",
                                    "IS_EXTERNAL_RUNTIME"};

class XConfigOptionsTest : public testing::Test {
 protected:
  ~XConfigOptionsTest() override { SetExpandEnvStr(nullptr); }

  std::string variable(const std::string& name) {
    const auto found = options_.GetXEnvVars().find(name);
    return found == options_.GetXEnvVars().end() ? "<none>" : found->second;
  }

  XConfigOptions options_{"R"};
};

TEST_F(XConfigOptionsTest, KeepsItsName) { EXPECT_EQ(options_.XName(), "R"); }

TEST_F(XConfigOptionsTest, DefinedKeysAreTheFourteen) {
  for (const char* const key : kDefinedKeys) EXPECT_TRUE(XConfigOptions::IsDefinedKey(key)) << key;
  for (const char* const key : {"", "lib_name", "LIB_NAME ", "LIB_NAM", "HOMEDIR", "x", "PATH", "kovadxversion"}) {
    EXPECT_FALSE(XConfigOptions::IsDefinedKey(key)) << key;
  }
  EXPECT_FALSE(XConfigOptions::IsDefinedKey(std::string("X\0", 2)));
}

TEST_F(XConfigOptionsTest, DefinedKeysAreNoEnvironmentVariables) {
  for (const char* const key : kDefinedKeys) options_.PutOption(key, "v");
  EXPECT_THAT(options_.GetXEnvVars(), IsEmpty());
  for (const char* const key : kDefinedKeys) EXPECT_EQ(options_.GetOption(key), "v") << key;
}

TEST_F(XConfigOptionsTest, OtherKeysAreBoth) {
  options_.PutOption("A", "1");
  options_.PutOption("B", "%A%2");
  EXPECT_EQ(options_.GetOption("B"), "%A%2");
  EXPECT_THAT(options_.GetXEnvVars(), ElementsAre(Pair("A", "1"), Pair("B", "12")));
}

TEST_F(XConfigOptionsTest, AbsentKeyIsAddedEmptyAndIsNoVariable) {
  EXPECT_EQ(options_.GetOption("NONE"), "");
  EXPECT_THAT(options_.GetXEnvVars(), IsEmpty());
}

TEST_F(XConfigOptionsTest, NamedGetters) {
  EXPECT_EQ(options_.GetXLibName(), "");
  options_.PutOption("LIB_NAME", "x.dll");
  options_.PutOption("HOME", "C:\\R");
  options_.PutOption("ARGS", "--silent");
  EXPECT_EQ(options_.GetXLibName(), "x.dll");
  EXPECT_EQ(options_.GetXHome(), "C:\\R");
  EXPECT_EQ(options_.GetXArgs(), "--silent");
}

TEST_F(XConfigOptionsTest, KeyWithABlankIsAnotherKey) {
  options_.PutOption("LIB_NAME ", " x.dll");
  EXPECT_EQ(options_.GetXLibName(), "");
  EXPECT_EQ(variable("LIB_NAME "), " x.dll");
}

TEST_F(XConfigOptionsTest, FlagsAreSetByTheExactTextAlone) {
  struct Flag {
    const char* key;
    bool (XConfigOptions::*isSet)();
  };
  const Flag flags[] = {{"INNER_PROCESS", &XConfigOptions::IsInnerProcess},
                        {"NESTABLE", &XConfigOptions::IsNestable},
                        {"WORK_ON_32", &XConfigOptions::WorkOn32},
                        {"IS_EXTERNAL_RUNTIME", &XConfigOptions::IsExternalRuntime}};
  for (const Flag& flag : flags) {
    XConfigOptions options("R");
    EXPECT_FALSE((options.*flag.isSet)()) << flag.key << " absent";
    for (const char* const text : {"", "True", "TRUE", "yes", "1", "true ", " true"}) {
      options.PutOption(flag.key, text);
      EXPECT_FALSE((options.*flag.isSet)()) << flag.key << "=" << text;
    }
    options.PutOption(flag.key, "true");
    EXPECT_TRUE((options.*flag.isSet)()) << flag.key;
    for (const Flag& other : flags) {
      EXPECT_EQ((options.*other.isSet)(), other.key == flag.key) << other.key << " with " << flag.key;
    }
  }
}

TEST_F(XConfigOptionsTest, PythonIsAlwaysNestable) {
  XConfigOptions python("PYTHON");
  EXPECT_TRUE(python.IsNestable());
  python.PutOption("NESTABLE", "false");
  EXPECT_TRUE(python.IsNestable());
  EXPECT_FALSE(XConfigOptions("python").IsNestable());
  EXPECT_FALSE(XConfigOptions("PYTHON3").IsNestable());
}

TEST_F(XConfigOptionsTest, Expansion) {
  const struct {
    const char* label;
    const char* value;
    const char* expanded;
  } cases[] = {
      {"no reference", "abc", "abc"},
      {"empty", "", ""},
      {"one", "%A%", "1"},
      {"more", "%A%-%B%-%A%", "1-two words-1"},
      {"an unknown one ends it", "%A%;%UNKNOWN%;%A%", "1;%UNKNOWN%;%A%"},
      {"case counts", "%a%", "%a%"},
      {"one percent sign alone", "50%", "50%"},
      {"a percent sign behind a reference", "%A%50%", "150%"},
      {"an empty name is unknown", "%%%A%", "%%%A%"},
      {"a defined key is no variable", "%HOME%", "%HOME%"},
      {"a variable that holds an unknown reference", "%C%%A%", "%LATER%%A%"},
      {"a later variable", "%Z%", "%Z%"},
      {"a variable of its own name, put earlier", "%PATH%;x", "%PATH%;x"},
      {"an empty variable", "<%EMPTY%>", "<>"},
  };
  for (const auto& c : cases) {
    XConfigOptions options("R");
    options.PutOption("A", "1");
    options.PutOption("B", "two words");
    options.PutOption("C", "%LATER%");
    options.PutOption("EMPTY", "");
    options.PutOption("HOME", "/r");
    options.PutOption("VALUE", c.value);
    options.PutOption("Z", "late");
    EXPECT_EQ(options.GetXEnvVars().at("VALUE"), c.expanded) << c.label;
  }
}

TEST_F(XConfigOptionsTest, ValueMayReferToTheEarlierOneOfItsOwnName) {
  options_.PutOption("PATH", "/usr/bin");
  options_.PutOption("PATH", "/opt;%PATH%");
  EXPECT_EQ(variable("PATH"), "/opt;/usr/bin");
}

TEST_F(XConfigOptionsTest, ReferenceMadeByAReplacementIsReplacedToo) {
  options_.PutOption("HALF", "%A");
  options_.PutOption("A", "1");
  options_.PutOption("WHOLE", "%HALF%%");
  EXPECT_EQ(variable("WHOLE"), "1");
}

TEST_F(XConfigOptionsTest, ReferenceToItselfEnds) {
  options_.PutOption("A", "%A%");
  options_.PutOption("B", "%A%");
  EXPECT_EQ(variable("B"), "%A%");
}

TEST_F(XConfigOptionsTest, ReplacingStopsBeforeTheTextIsTooLong) {
  options_.PutOption("A", "%A%" + std::string(1000, 'x'));
  options_.PutOption("B", "%A%");
  // 65 times 1000 characters and the reference fit into 65536.
  EXPECT_EQ(variable("B"), "%A%" + std::string(65000, 'x'));
}

TEST_F(XConfigOptionsTest, ReplacingStopsAfterAThousandTimes) {
  options_.PutOption("A", "%A%x");
  options_.PutOption("B", "%A%");
  EXPECT_EQ(variable("B"), "%A%" + std::string(1000, 'x'));
}

TEST_F(XConfigOptionsTest, LongValueWithoutReferenceIsKeptWhole) {
  const std::string value(100000, 'x');
  options_.PutOption("A", value);
  EXPECT_EQ(variable("A"), value);
}

TEST_F(XConfigOptionsTest, WithoutExpanderTheTextIsCopied) {
  std::string out = "before";
  EXPECT_FALSE(ExpandEnvStr("%PATH%", out));
  EXPECT_EQ(out, "%PATH%");
}

bool inBrackets(const std::string& in, std::string& out) {
  out = "<" + in + ">";
  return true;
}

bool failing(const std::string&, std::string&) { return false; }

TEST_F(XConfigOptionsTest, ExpanderSeesWhatTheSetLeft) {
  SetExpandEnvStr(&inBrackets);
  std::string out;
  EXPECT_TRUE(ExpandEnvStr("a", out));
  EXPECT_EQ(out, "<a>");
  options_.PutOption("A", "1");
  options_.PutOption("B", "%A%%SYSTEM%");
  EXPECT_EQ(variable("A"), "<1>");
  EXPECT_EQ(variable("B"), "<<1>%SYSTEM%>");
  EXPECT_EQ(options_.GetOption("B"), "%A%%SYSTEM%");
  options_.PutOption("HOME", "h");
  EXPECT_EQ(options_.GetXHome(), "h");
}

TEST_F(XConfigOptionsTest, ExpanderThatFailsLeavesTheText) {
  SetExpandEnvStr(&failing);
  options_.PutOption("A", "%SYSTEM%");
  EXPECT_EQ(variable("A"), "%SYSTEM%");
}

TEST_F(XConfigOptionsTest, ExpanderIsReplacedAndTakenAway) {
  SetExpandEnvStr(&failing);
  SetExpandEnvStr(&inBrackets);
  std::string out;
  EXPECT_TRUE(ExpandEnvStr("a", out));
  SetExpandEnvStr(nullptr);
  EXPECT_FALSE(ExpandEnvStr("b", out));
  EXPECT_EQ(out, "b");
}

TEST_F(XConfigOptionsTest, CopiesAreIndependent) {
  options_.PutOption("A", "1");
  XConfigOptions copy(options_);
  copy.PutOption("A", "2");
  EXPECT_EQ(variable("A"), "1");
  EXPECT_EQ(copy.XName(), "R");
  options_ = copy;
  EXPECT_EQ(variable("A"), "2");
}

}  // namespace
