#include "config/KovaDXConfigReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "config/process_values.h"
#include "platform/os/environment.h"
#include "tests/kit/scratch_folder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const char kFile[] =
    "[SUPPORTED_LANG]\n"
    "X= PYTHON; R;JAVA \n"
    "TRACE=C:/trace\n"
    "[version]\n"
    "KovadxVersion=2.1.3.4\n"
    "KovadxVersionMajor=2\n"
    "KovadxVersionMinor=1\n"
    "KovadxVersionPatch=3\n"
    "KovadxFixPack=4\n"
    "[PYTHON]\n"
    "LIB_NAME=x.dll\n"
    "HOME=C:\\Python\n"
    "ARGS=-s -E\n"
    "A=1\n"
    "B=%A%;%UNKNOWN%;%A%\n"
    "PATH=%PATH%;x\n"
    "[LOOSE]\n"
    "; a comment=1\n"
    "\n"
    "LIB_NAME = x.dll\n"
    "=no key\n"
    "FLAG\n"
    "NOTHING=\n"
    "EQUALS=a=b\n"
    "[NEXT]\n"
    "LATE=1\n";

// A reader that is made when the test wants it, and what is open to derived readers.
class OpenConfigReader : public KovaDXConfigReader {
 public:
  OpenConfigReader() = default;
  using KovaDXConfigReader::GetConfigFullPath;
  using KovaDXConfigReader::GetNGlobalOptions;
  using KovaDXConfigReader::RetrieveKeyValue;
};

// Stores an empty home folder: the one "\" is cut off.
void forgetHome() {
  kova::os::SetEnvironment("KOVA_HOME", "");
  SetKOVAHOME("\\");
}

class KovaDXConfigReaderTest : public testing::Test {
 protected:
  KovaDXConfigReaderTest() { useFile(kFile); }
  ~KovaDXConfigReaderTest() override { forgetHome(); }

  void useFile(const std::string& content) {
    folder_.write("kovadxcfg.ini", content);
    SetKOVAHOME(folder_.path().c_str());
  }

  kova::kit::ScratchFolder folder_;
};

TEST_F(KovaDXConfigReaderTest, PathIsMadeOfTheHomeFolder) {
  const struct {
    const char* label;
    const char* home;
    const char* path;
  } cases[] = {
      {"backslashes", "C:\\kova", "C:\\kova\\kovadxcfg.ini"},
      {"slashes", "/opt/kova", "\\opt\\kova\\kovadxcfg.ini"},
      {"an end of its own", "/opt/kova/", "\\opt\\kova\\kovadxcfg.ini"},
  };
  for (const auto& c : cases) {
    SetKOVAHOME(c.home);
    EXPECT_EQ(OpenConfigReader().GetConfigFullPath(), c.path) << c.label;
  }
  forgetHome();
  EXPECT_EQ(OpenConfigReader().GetConfigFullPath(), "kovadxcfg.ini");
}

TEST_F(KovaDXConfigReaderTest, WithoutHomeTheCurrentFolderIsSearched) {
  forgetHome();
  OpenConfigReader reader;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  EXPECT_EQ(reader.GetVersion(), "2.1.3.4");
  std::filesystem::current_path(before);
}

TEST_F(KovaDXConfigReaderTest, PathIsFixedAtConstruction) {
  OpenConfigReader reader;
  SetKOVAHOME("/nowhere");
  EXPECT_EQ(reader.GetVersion(), "2.1.3.4");
}

TEST_F(KovaDXConfigReaderTest, GlobalValues) {
  OpenConfigReader reader;
  EXPECT_EQ(reader.GetTracePath(), "C:/trace");
  EXPECT_EQ(reader.GetVersion(), "2.1.3.4");
  EXPECT_EQ(reader.GetVersionMajor(), "2");
  EXPECT_EQ(reader.GetVersionMinor(), "1");
  EXPECT_EQ(reader.GetVersionPatch(), "3");
  EXPECT_EQ(reader.GetVersionBugfix(), "4");
  XConfigOptions global = reader.GetGlobalOptions();
  EXPECT_EQ(global.XName(), "_GLOBAL_");
  EXPECT_EQ(global.GetOption("X"), "PYTHON; R;JAVA");
  EXPECT_THAT(global.GetXEnvVars(), IsEmpty());
  EXPECT_EQ(reader.GetNGlobalOptions(), reader.GetNGlobalOptions());
  EXPECT_EQ(reader.GetOptions("_GLOBAL_"), reader.GetNGlobalOptions());
}

TEST_F(KovaDXConfigReaderTest, LongerVersionKeyInFrontIsTakenForThePlainOne) {
  useFile("[version]\nKovadxVersionMajor=2\nKovadxVersion=2.1\n");
  EXPECT_EQ(OpenConfigReader().GetVersion(), "2");
}

