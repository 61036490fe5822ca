// Cells are read and changed one by one, and read as rectangles.
#include "engine/cell_handlers.h"

#include <cmath>
#include <limits>

#include "engine/dictionary_rules.h"
#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

constexpr int kLeast = std::numeric_limits<int>::min();
constexpr int kMost = std::numeric_limits<int>::max();

dataSet numberAt(const char* name, int row, int column, double value) { return {name, row, column, 0, value, ""}; }
dataSet textAt(const char* name, int row, int column, const std::string& text) {
  return {name, row, column, 1, 0.0, text};
}

std::string blanks(std::size_t count) { return std::string(count, ' '); }

class Cells : public RequestTest {
 protected:
  Cells() {
    main().cases.setNumber(0, 0, 1.5);
    main().cases.setNumber(1, 0, -5);
    main().cases.setText(0, 1, "Bremen");
    main().cases.setText(1, 1, "NA");
  }

  int commit(const std::vector<dataSet>& records) {
    CleXDSmb request;
    request.SetCommandAction(Command::CommitDataSet);
    request.SetStruct(records);
    CleXDSmb reply;
    dispatch(state_, request, reply);
    return reply.GetErrorCode();
  }
};

TEST_F(Cells, TellANumberAndWhetherItIsMissing) {
  struct Row {
    int row;
    double value;
    int isMissing;
  };
  for (const Row& row : {Row{0, 1.5, 0}, Row{1, -5, 1}, Row{2, kSystemMissing, 1}}) {
    const CleXDSmb reply = ask(Command::GetNCellValue, "main", row.row, 0);
    EXPECT_EQ(reply.GetErrorCode(), 0);
    EXPECT_EQ(reply.FirstDouble(), row.value);
    EXPECT_EQ(reply.FirstLong(), row.isMissing) << row.value;
  }
}

TEST_F(Cells, TellATextOfTheVariablesWidth) {
  const CleXDSmb town = ask(Command::GetCCellValue, "*", 0, 1);
  EXPECT_EQ(town.FirstString(), "Bremen" + blanks(6));
  EXPECT_EQ(town.FirstLong(), 0);
  const CleXDSmb missing = ask(Command::GetCCellValue, "main", 1, 1);
  EXPECT_EQ(missing.FirstString(), "NA" + blanks(10));
  EXPECT_EQ(missing.FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetCCellValue, "main", 2, 1).FirstLong(), 0) << "a blank text is one";
}

TEST_F(Cells, OthersAreNotToldOf) {
  for (const Command command : {Command::GetNCellValue, Command::GetCCellValue}) {
    const int column = command == Command::GetNCellValue ? 0 : 1;
    expectRefused(ErrorCode::kNoSuchDataSet, command, "nowhere", 0, column);
    expectRefused(ErrorCode::kTextNotUtf8, command, "\xFF", 0, column);
    for (const int row : {-1, 5, kLeast, kMost}) {
      expectRefused(ErrorCode::kCaseOutOfRange, command, "main", row, column);
    }
    for (const int other : {-1, 4, kLeast, kMost}) {
      expectRefused(ErrorCode::kIndexOutOfRange, command, "main", 0, other);
    }
  }
  expectRefused(ErrorCode::kCellIsText, Command::GetNCellValue, "main", 0, 1);
  expectRefused(ErrorCode::kCellIsNumber, Command::GetCCellValue, "main", 0, 0);
}

TEST_F(Cells, AreChangedTogether) {
  EXPECT_EQ(commit({numberAt("main", 4, 0, 2.5), textAt("MAIN", 4, 1, "Ulm"), textAt("Other", 0, 0, "xy"),
                    numberAt("*", 0, 0, kSystemMissing)}),
            0);
  EXPECT_EQ(main().cases.number(4, 0), 2.5);
  EXPECT_EQ(main().cases.text(4, 1), "Ulm" + blanks(9));
  EXPECT_EQ(other().cases.text(0, 0), "xy");
  EXPECT_EQ(main().cases.number(0, 0), kSystemMissing);
}

