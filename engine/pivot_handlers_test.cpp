// Pivot tables built by requests: what a client says, and what the table is then.
#include "engine/pivot_handlers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "engine/output_client.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

const TableKey kTable{"Outline", "Title", "subtype", false};
const DimensionKey kRow{"Species", 0, 1, false, false};
const DimensionKey kColumn{"Statistics", 1, 1, true, false};

class Pivot : public testing::Test {
 protected:
  Pivot() {
    client_.openData();
    client_.start("P");
  }

  // The tables that the procedure has put out, once it has ended.
  const PivotTable& finished(std::size_t position = 0) {
    if (client_.state.output.log.hasProcedure()) client_.end();
    return std::get<PivotTable>(client_.state.output.log.sections().back().items.at(position).content);
  }

  int tell(Command command, const OutputItems& more = {}) { return client_.ask(command, kTable, more); }
  int tell(Command command, const DimensionKey& key, const OutputItems& more = {}) {
    return client_.ask(command, kTable, key, more);
  }

  OutputClient client_;
};

TEST_F(Pivot, CategoriesAndCells) {
  auto table = client_.table(kTable);
  table.dimension(kRow).dimension(kColumn);
  for (const char* species : {"Adelie", "Gentoo"}) {
    table.category(kRow, species)
        .category(kColumn, "n")
        .number(kColumn, 1)
        .category(kColumn, "mean")
        .number(kColumn, 2);
  }
  table.category(kRow, "Adelie").category(kColumn, "mean").number(kColumn, 3);
  EXPECT_EQ(table.code(), 0);
  const PivotTable& built = finished();
  ASSERT_EQ(built.dimensions().size(), 2U);
  EXPECT_EQ(built.dimensions()[0].categories.size(), 2U);
  EXPECT_EQ(built.dimensions()[1].categories.size(), 2U);
  ASSERT_EQ(built.cells().size(), 4U) << "a cell that is set again is the same cell";
  EXPECT_EQ(built.cells()[1].value.shown, "3.000");
  EXPECT_THAT(built.cells()[1].at, ElementsAre(0U, 1U));
  EXPECT_THAT(built.cells()[2].at, ElementsAre(1U, 0U));
}

