// Cases of a data step and the records that hold them: what is asked of the engine, in which order, and what the cells
// of the record are.
#include <array>
#include <bit>
#include <functional>

#include "tests/api/data_set_test.h"

namespace {

using kova::TheDataSetCaches;
using kova::WireImage;
using kova::kit::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

std::string unitOf(double value) {
  const auto bits = std::bit_cast<std::array<char, 8>>(value);
  return {bits.begin(), bits.end()};
}

std::string textCell(const char* dataSet, int column) {
  int code = -1;
  char* const text = GetCCellValueFromCache(dataSet, column, &code);
  const std::string result = code == 0 ? text : "error " + std::to_string(code);
  FreeString(text);
  return result;
}

std::string numberCell(const char* dataSet, int column) {
  double value = -1;
  int isMissing = -1;
  const int code = GetNCellValueFromCache(dataSet, column, &value, &isMissing);
  if (code != 0) return "error " + std::to_string(code);
  return std::to_string(value).substr(0, 3) + " " + std::to_string(isMissing);
}

// A data set of a number, a text of 12 bytes and a number; a case is 32 bytes.
class DataStepCases : public kova::DataSetTest {
 protected:
  const std::string kCase = unitOf(1.5) + "twelve bytes    " + unitOf(-2.5);

  void Serve() {
    StartEngine([this](const Bytes& request) {
      const int code = CodeOf(request);
      if (code == diesAt_) return Answer{cut_, true};
      if (code == 153 && !answers_.contains(153)) return Answer{TypeOf(request).bytes()};
      return Answer{answers_[code].bytes()};
    });
  }

  void ServeStep() {
    answers_[239] = {.longs = {32}};
    answers_[148] = {.longs = {3}};
    answers_[237] = {.block = kCase};
    Serve();
    EXPECT_EQ(StartDataStep(), 0);
    Asked();
  }

  // Its size, or its error.
  std::string ReadCase(const char* dataSet, int index) {
    int code = -1;
    record_ = nullptr;
    const int size = GetCaseValue(dataSet, index, 0, &record_, &code);
    if (code != 0) return "error " + std::to_string(code);
    return record_ ? std::string(static_cast<const char*>(record_), static_cast<std::size_t>(size)) : "none";
  }

  Bytes cut_;
  void* record_ = nullptr;

 private:
  static WireImage TypeOf(const Bytes& request) { return {.longs = {request[16] == 1 ? 12 : 0}}; }
};

TEST_F(DataStepCases, TheFirstOneOfADataSetAsksForItsLayout) {
  ServeStep();
  EXPECT_EQ(ReadCase("ds", 7), kCase);
  EXPECT_THAT(Asked(), ElementsAre(239, 148, 153, 153, 153, 237));
  EXPECT_EQ(ReadCase("ds", 8), kCase);
  EXPECT_THAT(Asked(), ElementsAre(237));
  EXPECT_EQ(ReadCase("DS", 8), kCase);
  EXPECT_THAT(Asked(), ElementsAre(239, 148, 153, 153, 153, 237)) << "names are exact";
  EXPECT_EQ(TheDataSetCaches().registry.size(), 2u);
}

TEST_F(DataStepCases, CallsInARowFindTheirDataSetWithoutASearch) {
  ServeStep();
  ReadCase("ds", 7);
  const unsigned searches = TheDataSetCaches().registry.searches();
  ReadCase("ds", 8);
  textCell("ds", 1);
  SetNCellValueFromCache("ds", 0, 1);
  GetVarInfo("ds", 0, nullptr, nullptr, nullptr);
  InsertVariable("ds", 0, "new", 0);
  EXPECT_EQ(TheDataSetCaches().registry.searches(), searches);
}

TEST_F(DataStepCases, ACellOfADataSetThatIsNotKnownAsksForTheLayoutAlone) {
  ServeStep();
  EXPECT_EQ(numberCell("ds", 0), "0.0 0") << "no case was read";
  EXPECT_THAT(Asked(), ElementsAre(239, 148, 153, 153, 153));
  EXPECT_EQ(textCell("ds", 1), "") << "zeros end a text";
  EXPECT_EQ(SetNCellValueFromCache("ds", 2, 4.5), 0);
  EXPECT_EQ(SetCCellValueFromCache("ds", 1, "x"), 0);
  EXPECT_THAT(Asked(), IsEmpty());
  for (const auto& first :
       std::vector<std::function<void()>>{[] { textCell("second", 1); }, [] { SetNCellValueFromCache("third", 0, 1); },
                                          [] { SetCCellValueFromCache("fourth", 1, ""); }}) {
    first();
    EXPECT_THAT(Asked(), ElementsAre(239, 148, 153, 153, 153));
  }
}

TEST_F(DataStepCases, OutsideADataStepThereAreNoRecords) {
  answers_[237] = {.block = kCase};
  Serve();
  EXPECT_EQ(ReadCase("ds", 7), kCase);
  EXPECT_THAT(Asked(), ElementsAre(237));
  EXPECT_EQ(numberCell("ds", 0), "error 10");
  EXPECT_EQ(textCell("ds", 1), "error 10");
  EXPECT_EQ(SetNCellValueFromCache("ds", 0, 1), 10);
  EXPECT_EQ(SetCCellValueFromCache("ds", 1, "x"), 10);
  EXPECT_THAT(Asked(), IsEmpty());
  EXPECT_EQ(TheDataSetCaches().registry.size(), 0u);
}

TEST_F(DataStepCases, ALayoutThatIsRefusedMakesNoRecord) {
  struct Row {
    const char* label;
    int refused;
    std::vector<int> asked;
  };
  const Row rows[] = {{"the length of a case", 239, {239}},
                      {"the number of variables", 148, {239, 148}},
                      {"a type", 153, {239, 148, 153}}};
  ServeStep();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const auto good = answers_;
    Refuse(row.refused);
    EXPECT_EQ(ReadCase("ds", 7), "error 31");
    EXPECT_EQ(Asked(), row.asked);
    EXPECT_EQ(numberCell("ds", 0), "error 31");
    EXPECT_EQ(textCell("ds", 0), "error 31");
    EXPECT_EQ(TheDataSetCaches().registry.size(), 0u);
    answers_ = good;
    Asked();
  }
  EXPECT_EQ(ReadCase("ds", 7), kCase) << "it is asked for again";
}

