// Output as text: small documents, line by line.
#include "engine/report_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/output_client.h"
#include "engine/report_notes.h"
#include "engine/report_text_table.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const DimensionKey kSpecies{"Species", 0, 1, false, false};
const DimensionKey kIsland{"Island", 0, 2, false, false};
const DimensionKey kSex{"Sex", 1, 1, false, false};
const DimensionKey kStatistic{"Statistics", 1, 2, true, false};

class Report : public testing::Test {
 protected:
  Report() {
    client_.openData();
    client_.start("P");
  }

  // What the procedure shows, without its heading.
  std::string shown(std::size_t width = 80) {
    client_.end();
    const std::string text = sectionText(client_.state.output.log.sections().back(), width);
    const std::string heading = "P\n=\n\n";
    EXPECT_EQ(text.substr(0, heading.size()), heading);
    return text.substr(heading.size());
  }

  OutputClient client_;
};

TEST_F(Report, NestedRowsAndColumns) {
  auto table = client_.table({"", "Body mass", "s", false});
  for (const DimensionKey& key : {kSpecies, kIsland, kSex, kStatistic}) table.dimension(key);
  int count = 21;
  for (const auto& [species, island] : {std::pair{"Adelie", "Biscoe"}, {"Adelie", "Dream"}, {"Gentoo", "Biscoe"}}) {
    table.category(kSpecies, species).category(kIsland, island);
    for (const double sex : {1.0, 2.0}) {
      table.tell(Command::AddVarValueDoubleCategory, kSex, items(0, sex));
      client_.ask(Command::SetFormatSpecCount);
      table.category(kStatistic, "Count").number(kStatistic, ++count);
      client_.ask(Command::SetFormatSpecMean, items(1));
      table.category(kStatistic, "Mean").number(kStatistic, 3000.0 + 17.5 * count);
    }
  }
  EXPECT_EQ(shown(), R"(Body mass

                                Sex
                 ----------------------------------
                      Female             Male
                 ----------------  ----------------
Species  Island  Count       Mean  Count       Mean
-------  ------  -----  ---------  -----  ---------
Adelie   Biscoe     22  3,385.000     23  3,402.500
         Dream      24  3,420.000     25  3,437.500
Gentoo   Biscoe     26  3,455.000     27  3,472.500

)");
}

TEST_F(Report, FootnotesOfEveryKind) {
  client_.ask(Command::AddProcFootnotes, items("About the procedure."));
  const DimensionKey layer{"Year", 2, 1, false, false};
  auto table = client_.table({"Outline", "Title", "s", false});
  table.dimension(kSpecies).dimension(kStatistic).dimension(layer);
  table.tell(Command::AddDimFootnotes, layer, items("About years."));
  table.category(layer, "2007").category(kSpecies, "Adelie").category(kStatistic, "Mean").number(kStatistic, 1.5);
  table.tell(Command::AddCategoryFootnotes, kStatistic, items("About means."));
  table.category(kSpecies, "Gentoo").number(kStatistic, 12.25);
  table.tell(Command::AddCellFootnotes, kStatistic, items("About this cell."));
  table.tell(Command::AddCellFootnotes, kStatistic, items("About means."));
  table.tell(Command::AddDimFootnotes, kSpecies, items("About species."));
  table.tell(Command::PivotTableCaption, items("Caption"));
  table.tell(Command::AddCaptionFootnotes, items("Caption", "About the caption."));
  table.tell(Command::AddTitleFootnotes, items("About the title."));
  table.tell(Command::AddOutlineFootnotes, items("About the outline."));
  EXPECT_EQ(table.code(), 0);
  client_.end();
  EXPECT_EQ(sectionText(client_.state.output.log.sections().back(), 80), R"(P[a]
====

a. About the procedure.

Outline[a]
----------

Title[b]

Year[c]: 2007
Species[e]  Mean[d]
----------  ------------
Adelie        1.500
Gentoo       12.250[d,f]

Caption[g]
a. About the outline.
b. About the title.
c. About years.
d. About means.
e. About species.
f. About this cell.
g. About the caption.

)");
}