TEST_F(Cells, TheLastOfTwoChangesStays) {
  EXPECT_EQ(commit({numberAt("main", 0, 0, 1), numberAt("main", 0, 0, 2)}), 0);
  EXPECT_EQ(main().cases.number(0, 0), 2.0);
  EXPECT_EQ(commit({textAt("main", 0, 1, "Wilhelmshav"), textAt("main", 0, 1, "Ulm  ")}), 0);
  EXPECT_EQ(main().cases.text(0, 1), "Ulm" + blanks(9));
}

TEST_F(Cells, NoChangesAreNone) {
  const DataSet before = main();
  EXPECT_EQ(tell(Command::CommitDataSet), 0);
  EXPECT_TRUE(main() == before);
}

TEST_F(Cells, BlanksAtTheEndOfATextMayGoBeyondItsWidth) {
  EXPECT_EQ(commit({textAt("Other", 0, 0, "ab      ")}), 0);
  EXPECT_EQ(other().cases.text(0, 0), "ab");
}

TEST_F(Cells, OneBadChangeRefusesAll) {
  struct Row {
    ErrorCode code;
    dataSet record;
  };
  dataSet ofNoKind = numberAt("main", 0, 0, 1);
  ofNoKind.valueKind = 2;
  const Row rows[] = {{ErrorCode::kNoSuchDataSet, numberAt("", 0, 0, 1)},
                      {ErrorCode::kNoSuchDataSet, numberAt("nowhere", 0, 0, 1)},
                      {ErrorCode::kTextNotUtf8, numberAt("\xFF", 0, 0, 1)},
                      {ErrorCode::kCaseOutOfRange, numberAt("main", 5, 0, 1)},
                      {ErrorCode::kCaseOutOfRange, numberAt("main", -1, 0, 1)},
                      {ErrorCode::kIndexOutOfRange, numberAt("main", 0, 4, 1)},
                      {ErrorCode::kIndexOutOfRange, numberAt("main", 0, kLeast, 1)},
                      {ErrorCode::kCellKindUnknown, ofNoKind},
                      {ErrorCode::kCellIsText, numberAt("main", 0, 1, 1)},
                      {ErrorCode::kCellIsNumber, textAt("main", 0, 0, "1")},
                      {ErrorCode::kNumberNotValid, numberAt("main", 0, 0, std::nan(""))},
                      {ErrorCode::kNumberNotValid, numberAt("main", 0, 0, -HUGE_VAL)},
                      {ErrorCode::kValueTooLong, textAt("main", 0, 1, "Wilhelmshaven")},
                      {ErrorCode::kTextNotUtf8, textAt("main", 0, 1, "\xC3")},
                      {ErrorCode::kTextWithNul, textAt("main", 0, 1, std::string("a\0b", 3))}};
  for (const Row& row : rows) {
    const dataSet good = numberAt("main", 4, 0, 7);
    expectRefused(row.code, Command::CommitDataSet, good, row.record, good);
  }
}

TEST_F(Cells, ComeAsARectangle) {
  const CleXDSmb reply = ask(Command::FetchDatastep, "main", 1, 2);
  EXPECT_EQ(reply.GetErrorCode(), 0);
  EXPECT_THAT(reply.Longs().GetData(), ElementsAre(1, 2, 4));
  ASSERT_EQ(reply.LongArrays().size(), 1U);
  ASSERT_EQ(reply.DoubleArrays().size(), 1U);
  ASSERT_EQ(reply.StringArrays().size(), 1U);
  EXPECT_THAT(reply.LongArrays()[0].GetData(), ElementsAre(1, 1, 1, 1, 1, 0, 1, 1));
  EXPECT_THAT(reply.DoubleArrays()[0].GetData(), ElementsAre(-5, 0.0, kSystemMissing, kSystemMissing, kSystemMissing,
                                                             0.0, kSystemMissing, kSystemMissing));
  EXPECT_THAT(reply.StringArrays()[0].GetData(), ElementsAre("", "NA" + blanks(10), "", "", "", blanks(12), "", ""));
}

