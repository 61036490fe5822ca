// Every exported function that calls the engine: what it sends, byte by byte, and what it makes of the reply. A
// function of the header without a row in the wire table fails the test.
#include <fstream>
#include <map>
#include <set>

#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

constexpr int kPeerGone = 109;
constexpr int kRefusal = 31;
constexpr std::size_t kHeaderBytes = 12;

std::vector<Row> allRows() {
  std::vector<Row> rows;
  for (const auto& family : {caseCursorRows, controlRows, dataSetRows, dataStepRows, dictionaryRows,
                             dictionaryInDataSetRows, procedureRows, pivotTableRows, documentRows}) {
    for (Row& row : family()) rows.push_back(std::move(row));
  }
  return rows;
}

class Wire : public ClientTest, public testing::WithParamInterface<Row> {
 protected:
  Outcome Call() const { return GetParam().call(); }

  // What the call comes to with that code; a function without one shows only its results.
  Outcome Success() const { return {0, GetParam().onReply}; }
  Outcome Failure(int code) const { return {GetParam().shape.hasCode ? code : 0, GetParam().onFailure}; }

  // A function that needs another reply behind one that was cut short finds nobody there.
  bool TakesCutReplies() const { return GetParam().shape.readsEngineCode && !GetParam().failsWithLater; }
};

TEST_P(Wire, SendsItsItemsAndUnpacksTheReply) {
  StartEngine(GetParam().reply);
  EXPECT_EQ(Call(), Success());
  std::vector<kit::Bytes> expected;
  for (const WireImage& earlier : GetParam().earlier) expected.push_back(earlier.bytes());
  expected.push_back(GetParam().request.bytes());
  for (const WireImage& later : GetParam().later) expected.push_back(later.bytes());
  EXPECT_EQ(Requests(), expected);
  EXPECT_EQ(KovaLastReceiveStatus(), 0);
}

TEST_P(Wire, TakesAReplyWithoutItemsForNothing) {
  StartEngine(WireImage{});
  EXPECT_EQ(Call(), (Outcome{0, GetParam().onEmpty}));
}

TEST_P(Wire, PassesTheEnginesErrorOnAndStoresNothing) {
  WireImage refusal = GetParam().reply;
  refusal.error = kRefusal;
  StartEngine(refusal);
  EXPECT_EQ(Call(), GetParam().shape.readsEngineCode ? Failure(kRefusal) : Success());
  EXPECT_EQ(KovaLastReceiveStatus(), 0);
}

TEST_P(Wire, PassesTheTransportsErrorOnAndStoresNothing) {
  StartEngine([](const kit::Bytes&) { return Answer{{}, true}; });
  EXPECT_EQ(Call(), Failure(kPeerGone));
  EXPECT_EQ(KovaLastReceiveStatus(), kPeerGone);
}

TEST_P(Wire, TakesAReplyThatIsCutBehindItsHeaderForAnEmptyOne) {
  kit::Bytes cut = GetParam().reply.bytes();
  cut.resize(kHeaderBytes);
  StartEngine([&](const kit::Bytes&) { return Answer{cut, true}; });
  EXPECT_EQ(Call(), TakesCutReplies() ? (Outcome{0, GetParam().onEmpty}) : Failure(kPeerGone));
  EXPECT_EQ(KovaLastReceiveStatus(), kPeerGone);
}

TEST_P(Wire, EndsWithAReplyThatIsCutAnywhere) {
  const kit::Bytes whole = GetParam().reply.bytes();
  for (const std::size_t length : {whole.size() / 2, whole.size() - 1}) {
    SCOPED_TRACE(length);
    const kit::Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    EndConversation();
    StartEngine([&](const kit::Bytes&) { return Answer{cut, true}; });
    const Outcome outcome = Call();
    EXPECT_EQ(outcome.code, TakesCutReplies() ? 0 : Failure(kPeerGone).code);
    EXPECT_EQ(KovaLastReceiveStatus(), kPeerGone);
  }
}

// Where the rest of a reply has been lost it reads as zeros; this is every such reply.
TEST_P(Wire, TakesAReplyWithZerosFromAnywhereOn) {
  const kit::Bytes whole = GetParam().reply.bytes();
  kit::Bytes cut;
  StartEngine([&](const kit::Bytes&) { return Answer{cut}; });
  for (std::size_t length = kHeaderBytes; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    cut.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    cut.resize(whole.size());
    EXPECT_EQ(Call().code, 0);
  }
}

TEST_P(Wire, KnowsWhetherItNeedsAnEngineRunning) {
  SetKovaRunning(false);
  StartEngine(GetParam().reply);
  const bool testsFlag = GetParam().shape.testsFlag;
  EXPECT_EQ(Call(), testsFlag ? Failure(17) : Success());
  EXPECT_EQ(Requests().size(), testsFlag ? 0u : 1u);
}