TEST_F(Report, NotesOfAnOutlineThatIsNotShownStandAtTheTitle) {
  for (const char* subtype : {"a", "b"}) {
    auto table = client_.table({"Same", "Title", subtype, false});
    table.dimension(kSpecies).category(kSpecies, "x").number(kSpecies, 1);
    table.tell(Command::AddOutlineFootnotes, items("note"));
  }
  EXPECT_THAT(shown(), testing::StartsWith("Same[a]\n-------\n\nTitle\n\n"));
  EXPECT_THAT(sectionText(client_.state.output.log.sections().back(), 80), HasSubstr("a. note\n\nTitle[a]\n\n"));
}

TEST_F(Report, WideAndCombiningCharactersAlign) {
  auto table = client_.table({"", "", "s", false});
  table.dimension(kSpecies).dimension(kStatistic);
  for (const char* name : {"\u6771\u4EAC", "Zoe\u0308", "plain"}) {
    table.category(kSpecies, name).category(kStatistic, "\u5E73\u5747").number(kStatistic, 1);
    table.category(kStatistic, "Note").text(kStatistic, "\U0001F427 x");
  }
  EXPECT_EQ(shown(),
            "Species   \u5E73\u5747  Note\n"
            "-------  -----  ----\n"
            "\u6771\u4EAC     1.000  \U0001F427 x\n"
            "Zoe\u0308      1.000  \U0001F427 x\n"
            "plain    1.000  \U0001F427 x\n\n");
}

TEST_F(Report, WideTablesContinueBelow) {
  auto table = client_.table({"", "T", "s", false});
  table.dimension(kSpecies).dimension(kStatistic).category(kSpecies, "Adelie");
  client_.ask(Command::SetFormatSpecCount);
  for (int i = 1; i <= 5; ++i) table.category(kStatistic, "Column " + std::to_string(i)).number(kStatistic, 1000 * i);
  EXPECT_EQ(shown(40), R"(T

Species  Column 1  Column 2  Column 3
-------  --------  --------  --------
Adelie       1000      2000      3000

Species  Column 4  Column 5
-------  --------  --------
Adelie       4000      5000

)");
}

TEST_F(Report, LinesKeepWithinTheWidth) {
  auto table = client_.table({"", "A title that is longer than a line may be", "s", false});
  table.dimension(kSpecies).dimension(kIsland).dimension(kStatistic);
  table.category(kSpecies, "A species with a long name").category(kIsland, "Torgersen-without-any-blank");
  table.category(kStatistic, "A heading of many words").text(kStatistic, "A text of many words that goes on and on");
  table.tell(Command::AddTitleFootnotes, items("A footnote that is longer than a line may be, too"));
  client_.ask(Command::AddTextBlock, items("", "", "A block of text that is longer than a line may be", 0));
  for (const std::size_t width : {20U, 30U, 50U}) {
    if (client_.state.output.log.hasProcedure()) client_.end();
    const std::string text = sectionText(client_.state.output.log.sections().back(), width);
    for (std::size_t at = 0; at < text.size(); at = text.find('\n', at) + 1) {
      EXPECT_LE(text.find('\n', at) - at, width) << text;
    }
  }
}

TEST_F(Report, ColumnWidthLimits) {
  auto table = client_.table({"", "", "s", false});
  table.dimension(kSpecies).dimension(kStatistic).category(kSpecies, "x");
  table.tell(Command::MinDataColumnWidth, items(6)).tell(Command::MaxDataColumnWidth, items(8));
  table.category(kStatistic, "a").text(kStatistic, "b").category(kStatistic, "c").text(kStatistic, "one two three");
  table.category(kStatistic, "d").number(kStatistic, 123456.789);
  EXPECT_EQ(shown(), R"(Species  a       c                  d
-------  ------  --------  ----------
x        b       one two   123456.789
                 three

)") << "numbers are never broken";
}