TEST_F(DataStepCases, AnEngineThatDiesInTheMiddleMakesNoRecord) {
  for (const int dying : {239, 148, 153, 237}) {
    for (const bool isCut : {false, true}) {
      SCOPED_TRACE(std::to_string(dying) + (isCut ? " cut" : ""));
      EndConversation();
      kova::ForgetDataSets();
      diesAt_ = -1;
      ServeStep();
      diesAt_ = dying;
      cut_ = WireImage{.longs = {3}}.bytes();
      cut_.resize(isCut ? 12 : 0);
      EXPECT_EQ(ReadCase("ds", 7), isCut && dying == 237 ? "none" : "error 109");
      EXPECT_EQ(TheDataSetCaches().registry.size(), dying == 237 ? 1u : 0u);
      EXPECT_EQ(KovaLastReceiveStatus(), kPeerGone);
    }
  }
}

TEST_F(DataStepCases, LayoutsThatDoNotAgreeStayWithinTheCase) {
  struct Row {
    const char* label;
    int size;
    int variables;
    const char* result;
  };
  const Row rows[] = {
      {"a negative case", -8, 3, "error 13"}, {"a case larger than a batch of cases", (20 << 20) + 8, 3, "0.0 0"},
      {"an empty case", 0, 3, "error 10"},    {"a case of less than its variables", 8, 3, "error 10"},
      {"no variables", 32, 0, "error 10"},    {"a negative number of variables", 32, -3, "error 10"},
  };
  ServeStep();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    TheDataSetCaches().registry.clear();
    answers_[239] = {.longs = {row.size}};
    answers_[148] = {.longs = {row.variables}};
    EXPECT_EQ(numberCell("ds", 2), row.result);
  }
}

TEST_F(DataStepCases, TypesThatCanNotBeStayWithinTheCase) {
  answers_[153] = {.longs = {0x7fffffff}};
  ServeStep();
  EXPECT_EQ(textCell("ds", 0), "error 10");
  EXPECT_EQ(SetCCellValueFromCache("ds", 2, "x"), 10);
  int type = 0;
  int index = 0;
  int length = 0;
  EXPECT_EQ(GetVarInfo("ds", 2, &type, &index, &length), 0);
  EXPECT_THAT((std::vector<int>{type, index, length}), ElementsAre(0x7fffffff, 2 * 268435456, 268435456));
}

