// Every exported function that calls the engine: what it sends, byte by byte, and what it makes of the reply. A
// function of the header without a row here fails the test.
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>

#include "tests/api/client_test.h"

namespace {

using kova::WireImage;

// What the outputs of a call hold before it, to see which are stored.
constexpr int kUntouched = -77;

std::string shown(int value) { return std::to_string(value); }
std::string shown(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}
std::string shown(const char* text) { return text ? "'" + std::string(text) + "'" : "null"; }

// The error code, a colon and the results, with blanks between them.
template <class... Values>
std::string outcome(int code, const Values&... values) {
  std::string text = std::to_string(code) + ":";
  ((text += " " + shown(values)), ...);
  return text;
}

template <class Result>
std::string valueOf(Result (*function)(int*)) {
  int code = kUntouched;
  const Result value = function(&code);
  return outcome(code, value);
}

template <class Result>
std::string valueOf(Result (*function)(int, int*), int index) {
  int code = kUntouched;
  const Result value = function(index, &code);
  return outcome(code, value);
}

std::string formatType() {
  int type = kUntouched, width = kUntouched, decimals = kUntouched;
  const int code = GetVariableFormatType(2, &type, &width, &decimals);
  return outcome(code, type, width, decimals);
}

std::string numericMissing() {
  int type = kUntouched;
  double v1 = kUntouched, v2 = kUntouched, v3 = kUntouched;
  const int code = GetVarNMissingValues(2, &type, &v1, &v2, &v3);
  return outcome(code, type, v1, v2, v3);
}

std::string textMissing() {
  int type = kUntouched;
  char buffers[3][9] = {"-", "-", "-"};
  const int code = GetVarCMissingValues(2, &type, buffers[0], buffers[1], buffers[2]);
  return outcome(code, type, buffers[0], buffers[1], buffers[2]);
}

std::string numericLabels() {
  double* values = nullptr;
  char** labels = nullptr;
  int count = kUntouched;
  const int code = GetNValueLabels(2, &values, &labels, &count);
  std::string text = outcome(code, count);
  for (int i = 0; i < count; ++i) text += " " + shown(values[i]) + "=" + shown(labels[i]);
  EXPECT_EQ(values != nullptr, count > 0);
  EXPECT_EQ(FreeNValueLabels(values, labels, count), 0);
  return text;
}

std::string textLabels() {
  char** values = nullptr;
  char** labels = nullptr;
  int count = kUntouched;
  const int code = GetCValueLabels(2, &values, &labels, &count);
  std::string text = outcome(code, count);
  for (int i = 0; i < count; ++i) text += " " + shown(values[i]) + "=" + shown(labels[i]);
  EXPECT_EQ(values != nullptr, count > 0);
  EXPECT_EQ(FreeCValueLabels(values, labels, count), 0);
  return text;
}

std::string systemMissing() {
  double value = kUntouched;
  const int code = GetSystemMissingValue(&value);
  return outcome(code, value);
}

struct Row {
  const char* function;
  std::function<std::string()> call;
  WireImage request;
  WireImage reply;       // A good reply,
  const char* expected;  // and what becomes of it.
  const char* onEmpty;   // What becomes of a reply without any item,
  const char* onError;   // and of one with the error code 31.
};

const Row kRows[] = {
    {"Submit",
     [] { return outcome(Submit("RUN 1.\0x", 8)); },
     {.code = 0, .texts = {std::string("RUN 1.\0x", 8)}},
     {},
     "0:",
     "0:",
     "31:"},
    {"IsBackendReady", [] { return shown(IsBackendReady()); }, {.code = 1}, {.longs = {5}}, "1", "0", "0"},
    {"GetVariableCount",
     [] { return valueOf(GetVariableCount); },
     {.code = 7},
     {.longs = {9, 8}},
     "0: 9",
     "0: 0",
     "31: 0"},
    {"GetRowCount", [] { return valueOf(GetRowCount); }, {.code = 8}, {.longs = {344}}, "0: 344", "0: 0", "31: 0"},
    {"GetVariableName",
     [] { return valueOf(GetVariableName, 3); },
     {.code = 9, .longs = {3}},
     {.texts = {"species", "more"}},
     "0: 'species'",
     "0: ''",
     "31: null"},
    {"GetVariableLabel",
     [] { return valueOf(GetVariableLabel, 3); },
     {.code = 10, .longs = {3}},
     {.texts = {"Penguin species"}},
     "0: 'Penguin species'",
     "0: ''",
     "31: null"},
    {"GetVariableType",
     [] { return valueOf(GetVariableType, -1); },
     {.code = 11, .longs = {-1}},
     {.longs = {12}},
     "0: 12",
     "0: 0",
     "31: 0"},
    {"GetVariableFormat",
     [] { return valueOf(GetVariableFormat, 3); },
     {.code = 12, .longs = {3}},
     {.texts = {"F8.2"}},
     "0: 'F8.2'",
     "0: ''",
     "31: null"},
    {"GetVariableMeasurementLevel",
     [] { return valueOf(GetVariableMeasurementLevel, 3); },
     {.code = 13, .longs = {3}},
     {.longs = {4}},
     "0: 4",
     "0: 0",
     "31: 0"},
    {"GetVariableFormatType",
     formatType,
     {.code = 29, .longs = {2}},
     {.longs = {5, 8, 2}},
     "0: 5 8 2",
     "0: 0 0 0",
     "31: -77 -77 -77"},
    {"GetVarCMissingValues",
     textMissing,
     {.code = 31, .longs = {2}},
     {.longs = {2}, .texts = {"NA", "12345678901234567890"}},
     "0: 2 'NA' '12345678' '-'",
     "0: 0 '-' '-' '-'",
     "31: -77 '-' '-' '-'"},
    {"GetVarNMissingValues",
     numericMissing,
     {.code = 32, .longs = {2}},
     {.longs = {2}, .doubles = {-9, 99.5, 7, 6}},
     "0: 2 -9 99.5 7",
     "0: 0 -77 -77 -77",
     "31: -77 -77 -77 -77"},
    {"GetNValueLabels",
     numericLabels,
     {.code = 123, .longs = {2}},
     {.longs = {2}, .doubles = {0, 1.5}, .texts = {"no", "yes"}},
     "0: 2 0='no' 1.5='yes'",
     "0: 0",
     "31: -77"},
    {"GetCValueLabels",
     textLabels,
     {.code = 125, .longs = {2}},
     {.longs = {2}, .lists = {{"m", "f"}, {"male", "female"}}},
     "0: 2 'm'='male' 'f'='female'",
     "0: 0",
     "31: -77"},
    {"GetSystemMissingValue", systemMissing, {.code = 128}, {.doubles = {-1.5}}, "0: -1.5", "0: 0", "31: -77"},
    {"GetVariableRole",
     [] { return valueOf(GetVariableRole, 3); },
     {.code = 222, .longs = {3}},
     {.longs = {1}},
     "0: 1",
     "0: 0",
     "31: 0"},
};

class Wire : public kova::ClientTest, public testing::WithParamInterface<Row> {
 protected:
  static std::string CallAgainst(const WireImage& reply) {
    Wire::reply = reply.bytes();
    return GetParam().call();
  }

