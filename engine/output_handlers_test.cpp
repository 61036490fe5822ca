// Procedures, text blocks, number styles, posted output and graphics, asked for as a client does.
#include "engine/output_handlers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/engine.h"
#include "engine/output_client.h"
#include "engine/output_graphic.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

const DimensionKey kRow{"Row", 0, 1, false, false};

class Output : public testing::Test {
 protected:
  Output() { client_.openData(); }

  const OutputSection& last() const { return client_.state.output.log.sections().back(); }
  template <typename Content>
  const Content& item(std::size_t position) const {
    return std::get<Content>(last().items.at(position).content);
  }

  OutputClient client_;
};

TEST_F(Output, AProcedureOpensAndEnds) {
  const auto isOpen = [this] {
    EXPECT_EQ(client_.ask(Command::HasProcedure), 0);
    return client_.reply.FirstLong();
  };
  EXPECT_EQ(isOpen(), 0);
  EXPECT_EQ(client_.start("Means", "Mittelwerte"), 0);
  EXPECT_EQ(isOpen(), 1);
  EXPECT_EQ(client_.end(), 0);
  EXPECT_EQ(isOpen(), 0);
  EXPECT_EQ(last().name, "Means");
  EXPECT_EQ(last().label, "Mittelwerte");
  client_.start("Plain");
  client_.end();
  EXPECT_EQ(last().label, "Plain") << "without a label the name is shown";
}

TEST_F(Output, OneProcedureAtATime) {
  EXPECT_EQ(client_.end(), 98101);
  EXPECT_EQ(client_.start(""), 98103);
  client_.start("One");
  EXPECT_EQ(client_.start("Two"), 98102);
  client_.end();
  EXPECT_EQ(last().name, "One");
  EXPECT_EQ(client_.end(), 98101);
}

TEST_F(Output, ItIsToldOfWhatIsFinished) {
  std::vector<std::string> told;
  client_.state.output.log.setListener([&told](const OutputSection& section) { told.push_back(section.name); });
  client_.ask(Command::PostKovaOutput, items("loose"));
  client_.start("One");
  EXPECT_THAT(told, ElementsAre(""));
  client_.end();
  EXPECT_THAT(told, ElementsAre("", "One"));
}

TEST_F(Output, FootnotesOfTheProcedure) {
  EXPECT_EQ(client_.ask(Command::AddProcFootnotes, items("early")), 98101);
  client_.start("P");
  EXPECT_EQ(client_.ask(Command::AddProcFootnotes, items("one")), 0);
  client_.ask(Command::AddProcFootnotes, items("two"));
  client_.ask(Command::AddProcFootnotes, items("one"));
  client_.end();
  EXPECT_THAT(last().notes, ElementsAre("one", "two"));
}

TEST_F(Output, TextBlocksGoOn) {
  EXPECT_EQ(client_.ask(Command::AddTextBlock, items("o", "t", "x", 0)), 98101);
  client_.start("P");
  EXPECT_EQ(client_.ask(Command::AddTextBlock, items("o", "t", "first", 0)), 0);
  client_.ask(Command::AddTextBlock, items("o", "t", "second", 0));
  client_.ask(Command::AddTextBlock, items("o", "t", "third", 2));
  client_.ask(Command::AddTextBlock, items("o", "other", "new", 1));
  EXPECT_EQ(client_.ask(Command::AddTextBlock, items("o", "t", "x", -1)), 98112);
  EXPECT_EQ(client_.ask(Command::AddTextBlock, items("o", "t", "x", 1001)), 98112);
  client_.end();
  ASSERT_EQ(last().items.size(), 2U);
  EXPECT_EQ(item<TextBlock>(0).text, "first\nsecond\n\n\nthird");
  EXPECT_EQ(item<TextBlock>(1).text, "\nnew");
}

TEST_F(Output, PostedOutputStandsWhereItCame) {
  EXPECT_EQ(client_.ask(Command::PostKovaOutput, items(std::string("a\0b", 3))), 0) << "NUL bytes are kept here";
  EXPECT_FALSE(last().isProcedure());
  EXPECT_EQ(item<PostedText>(0).text, std::string("a\0b", 3));
  client_.start("P");
  client_.ask(Command::PostKovaOutput, items("inside"));
  client_.end();
  EXPECT_EQ(item<PostedText>(0).text, "inside");
  EXPECT_EQ(client_.ask(Command::PostKovaOutput, items("\xFF")), 98012);
}

// What each style makes of three numbers: the documented table.
struct StyleRow {
  Command command;
  int variable;  // -1 for a style of its own.
  const char* shown[3];
};