TEST_F(Report, HiddenNamesAndLabels) {
  auto table = client_.table({"", "Hidden title", "s", false});
  const DimensionKey rows{"Only the name", 0, 1, false, true};
  const DimensionKey columns{"Only the labels", 1, 1, true, false};
  const DimensionKey nothing{"Nothing", 1, 2, true, true};
  table.tell(Command::HidePivotTableTitle).dimension(rows).dimension(columns).dimension(nothing);
  table.category(rows, "r").category(columns, "c").category(nothing, "n").number(columns, 1);
  EXPECT_EQ(shown(), R"(                   c
-------------  -----
Only the name  1.000

)");
}

TEST_F(Report, ColumnsAlone) {
  auto table = client_.table({"", "", "s", false});
  table.dimension(kStatistic).category(kStatistic, "a").number(kStatistic, 1);
  table.category(kStatistic, "b").number(kStatistic, 2);
  EXPECT_EQ(shown(), "    a      b\n-----  -----\n1.000  2.000\n\n");
}

TEST_F(Report, NoHeadingsAtAll) {
  const DimensionKey hidden{"x", 0, 1, true, true};
  client_.table({"", "", "s", false}).dimension(hidden).category(hidden, "a").text(hidden, "alone");
  EXPECT_EQ(shown(), "alone\n\n");
}

TEST_F(Report, EmptyTablesAndEmptyCells) {
  client_.table({"", "Empty", "s", false}).dimension(kSpecies).category(kSpecies, "x");
  auto table = client_.table({"", "Gaps", "s", false});
  table.dimension(kSpecies).dimension(kStatistic);
  table.category(kSpecies, "a").category(kStatistic, "1").text(kStatistic, "x");
  table.category(kSpecies, "b").category(kStatistic, "2").text(kStatistic, "");
  EXPECT_EQ(shown(), "Empty\n\n(no cells)\n\nGaps\n\nSpecies  1  2\n-------  -  -\na        x\nb\n\n");
}

TEST_F(Report, TextBlocksGraphicsAndSplitGroups) {
  const auto addTable = [this](const char* value) {
    client_.table({"", "T", "s", true}).dimension(kSpecies).category(kSpecies, "x").text(kSpecies, value);
  };
  client_.ask(Command::AddTextBlock, items("Remarks", "Title", "first\nsecond", 0));
  addTable("one");
  client_.ask(Command::SplitChange, items("P"));
  addTable("two");
  client_.ask(Command::PostKovaOutput, items("posted \x1B[31mred\n\ttab\n"));
  EXPECT_EQ(shown(), R"(Split group 1

Remarks
-------

Title
first
second

T

Species
-------  ---
x        one

Split group 2

T

Species
-------  ---
x        two

)"
                     "posted \uFFFD[31mred\n tab\n\n")
      << "what a terminal would obey is not passed on";
}

TEST_F(Report, LoosePostsAreThemselves) {
  client_.ask(Command::EndProcedure);
  client_.ask(Command::PostKovaOutput, items("one\ntwo"));
  EXPECT_EQ(sectionText(client_.state.output.log.sections().back(), 80), "one\ntwo\n\n");
}

TEST_F(Report, TablesThatAreTooLargeSaySo) {
  auto table = client_.table({"", "", "s", false});
  table.dimension(kSpecies).dimension(kStatistic);
  for (int i = 0; i < 1001; ++i) {
    table.category(kSpecies, std::to_string(i)).category(kStatistic, std::to_string(i)).number(kStatistic, i);
  }
  EXPECT_EQ(shown(),
            "A table of 1001 rows and 1001 columns, too large to be shown; the output\n"
            "document holds its cells.\n\n");
}