INSTANTIATE_TEST_SUITE_P(Functions, Wire, testing::ValuesIn(allRows()),
                         [](const auto& row) { return std::string(row.param.function); });

// The functions of the header that send nothing, or only what another one sends.
const std::set<std::string> kLocal = {
    "ClearDatastepBatch",
    "FreeAttributeNames",
    "FreeAttributes",
    "FreeCValueLabels",
    "FreeDoubleArray",
    "FreeNValueLabels",
    "FreeString",
    "FreeStringArray",
    "GetCCellValueBatch",
    "GetCCellValueCache",
    "GetCCellValueFromCache",
    "GetCCellValueOptimize",
    "GetNCellValueBatch",
    "GetNCellValueCache",
    "GetNCellValueFromCache",
    "GetNCellValueOptimize",
    "GetRTempFolderToKOVA",
    "GetRowList",
    "GetStringFromList",
    "GetStringListLength",
    "GetVarInfo",
    "GetVarTypeInDSCache",
    "InitXProcess",
    "RecordBrowserOutput",
    "RemoveStringList",
    "SaveFileInDS",
    "SetCCellValue",
    "SetCCellValueFromCache",
    "SetKovaRunning",
    "SetNCellValue",
    "SetNCellValueFromCache",
    "SetRTempFolderToKOVA",
    "SetRecordBrowserOutput",
    "SetValueChar",
    "SetValueNumeric",
    "SetXNameAndSHome",
    "StartKova",
    "StopKova",
    "TransportData",
};

// The name of each declaration: the last word before its first bracket.
std::set<std::string> functionsOfHeader() {
  std::ifstream file(KOVA_SOURCE_DIR "/src/api/kovadx.h");
  std::set<std::string> names;
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("KOVADX_API ")) continue;
    const std::string head = line.substr(0, line.find('('));
    names.insert(head.substr(head.find_last_of(" *") + 1));
  }
  return names;
}

// Commands that are sent among others, and have no row; case_cursor_test.cpp and driven_engine_test.cpp have their
// bytes.
const std::set<std::string> kSecondCommands = {"NextCaseBatch", "StopKova"};

TEST(WireTable, HasEveryCommand) {
  std::set<std::string> known = kSecondCommands;
  for (const Row& row : allRows()) EXPECT_TRUE(known.insert(row.function).second) << row.function << " is there";
  std::set<std::string> commands;
#define KOVA_COMMAND(code, name, request, reply) commands.insert(#name);
#include "message/commands.def"
#undef KOVA_COMMAND
  EXPECT_EQ(known, commands);
}

TEST(WireTable, HasEveryFunctionOfTheHeader) {
  std::set<std::string> known = kLocal;
  for (const Row& row : allRows()) EXPECT_TRUE(known.insert(row.function).second) << row.function << " has two rows";
  EXPECT_EQ(known, functionsOfHeader());
}

// The letters of commands.def for the items of an image, in the order in which the kinds stand in a message.
std::string lettersOf(const WireImage& image) {
  return std::string(image.longs.size(), 'l') + std::string(image.doubles.size(), 'd') +
         std::string(image.texts.size(), 's') + std::string(image.cells.size(), 'c') +
         std::string(image.longLists.size(), 'L') + std::string(image.doubleLists.size(), 'D') +
         std::string(image.lists.size(), 'S') + std::string(image.binary.empty() ? 0 : 1, 'B') +
         std::string(image.wide.empty() ? 0 : 1, 'w') + std::string(image.block.empty() ? 0 : 1, 'b');
}

std::string inMessageOrder(std::string letters) {
  const std::string order = "ldscLDSBwb";
  std::stable_sort(letters.begin(), letters.end(),
                   [&](char left, char right) { return order.find(left) < order.find(right); });
  return letters;
}

std::set<char> kindsOf(const std::string& letters) { return {letters.begin(), letters.end()}; }

TEST(WireTable, AgreesWithTheCommandTable) {
  struct Command {
    std::int32_t code;
    std::string request;
    std::string reply;
  };
  const std::map<std::string, Command> commands = {
#define KOVA_COMMAND(code, name, request, reply) {#name, {code, request, reply}},
#include "message/commands.def"
#undef KOVA_COMMAND
  };
  for (const Row& row : allRows()) {
    SCOPED_TRACE(row.function);
    const auto command = commands.find(row.function);
    ASSERT_NE(command, commands.end());
    EXPECT_EQ(row.request.code, command->second.code);
    EXPECT_EQ(lettersOf(row.request), inMessageOrder(command->second.request));
    EXPECT_EQ(kindsOf(lettersOf(row.reply)), kindsOf(command->second.reply));
  }
}

}  // namespace
}  // namespace kova::wire
