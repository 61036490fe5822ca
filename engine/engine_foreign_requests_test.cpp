// Requests that no honest client sends: whatever comes, the engine answers with a code that it documents, and a request
// that is refused changes nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "engine/data_package.h"
#include "engine/dispatcher.h"
#include "engine/error_codes.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

struct Definition {
  int code;
  const char* request;
};

constexpr Definition kCommands[] = {
#define KOVA_COMMAND(code, name, request, reply) {code, request},
#include "message/commands.def"
#undef KOVA_COMMAND
};

class ForeignRequests : public testing::Test {
 protected:
  // Requests may name files by any text: those are made in a folder that goes again.
  ForeignRequests() : folderBefore_(std::filesystem::current_path()) {
    std::string problem;
    EXPECT_TRUE(readDataPackage(KOVA_SOURCE_DIR "/examples/penguins", &penguins_, &problem)) << problem;
    std::filesystem::current_path(scratch_.path());
    keepThreeCases(&penguins_);
    penguins_.variables.change(0).attributes = {{"note", {"a", "b"}}};
    beginAnew();
  }

  ~ForeignRequests() override { std::filesystem::current_path(folderBefore_); }

  // With the data set as it was before any request.
  void beginAnew() {
    auto penguins = std::make_unique<DataSet>(penguins_);
    state_ = EngineState();
    state_.runtimeSocket.setAcceptLimitMs(0);
    state_.active = penguins.get();
    state_.dataSets.push_back(std::move(penguins));
  }

  // Every request is followed by a look at the whole data set.
  static void keepThreeCases(DataSet* dataSet) {
    dataSet->cases = CaseStore(dataSet->cases.widths());
    for (int i = 0; i < 3; ++i) dataSet->cases.appendCase();
  }

  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

  template <typename Value, std::size_t count>
  const Value& oneOf(const Value (&values)[count]) {
    return values[static_cast<std::size_t>(below(static_cast<int>(count)))];
  }

  int someLong() {
    static constexpr int kLongs[] = {0, 1, 2, 3, 5, 6, 7, 8, 9, 40, 255, 32767, 32768, -1, -2, -3, 2147483647};
    if (below(2) == 0) return below(4);
    return below(20) == 0 ? static_cast<int>(0x80000000U) : oneOf(kLongs);
  }

  double someDouble() {
    static const double kDoubles[] = {0.0,     -0.0,           1.0,      2.0,       9.0,         -99.0, 4.9e-324,
                                      1.7e308, kSystemMissing, HUGE_VAL, -HUGE_VAL, std::nan("")};
    return below(2) == 0 ? below(3) : oneOf(kDoubles);
  }

  // Names that there are, names that there may be, and texts that are none.
  std::string someText() {
    static const std::string kTexts[] = {"",
                                         "*",
                                         "penguins",
                                         "species",
                                         "body_mass_g",
                                         "SEX",
                                         "$set",
                                         "$other",
                                         "attribute",
                                         "note",
                                         "Adelie",
                                         "nominal",
                                         "new_name",
                                         "two words",
                                         "Output",
                                         "Width",
                                         "1",
                                         "a.",
                                         "<b>&\"'</b>",
                                         "//item",
                                         "\xFF",
                                         "\u5E74",
                                         "Data",
                                         std::string("a\0b", 3),
                                         std::string(9000, 'x')};
    static const std::string kGoodTexts[] = {"*",   "penguins", "species", "island", "body_mass_g",
                                             "sex", "$set",     "note",    "1"};
    return below(2) == 0 ? oneOf(kGoodTexts) : oneOf(kTexts);
  }

  StringData someTexts() {
    StringData list;
    for (int count = below(4); count > 0; --count) list.SetValue(someText());
    return list;
  }

  LongData someLongs() {
    LongData list;
    for (int count = below(4); count > 0; --count) list.SetValue(someLong());
    return list;
  }

  void addItem(char letter, CleXDSmb* request) {
    switch (letter) {
      case 'l':
        return request->SetLong(someLong());
      case 'd':
        return request->SetDouble(someDouble());
      case 's':
        return request->SetString(someText());
      case 'S':
        return request->SetStringArray(someTexts());
      case 'L':
        return request->SetLongArray(someLongs());
      case 'b': {
        const std::string bytes(static_cast<std::size_t>(1 + below(64)), '\x7F');
        request->AllocVoidData(static_cast<int>(bytes.size()));
        return request->SaveDataIntoVoidData(bytes.data(), static_cast<int>(bytes.size()));
      }
      case 'c':
        return request->SetStruct({someText(), someLong(), someLong(), someLong(), someDouble(), someText()});
      case 'w':
        return request->SetwString(L"wide");
      default:
        return request->SetBinaryString("bytes", 5);
    }
  }

  void addItems(const std::string& letters, CleXDSmb* request) {
    for (const char letter : letters) addItem(letter, request);
  }

