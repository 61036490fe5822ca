#include "engine/cursor_handlers.h"

#include <cstring>
#include <limits>

#include "engine/request_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

// The units of a block that a reply carries, and their number.
std::vector<double> unitsOf(const CleXDSmb& reply) {
  int length = 0;
  const auto* bytes = static_cast<const char*>(reply.GetVoidData(length));
  std::vector<double> units(static_cast<std::size_t>(length) / sizeof(double));
  if (!units.empty()) std::memcpy(units.data(), bytes, units.size() * sizeof(double));
  return units;
}

// The main data set has five cases of 40 bytes: a number, a text of two units and two numbers. The number "one" counts
// them from 1.
class CursorRequests : public RequestTest {
 protected:
  CursorRequests() {
    main().split.clear();
    for (std::size_t i = 0; i < 5; ++i) main().cases.setNumber(i, 2, static_cast<double>(i) + 1);
  }

  std::vector<double> onesOf(const CleXDSmb& reply) {
    std::vector<double> ones;
    const std::vector<double> units = unitsOf(reply);
    for (std::size_t i = 3; i < units.size(); i += 5) ones.push_back(units[i]);
    return ones;
  }
};

constexpr int kCaseBytes = 40;

TEST_F(CursorRequests, NeedACursor) {
  for (const Command command : {Command::NextCase, Command::RemoveCaseCursor, Command::GetCursorPosition,
                                Command::EndChanges, Command::IsEndSplit}) {
    expectRefused(ErrorCode::kNoCaseCursor, command);
  }
  expectRefused(ErrorCode::kNoCaseCursor, Command::NextCaseBatch, 1, kCaseBytes);
  expectRefused(ErrorCode::kNoCaseCursor, Command::GetNumericValue, 0);
  expectRefused(ErrorCode::kNoCaseCursor, Command::GetStringValue, 0, 8);
  expectRefused(ErrorCode::kNoCaseCursor, Command::CommitCaseRecord, Texts{}, Texts{}, 1, kCaseBytes);
  expectRefused(ErrorCode::kNoCaseCursor, Command::CommitNewCase, Texts{}, Texts{});
  EXPECT_EQ(ask(Command::HasCursor).FirstLong(), 0);
  EXPECT_EQ(tell(Command::ResetDataPass), 0) << "nothing is to be reset";
}

TEST_F(CursorRequests, MakeOneForAKnownWayOfAccessAlone) {
  for (const char* const mode : {"r", "R", "w", "W", "a", "A"}) {
    EXPECT_EQ(tell(Command::MakeCaseCursor, mode), 0) << mode;
    EXPECT_EQ(ask(Command::HasCursor).FirstLong(), 1);
  }
  for (const char* const mode : {"", "rw", "x"})
    expectRefused(ErrorCode::kAccessModeUnknown, Command::MakeCaseCursor, mode);
  EXPECT_EQ(tell(Command::RemoveCaseCursor), 0);
  EXPECT_EQ(ask(Command::HasCursor).FirstLong(), 0);
  state_.active = nullptr;
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 98004);
}

TEST_F(CursorRequests, GoOverTheProceduresDataSet) {
  state_.ofProcedure = &other();
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  const CleXDSmb reply = ask(Command::NextCaseBatch, 10, 8);
  EXPECT_EQ(reply.GetErrorCode(), 23);
  EXPECT_EQ(reply.FirstLong(), 1);
}

