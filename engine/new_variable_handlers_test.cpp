#include "engine/new_variable_handlers.h"

#include <cstring>
#include <limits>

#include "engine/request_kit.h"

namespace kova::engine {
namespace {

// A raw block of cases.
struct Units {
  std::vector<double> values;
};
void addItem(CleXDSmb* request, const Units& units) {
  const int size = static_cast<int>(units.values.size() * sizeof(double));
  request->AllocVoidData(size);
  request->SaveDataIntoVoidData(units.values.data(), size);
}

struct Types {
  std::vector<int> values;
};
void addItem(CleXDSmb* request, const Types& types) {
  LongData list;
  for (const int type : types.values) list.SetValue(type);
  request->SetLongArray(list);
}

// A unit of eight blanks.
double blanks() {
  double unit = 0;
  std::memset(&unit, ' ', sizeof unit);
  return unit;
}

class NewVariables : public RequestTest {
 protected:
  NewVariables() { main().split.clear(); }
};

TEST_F(NewVariables, NeedACursorThatChanges) {
  expectRefused(ErrorCode::kNoCaseCursor, Command::AllocNewVarsBuffer, 1);
  expectRefused(ErrorCode::kNoCaseCursor, Command::SetOneVarNameAndType, "new", 0);
  expectRefused(ErrorCode::kNoCaseCursor, Command::SetVarNameAndType, 1, "new", 0);
  expectRefused(ErrorCode::kNoCaseCursor, Command::CommitHeader);
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  expectRefused(ErrorCode::kCursorReadOnly, Command::AllocNewVarsBuffer, 1);
  expectRefused(ErrorCode::kCursorReadOnly, Command::SetOneVarNameAndType, "new", 0);
  expectRefused(ErrorCode::kCursorReadOnly, Command::SetVarNameAndType, 1, "new", 0);
  expectRefused(ErrorCode::kCursorReadOnly, Command::CommitHeader);
}

TEST_F(NewVariables, AreMadeBehindTheOthersByTheHeader) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_EQ(tell(Command::AllocNewVarsBuffer, 3), 0);
  EXPECT_EQ(tell(Command::SetOneVarNameAndType, "number", 0), 0);
  EXPECT_EQ(tell(Command::SetVarNameAndType, 2, "text", "long_text", 8, 9), 0);
  EXPECT_EQ(main().variables.size(), 4U) << "nothing before the header";
  EXPECT_EQ(tell(Command::CommitHeader), 0);
  ASSERT_EQ(main().variables.size(), 7U);
  EXPECT_EQ(variable("number").width, 0);
  EXPECT_EQ(variable("text").width, 8);
  EXPECT_EQ(variable("text").format, (Format{FormatType::kA, 8, 0}));
  EXPECT_EQ(variable("text").alignment, Alignment::kLeft);
  EXPECT_EQ(variable("long_text").width, 9);
  EXPECT_EQ(main().cases.number(4, 4), kSystemMissing);
  EXPECT_EQ(main().cases.text(4, 6), "         ");
  EXPECT_EQ(tell(Command::CommitHeader), 0) << "nothing more was announced";
  EXPECT_EQ(main().variables.size(), 7U);
}

TEST_F(NewVariables, TakeValuesOfTheCurrentCase) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_EQ(tell(Command::SetOneVarNameAndType, "double_score", 0), 0);
  EXPECT_EQ(tell(Command::CommitHeader), 0);
  EXPECT_EQ(ask(Command::NextCaseBatch, 1, 40).FirstLong(), 1) << "a case is as long as when the pass began";
  EXPECT_EQ(tell(Command::CommitCaseRecord, 4.5, "double_score", Texts{}, Texts{}, 1, 40), 0);
  EXPECT_EQ(main().cases.number(0, 4), 4.5);
}

