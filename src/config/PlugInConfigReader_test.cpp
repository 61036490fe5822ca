#include "config/PlugInConfigReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/kit/scratch_folder.h"

namespace {

using testing::Each;

const char kFile[] =
    "; a comment before every section\n"
    "LOST=outside\n"
    "[SUPPORTED_LANG]\n"
    "X=PYTHON;R\n"
    "TRACE=\n"
    "\n"
    "[ BLANKS ]\n"
    "A=1\n"
    "[PYTHON]\n"
    "  LIB_NAME=a.dll  \r\n"
    "; HOME=comment\n"
    "HOMEDIR=first\n"
    "HOME=second\n"
    "\tSPACED = v\n"
    "NOTE=x ; note\n"
    "FLAG\n"
    "EQUALS=a=b=c\n"
    "LATIN=caf\xE9\n"
    "NBSP=x\xA0\n"
    "EMPTY=\n"
    "[PYTHON]\n"
    "LATE=1\n"
    "[R3]\n"
    "A=r3\n"
    "[R]\n"
    "A=r\n"
    "[unclosed\n"
    "A=u";

class PlugInConfigReaderTest : public testing::Test {
 protected:
  // Asks for a value; the size is one that fits.
  std::string value(const char* section, const char* key) {
    char buffer[256];
    const unsigned long count = ask(section, key, buffer, sizeof buffer);
    EXPECT_EQ(std::strlen(buffer), count);
    return buffer;
  }

  // Asks for a list; each NUL comes back as "|".
  std::string list(const char* section, unsigned long size = 256) {
    std::string buffer(256, 'x');
    const unsigned long count = ask(section, nullptr, buffer.data(), size);
    std::string result = buffer.substr(0, count);
    for (char& c : result) c = c == '\0' ? '|' : c;
    return result;
  }

  unsigned long ask(const char* section, const char* key, char* buffer, std::size_t size) {
    return reader_.GetPrivateProfileString(section, key, "ignored", buffer, static_cast<unsigned long>(size),
                                           path_.c_str());
  }