TEST_F(Cells, ARectangleEndsWithTheLastCase) {
  EXPECT_THAT(ask(Command::FetchDatastep, "main", 3, 1000).Longs().GetData(), ElementsAre(3, 2, 4));
  EXPECT_THAT(ask(Command::FetchDatastep, "main", 0, kMost).Longs().GetData(), ElementsAre(0, 5, 4));
  const CleXDSmb behind = ask(Command::FetchDatastep, "main", 5, 10);
  EXPECT_THAT(behind.Longs().GetData(), ElementsAre(5, 0, 4));
  ASSERT_EQ(behind.LongArrays().size(), 1U);
  EXPECT_EQ(behind.LongArrays()[0].Size(), 0);
  EXPECT_THAT(ask(Command::FetchDatastep, "main", 2, 0).Longs().GetData(), ElementsAre(2, 0, 4));
}

TEST_F(Cells, WithoutVariablesARectangleIsEmpty) {
  EXPECT_EQ(tell(Command::CreateDataset, "empty", 0, 0), 0);
  EXPECT_THAT(ask(Command::FetchDatastep, "empty", 0, 10).Longs().GetData(), ElementsAre(0, 0, 0));
}

TEST_F(Cells, OtherRectanglesAreRefused) {
  expectRefused(ErrorCode::kNoSuchDataSet, Command::FetchDatastep, "nowhere", 0, 1);
  for (const int first : {-1, 6, kLeast, kMost}) {
    expectRefused(ErrorCode::kCaseOutOfRange, Command::FetchDatastep, "main", first, 1);
  }
  expectRefused(ErrorCode::kCaseOutOfRange, Command::FetchDatastep, "main", 0, -1);
}

TEST_F(Cells, StringsOfAllWidthsComeWhole) {
  for (const int width : {1, 8, 9, 32767}) {
    EXPECT_EQ(tell(Command::SetVarTypeInDS, "Other", 0, width), 0);
    const std::string text(static_cast<std::size_t>(width), 'w');
    EXPECT_EQ(commit({textAt("Other", 0, 0, text)}), 0);
    EXPECT_EQ(ask(Command::GetCCellValue, "Other", 0, 0).FirstString(), text);
    EXPECT_EQ(ask(Command::FetchDatastep, "Other", 0, 1).StringArrays()[0][0], text);
    expectRefused(ErrorCode::kValueTooLong, Command::CommitDataSet, textAt("Other", 0, 0, text + "w"));
  }
}

// A row takes 32,767 bytes and 16 around them: 2,047 of these are less than 64 MiB.
TEST_F(Cells, AReplyHasAtMost64MiB) {
  EXPECT_EQ(tell(Command::SetVarTypeInDS, "Other", 0, 32767), 0);
  while (other().cases.caseCount() < 3000) other().cases.appendCase();
  CleXDSmb reply = ask(Command::FetchDatastep, "Other", 0, 3000);
  EXPECT_THAT(reply.Longs().GetData(), ElementsAre(0, 2047, 1));
  ASSERT_EQ(reply.ContructSendData(), 0);
  int length = 0;
  reply.GetSendBuf(length);
  EXPECT_LE(length, 64 << 20);
  EXPECT_GT(length, 63 << 20);
  EXPECT_THAT(ask(Command::FetchDatastep, "Other", 2047, 3000).Longs().GetData(), ElementsAre(2047, 953, 1));
}

TEST_F(Cells, ARowOfMoreThan64MiBIsRefused) {
  EXPECT_EQ(tell(Command::StartDataStep), 0);
  std::vector<NewVariable> wide;
  for (int i = 0; i < 2048; ++i) wide.push_back({"w" + std::to_string(i), 32767});
  ASSERT_EQ(insertVariables(&other(), 1, wide), ErrorCode::kNone);
  expectRefused(ErrorCode::kRowTooLarge, Command::FetchDatastep, "Other", 0, 1);
  EXPECT_EQ(tell(Command::FetchDatastep, "Other", 0, 0), 0);
  EXPECT_EQ(tell(Command::GetCCellValue, "Other", 0, 2048), 0);
}

TEST_F(Cells, AreChangedWhileACaseCursorReads) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  EXPECT_EQ(commit({numberAt("main", 0, 0, 3)}), 0);
  EXPECT_EQ(tell(Command::FetchDatastep, "main", 0, 1), 0);
}

}  // namespace
}  // namespace kova::engine