// Each way to name a category or to fill a cell, and what it shows.
TEST_F(Pivot, EveryKindOfValue) {
  struct Row {
    Command category;
    Command cell;
    OutputItems more;
    const char* categoryShows;
    const char* cellShows;
    const char* kind;
  };
  const Row rows[] = {
      {Command::AddNumberCategory, Command::SetNumberCell, items(2.5), "2.5", "2.500", "number"},
      {Command::AddStringCategory, Command::SetStringCell, items("text"), "text", "text", "text"},
      {Command::AddVarNameCategory, Command::SetVarNameCell, items(0), "Sex of the penguin", "Sex of the penguin",
       "variable"},
      {Command::AddVarNameCategory, Command::SetVarNameCell, items(1), "body_mass", "body_mass", "variable"},
      {Command::AddVarValueDoubleCategory, Command::SetVarValueDoubleCell, items(0, 2.0), "Male", "Male", "value"},
      {Command::AddVarValueDoubleCategory, Command::SetVarValueDoubleCell, items(0, 7.0), "7", "7", "value"},
      {Command::AddVarValueDoubleCategory, Command::SetVarValueDoubleCell, items(3, 0.0), "1970-01-01", "1970-01-01",
       "value"},
      {Command::AddVarValueStringCategory, Command::SetVarValueStringCell, items(2, "BIS  "), "Biscoe", "Biscoe",
       "value"},
      {Command::AddVarValueStringCategory, Command::SetVarValueStringCell, items(2, "Dream"), "Dream", "Dream",
       "value"},
      {Command::AddStringCategory, Command::SetDateCell, items("1 May"), "1 May", "1 May", "date"},
  };
  auto table = client_.table(kTable);
  table.dimension(kRow).dimension(kColumn).category(kColumn, "v");
  for (const Row& row : rows) table.tell(row.category, kRow, row.more).tell(row.cell, kColumn, row.more);
  EXPECT_EQ(table.code(), 0);
  const PivotTable& built = finished();
  ASSERT_EQ(built.cells().size(), std::size(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(built.dimensions()[0].categories.at(i).value.shown, rows[i].categoryShows) << i;
    EXPECT_EQ(built.cells().at(i).value.shown, rows[i].cellShows) << i;
    EXPECT_STREQ(kindName(built.cells()[i].value.kind), rows[i].kind) << i;
  }
}

TEST_F(Pivot, EqualCategoriesAreOne) {
  auto table = client_.table(kTable);
  table.dimension(kRow);
  table.category(kRow, "1").category(kRow, "1");
  table.tell(Command::AddNumberCategory, kRow, items(1.0));
  table.tell(Command::AddNumberCategory, kRow, items(0.0)).tell(Command::AddNumberCategory, kRow, items(-0.0));
  table.tell(Command::AddVarValueDoubleCategory, kRow, items(0, 1.0));
  table.tell(Command::AddVarValueDoubleCategory, kRow, items(1, 1.0));
  table.tell(Command::AddVarValueStringCategory, kRow, items(2, "1"));
  table.tell(Command::AddVarValueStringCategory, kRow, items(2, "1 "));
  EXPECT_EQ(table.code(), 0);
  EXPECT_EQ(finished().dimensions()[0].categories.size(), 6U) << "other kinds are other categories";
}

TEST_F(Pivot, DimensionsStandInTheOrderOfTheirPositions) {
  auto table = client_.table(kTable);
  table.dimension({"third", 0, 7, false, false}).dimension({"first", 0, 0, false, false});
  table.dimension({"column", 1, 0, false, false}).dimension({"second", 0, 7, true, false});
  const PivotTable& built = finished();
  EXPECT_THAT(built.dimensionsAt(Place::kRow), ElementsAre(1U, 0U, 3U)) << "equal positions: as they were added";
  EXPECT_THAT(built.dimensionsAt(Place::kColumn), ElementsAre(2U));
  EXPECT_TRUE(built.dimensionsAt(Place::kLayer).empty());
}

TEST_F(Pivot, FootnotesOfEveryKind) {
  auto table = client_.table(kTable);
  table.dimension(kRow).dimension(kColumn);
  table.category(kRow, "a").category(kColumn, "b").number(kColumn, 1);
  table.tell(Command::AddOutlineFootnotes, items("outline")).tell(Command::AddTitleFootnotes, items("title"));
  table.tell(Command::PivotTableCaption, items("Caption"));
  table.tell(Command::AddCaptionFootnotes, items("Caption", "caption"));
  table.tell(Command::AddDimFootnotes, kRow, items("dimension"));
  table.tell(Command::AddCategoryFootnotes, kColumn, items("category"));
  table.tell(Command::AddCellFootnotes, kColumn, items("cell")).tell(Command::AddCellFootnotes, kRow, items("more"));
  EXPECT_EQ(table.code(), 0);
  const PivotTable& built = finished();
  EXPECT_THAT(built.outlineNotes, ElementsAre("outline"));
  EXPECT_THAT(built.titleNotes, ElementsAre("title"));
  EXPECT_THAT(built.captionNotes, ElementsAre("caption"));
  EXPECT_THAT(built.dimensions()[0].notes, ElementsAre("dimension"));
  EXPECT_THAT(built.dimensions()[1].categories[0].notes, ElementsAre("category"));
  EXPECT_THAT(built.cells()[0].notes, ElementsAre("cell", "more"));
}

TEST_F(Pivot, TitleCaptionAndWidths) {
  auto table = client_.table(kTable);
  table.tell(Command::HidePivotTableTitle).tell(Command::PivotTableCaption, items("first"));
  table.tell(Command::PivotTableCaption, items("second"));
  table.tell(Command::MinDataColumnWidth, items(5)).tell(Command::MaxDataColumnWidth, items(12));
  EXPECT_EQ(table.code(), 0);
  EXPECT_EQ(tell(Command::AddCaptionFootnotes, items("first", "note")), 98111);
  EXPECT_EQ(tell(Command::MinDataColumnWidth, items(13)), 98112);
  EXPECT_EQ(tell(Command::MinDataColumnWidth, items(0)), 98112);
  EXPECT_EQ(tell(Command::MaxDataColumnWidth, items(4)), 98112);
  EXPECT_EQ(tell(Command::MaxDataColumnWidth, items(1001)), 98112);
  const PivotTable& built = finished();
  EXPECT_TRUE(built.titleHidden);
  EXPECT_EQ(built.caption, "second");
  EXPECT_EQ(built.leastColumnWidth(), 5);
  EXPECT_EQ(built.mostColumnWidth(), 12);
}

TEST_F(Pivot, ACaptionNoteBringsItsCaption) {
  client_.table(kTable).tell(Command::AddCaptionFootnotes, items("Caption", "note"));
  EXPECT_EQ(finished().caption, "Caption");
}

TEST_F(Pivot, AnEmptyCaptionHasNoNotes) {
  client_.table(kTable);
  EXPECT_EQ(tell(Command::AddCaptionFootnotes, items("", "note")), 98111);
  EXPECT_TRUE(finished().captionNotes.empty());
}

TEST_F(Pivot, TablesAreToldApartByTheWholeKey) {
  EXPECT_EQ(client_.table(kTable).code(), 0);
  EXPECT_EQ(client_.table(kTable).code(), 98104);
  for (const TableKey& other :
       {TableKey{"Outlin", "eTitle", "subtype", false}, TableKey{"Outline", "Titl", "esubtype", false},
        TableKey{"Outline", "Title", "", false}, TableKey{"Outline", "Title", "subtype", true}}) {
    EXPECT_EQ(client_.ask(Command::HidePivotTableTitle, other), 98105);
    EXPECT_EQ(client_.table(other).code(), 0);
  }
}

constexpr Command kTableCommands[] = {
    Command::HidePivotTableTitle, Command::PivotTableCaption,  Command::AddOutlineFootnotes, Command::AddTitleFootnotes,
    Command::AddCaptionFootnotes, Command::MinDataColumnWidth, Command::MaxDataColumnWidth,
};

constexpr Command kDimensionCommands[] = {
    Command::AddDimFootnotes,
    Command::AddCategoryFootnotes,
    Command::AddCellFootnotes,
    Command::AddNumberCategory,
    Command::AddStringCategory,
    Command::AddVarNameCategory,
    Command::AddVarValueDoubleCategory,
    Command::AddVarValueStringCategory,
    Command::SetNumberCell,
    Command::SetStringCell,
    Command::SetVarNameCell,
    Command::SetVarValueDoubleCell,
    Command::SetVarValueStringCell,
    Command::SetDateCell,
};

// Items enough for any of these commands.
OutputItems enough() { return items("more", "more", 1, 1.0); }

TEST_F(Pivot, EveryCommandNeedsItsTable) {
  for (const Command command : kTableCommands) EXPECT_EQ(tell(command, enough()), 98105) << static_cast<int>(command);
  for (const Command command : kDimensionCommands) {
    EXPECT_EQ(tell(command, kRow, enough()), 98105) << static_cast<int>(command);
  }
  EXPECT_EQ(tell(Command::AddDimension, kRow), 98105);
  client_.end();
  for (const Command command : kTableCommands) EXPECT_EQ(tell(command, enough()), 98101) << static_cast<int>(command);
  EXPECT_EQ(client_.table(kTable).code(), 98101);
}

TEST_F(Pivot, EveryCommandNeedsItsDimension) {
  auto table = client_.table(kTable);
  table.dimension(kRow);
  const DimensionKey others[] = {{"Specie", 0, 1, false, false},
                                 {"Species", 1, 1, false, false},
                                 {"Species", 0, 2, false, false},
                                 {"Species", 0, 1, true, false},
                                 {"Species", 0, 1, false, true}};
  for (const DimensionKey& other : others) {
    for (const Command command : kDimensionCommands) {
      EXPECT_EQ(tell(command, other, enough()), 98107) << static_cast<int>(command);
    }
  }
  EXPECT_EQ(tell(Command::AddDimension, kRow), 98106);
}

TEST_F(Pivot, DimensionsHaveAPlace) {
  client_.table(kTable);
  EXPECT_EQ(tell(Command::AddDimension, {"x", 3, 1, false, false}), 98112);
  EXPECT_EQ(tell(Command::AddDimension, {"x", -1, 1, false, false}), 98112);
  EXPECT_EQ(tell(Command::AddDimension, {"x", 0, -1, false, false}), 98112);
  EXPECT_TRUE(finished().dimensions().empty());
}

TEST_F(Pivot, CellsNeedACategoryOfEachDimension) {
  auto table = client_.table(kTable);
  table.dimension(kRow).dimension(kColumn).category(kRow, "a");
  EXPECT_EQ(tell(Command::SetNumberCell, kRow, items(1.0)), 98109);
  EXPECT_EQ(tell(Command::AddCellFootnotes, kRow, items("note")), 98109);
  EXPECT_EQ(tell(Command::AddCategoryFootnotes, kColumn, items("note")), 98109);
  table.category(kColumn, "b");
  EXPECT_EQ(tell(Command::AddCellFootnotes, kRow, items("note")), 98110);
  EXPECT_EQ(tell(Command::SetNumberCell, kRow, items(1.0)), 0);
  EXPECT_EQ(tell(Command::AddCellFootnotes, kRow, items("note")), 0);
  EXPECT_EQ(tell(Command::AddDimension, {"late", 0, 9, false, false}), 98108);
}

TEST_F(Pivot, VariablesMustExistAndFit) {
  auto table = client_.table(kTable);
  table.dimension(kRow).category(kRow, "a");
  const auto codes = [this](int variable) {
    std::vector<int> all;
    for (const Command command :
         {Command::AddVarNameCategory, Command::SetVarNameCell, Command::AddVarValueDoubleCategory,
          Command::SetVarValueDoubleCell, Command::AddVarValueStringCategory, Command::SetVarValueStringCell}) {
      all.push_back(tell(command, kRow, items(variable, 1.0, "x")));
    }
    return all;
  };
  EXPECT_THAT(codes(4), testing::Each(10));
  EXPECT_THAT(codes(-1), testing::Each(10));
  EXPECT_THAT(codes(0), ElementsAre(0, 0, 0, 0, 24, 24));
  EXPECT_THAT(codes(2), ElementsAre(0, 0, 24, 24, 0, 0));
  client_.state.active = nullptr;
  EXPECT_THAT(codes(0), testing::Each(98004));
}

TEST_F(Pivot, ARefusedRequestChangesNothing) {
  auto table = client_.table(kTable);
  table.dimension(kRow).category(kRow, "a").number(kRow, 1);
  tell(Command::AddVarNameCategory, kRow, items(9));
  tell(Command::AddStringCategory, kRow, items("\xFF"));
  tell(Command::SetStringCell, kRow, items(std::string("x\0", 2)));
  tell(Command::SetVarNameCell, kRow, items(9));
  const PivotTable& built = finished();
  EXPECT_EQ(built.dimensions()[0].categories.size(), 1U);
  EXPECT_EQ(built.dimensions()[0].current, 0U);
  EXPECT_EQ(built.cells()[0].value.shown, "1.000");
}

TEST_F(Pivot, TextsMustBeUtf8WithoutNul) {
  client_.table(kTable).dimension(kRow);
  for (const Command command : kTableCommands) {
    EXPECT_EQ(tell(command, items("\xE2\x82", "x", 1)), 98012);
    EXPECT_EQ(tell(command, items(std::string("\0", 1), "x", 1)), 98013);
  }
  for (const Command command : kDimensionCommands) EXPECT_EQ(tell(command, kRow, items("\x80", 0, 1.0)), 98012);
  EXPECT_EQ(client_.ask(Command::StartPivotTable, TableKey{"\xFF", "", "", false}), 98012);
  EXPECT_EQ(tell(Command::AddDimension, {"\xFF", 0, 1, false, false}), 98012);
}

TEST_F(Pivot, RequestsThatLackItemsAreRefused) {
  client_.table(kTable).dimension(kRow).category(kRow, "a");
  for (const Command command : kDimensionCommands) {
    EXPECT_EQ(client_.ask(command, kTable), 98003) << static_cast<int>(command);
    EXPECT_EQ(tell(command, kRow), 98003) << static_cast<int>(command);
  }
  EXPECT_EQ(client_.ask(Command::StartPivotTable, items("o", "t", 0)), 98003);
}

// A search through all categories, or through all cells, for each request would take minutes.
TEST_F(Pivot, TenThousandCategoriesAreQuick) {
  constexpr int kMany = 10000;
  const auto start = std::chrono::steady_clock::now();
  auto table = client_.table(kTable);
  table.dimension(kRow).dimension(kColumn).category(kColumn, "n");
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < kMany; ++i) table.category(kRow, "category " + std::to_string(i)).number(kColumn, i);
  }
  EXPECT_EQ(table.code(), 0);
  EXPECT_EQ(finished().cells().size(), std::size_t{kMany});
  const auto taken = std::chrono::steady_clock::now() - start;
  EXPECT_LT(taken, std::chrono::seconds(20));
}

}  // namespace
}  // namespace kova::engine