TEST_F(NewVariables, AreCheckedWhenTheyAreAnnounced) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  expectRefused(ErrorCode::kNewVariablesFull, Command::AllocNewVarsBuffer, -1);
  EXPECT_EQ(tell(Command::AllocNewVarsBuffer, 2), 0);
  expectRefused(ErrorCode::kNameEmpty, Command::SetOneVarNameAndType, "", 0);
  expectRefused(ErrorCode::kNameTaken, Command::SetOneVarNameAndType, "SCORE", 0);
  expectRefused(ErrorCode::kTypeOutOfRange, Command::SetOneVarNameAndType, "new", 32768);
  expectRefused(ErrorCode::kTypeOutOfRange, Command::SetOneVarNameAndType, "new", -1);
  expectRefused(ErrorCode::kNameTaken, Command::SetVarNameAndType, 2, "new", "NEW", 0, 0);
  expectRefused(ErrorCode::kMalformedRequest, Command::SetVarNameAndType, 2, "new", 0, 0);
  expectRefused(ErrorCode::kMalformedRequest, Command::SetVarNameAndType, 1, "new", "newer", 0, 0);
  expectRefused(ErrorCode::kMalformedRequest, Command::SetVarNameAndType, -1, "new", 0);
  expectRefused(ErrorCode::kNewVariablesFull, Command::SetVarNameAndType, 3, "a", "b", "c", 0, 0, 0);
  EXPECT_EQ(tell(Command::SetVarNameAndType, 2, "a", "b", 0, 32767), 0);
  expectRefused(ErrorCode::kNewVariablesFull, Command::SetOneVarNameAndType, "c", 0);
  EXPECT_EQ(tell(Command::AllocNewVarsBuffer, 1), 0) << "begins anew";
  EXPECT_EQ(tell(Command::SetOneVarNameAndType, "c", 0), 0);
  EXPECT_EQ(tell(Command::CommitHeader), 0);
  EXPECT_EQ(main().variables.size(), 5U);
}

TEST_F(NewVariables, AreFilledForManyCasesOneBlockBehindTheOther) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_EQ(tell(Command::SetVarNameAndType, 2, "a", "b", 0, 9), 0);
  EXPECT_EQ(tell(Command::CommitHeader), 0);
  const double x = blanks();
  EXPECT_EQ(tell(Command::CommitManyCases, "main", Units{{1, x, x, 2, x, x}}, 2, 2, Types{{0, 9}}), 0);
  expectRefused(ErrorCode::kTooManyCases, Command::CommitManyCases, "main", Units{{1, x, x, 1, x, x, 1, x, x, 1, x, x}},
                4, 2, Types{{0, 9}});
  EXPECT_EQ(tell(Command::CommitManyCases, "*", Units{{3, x, x, 4, x, x, 5, x, x}}, 3, 2, Types{{0, 9}}), 0);
  ASSERT_EQ(main().cases.caseCount(), 5U);
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(main().cases.number(i, 4), static_cast<double>(i) + 1);
  EXPECT_EQ(main().cases.text(4, 5), "         ");
}

TEST_F(NewVariables, AreFilledInSelectedCasesAlone) {
  main().filter = "one";
  main().cases.setNumber(1, 2, 1.0);
  main().cases.setNumber(4, 2, 1.0);
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_EQ(tell(Command::SetOneVarNameAndType, "a", 0), 0);
  EXPECT_EQ(tell(Command::CommitHeader), 0);
  expectRefused(ErrorCode::kTooManyCases, Command::CommitManyCases, "main", Units{{1, 2, 3}}, 3, 1, Types{{0}});
  EXPECT_EQ(tell(Command::CommitManyCases, "main", Units{{7, 8}}, 2, 1, Types{{0}}), 0);
  EXPECT_EQ(main().cases.number(0, 4), kSystemMissing);
  EXPECT_EQ(main().cases.number(1, 4), 7.0);
  EXPECT_EQ(main().cases.number(4, 4), 8.0);
}

TEST_F(NewVariables, OfAnotherPassAreLeftToIt) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  state_.conversation = 1;
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  state_.conversation = 0;
  EXPECT_EQ(tell(Command::SetOneVarNameAndType, "a", 0), 0);
  EXPECT_EQ(tell(Command::CommitHeader), 0);
  state_.conversation = 1;
  const double x = blanks();
  EXPECT_EQ(tell(Command::CommitManyCases, "main", Units{{9, x, x, 1, 2, 3}}, 1, 5, Types{{0, 12, 0, 0, 0}}), 0);
  EXPECT_EQ(main().cases.caseCount(), 6U) << "this pass has made none: the case is added";
  EXPECT_EQ(tell(Command::SetOneVarNameAndType, "b", 0), 0);
  EXPECT_EQ(tell(Command::CommitHeader), 0);
  EXPECT_EQ(tell(Command::CommitManyCases, "main", Units{{8}}, 1, 1, Types{{0}}), 0);
  EXPECT_EQ(main().cases.number(0, 5), 8.0);
  state_.conversation = 0;
  EXPECT_EQ(tell(Command::CommitManyCases, "main", Units{{7}}, 1, 1, Types{{0}}), 0);
  EXPECT_EQ(main().cases.number(0, 4), 7.0);
  EXPECT_EQ(tell(Command::SetOneVarNameAndType, "c", 0), 0);
  expectRefused(ErrorCode::kDataSetInUse, Command::CommitHeader);
}