  static inline kova::kit::Bytes reply;
};

TEST_P(Wire, SendsItsItemsAndUnpacksTheReply) {
  StartEngine([](const kova::kit::Bytes&) { return Answer{reply}; });
  EXPECT_EQ(CallAgainst(GetParam().reply), GetParam().expected);
  EXPECT_THAT(Requests(), testing::ElementsAre(GetParam().request.bytes()));
}

TEST_P(Wire, TakesAReplyWithoutItemsForNothing) {
  StartEngine([](const kova::kit::Bytes&) { return Answer{reply}; });
  EXPECT_EQ(CallAgainst({}), GetParam().onEmpty);
}

TEST_P(Wire, PassesTheEnginesErrorOnAndStoresNothing) {
  StartEngine([](const kova::kit::Bytes&) { return Answer{reply}; });
  WireImage failed = GetParam().reply;
  failed.error = 31;
  EXPECT_EQ(CallAgainst(failed), GetParam().onError);
  EXPECT_EQ(KovaLastReceiveStatus(), 0);
}

INSTANTIATE_TEST_SUITE_P(Functions, Wire, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.function); });

// The functions of the header that send nothing.
const std::set<std::string> kLocal = {
    "FreeAttributeNames", "FreeAttributes", "FreeCValueLabels",     "FreeDoubleArray",
    "FreeNValueLabels",   "FreeString",     "FreeStringArray",      "GetRTempFolderToKOVA",
    "SaveFileInDS",       "SetKovaRunning", "SetRTempFolderToKOVA", "SetXNameAndSHome",
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

TEST(WireTable, HasEveryFunctionOfTheHeader) {
  std::set<std::string> known = kLocal;
  for (const Row& row : kRows) EXPECT_TRUE(known.insert(row.function).second) << row.function << " has two rows";
  EXPECT_EQ(known, functionsOfHeader());
}

// "ls" and the like, in the order in which the kinds stand in a message.
std::string lettersOf(const WireImage& image) {
  return std::string(image.longs.size(), 'l') + std::string(image.doubles.size(), 'd') +
         std::string(image.texts.size(), 's') + std::string(image.lists.size(), 'S');
}

TEST(WireTable, AgreesWithTheCommandTable) {
  struct Command {
    std::int32_t code;
    std::string request;
  };
  const std::map<std::string, Command> commands = {
#define KOVA_COMMAND(code, name, request, reply) {#name, {code, request}},
#include "message/commands.def"
#undef KOVA_COMMAND
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.function);
    const auto command = commands.find(row.function);
    ASSERT_NE(command, commands.end());
    EXPECT_EQ(command->second.code, row.request.code);
    EXPECT_EQ(command->second.request, lettersOf(row.request));
  }
}

}  // namespace