constexpr double kNumbers[] = {1234.56789, -0.5, 0.0001};
constexpr StyleRow kStyles[] = {
    {Command::SetFormatSpecCoefficient, -1, {"1234.568", "-0.500", "1.000E-04"}},
    {Command::SetFormatSpecCoefficientSE, -1, {"1234.568", "-0.500", "1.000E-04"}},
    {Command::SetFormatSpecCoefficientVar, -1, {"1234.568", "-0.500", "1.000E-04"}},
    {Command::SetFormatSpecCorrelation, -1, {"1234.568", "-0.500", "0.000"}},
    {Command::SetFormatSpecGeneralStat, -1, {"1234.568", "-0.500", "1.000E-04"}},
    {Command::SetFormatSpecMean, 1, {"1,234.568", "-0.500", "0.000"}},
    {Command::SetFormatSpecCount, -1, {"1235", "0", "0"}},
    {Command::SetFormatSpecPercent, -1, {"1234.6%", "-0.5%", "0.0%"}},
    {Command::SetFormatSpecPercentNoSign, -1, {"1234.6", "-0.5", "0.0"}},
    {Command::SetFormatSpecProportion, -1, {"1234.568", "-0.500", "0.000"}},
    {Command::SetFormatSpecSignificance, -1, {"1234.568", "-0.500", "<0.001"}},
    {Command::SetFormatSpecResidual, -1, {"1234.568", "-0.500", "1.000E-04"}},
    {Command::SetFormatSpecVariable, 1, {"1,234.6", "-0.5", "0.0"}},
    {Command::SetFormatSpecStdDev, 1, {"1,234.568", "-0.500", "0.000"}},
    {Command::SetFormatSpecDifference, 1, {"1,234.6", "-0.5", "0.0"}},
    {Command::SetFormatSpecSum, 1, {"1,234.6", "-0.5", "0.0"}},
};

TEST_F(Output, EveryNumberStyle) {
  for (const StyleRow& row : kStyles) {
    const char* name = commandName(static_cast<int>(row.command));
    client_.start("P");
    const OutputItems which = row.variable < 0 ? OutputItems() : items(row.variable);
    EXPECT_EQ(client_.ask(row.command, which), 0) << name;
    auto table = client_.table({"o", "t", "s", false});
    table.dimension(kRow);
    for (const double number : kNumbers) {
      table.tell(Command::AddNumberCategory, kRow, items(number)).number(kRow, number);
    }
    EXPECT_EQ(table.code(), 0);
    client_.end();
    const auto& cells = item<PivotTable>(0).cells();
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(cells.at(i).value.shown, row.shown[i]) << name;
    EXPECT_EQ(cells.at(0).value.style, std::string(name).substr(std::string("SetFormatSpec").size()));
  }
}

TEST_F(Output, AVariablesStyleIsThatOfItsFormat) {
  client_.start("P");
  client_.ask(Command::SetFormatSpecMean, items(0));
  EXPECT_EQ(numberText(2, client_.state.output.log.style()), "2.00") << "F8.0 with two decimals more";
  client_.ask(Command::SetFormatSpecMean, items(3));
  EXPECT_EQ(numberText(0, client_.state.output.log.style()), "1970-01-01") << "days have no decimals";
}

TEST_F(Output, StylesNeedAProcedureAndItsVariable) {
  EXPECT_EQ(client_.ask(Command::SetFormatSpecCount), 98101);
  EXPECT_EQ(client_.ask(Command::SetFormatSpecSum, items(1)), 98101);
  client_.start("P");
  for (const StyleRow& row : kStyles) {
    if (row.variable < 0) continue;
    EXPECT_EQ(client_.ask(row.command, items(4)), 10);
    EXPECT_EQ(client_.ask(row.command, items(-1)), 10);
    EXPECT_EQ(client_.ask(row.command, items(2)), 24) << "a string has no number format";
    EXPECT_EQ(client_.ask(row.command), 98003);
  }
  client_.state.active = nullptr;
  EXPECT_EQ(client_.ask(Command::SetFormatSpecSum, items(1)), 98004);
}

TEST_F(Output, AProcedureBeginsWithTheGeneralStyle) {
  client_.start("P");
  client_.ask(Command::SetFormatSpecCount);
  client_.end();
  client_.start("Q");
  EXPECT_STREQ(client_.state.output.log.style().name, "GeneralStat");
}

TEST_F(Output, ASplitChangeBeginsAGroup) {
  EXPECT_EQ(client_.ask(Command::SplitChange, items("P")), 0) << "without a procedure there is nothing to do";
  client_.start("P");
  client_.ask(Command::SplitChange, items("P"));
  const TableKey split{"o", "t", "s", true};
  const TableKey whole{"o", "t", "s", false};
  EXPECT_EQ(client_.table(split).code(), 0);
  EXPECT_EQ(client_.table(whole).code(), 0);
  client_.ask(Command::SplitChange, items("P"));
  client_.ask(Command::SplitChange, items("P"));
  EXPECT_EQ(client_.ask(Command::HidePivotTableTitle, split), 98105) << "the group's table is not begun yet";
  EXPECT_EQ(client_.table(split).code(), 0);
  EXPECT_EQ(client_.table(whole).code(), 98104) << "the table without the flag goes on";
  client_.ask(Command::SplitChange, items("P"));
  client_.end();
  ASSERT_EQ(last().items.size(), 3U);
  EXPECT_EQ(last().items[1].splitGroup, 1);
  EXPECT_EQ(last().items[2].splitGroup, 2) << "a change without output between counts once";
}