TEST_F(CursorRequests, BatchesEndWith23AndKeepTheirItems) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  const CleXDSmb first = ask(Command::NextCaseBatch, 2, kCaseBytes);
  EXPECT_EQ(first.GetErrorCode(), 0);
  EXPECT_EQ(first.FirstLong(), 2);
  EXPECT_THAT(onesOf(first), ElementsAre(1, 2));
  EXPECT_EQ(ask(Command::GetCursorPosition).FirstLong(), 2);
  const CleXDSmb last = ask(Command::NextCaseBatch, 100, kCaseBytes);
  EXPECT_EQ(last.GetErrorCode(), 23);
  EXPECT_EQ(last.FirstLong(), 3);
  EXPECT_THAT(onesOf(last), ElementsAre(3, 4, 5));
  const CleXDSmb behind = ask(Command::NextCaseBatch, 100, kCaseBytes);
  EXPECT_EQ(behind.GetErrorCode(), 23);
  EXPECT_EQ(behind.Longs().Size(), 1);
  EXPECT_EQ(behind.FirstLong(), 0);
  EXPECT_TRUE(unitsOf(behind).empty());
}

TEST_F(CursorRequests, TellWhereASplitGroupEnds) {
  main().split = {"town"};
  main().cases.setText(3, 1, "Bremen");
  main().cases.setText(4, 1, "Bremen");
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  EXPECT_EQ(ask(Command::IsEndSplit).FirstLong(), 0);
  const CleXDSmb group = ask(Command::NextCaseBatch, 100, kCaseBytes);
  EXPECT_EQ(group.GetErrorCode(), 67);
  EXPECT_THAT(onesOf(group), ElementsAre(1, 2, 3));
  EXPECT_EQ(ask(Command::IsEndSplit).FirstLong(), 1);
  EXPECT_EQ(ask(Command::GetSplitEndIndex).FirstLong(), 3);
  const CleXDSmb next = ask(Command::NextCaseBatch, 1, kCaseBytes);
  EXPECT_EQ(next.GetErrorCode(), 0);
  EXPECT_EQ(ask(Command::IsEndSplit).FirstLong(), 0);
  EXPECT_EQ(ask(Command::GetSplitEndIndex).FirstLong(), 5);
  EXPECT_EQ(ask(Command::NextCaseBatch, 1, kCaseBytes).GetErrorCode(), 23);
}

TEST_F(CursorRequests, RefuseAnotherCaseSizeAndKeepThePlace) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  expectRefused(ErrorCode::kCaseSizeDiffers, Command::NextCaseBatch, 1, 0);
  expectRefused(ErrorCode::kCaseSizeDiffers, Command::NextCaseBatch, 1, kCaseBytes + 8);
  expectRefused(ErrorCode::kCaseSizeDiffers, Command::NextCaseBatch, 1, -kCaseBytes);
  expectRefused(ErrorCode::kCaseSizeDiffers, Command::NextCaseBatch, 0, kCaseBytes);
  expectRefused(ErrorCode::kCaseSizeDiffers, Command::NextCaseBatch, -1, kCaseBytes);
  EXPECT_THAT(onesOf(ask(Command::NextCaseBatch, 1, kCaseBytes)), ElementsAre(1));
}

TEST_F(CursorRequests, SingleStepsGiveOneValueEach) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  expectRefused(ErrorCode::kNoCurrentCase, Command::GetNumericValue, 2);
  EXPECT_EQ(tell(Command::NextCase), 0);
  const CleXDSmb one = ask(Command::GetNumericValue, 2);
  EXPECT_EQ(one.FirstLong(), 0);
  EXPECT_EQ(one.FirstDouble(), 1.0);
  EXPECT_EQ(ask(Command::GetNumericValue, 0).FirstLong(), 2) << "system-missing";
  const CleXDSmb town = ask(Command::GetStringValue, 1, 12);
  EXPECT_STREQ(town.FirstString(), "            ");
  EXPECT_EQ(town.FirstLong(), 0);
  main().cases.setText(0, 1, "NA");
  EXPECT_EQ(ask(Command::GetStringValue, 1, 12).FirstLong(), 1) << "user-missing";
  expectRefused(ErrorCode::kWrongKind, Command::GetNumericValue, 1);
  expectRefused(ErrorCode::kWrongKind, Command::GetStringValue, 0, 8);
  expectRefused(ErrorCode::kIndexOutOfRange, Command::GetNumericValue, 4);
  expectRefused(ErrorCode::kIndexOutOfRange, Command::GetNumericValue, -1);
  for (int i = 1; i < 5; ++i) EXPECT_EQ(tell(Command::NextCase), 0);
  EXPECT_EQ(tell(Command::NextCase), 23);
  expectRefused(ErrorCode::kNoCurrentCase, Command::GetNumericValue, 2);
}