TEST_F(KovaDXConfigReaderTest, AnyKeyThatBeginsWithXIsTakenForTheList) {
  useFile("[SUPPORTED_LANG]\nxtra=NOISE\nX=PYTHON\n");
  EXPECT_THAT(OpenConfigReader().GetSupportLanguage(), ElementsAre("NOISE"));
}

TEST_F(KovaDXConfigReaderTest, SupportedLanguages) {
  OpenConfigReader reader;
  EXPECT_THAT(reader.GetSupportLanguage(), ElementsAre("PYTHON", " R", "JAVA"));
  const struct {
    const char* name;
    bool supported;
  } cases[] = {{"PYTHON", true}, {"python", false},       {"R", false}, {" R", true}, {"JAVA", true},
               {"PY", false},    {"JAVAEXTENSION", true}, {"", false}};
  for (const auto& c : cases) EXPECT_EQ(reader.IsSupportLanguage(c.name), c.supported) << c.name;
}

TEST_F(KovaDXConfigReaderTest, JavaExtensionIsSupportedWithAnEmptyList) {
  useFile("[SUPPORTED_LANG]\nX=\n");
  OpenConfigReader reader;
  EXPECT_THAT(reader.GetSupportLanguage(), IsEmpty());
  EXPECT_TRUE(reader.IsSupportLanguage("JAVAEXTENSION"));
  EXPECT_FALSE(reader.IsSupportLanguage("javaextension"));
}

TEST_F(KovaDXConfigReaderTest, MissingFileGivesDefaults) {
  SetKOVAHOME(folder_.path("absent").c_str());
  OpenConfigReader reader;
  EXPECT_EQ(reader.GetOption("version", "KovadxVersion", "none"), "none");
  EXPECT_EQ(reader.GetTracePath(), "");
  EXPECT_EQ(reader.GetVersion(), "");
  EXPECT_THAT(reader.GetSupportLanguage(), IsEmpty());
  EXPECT_FALSE(reader.IsSupportLanguage("PYTHON"));
  EXPECT_TRUE(reader.IsSupportLanguage("JAVAEXTENSION"));
  EXPECT_EQ(reader.GetOptions("PYTHON")->GetXLibName(), "");
  EXPECT_THAT(reader.GetOptions("PYTHON")->GetXEnvVars(), IsEmpty());
}