TEST_F(NewVariables, MayBeMadeInSeveralHeaders) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  for (const char* const name : {"a", "b"}) {
    EXPECT_EQ(tell(Command::SetOneVarNameAndType, name, 0), 0);
    expectRefused(ErrorCode::kNameTaken, Command::SetOneVarNameAndType, name, 0);
    EXPECT_EQ(tell(Command::CommitHeader), 0);
  }
  EXPECT_EQ(tell(Command::CommitManyCases, "main", Units{{1, 2}}, 1, 2, Types{{0, 0}}), 0);
  EXPECT_EQ(main().cases.number(0, 5), 2.0);
}

TEST_F(NewVariables, ManyCasesNeedVariables) {
  EXPECT_EQ(tell(Command::CreateDataset, "bare", 0, 0), 0);
  expectRefused(ErrorCode::kNoVariables, Command::CommitManyCases, "bare", std::numeric_limits<int>::max(), 0, Types{});
}

TEST_F(NewVariables, ManyCasesAreAddedWithoutACursor) {
  const double x = blanks();
  EXPECT_EQ(tell(Command::CommitManyCases, "main", Units{{9, x, x, 1, 2, 8, x, x, 3, 4}}, 2, 4, Types{{0, 12, 0, 0}}),
            0);
  ASSERT_EQ(main().cases.caseCount(), 7U);
  EXPECT_EQ(main().cases.number(5, 0), 9.0);
  EXPECT_EQ(main().cases.number(6, 3), 4.0);
  EXPECT_EQ(tell(Command::CommitManyCases, "main", 0, 4, Types{{0, 12, 0, 0}}), 0) << "no cases";
  EXPECT_EQ(main().cases.caseCount(), 7U);
}

TEST_F(NewVariables, ManyCasesMustAgreeWithTheirCountsAndTypes) {
  const Units one{{1}};
  const Types number{{0}};
  const Types text{{2}};
  expectRefused(ErrorCode::kNoSuchDataSet, Command::CommitManyCases, "nowhere", one, 1, 1, text);
  expectRefused(ErrorCode::kCaseBlockDiffers, Command::CommitManyCases, "Other", one, 1, 1, number);
  expectRefused(ErrorCode::kCaseBlockDiffers, Command::CommitManyCases, "Other", one, 1, 2, text);
  expectRefused(ErrorCode::kCaseBlockDiffers, Command::CommitManyCases, "Other", one, 1, 1, Types{{2, 2}});
  expectRefused(ErrorCode::kCaseBlockDiffers, Command::CommitManyCases, "Other", one, 2, 1, text);
  expectRefused(ErrorCode::kCaseBlockDiffers, Command::CommitManyCases, "Other", Units{{1, 2}}, 1, 1, text);
  expectRefused(ErrorCode::kCaseBlockDiffers, Command::CommitManyCases, "Other", one, -1, 1, text);
  expectRefused(ErrorCode::kCaseBlockDiffers, Command::CommitManyCases, "Other", one, std::numeric_limits<int>::max(),
                1, text);
}

TEST_F(NewVariables, ManyCasesMustHoldValues) {
  const double x = blanks();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  double broken = x;
  std::memset(&broken, 0xff, 1);
  const Types types{{0, 12, 0, 0}};
  expectRefused(ErrorCode::kNumberNotValid, Command::CommitManyCases, "main", Units{{1, x, x, 1, 1, 1, x, x, 1, nan}},
                2, 4, types);
  expectRefused(ErrorCode::kTextNotUtf8, Command::CommitManyCases, "main", Units{{1, x, broken, 1, 1}}, 1, 4, types);
  EXPECT_EQ(tell(Command::CommitManyCases, "main", Units{{kSystemMissing, x, x, 1, 1}}, 1, 4, types), 0);
}

TEST_F(NewVariables, ManyCasesAreRefusedWhileACursorReads) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  expectRefused(ErrorCode::kCursorReadOnly, Command::CommitManyCases, "main", 0, 4, Types{{0, 12, 0, 0}});
  EXPECT_EQ(tell(Command::CommitManyCases, "Other", 0, 1, Types{{2}}), 0) << "another data set is free";
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_EQ(tell(Command::EndChanges), 0);
  expectRefused(ErrorCode::kChangesEnded, Command::CommitManyCases, "main", 0, 4, Types{{0, 12, 0, 0}});
}

}  // namespace
}  // namespace kova::engine