TEST_F(CursorRequests, ChangeTheCurrentCaseAndGiveItBack) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  expectRefused(ErrorCode::kNoCurrentCase, Command::CommitCaseRecord, 7.5, "two", Texts{}, Texts{}, 1, kCaseBytes);
  EXPECT_EQ(ask(Command::NextCaseBatch, 1, kCaseBytes).FirstLong(), 1);
  const CleXDSmb reply =
      ask(Command::CommitCaseRecord, 7.5, 2.5, "TWO", "one", Texts{"town"}, Texts{"Kiel"}, 1, kCaseBytes);
  EXPECT_EQ(reply.GetErrorCode(), 0);
  EXPECT_EQ(reply.FirstLong(), 1);
  const std::vector<double> units = unitsOf(reply);
  ASSERT_EQ(units.size(), 5U);
  EXPECT_EQ(units[3], 2.5);
  EXPECT_EQ(units[4], 7.5);
  EXPECT_EQ(main().cases.text(0, 1), "Kiel        ");
  EXPECT_THAT(onesOf(ask(Command::NextCaseBatch, 1, kCaseBytes)), ElementsAre(2)) << "the pass goes on";
  EXPECT_EQ(main().cases.number(1, 3), kSystemMissing);
}

TEST_F(CursorRequests, GiveTheCurrentCaseBackThoughTheFilterDropsItNow) {
  main().filter = "one";
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_THAT(onesOf(ask(Command::NextCaseBatch, 1, kCaseBytes)), ElementsAre(1));
  const CleXDSmb reply = ask(Command::CommitCaseRecord, 0.0, "one", Texts{}, Texts{}, 1, kCaseBytes);
  EXPECT_EQ(reply.FirstLong(), 1);
  EXPECT_THAT(onesOf(reply), ElementsAre(0));
  EXPECT_THAT(onesOf(ask(Command::NextCaseBatch, 1, kCaseBytes)), ElementsAre(2));
}

TEST_F(CursorRequests, RefuseValuesThatDoNotFitAndChangeNothing) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_EQ(ask(Command::NextCaseBatch, 1, kCaseBytes).FirstLong(), 1);
  const auto expectAllRefused = [this](ErrorCode code, const auto&... items) {
    expectRefused(code, Command::CommitCaseRecord, items..., 1, kCaseBytes);
    expectRefused(code, Command::CommitNewCase, items...);
  };
  const Texts none;
  expectAllRefused(ErrorCode::kNoSuchVariable, 1.0, 2.0, "one", "nowhere", none, none);
  expectAllRefused(ErrorCode::kWrongKind, 1.0, "town", none, none);
  expectAllRefused(ErrorCode::kNumberNotValid, std::numeric_limits<double>::quiet_NaN(), "one", none, none);
  expectAllRefused(ErrorCode::kNumberNotValid, std::numeric_limits<double>::infinity(), "one", none, none);
  expectAllRefused(ErrorCode::kMalformedRequest, 1.0, 2.0, "one", none, none);
  expectAllRefused(ErrorCode::kMalformedRequest, 1.0, "one", Texts{"town"}, none);
  expectAllRefused(ErrorCode::kWrongKind, 1.0, "one", Texts{"two"}, Texts{"x"});
  expectAllRefused(ErrorCode::kNoSuchVariable, 1.0, "one", Texts{"nowhere"}, Texts{"x"});
  expectAllRefused(ErrorCode::kValueTooLong, 1.0, "one", Texts{"town"}, Texts{"thirteen byte"});
  expectAllRefused(ErrorCode::kTextNotUtf8, 1.0, "one", Texts{"town"}, Texts{"\xff"});
}

