// The option text of StartKova, taken apart.
#include "api/start_options.h"

#include <gtest/gtest.h>

namespace {

using kova::parseStartOptions;

struct Row {
  const char* label;
  const char* text;
  const char* kovaHome;
  const char* language;
  const char* tempPath;
  const char* rest;
};

const Row kRows[] = {
    {"nothing", "", "", "", "", ""},
    {"home, language and a word", "-kovahome=D:\\K,-language=R,rest", "D:\\K", "R", "", "rest"},
    {"the other way round", "-language=R,-kovahome=D:\\K,rest", "D:\\K", "R", "", "rest"},
    {"none of them", "one, two -three", "", "", "", "one, two -three"},

    {"a home at the end", "rest -kovahome=/k", "/k", "", "", "rest "},
    {"an empty home", "-kovahome=,rest", "", "", "", "rest"},
    {"an empty home at the end", "rest-kovahome=", "", "", "", "rest"},
    {"a home with blanks", "-kovahome=C:\\My Files\\K,rest", "C:\\My Files\\K", "", "", "rest"},
    {"two homes", "-kovahome=a,-kovahome=b,rest", "a", "", "", "-kovahome=b,rest"},

    {"a language alone", "-language=PYTHON", "", "PYTHON", "", ""},
    {"an empty language", "-language=,rest", "", "", "", "rest"},
    {"a language in the middle", "one -language=R,two", "", "R", "", "one two"},
    {"two languages", "-language=R,-language=S", "", "R", "", "-language=S"},
    {"a language without its sign", "-language R,rest", "", "", "", "-language R,rest"},
    {"another case", "-KovaHome=a,-LANGUAGE=R,", "", "", "", "-KovaHome=a,-LANGUAGE=R,"},

    {"a folder", "-temppath=/t rest", "", "", "/t", "rest"},
    {"a folder behind a blank", "-temppath /t rest", "", "", "/t", "rest"},
    {"an empty folder", "-temppath= rest", "", "", "", "rest"},
    {"a word that begins like the option", "-temppaths/t rest", "", "", "/t", "rest"},
    {"a folder at the end", "rest -temppath:/t", "", "", "/t", "rest "},
    {"a folder's name alone", "rest -temppath", "", "", "", "rest "},
    {"a folder's name and its sign alone", "rest -temppath=", "", "", "", "rest "},
    {"two folders", "-temppath=/a -temppath=/b c", "", "", "/a", "-temppath=/b c"},
    {"a folder before a comma", "-temppath=/t,rest x", "", "", "/t,rest", "x"},

    {"all", "-kovahome=/k,-language=R,-temppath=/t one two", "/k", "R", "/t", "one two"},
    {"a home that takes in the others", "-kovahome=/k -language=R,rest", "/k -language=R", "", "", "rest"},
};

TEST(StartOptions, AreCutOutOfTheText) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.label);
    const kova::StartOptions options = parseStartOptions(row.text);
    EXPECT_EQ(options.kovaHome, row.kovaHome);
    EXPECT_EQ(options.language, row.language);
    EXPECT_EQ(options.tempPath, row.tempPath);
    EXPECT_EQ(options.rest, row.rest);
  }
}

}  // namespace