  kova::kit::ScratchFolder folder_;
  std::string path_ = folder_.write("a.ini", kFile);
  PlugInConfigReader reader_;
};

TEST_F(PlugInConfigReaderTest, Values) {
  struct Case {
    const char* label;
    const char* section;
    const char* key;
    const char* value;
  };
  const Case cases[] = {
      {"plain", "SUPPORTED_LANG", "X", "PYTHON;R"},
      {"white space around the line", "PYTHON", "LIB_NAME", "a.dll"},
      {"section in other case", "python", "LIB_NAME", "a.dll"},
      {"key in other case", "PYTHON", "lib_name", "a.dll"},
      {"a prefix finds the section", "PY", "LIB_NAME", "a.dll"},
      {"a prefix finds the first key", "PYTHON", "HOME", "first"},
      {"the plain name comes too late", "R", "A", "r3"},
      {"a comment is no entry", "PYTHON", "; HOME", ""},
      {"a comment does not end a value", "PYTHON", "NOTE", "x ; note"},
      {"nothing is trimmed behind the equals sign", "PYTHON", "SPACED", " v"},
      {"the first equals sign counts", "PYTHON", "EQUALS", "a=b=c"},
      {"an entry without equals sign", "PYTHON", "FLAG", ""},
      {"an empty value", "PYTHON", "EMPTY", ""},
      {"byte E9", "PYTHON", "LATIN", "caf\xE9"},
      {"byte A0 is no white space", "PYTHON", "NBSP", "x\xA0"},
      {"an absent key", "PYTHON", "NONE", ""},
      {"an absent section", "JAVA", "A", ""},
      {"the name is longer than the header", "PYTHONS", "LIB_NAME", ""},
      {"blanks inside the brackets", "BLANKS", "A", ""},
      {"blanks asked for", " BLANKS", "A", "1"},
      {"only the first of two sections", "PYTHON", "LATE", ""},
      {"a header that is not closed, a line that does not end", "unclosed", "A", "u"},
      {"an empty line is no key", "SUPPORTED_LANG", "Y", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(value(c.section, c.key), c.value) << c.label;
}

TEST_F(PlugInConfigReaderTest, PlainNameFirstIsFoundFirst) {
  path_ = folder_.write("b.ini",
                        "[R]\nA=r\n[R3]\nA=r3\n[version]\n"
                        "KovadxVersion=2.1\nKovadxVersionMajor=2\n");
  EXPECT_EQ(value("R", "A"), "r");
  EXPECT_EQ(value("version", "KovadxVersion"), "2.1");
  path_ = folder_.write("c.ini", "[version]\nKovadxVersionMajor=2\nKovadxVersion=2.1\n");
  EXPECT_EQ(value("version", "KovadxVersion"), "2");
}

TEST_F(PlugInConfigReaderTest, KeyNames) {
  EXPECT_EQ(list("SUPPORTED_LANG"), "X|TRACE|");
  EXPECT_EQ(list("PYTHON"), "LIB_NAME|HOMEDIR|HOME|SPACED |NOTE|FLAG|EQUALS|LATIN|NBSP|EMPTY|");
  EXPECT_EQ(list("JAVA"), "");
}

TEST_F(PlugInConfigReaderTest, EmptyKeyAsksForKeyNames) {
  char buffer[64];
  EXPECT_EQ(ask("SUPPORTED_LANG", "", buffer, sizeof buffer), 8u);
  EXPECT_EQ(std::string(buffer, 9), std::string("X\0TRACE\0\0", 9));
}

TEST_F(PlugInConfigReaderTest, SectionNames) {
  const char* const names = "SUPPORTED_LANG| BLANKS |PYTHON|PYTHON|R3|R|unclosed|";
  EXPECT_EQ(list(nullptr), names);
  EXPECT_EQ(list(""), names);
}

TEST_F(PlugInConfigReaderTest, NameThatDoesNotFitEndsTheList) {
  // "X" needs 3 characters with both NULs, "TRACE" 6 more.
  const struct {
    unsigned long size;
    const char* names;
  } cases[] = {{1, ""}, {2, ""}, {3, "X|"}, {8, "X|"}, {9, "X|TRACE|"}};
  for (const auto& c : cases) EXPECT_EQ(list("SUPPORTED_LANG", c.size), c.names) << "size " << c.size;
  EXPECT_EQ(list(nullptr, 15), "");
  EXPECT_EQ(list(nullptr, 16), "SUPPORTED_LANG|");
}

TEST_F(PlugInConfigReaderTest, ValueIsCutToTheBuffer) {
  const struct {
    unsigned long size;
    const char* text;
  } cases[] = {{1, ""}, {2, "a"}, {5, "a.dl"}, {6, "a.dll"}, {7, "a.dll"}};
  for (const auto& c : cases) {
    std::string buffer(16, 'x');
    EXPECT_EQ(ask("PYTHON", "LIB_NAME", buffer.data(), c.size), std::strlen(c.text)) << "size " << c.size;
    EXPECT_STREQ(buffer.c_str(), c.text) << "size " << c.size;
    EXPECT_THAT(buffer.substr(c.size), Each('x')) << "size " << c.size;
  }
}

TEST_F(PlugInConfigReaderTest, NoRoomGivesNothing) {
  char untouched = 'x';
  EXPECT_EQ(ask("PYTHON", "LIB_NAME", &untouched, 0), 0u);
  EXPECT_EQ(untouched, 'x');
  EXPECT_EQ(ask("PYTHON", "LIB_NAME", nullptr, 10), 0u);
}

TEST_F(PlugInConfigReaderTest, BufferIsZeroFilledFirst) {
  std::string buffer(8, 'x');
  EXPECT_EQ(ask("PYTHON", "NONE", buffer.data(), buffer.size()), 0u);
  EXPECT_THAT(buffer, Each('\0'));

  buffer.assign(8, 'x');
  path_ = folder_.path("absent.ini");
  EXPECT_EQ(ask("PYTHON", "LIB_NAME", buffer.data(), buffer.size()), 0u);
  EXPECT_THAT(buffer, Each('\0'));
}

TEST_F(PlugInConfigReaderTest, WithoutPathThereIsNoFile) {
  char buffer[4] = "xxx";
  EXPECT_EQ(reader_.GetPrivateProfileString("PYTHON", "LIB_NAME", "", buffer, sizeof buffer, nullptr), 0u);
}

TEST_F(PlugInConfigReaderTest, PathMayBeWrittenWithBackslashes) {
  std::string path = path_;
  for (char& c : path) c = c == '/' ? '\\' : c;
  path_ = path;
  EXPECT_EQ(value("R", "A"), "r3");
}

TEST_F(PlugInConfigReaderTest, LongLineCountsAsSeveral) {
  // 2047 bytes are read at a time: the key's line ends in the middle of the value, and what follows is a line.
  const std::string longValue(2047 - 2, 'v');
  path_ = folder_.write("long.ini", "[S]\nA=" + longValue + "B=2\nC=3\n");
  std::string buffer(4096, 'x');
  EXPECT_EQ(ask("S", "A", buffer.data(), buffer.size()), longValue.size());
  EXPECT_EQ(buffer.substr(0, longValue.size()), longValue);
  EXPECT_EQ(value("S", "B"), "2");
  EXPECT_EQ(value("S", "C"), "3");
}

// The pieces that a derived reader uses.
class OpenReader : public PlugInConfigReader {
 public:
  using PlugInConfigReader::GotoSectionStart;
  using PlugInConfigReader::RetrieveKeyNames;
  using PlugInConfigReader::TrimAll;
};

TEST(PlugInConfigReader, TrimAllWorksInPlace) {
  const struct {
    const char* label;
    const char* in;
    const char* out;
  } cases[] = {
      {"empty", "", ""},
      {"white space alone", " \t\n\v\f\r", ""},
      {"both ends", "\t a b \r\n", "a b"},
      {"nothing to trim", "ab", "ab"},
      {"bytes above 127 stay", "\x85\xA0x\xE9\n", "\x85\xA0x\xE9"},
  };
  OpenReader reader;
  for (const auto& c : cases) {
    char text[32];
    std::strcpy(text, c.in);
    reader.TrimAll(text);
    EXPECT_STREQ(text, c.out) << c.label;
  }
  reader.TrimAll(nullptr);
}

TEST(PlugInConfigReader, GotoSectionStartReadsOnFromWhereTheFileStands) {
  const kova::kit::ScratchFolder folder;
  std::FILE* const file = std::fopen(folder.write("a.ini", "[A]\nx=1\n[B]\ny=2\n[A]\nz=3\n").c_str(), "r");
  ASSERT_NE(file, nullptr);
  OpenReader reader;
  char names[16] = {};
  EXPECT_EQ(reader.GotoSectionStart(file, "B"), 1);
  EXPECT_EQ(reader.RetrieveKeyNames(file, "A", names, sizeof names), 2u);
  EXPECT_STREQ(names, "z");
  EXPECT_EQ(reader.GotoSectionStart(file, "B"), 0);
  std::fclose(file);
}

}  // namespace