  // Whatever the answer is: it has a name, it can be sent, and nothing has changed unless it is a success.
  // Returns the error code.
  int expectDocumentedAnswer(const CleXDSmb& request) {
    const DataSet* const active = state_.active;
    const DataSet before = active == nullptr ? DataSet() : *active;
    const std::size_t dataSets = state_.dataSets.size();
    CleXDSmb reply;
    dispatch(state_, request, reply);
    const int command = static_cast<int>(request.GetCommandAction());
    EXPECT_STRNE(errorName(reply.GetErrorCode()), "") << command << " " << reply.GetErrorCode();
    EXPECT_NE(reply.GetErrorCode(), static_cast<int>(ErrorCode::kInternalFailure)) << commandName(command);
    EXPECT_EQ(reply.ContructSendData(), 0) << commandName(command);
    if (reply.GetErrorCode() != 0) {
      EXPECT_EQ(active, state_.active) << commandName(command);
      EXPECT_EQ(dataSets, state_.dataSets.size()) << commandName(command);
      EXPECT_TRUE(active == nullptr || before == *active) << commandName(command) << " " << reply.GetErrorCode();
    }
    return reply.GetErrorCode();
  }

  const kit::ScratchFolder scratch_;
  const std::filesystem::path folderBefore_;
  DataSet penguins_;
  EngineState state_;
  std::mt19937 random_{20240229};
};

TEST_F(ForeignRequests, EveryCodeWithItemsOfEveryKind) {
  static constexpr char kLetters[] = {'l', 'd', 's', 'S', 'L', 'b', 'B', 'c', 'w'};
  for (int round = 0; round < 40; ++round) {
    for (int code = -3; code < 260; ++code) {
      CleXDSmb request;
      request.SetCommandAction(static_cast<Command>(code));
      for (int items = below(6); items > 0; --items) addItem(oneOf(kLetters), &request);
      expectDocumentedAnswer(request);
    }
  }
}

// Requests of the right shape reach further: their values are what is wrong, but not always. In any order, so that what
// one of them opens another finds open.
TEST_F(ForeignRequests, EveryCommandWithValuesOfEveryKind) {
  std::set<int> answered;
  std::vector<Definition> commands(std::begin(kCommands), std::end(kCommands));
  for (int round = 0; round < 1000; ++round) {
    if (round % 5 == 0) beginAnew();
    std::shuffle(commands.begin(), commands.end(), random_);
    for (const Definition& command : commands) {
      CleXDSmb request;
      request.SetCommandAction(static_cast<Command>(command.code));
      addItems(command.request, &request);
      if (expectDocumentedAnswer(request) == 0) answered.insert(command.code);
    }
  }
  for (const Command command : {Command::GetVarLabelInDS,
                                Command::SetVarNameInDS,
                                Command::SetVarTypeInDS,
                                Command::SetVarFormat,
                                Command::SetVarNMissingValuesInDS,
                                Command::SetVarCValueLabel,
                                Command::SetVarAttributesInDS,
                                Command::SetVarCMissingValues,
                                Command::DelVarNValueLabelInDS,
                                Command::GetVarAttributesInDS,
                                Command::InsertVariable,
                                Command::DeleteVariable,
                                Command::MoveVariables,
                                Command::InsertCase,
                                Command::DeleteCase,
                                Command::GetCaseValue,
                                Command::FetchDatastep,
                                Command::GetNCellValue,
                                Command::GetCCellValue,
                                Command::CommitDataSet,
                                Command::CreateDataset,
                                Command::CopyDataset,
                                Command::SetDatasetName,
                                Command::SetActive,
                                Command::CloseDataset}) {
    EXPECT_EQ(answered.count(static_cast<int>(command)), 1U) << commandName(static_cast<int>(command));
  }
}

// These are content with less than their row of the table says.
constexpr Command kLooser[] = {Command::SetCaseValue, Command::CommitDataSet, Command::CommitCaseRecord,
                               Command::CommitNewCase, Command::CommitManyCases};

// One item less, in turn, than each command needs.
TEST_F(ForeignRequests, EveryCommandWithAnItemTooFew) {
  for (const Definition& command : kCommands) {
    const std::string letters = command.request;
    for (std::size_t left = 0; left < letters.size(); ++left) {
      CleXDSmb request;
      request.SetCommandAction(static_cast<Command>(command.code));
      std::string fewer = letters;
      fewer.erase(left, 1);
      addItems(fewer, &request);
      CleXDSmb reply;
      dispatch(state_, request, reply);
      const bool isLooser = std::count(std::begin(kLooser), std::end(kLooser), request.GetCommandAction()) > 0;
      const bool isRefused = reply.GetErrorCode() == static_cast<int>(ErrorCode::kMalformedRequest) ||
                             reply.GetErrorCode() == static_cast<int>(ErrorCode::kCommandNotAnswered);
      EXPECT_TRUE(isLooser || isRefused) << commandName(command.code) << " without item " << left;
    }
  }
}

TEST_F(ForeignRequests, DamagedBytes) {
  CleXDSmb original;
  original.SetCommandAction(Command::GetVariableName);
  original.SetLong(3);
  original.SetString("text");
  ASSERT_EQ(original.ContructSendData(), 0);
  int length = 0;
  const char* bytes = original.GetSendBuf(length);
  for (int round = 0; round < 20000; ++round) {
    std::vector<char> damaged(bytes, bytes + length);
    for (int changes = 1 + below(4); changes > 0; --changes) {
      damaged[static_cast<std::size_t>(below(length))] ^= static_cast<char>(1 << below(8));
    }
    CleXDSmb request;
    request.ParseBuf(damaged.data(), below(length + 1));
    expectDocumentedAnswer(request);
  }
}

}  // namespace
}  // namespace kova::engine