TEST_F(DataStepCases, CellsAreThoseOfTheCaseThatWasRead) {
  ServeStep();
  ReadCase("ds", 7);
  struct Row {
    const char* label;
    int column;
    const char* number;
    const char* text;
  };
  const Row rows[] = {
      {"number", 0, "1.5 0", "error 57"},     {"text", 1, "error 56", "twelve bytes"},
      {"last", 2, "-2. 0", "error 57"},       {"the count", 3, "error 10", "error 10"},
      {"before", -1, "error 10", "error 10"}, {"smallest", INT32_MIN, "error 10", "error 10"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    EXPECT_EQ(numberCell("ds", row.column), row.number);
    EXPECT_EQ(textCell("ds", row.column), row.text);
  }
  EXPECT_EQ(GetNCellValueFromCache("ds", 0, nullptr, nullptr), 0);
  EXPECT_EQ(GetCCellValueFromCache("ds", 0, nullptr), nullptr);
}

TEST_F(DataStepCases, CellsAreWrittenIntoTheRecordAndSentAsACase) {
  ServeStep();
  ReadCase("ds", 7);
  EXPECT_EQ(SetNCellValueFromCache("ds", 0, 9), 0);
  EXPECT_EQ(SetCCellValueFromCache("ds", 1, "new"), 0);
  EXPECT_EQ(SetNCellValueFromCache("ds", 1, 9), 57);
  EXPECT_EQ(SetNCellValueFromCache("ds", 3, 9), 10);
  EXPECT_EQ(SetCCellValueFromCache("ds", -1, ""), 10);
  EXPECT_EQ(textCell("ds", 1), "new         ");
  EXPECT_EQ(SetCasePartValue("ds", 7, 0, 1, 2, 3, nullptr, 5), 0);
  EXPECT_EQ(LastRequest(), (WireImage{.code = 238,
                                      .longs = {7, 0, 1, 2, 3},
                                      .texts = {"ds"},
                                      .block = unitOf(9) + "new             " + unitOf(-2.5)}
                                .bytes()));
}

TEST_F(DataStepCases, BlocksAreSentAsFarAsThereAreAny) {
  ServeStep();
  struct Row {
    const char* label;
    const void* block;
    int size;
    std::string sent;
  };
  const Row rows[] = {{"a block", "12345678", 8, "12345678"},
                      {"a part", "12345678", 3, "123"},
                      {"no bytes", "12345678", 0, ""},
                      {"a negative size", "12345678", -1, ""},
                      {"no block", nullptr, 8, ""}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    EXPECT_EQ(SetCaseValue("ds", 7, 1, row.block, row.size), 0);
    EXPECT_EQ(LastRequest(), (WireImage{.code = 238, .longs = {7, 1}, .texts = {"ds"}, .block = row.sent}.bytes()));
    EXPECT_EQ(SetCasePartValue("ds", 7, 1, 0, 0, 0, row.block, row.size), 0) << "there is no record";
    EXPECT_EQ(LastRequest(),
              (WireImage{.code = 238, .longs = {7, 1, 0, 0, 0}, .texts = {"ds"}, .block = row.sent}.bytes()));
  }
}

TEST_F(DataStepCases, AReplyWithoutBytesLeavesTheRecord) {
  ServeStep();
  ReadCase("ds", 7);
  answers_[237] = {};
  EXPECT_EQ(ReadCase("ds", 8), "none");
  Refuse(237);
  EXPECT_EQ(ReadCase("ds", 8), "error 31");
  EXPECT_EQ(textCell("ds", 1), "twelve bytes");
  answers_[237] = {.block = "short"};
  EXPECT_EQ(ReadCase("ds", 8), "short");
  EXPECT_EQ(numberCell("ds", 0), "error 10");
  EXPECT_EQ(textCell("ds", 1), "error 10");
}

TEST_F(DataStepCases, VariablesAreKnownFromTheRecordAlone) {
  ServeStep();
  int type = -1;
  int index = -1;
  int length = -1;
  int code = -1;
  EXPECT_EQ(GetVarInfo("ds", 1, &type, &index, &length), 10);
  EXPECT_EQ(type, -1);
  EXPECT_EQ(GetVarTypeInDSCache("ds", 1, &code), 0);
  EXPECT_EQ(code, 10);
  EXPECT_THAT(Asked(), IsEmpty()) << "nothing is asked for";
  ReadCase("ds", 7);
  Asked();
  EXPECT_EQ(GetVarInfo("ds", 1, &type, &index, &length), 0);
  EXPECT_THAT((std::vector<int>{type, index, length}), ElementsAre(12, 1, 2));
  EXPECT_EQ(GetVarInfo("ds", 2, &type, &index, &length), 0);
  EXPECT_THAT((std::vector<int>{type, index, length}), ElementsAre(0, 3, 1));
  EXPECT_EQ(GetVarTypeInDSCache("ds", 1, &code), 12);
  EXPECT_EQ(code, 0);
  for (const int outside : {-1, 3}) {
    EXPECT_EQ(GetVarInfo("ds", outside, &type, &index, &length), 10);
    GetVarTypeInDSCache("ds", outside, &code);
    EXPECT_EQ(code, 10);
  }
  EXPECT_EQ(GetVarInfo(nullptr, 0, nullptr, nullptr, nullptr), 10);
  EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(DataStepCases, ALongTextInsertedBeforeANumberMovesItsCell) {
  ServeStep();
  ReadCase("ds", 7);
  EXPECT_EQ(InsertVariable("ds", 2, "note", 9), 0);
  EXPECT_EQ(SetNCellValueFromCache("ds", 3, 6.5), 0);
  EXPECT_EQ(SetCCellValueFromCache("ds", 2, "123456789"), 0);
  EXPECT_EQ(numberCell("ds", 3), "6.5 0");
  EXPECT_EQ(textCell("ds", 2), "123456789");
}

}  // namespace