// Two layers that fit each for itself, but not both, and a third one that does.
TEST_F(Report, TheRoomOfATableIsForAllItsLayers) {
  const DimensionKey layer{"Year", 2, 1, false, false};
  auto table = client_.table({"", "", "s", false});
  table.dimension(layer).dimension(kSpecies).dimension(kStatistic);
  for (const auto& [year, count] : {std::pair{"2007", 800}, {"2008", 800}, {"2009", 1}}) {
    table.category(layer, year);
    for (int i = 0; i < count; ++i) {
      table.category(kSpecies, std::to_string(i)).category(kStatistic, std::to_string(i)).number(kStatistic, i);
    }
  }
  client_.end();
  const auto& item = client_.state.output.log.sections().back().items.front();
  const std::vector<TableLayout> layouts = layOut(std::get<PivotTable>(item.content));
  ASSERT_EQ(layouts.size(), 3U);
  EXPECT_FALSE(layouts[0].isTooLarge);
  EXPECT_TRUE(layouts[1].isTooLarge);
  EXPECT_FALSE(layouts[2].isTooLarge);
}

TEST_F(Report, FootnotesOfWhatIsHiddenAreListedWithoutAMark) {
  const DimensionKey unnamed{"Unnamed", 0, 1, true, false};
  const DimensionKey unlabelled{"Unlabelled", 1, 1, false, true};
  auto table = client_.table({"", "Hidden", "s", false});
  table.tell(Command::HidePivotTableTitle).tell(Command::AddTitleFootnotes, items("title"));
  table.tell(Command::PivotTableCaption, items("Caption"));
  table.tell(Command::AddCaptionFootnotes, items("Caption", "note"));
  table.tell(Command::PivotTableCaption, items(""));
  table.dimension(unnamed).tell(Command::AddDimFootnotes, unnamed, items("name"));
  table.dimension(unlabelled).tell(Command::AddDimFootnotes, unlabelled, items("shown name"));
  table.category(unlabelled, "c").tell(Command::AddCategoryFootnotes, unlabelled, items("label"));
  table.category(unnamed, "without a cell").tell(Command::AddCategoryFootnotes, unnamed, items("category"));
  table.category(unnamed, "a").number(unnamed, 1).tell(Command::AddCellFootnotes, unnamed, items("cell"));
  EXPECT_EQ(table.code(), 0);
  EXPECT_EQ(shown(), R"(   Unlabelled[a]
-  ----------------
a          1.000[b]

a. shown name
b. cell
title
label
name
category
note

)");
}

TEST_F(Report, CharactersThatTurnTheDirectionAreReplaced) {
  client_.ask(Command::PostKovaOutput, items("a\u202Ab\u202Ec\u2066d\u2069e"));
  client_.ask(Command::PostKovaOutput, items("\u2029\u202F\u2065\u206A \u2013"));
  EXPECT_EQ(shown(), "a\uFFFDb\uFFFDc\uFFFDd\uFFFDe\n\n\u2029\u202F\u2065\u206A \u2013\n\n") << "their neighbours stay";
}

TEST(NoteMarks, RunOnBehindZ) {
  EXPECT_EQ(NoteMarks::markAt(0), "a");
  EXPECT_EQ(NoteMarks::markAt(25), "z");
  EXPECT_EQ(NoteMarks::markAt(26), "aa");
  EXPECT_EQ(NoteMarks::markAt(26 + 26 * 26 - 1), "zz");
  EXPECT_EQ(NoteMarks::markAt(26 + 26 * 26), "aaa");
}

TEST(NoteMarks, EqualTextsShareOne) {
  NoteMarks marks;
  marks.add({"one", "two"});
  marks.add({"two", "three"});
  EXPECT_THAT(marks.texts(), ElementsAre("one", "two", "three"));
  EXPECT_THAT(marks.marksOf({"three", "one"}), ElementsAre("a", "c"));
}

}  // namespace
}  // namespace kova::engine