TEST_F(CursorRequests, TakeSystemMissingAndTextsWithEndBlanks) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_EQ(ask(Command::NextCaseBatch, 1, kCaseBytes).FirstLong(), 1);
  EXPECT_EQ(tell(Command::CommitCaseRecord, kSystemMissing, "one", Texts{"town"}, Texts{"Kiel            "}, 1, 40), 0);
  EXPECT_EQ(main().cases.number(0, 2), kSystemMissing);
  EXPECT_EQ(main().cases.text(0, 1), "Kiel        ");
}

TEST_F(CursorRequests, AddCasesThatThePassDoesNotVisit) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "a"), 0);
  EXPECT_EQ(tell(Command::CommitNewCase, Texts{"town"}, Texts{"Kiel"}), 0) << "values of one kind alone";
  EXPECT_EQ(tell(Command::CommitNewCase, 9.0, "two", Texts{}, Texts{}), 0);
  ASSERT_EQ(main().cases.caseCount(), 7U);
  EXPECT_EQ(main().cases.text(5, 1), "Kiel        ");
  EXPECT_EQ(main().cases.number(5, 3), kSystemMissing);
  EXPECT_EQ(main().cases.number(6, 3), 9.0);
  EXPECT_EQ(ask(Command::NextCaseBatch, 9, kCaseBytes).GetErrorCode(), 23);
}

TEST_F(CursorRequests, AddNoCasesWithoutVariables) {
  EXPECT_EQ(tell(Command::CreateDataset, "bare", 1, 0), 0);
  EXPECT_EQ(tell(Command::MakeCaseCursor, "a"), 0);
  expectRefused(ErrorCode::kNoVariables, Command::CommitNewCase, Texts{}, Texts{});
}

TEST_F(CursorRequests, ChangeNothingThroughACursorForReading) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  EXPECT_EQ(ask(Command::NextCaseBatch, 1, kCaseBytes).FirstLong(), 1);
  expectRefused(ErrorCode::kCursorReadOnly, Command::CommitCaseRecord, 1.0, "one", Texts{}, Texts{}, 1, kCaseBytes);
  expectRefused(ErrorCode::kCursorReadOnly, Command::CommitNewCase, 1.0, "one", Texts{}, Texts{});
  expectRefused(ErrorCode::kCursorReadOnly, Command::EndChanges);
}

TEST_F(CursorRequests, ChangeNothingAfterEndChanges) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "w"), 0);
  EXPECT_EQ(ask(Command::NextCaseBatch, 1, kCaseBytes).FirstLong(), 1);
  EXPECT_EQ(tell(Command::EndChanges), 0);
  expectRefused(ErrorCode::kChangesEnded, Command::CommitCaseRecord, 1.0, "one", Texts{}, Texts{}, 1, kCaseBytes);
  expectRefused(ErrorCode::kChangesEnded, Command::CommitNewCase, 1.0, "one", Texts{}, Texts{});
  EXPECT_THAT(onesOf(ask(Command::NextCaseBatch, 1, kCaseBytes)), ElementsAre(2)) << "reading goes on";
}

TEST_F(CursorRequests, EachConversationHasItsOwn) {
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  EXPECT_THAT(onesOf(ask(Command::NextCaseBatch, 2, kCaseBytes)), ElementsAre(1, 2));
  state_.conversation = 1;
  EXPECT_EQ(ask(Command::HasCursor).FirstLong(), 0);
  EXPECT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  EXPECT_THAT(onesOf(ask(Command::NextCaseBatch, 1, kCaseBytes)), ElementsAre(1));
  EXPECT_EQ(tell(Command::RemoveCaseCursor), 0);
  state_.conversation = 0;
  EXPECT_THAT(onesOf(ask(Command::NextCaseBatch, 1, kCaseBytes)), ElementsAre(3));
}

}  // namespace
}  // namespace kova::engine