TEST_F(KovaDXConfigReaderTest, OneValue) {
  useFile("[S]\nBLANKS=  a b  x\nTABS=\tt\t;\nEMPTY=\nONLY=   \n");
  OpenConfigReader reader;
  const struct {
    const char* key;
    const char* defaultValue;
    const char* value;
  } cases[] = {
      {"BLANKS", "d", "a b  x"}, {"TABS", "d", "\tt\t;"}, {"EMPTY", "d", "d"}, {"ONLY", "d", "d"},
      {"NONE", "d", "d"},        {"NONE", "  d ", "d"},   {"NONE", "   ", ""}, {"NONE", "", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(reader.GetOption("S", c.key, c.defaultValue), c.value) << c.key;
}

TEST_F(KovaDXConfigReaderTest, ValuesAndDefaultsAreCutToTheirLimit) {
  useFile("[S]\nA=" + std::string(3000, 'a') + "\n");
  OpenConfigReader reader;
  EXPECT_EQ(reader.GetOption("S", "A", ""), std::string(2047 - 2, 'a')) << "the rest of the line is another line";
  EXPECT_EQ(reader.GetOption("S", "NONE", std::string(3000, 'd')), std::string(2047, 'd'));
}

TEST_F(KovaDXConfigReaderTest, LanguageSet) {
  OpenConfigReader reader;
  XConfigOptions* const python = reader.GetOptions("PYTHON");
  EXPECT_EQ(python->XName(), "PYTHON");
  EXPECT_EQ(python->GetXLibName(), "x.dll");
  EXPECT_EQ(python->GetXHome(), "C:\\Python");
  EXPECT_EQ(python->GetXArgs(), "-s -E");
  EXPECT_THAT(python->GetXEnvVars(),
              ElementsAre(Pair("A", "1"), Pair("B", "1;%UNKNOWN%;%A%"), Pair("PATH", "%PATH%;x")));
}

TEST_F(KovaDXConfigReaderTest, BlanksAroundTheEqualsSignBelongToKeyAndValue) {
  OpenConfigReader reader;
  XConfigOptions* const options = reader.GetOptions("LOOSE");
  EXPECT_EQ(options->GetXLibName(), "");
  EXPECT_THAT(options->GetXEnvVars(),
              ElementsAre(Pair("EQUALS", "a=b"), Pair("FLAG", ""), Pair("LIB_NAME ", " x.dll"), Pair("NOTHING", "")));
}

TEST_F(KovaDXConfigReaderTest, SectionWalk) {
  OpenConfigReader reader;
  std::vector<std::string> keys;
  std::vector<std::string> values;
  const std::string path = folder_.path("kovadxcfg.ini");
  reader.RetrieveKeyValue(path.c_str(), "LOOSE", keys, values);
  EXPECT_THAT(keys, ElementsAre("LIB_NAME ", "FLAG", "NOTHING", "EQUALS"));
  EXPECT_THAT(values, ElementsAre(" x.dll", "", "", "a=b"));
  reader.RetrieveKeyValue(path.c_str(), "next", keys, values);
  EXPECT_THAT(keys, ElementsAre("LIB_NAME ", "FLAG", "NOTHING", "EQUALS", "LATE"));
  reader.RetrieveKeyValue(path.c_str(), "ABSENT", keys, values);
  reader.RetrieveKeyValue(folder_.path("absent").c_str(), "LOOSE", keys, values);
  EXPECT_EQ(keys.size(), 5u);
  EXPECT_EQ(values.size(), 5u);
}

TEST_F(KovaDXConfigReaderTest, PrefixFindsTheSectionButSetsAreKeptApart) {
  OpenConfigReader reader;
  XConfigOptions* const prefix = reader.GetOptions("PY");
  XConfigOptions* const whole = reader.GetOptions("PYTHON");
  EXPECT_NE(prefix, whole);
  EXPECT_EQ(prefix->XName(), "PY");
  EXPECT_EQ(prefix->GetXLibName(), "x.dll");
  EXPECT_FALSE(prefix->IsNestable());
  EXPECT_TRUE(whole->IsNestable());
  EXPECT_NE(reader.GetOptions("python"), whole);
}

TEST_F(KovaDXConfigReaderTest, SetsAreReadOnce) {
  OpenConfigReader reader;
  XConfigOptions* const first = reader.GetOptions("PYTHON");
  XConfigOptions* const absent = reader.GetOptions("JULIA");
  EXPECT_EQ(reader.GetVersionMajor(), "2");
  useFile("[PYTHON]\nLIB_NAME=y.dll\n[JULIA]\nLIB_NAME=j.dll\n[version]\nKovadxVersionMajor=3\n");
  EXPECT_EQ(reader.GetOptions("PYTHON"), first);
  EXPECT_EQ(first->GetXLibName(), "x.dll");
  EXPECT_EQ(reader.GetOptions("JULIA"), absent);
  EXPECT_EQ(absent->GetXLibName(), "");
  EXPECT_EQ(reader.GetVersionMajor(), "2");
}

TEST_F(KovaDXConfigReaderTest, CurrentLanguage) {
  OpenConfigReader reader;
  EXPECT_EQ(reader.GetXName(), "");
  reader.SetXName("PYTHON");
  EXPECT_EQ(reader.GetXName(), "PYTHON");
  XConfigOptions copy = reader.GetOptions();
  EXPECT_EQ(copy.GetXLibName(), "x.dll");
  copy.PutOption("LIB_NAME", "changed");
  EXPECT_EQ(reader.GetOptions("PYTHON")->GetXLibName(), "x.dll");
}

TEST_F(KovaDXConfigReaderTest, EmptyNameFindsTheFirstSection) {
  OpenConfigReader reader;
  EXPECT_EQ(reader.GetOptions().GetOption("TRACE"), "C:/trace");
}

// The one reader of the process: its file is the one of the first use, so no other test may use it.
TEST_F(KovaDXConfigReaderTest, TheOneReaderKeepsItsFile) {
  KovaDXConfigReader* const reader = KovaDXConfigReader::GetInstance();
  EXPECT_EQ(KovaDXConfigReader::GetInstance(), reader);
  SetKOVAHOME("/nowhere");
  EXPECT_EQ(KovaDXConfigReader::GetInstance("PYTHON"), reader->GetOptions("PYTHON"));
  EXPECT_EQ(KovaDXConfigReader::GetInstance("PYTHON")->GetXLibName(), "x.dll");
}

TEST(SampleConfiguration, ListsThePlainNamesFirst) {
  const kova::kit::ScratchFolder folder;
  std::filesystem::copy_file(std::string(KOVA_SOURCE_DIR) + "/programs/kovadxcfg.ini.in", folder.path("kovadxcfg.ini"));
  SetKOVAHOME(folder.path().c_str());
  OpenConfigReader reader;
  forgetHome();
  EXPECT_THAT(reader.GetSupportLanguage(), ElementsAre("PYTHON", "R", "JAVAEXTENSION"));
  EXPECT_EQ(reader.GetTracePath(), "");
  EXPECT_EQ(reader.GetVersion(), "1.0.0");
  EXPECT_EQ(reader.GetVersionMajor(), "1");
  EXPECT_EQ(reader.GetVersionMinor(), "0");
  EXPECT_EQ(reader.GetVersionPatch(), "0");
  EXPECT_EQ(reader.GetVersionBugfix(), "0");
}

}  // namespace
