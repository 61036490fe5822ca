// What becomes of unusual arguments on their way into a request.
#include "api/call_arguments.h"

#include "tests/api/client_test.h"

namespace {

using kova::WireImage;
using testing::ElementsAre;

class CallArguments : public kova::ClientTest {
 protected:
  CallArguments() { StartEngine(WireImage{}); }
};

TEST_F(CallArguments, ANullTextIsNotSentAndLaterOnesMoveUp) {
  EXPECT_EQ(Submit(nullptr, 4), 0);
  EXPECT_EQ(SetVarLabel("v", nullptr), 0);
  EXPECT_EQ(SetVarCValueLabel("v", nullptr, "label"), 0);
  EXPECT_EQ(AddOutlineFootnotes("a", nullptr, "c", "note", false), 0);
  GetGraphic(nullptr);
  EXPECT_THAT(Requests(), ElementsAre(WireImage{.code = 0}.bytes(), WireImage{.code = 81, .texts = {"v"}}.bytes(),
                                      WireImage{.code = 82, .texts = {"v", "label"}}.bytes(),
                                      WireImage{.code = 36, .longs = {0}, .texts = {"a", "c", "note"}}.bytes(),
                                      WireImage{.code = 201}.bytes()));
}

TEST_F(CallArguments, CountedTextsAreTheirFirstBytes) {
  EXPECT_EQ(PostKovaOutput("prefix and more", 6), 0);
  EXPECT_EQ(PostKovaOutput("text", -1), 0);
  EXPECT_EQ(QueueCommandPart("a\0b", 3), 0);
  EXPECT_THAT(Requests(), ElementsAre(WireImage{.code = 6, .texts = {"prefix"}}.bytes(),
                                      WireImage{.code = 6, .texts = {""}}.bytes(),
                                      WireImage{.code = 5, .texts = {std::string("a\0b", 3)}}.bytes()));
}

TEST_F(CallArguments, TextsOfAnyLengthAndEncodingGoAsTheyAre) {
  const std::string text = std::string(20000, 'x') + "\xE9\xFF <&'\"> \x01";
  EXPECT_EQ(SetVarLabel(text.c_str(), ""), 0);
  EXPECT_THAT(Requests(), ElementsAre(WireImage{.code = 81, .texts = {text, ""}}.bytes()));
}

TEST_F(CallArguments, ListsOfTextsMayBeNullEmptyOrHaveHoles) {
  const char* const values[] = {"one", nullptr, "three"};
  EXPECT_EQ(SetDataFileAttributesInDS("ds", "a", values, 3), 0);
  EXPECT_EQ(SetDataFileAttributesInDS("ds", "a", values, 0), 0);
  EXPECT_EQ(SetDataFileAttributesInDS("ds", "a", values, -2), 0);
  EXPECT_EQ(SetDataFileAttributesInDS("ds", "a", nullptr, 2), 0);
  const std::vector<std::string> texts = {"ds", "a"};
  EXPECT_THAT(Requests(), ElementsAre(WireImage{.code = 169, .texts = texts, .lists = {{"one", "three"}}}.bytes(),
                                      WireImage{.code = 169, .texts = texts, .lists = {{}}}.bytes(),
                                      WireImage{.code = 169, .texts = texts, .lists = {{}}}.bytes(),
                                      WireImage{.code = 169, .texts = texts}.bytes()));
}

TEST_F(CallArguments, AProcedureWithoutALabelIsLabelledByItsName) {
  EXPECT_EQ(StartProcedure("Means", nullptr), 0);
  EXPECT_EQ(StartProcedure("Means", ""), 0);
  EXPECT_THAT(Requests(), ElementsAre(WireImage{.code = 78, .texts = {"Means", "Means"}}.bytes(),
                                      WireImage{.code = 78, .texts = {"Means", ""}}.bytes()));
}

// A caller in another language knows the C declaration by hearsay and passes an int where a bool stands.
TEST_F(CallArguments, AnyTableFlagButZeroIsSentAsOne) {
  using WithInt = int (*)(const char*, const char*, const char*, int);
  const auto start = reinterpret_cast<WithInt>(reinterpret_cast<void (*)()>(&StartPivotTable));
  for (const int flag : {0, 1, 2, 128, 255}) EXPECT_EQ(start("a", "b", "c", flag), 0);
  std::vector<kova::kit::Bytes> expected;
  for (const int sent : {0, 1, 1, 1, 1}) {
    expected.push_back(WireImage{.code = 35, .longs = {sent}, .texts = {"a", "b", "c"}}.bytes());
  }
  EXPECT_EQ(Requests(), expected);
}

TEST_F(CallArguments, CellFootnotesSendFiveTextsAndFiveNumbers) {
  EXPECT_EQ(AddCellFootnotes("a", "b", "c", false, "d", 5, 6, true, false, "note"), 0);
  EXPECT_THAT(
      Requests(),
      ElementsAre(WireImage{.code = 73, .longs = {0, 5, 6, 1, 0}, .texts = {"a", "b", "c", "d", "note"}}.bytes()));
}

}  // namespace