std::string pngBytes() {
  std::string bytes("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x40\0\0\x01\0", 24);
  return bytes + "the rest";
}

TEST_F(Output, GraphicsAreTakenIn) {
  const kit::ScratchFolder folder;
  folder.write("plot.png", pngBytes());
  client_.ask(Command::SetGraphicsLabel, items("A plot", "Plots"));
  EXPECT_EQ(client_.ask(Command::GetGraphic, items(folder.path("plot.png"))), 0);
  const auto& graphic = item<Graphic>(0);
  EXPECT_EQ(graphic.name, "image1");
  EXPECT_EQ(graphic.label, "A plot");
  EXPECT_EQ(graphic.outline, "Plots");
  EXPECT_EQ(graphic.type, "PNG");
  EXPECT_EQ(graphic.width, 64);
  EXPECT_EQ(graphic.height, 256);
  EXPECT_EQ(graphic.bytes, pngBytes());
  client_.ask(Command::GetGraphic, items(folder.path("plot.png")));
  EXPECT_EQ(item<Graphic>(0).name, "image2");
}

TEST_F(Output, OtherFilesAreNoGraphics) {
  const kit::ScratchFolder folder;
  folder.write("text.png", "just text that is long enough to be looked at");
  folder.write("short.png", pngBytes().substr(0, 20));
  std::string empty = pngBytes();
  empty[19] = '\0';
  folder.write("empty.png", empty);
  for (const char* name : {"text.png", "short.png", "empty.png", "missing.png", "."}) {
    EXPECT_EQ(client_.ask(Command::GetGraphic, items(folder.path(name))), 98113) << name;
  }
  EXPECT_EQ(client_.ask(Command::GetGraphic, items("")), 98113);
  EXPECT_TRUE(client_.state.output.log.sections().empty());
}

TEST_F(Output, TextsMustBeUtf8WithoutNul) {
  const std::string bad = "\xC3(";
  const std::string nul("a\0b", 3);
  client_.start("P");
  for (const auto& [text, code] : {std::pair{bad, 98012}, std::pair{nul, 98013}}) {
    EXPECT_EQ(client_.ask(Command::AddProcFootnotes, items(text)), code);
    EXPECT_EQ(client_.ask(Command::AddTextBlock, items("o", "t", text, 0)), code);
    EXPECT_EQ(client_.ask(Command::SetGraphicsLabel, items(text, "o")), code);
    EXPECT_EQ(client_.ask(Command::GetGraphic, items(text)), code);
    EXPECT_EQ(client_.ask(Command::SplitChange, items(text)), code);
    EXPECT_EQ(client_.start(text), code);
  }
}

// The engine's own side: what a program that offers it does with the output.
class EngineOutput : public testing::Test {
 protected:
  EngineOutput() {
    engine_.onOutput([this](const std::string& text) { shown_.push_back(text); });
  }

  void tell(Command command, const std::vector<std::string>& texts = {}) {
    CleXDSmb request;
    CleXDSmb reply;
    request.SetCommandAction(command);
    for (const std::string& text : texts) request.SetString(text);
    engine_.perform(request, reply);
    EXPECT_EQ(reply.GetErrorCode(), 0);
  }

  Engine engine_;
  std::vector<std::string> shown_;
};

TEST_F(EngineOutput, IsShownPieceByPiece) {
  tell(Command::PostKovaOutput, {"posted"});
  EXPECT_THAT(shown_, ElementsAre("posted\n"));
  tell(Command::StartProcedure, {"One", "One"});
  EXPECT_EQ(shown_.size(), 1U);
  tell(Command::EndProcedure);
  EXPECT_THAT(shown_, ElementsAre("posted\n", "\nOne\n===\n\n"));
  EXPECT_THAT(engine_.htmlOutput(), testing::HasSubstr("<h2 id=\"s2-heading\">One</h2>"));
}

// As what a script prints does.
TEST_F(EngineOutput, PostsStandLineBelowLine) {
  tell(Command::PostKovaOutput, {"one"});
  tell(Command::PostKovaOutput, {"two\n\nthree\n"});
  tell(Command::StartProcedure, {"P", "P"});
  tell(Command::EndProcedure);
  tell(Command::StartProcedure, {"Q", "Q"});
  tell(Command::EndProcedure);
  tell(Command::PostKovaOutput, {"four"});
  EXPECT_THAT(shown_, ElementsAre("one\n", "two\n\nthree\n", "\nP\n=\n\n", "Q\n=\n\n", "four\n"));
}

TEST_F(EngineOutput, AProcedureThatWasLeftOpenIsEnded) {
  tell(Command::StartProcedure, {"Open", "Open"});
  engine_.endOutput();
  EXPECT_EQ(shown_.size(), 1U);
  engine_.endOutput();
  EXPECT_EQ(shown_.size(), 1U);
}

}  // namespace
}  // namespace kova::engine
