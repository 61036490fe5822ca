// What becomes of unusual replies on their way to the caller.
#include "api/call_results.h"

#include "api/caller_memory.h"
#include "tests/api/client_test.h"

namespace {

using kova::WireImage;
using kova::kit::Bytes;

class CallResults : public kova::ClientTest {
 protected:
  // Starts an engine that answers with what `reply` holds at the time.
  CallResults() {
    StartEngine([this](const Bytes&) { return Answer{reply.bytes()}; });
  }

  WireImage reply;
};

TEST_F(CallResults, NullPlacesDropTheirResults) {
  reply = {.longs = {2, 8, 2},
           .doubles = {1, 2, 3},
           .texts = {"a", "b", "c"},
           .lists = {{"x", "y"}, {"z", "w"}},
           .binary = "bytes",
           .wide = u"w"};
  EXPECT_EQ(GetVariableCount(nullptr), 2);
  EXPECT_STREQ(GetVariableName(0, nullptr), "a");
  EXPECT_EQ(GetVariableFormatType(0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(GetVarNMissingValues(0, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(GetVarCMissingValues(0, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(GetNValueLabels(0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(GetCValueLabels(0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(GetSystemMissingValue(nullptr), 0);
  EXPECT_EQ(GetKOVALowHigh(nullptr, nullptr), 0);
  EXPECT_EQ(GetVarAttributeNames(0, nullptr, nullptr), 0);
  EXPECT_EQ(GetMultiResponseSet("$s", nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(GetCLocale(nullptr), 0);
  EXPECT_EQ(GetHostAppNameAndVersion(nullptr, nullptr), 0);
  EXPECT_EQ(GetSetting("a", "b", nullptr), 0);
  EXPECT_EQ(GetNestDepth(nullptr), 0);
  EXPECT_EQ(GetXmlUtf16("h", nullptr)[0], 'w');
  EXPECT_EQ(FreeString(GetImage("a", "b", nullptr, nullptr, nullptr)), 0);
  EXPECT_EQ(FreeStringArray(GetFileHandles(nullptr, nullptr), 3), 0);
  RemoveStringList(GetHandleList(nullptr));
}

TEST_F(CallResults, NullPlacesAreAllowedWhenTheEngineIsNotRunning) {
  SetKovaRunning(false);
  EXPECT_EQ(GetSetting("a", "b", nullptr), 17);
  EXPECT_EQ(GetFileHandles(nullptr, nullptr), nullptr);
  EXPECT_EQ(GetNestDepth(nullptr), 17);
}

struct CountRow {
  const char* label;
  int stated;
  int texts;
  int expected;
};

TEST_F(CallResults, StatedCountsAreBelievedAsFarAsTheTextsGo) {
  const CountRow rows[] = {{"fewer texts", 3, 2, 2},     {"more texts", 1, 3, 1}, {"none", 0, 2, 0},
                           {"negative count", -4, 2, 0}, {"no texts", 2, 0, 0},   {"huge count", 0x7fffffff, 2, 2}};
  for (const CountRow& row : rows) {
    SCOPED_TRACE(row.label);
    reply = {.longs = {row.stated}, .texts = std::vector<std::string>(static_cast<std::size_t>(row.texts), "t")};
    char** names = nullptr;
    int count = -1;
    EXPECT_EQ(GetDataFileAttributeNames(&names, &count), 0);
    EXPECT_EQ(count, row.expected);
    EXPECT_EQ(names != nullptr, row.expected > 0);
    EXPECT_EQ(FreeAttributeNames(names, count), 0);
  }
}

TEST_F(CallResults, AMissingSecondDoubleIsZero) {
  reply = {.doubles = {4.5}};
  double low = -1;
  double high = -1;
  EXPECT_EQ(GetKOVALowHigh(&low, &high), 0);
  EXPECT_EQ(low, 4.5);
  EXPECT_EQ(high, 0.0);
}

TEST_F(CallResults, AResponseSetWithoutVariablesHasNoList) {
  reply = {.longs = {2}, .texts = {"label", "1"}};
  char* label = nullptr;
  char* value = nullptr;
  char** names = nullptr;
  int codeAs = -1;
  int count = -1;
  EXPECT_EQ(GetMultiResponseSet("$s", &label, &codeAs, &value, &names, &count), 0);
  EXPECT_STREQ(label, "label");
  EXPECT_STREQ(value, "1");
  EXPECT_EQ(codeAs, 2);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(names, nullptr);
  FreeString(label);
  FreeString(value);
}

// ---- The shared text.

TEST_F(CallResults, TheSettingSharesTheTextOfTheOtherCalls) {
  reply.texts = {"first"};
  char* value = nullptr;
  EXPECT_EQ(GetSetting("a", "b", &value), 0);
  EXPECT_STREQ(value, "first");
  reply.texts = {"other"};
  const char* const name = GetWeightVar(nullptr);
  EXPECT_STREQ(name, "other");
  EXPECT_EQ(static_cast<const char*>(value), name);
  reply.texts = {"third"};
  EXPECT_EQ(GetSetting("a", "b", &value), 0);
  EXPECT_STREQ(value, "third");
  EXPECT_EQ(static_cast<const char*>(value), name);
}

TEST_F(CallResults, AFailedSettingIsNull) {
  for (const bool running : {true, false}) {
    SetKovaRunning(running);
    reply = {.error = 31, .texts = {"text"}};
    char some[] = "some";
    char* value = some;
    EXPECT_EQ(GetSetting("a", "b", &value), running ? 31 : 17);
    EXPECT_EQ(value, nullptr);
  }
}

// ---- The wide text.

std::u16string wide(const unsigned short* text) {
  if (!text) return u"none";
  std::u16string units;
  for (; *text != 0; ++text) units.push_back(static_cast<char16_t>(*text));
  return units;
}

TEST_F(CallResults, TheWideTextIsReplacedByTheNextCallOnly) {
  reply.wide = u"first";
  const unsigned short* const first = GetXmlUtf16("a", nullptr);
  EXPECT_EQ(wide(first), u"first");
  reply = {.texts = {"text"}};
  EXPECT_STREQ(GetVariableName(0, nullptr), "text");
  EXPECT_EQ(wide(first), u"first");
  reply = {.wide = u"\U0001F427 second"};
  EXPECT_EQ(wide(GetXmlUtf16("b", nullptr)), u"\U0001F427 second");
}

TEST_F(CallResults, AWideTextIsTakenWhateverTheEnginesCodeIs) {
  int code = -1;
  reply = {.error = 5};
  EXPECT_EQ(wide(GetXmlUtf16("a", &code)), u"");
  EXPECT_EQ(code, 0);
  reply = {.error = 5, .wide = u"text"};
  EXPECT_EQ(wide(GetXmlUtf16("a", &code)), u"text");
  EXPECT_EQ(code, 0);
  EXPECT_EQ(GetXmlUtf16Length(), 0);
}

TEST_F(CallResults, LongWideTextsCrossWhole) {
  reply.wide = std::u16string(30000, u'\u20AC');
  EXPECT_EQ(wide(GetXmlUtf16("a", nullptr)), reply.wide);
}

// ---- The image.

struct ImageRow {
  const char* label;
  int stated;
  const char* binary;
  const char* expected;
};

TEST_F(CallResults, AnImageIsAsLongAsStatedAndThere) {
  const ImageRow rows[] = {{"as stated", 4, "abcd", "abcd"},     {"more than there", 1000, "abcd", "abcd"},
                           {"less than there", 2, "abcd", "ab"}, {"nothing stated", 0, "abcd", ""},
                           {"negative", -5, "abcd", ""},         {"nothing there", 4, "", ""}};
  for (const ImageRow& row : rows) {
    SCOPED_TRACE(row.label);
    reply = {.longs = {row.stated}, .texts = {"image/png"}, .binary = row.binary};
    int size = -1;
    int code = -1;
    char* type = nullptr;
    char* const image = GetImage("a", "b", &size, &type, &code);
    ASSERT_NE(image, nullptr);
    EXPECT_STREQ(image, row.expected);  // With a NUL of its own behind the bytes.
    EXPECT_EQ(size, static_cast<int>(std::string(row.expected).size()));
    EXPECT_STREQ(type, "image/png");
    EXPECT_EQ(code, 0);
    FreeString(image);
    FreeString(type);
  }
}

TEST_F(CallResults, AnImageWithoutATypeHasANullOne) {
  reply = {.longs = {1}, .texts = {""}, .binary = "x"};
  char some[] = "some";
  char* type = some;
  FreeString(GetImage("a", "b", nullptr, &type, nullptr));
  EXPECT_EQ(type, nullptr);
}

TEST_F(CallResults, AnImageIsTakenWhateverTheEnginesCodeIs) {
  reply = {.error = 31, .longs = {1}, .binary = "x"};
  int code = -1;
  char* const image = GetImage("a", "b", nullptr, nullptr, &code);
  EXPECT_EQ(code, 0);
  EXPECT_STREQ(image, "x");
  FreeString(image);
}

// ---- Calls whose codes nobody sees.

TEST_F(CallResults, AnOpenProcedureIsSeenWhateverTheEnginesCodeIs) {
  reply = {.error = 31, .longs = {1}};
  EXPECT_EQ(HasProcedure(), 1);
  EXPECT_EQ(GetZenthorServerMode(), -1);
  EXPECT_FALSE(IsDistributedMode());
  reply = {};
  EXPECT_EQ(HasProcedure(), 0);
  EXPECT_EQ(GetZenthorServerMode(), 0);
}

TEST_F(CallResults, ADrivenEngineIsAskedOnlyWhenItIsReady) {
  EXPECT_FALSE(IsXDriven());
  EXPECT_EQ(Requests(), (std::vector<Bytes>{WireImage{.code = 1}.bytes()}));
  reply.longs = {1};
  EXPECT_TRUE(IsXDriven());
  EXPECT_EQ(Requests().size(), 3u);
}

}  // namespace
