// Output read back: documents by handle, XPath, images, tags.
#include "engine/xpath_handlers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "engine/output_client.h"
#include "tests/kit/scratch_folder.h"
#include "trace/DxTracer.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const TableKey kTable{"Outline", "<Title> & 'more'", "means", false};
const DimensionKey kRow{"Species", 0, 1, false, false};
const DimensionKey kColumn{"Statistics", 1, 1, true, false};

class XPath : public testing::Test {
 protected:
  XPath() { client_.openData(); }

  // A procedure with one small table and a footnote.
  void putOut(const std::string& name) {
    client_.start(name);
    auto table = client_.table(kTable);
    table.dimension(kRow).dimension(kColumn);
    for (const char* species : {"Adelie", "Gentoo"}) {
      table.category(kRow, species).category(kColumn, "Mean").number(kColumn, 3706.1642);
    }
    table.tell(Command::AddCellFootnotes, kColumn, items("Note \"one\""));
    client_.end();
  }

  std::vector<std::string> evaluate(const std::string& expression, const std::string& context = "/",
                                    const std::string& handle = "output") {
    EXPECT_EQ(client_.ask(Command::EvaluateXPath, items(handle, context, expression)), 0) << expression;
    return client_.reply.Strings().values();
  }

  int failure(const std::string& expression, const std::string& context = "/", const std::string& handle = "output") {
    const int code = client_.ask(Command::EvaluateXPath, items(handle, context, expression));
    EXPECT_EQ(client_.reply.Strings().Size(), 0);
    return code;
  }

  std::u16string xml(const std::string& handle) {
    EXPECT_EQ(client_.ask(Command::GetXmlUtf16, items(handle)), 0);
    const WideUnit* units = client_.reply.GetwStringData();
    std::u16string text;
    for (; units != nullptr && *units != 0; ++units) text += static_cast<char16_t>(*units);
    return text;
  }

  OutputClient client_;
};

TEST_F(XPath, TheOutputAnswers) {
  putOut("Summary");
  EXPECT_THAT(evaluate("/output/procedure/@name"), ElementsAre("Summary"));
  EXPECT_THAT(evaluate("//table/@title"), ElementsAre("<Title> & 'more'"));
  EXPECT_THAT(evaluate("//cell[at[@dimension='Species']/@category='Gentoo']"), ElementsAre("3706.164"));
  EXPECT_THAT(evaluate("//cell/@number"), ElementsAre("3706.1642", "3706.1642"));
  EXPECT_THAT(evaluate("//cell/@marks"), ElementsAre("a"));
  EXPECT_THAT(evaluate("//footnote[@mark='a']/text()"), ElementsAre("Note \"one\""));
  EXPECT_THAT(evaluate("//category"), ElementsAre("Adelie", "Gentoo", "Mean"));
  EXPECT_THAT(evaluate("//nothing"), ElementsAre());
}

TEST_F(XPath, ResultsThatAreNoNodes) {
  putOut("Summary");
  EXPECT_THAT(evaluate("count(//cell)"), ElementsAre("2"));
  EXPECT_THAT(evaluate("count(//cell) > 1"), ElementsAre("true"));
  EXPECT_THAT(evaluate("concat('a', string(//procedure/@name))"), ElementsAre("aSummary"));
  EXPECT_THAT(evaluate("1 div 2"), ElementsAre("0.5"));
}

TEST_F(XPath, ResultsStandInTheDocumentsOrder) {
  putOut("Summary");
  EXPECT_THAT(evaluate("//cell[1]/@number | //procedure/@name"), ElementsAre("Summary", "3706.1642"));
}

TEST_F(XPath, TheContextIsTheFirstNodeThatItSelects) {
  putOut("One");
  putOut("Two");
  EXPECT_THAT(evaluate("@name", "/output/procedure"), ElementsAre("One"));
  EXPECT_THAT(evaluate("@name", "/output/procedure[2]"), ElementsAre("Two"));
  EXPECT_THAT(evaluate("output/procedure/@name", ""), ElementsAre("One", "Two"));
  EXPECT_EQ(failure("@name", "/output/procedure[3]"), 98119);
}

TEST_F(XPath, TheOutputGrows) {
  EXPECT_THAT(evaluate("count(/output/procedure)"), ElementsAre("0"));
  putOut("One");
  EXPECT_THAT(evaluate("count(/output/procedure)"), ElementsAre("1"));
  client_.ask(Command::PostKovaOutput, items(std::string("lo\0ose", 6)));
  client_.start("Open");
  EXPECT_THAT(evaluate("/output/posted"), ElementsAre("lo\uFFFDose"));
  EXPECT_THAT(evaluate("count(/output/*)"), ElementsAre("2")) << "an open procedure is not finished output";
}

TEST_F(XPath, WhatIsNoExpression) {
  const kit::ScratchFolder folder;
  DxTracer tracer;
  tracer.open(folder.path("trace.log"));
  SetDxTracer(&tracer);
  EXPECT_EQ(failure("//table["), 98118);
  SetDxTracer(nullptr);
  EXPECT_EQ(failure("@name", "]]"), 98118);
  EXPECT_EQ(failure("@name", "1 + 1"), 98118) << "a context is nodes";
  EXPECT_EQ(failure(""), 98118);
  EXPECT_EQ(failure("unknown()"), 98118);
  EXPECT_EQ(failure("$variable"), 98118);
  EXPECT_EQ(failure(std::string(100000, '(')), 98118);
  EXPECT_EQ(failure("\xFF"), 98012);
  EXPECT_EQ(failure("a", "/", std::string("o\0", 2)), 98013);
  std::string line;
  std::ifstream file(folder.path("trace.log"));
  std::getline(file, line);
  std::getline(file, line);
  EXPECT_THAT(line, testing::EndsWith("at byte 8 of //table["));
}

TEST_F(XPath, HandlesComeAndGo) {
  const auto handles = [this] {
    EXPECT_EQ(client_.ask(Command::GetHandleList), 0);
    return client_.reply.Strings().values();
  };
  EXPECT_THAT(handles(), ElementsAre("output"));
  EXPECT_EQ(client_.ask(Command::CreateXPathDictionary, items("zoo")), 0);
  EXPECT_EQ(client_.ask(Command::CreateXPathDictionary, items("ark")), 0);
  EXPECT_THAT(handles(), ElementsAre("output", "ark", "zoo"));
  EXPECT_EQ(client_.ask(Command::CreateXPathDictionary, items("zoo")), 98116);
  EXPECT_EQ(client_.ask(Command::CreateXPathDictionary, items("output")), 98117);
  EXPECT_EQ(client_.ask(Command::CreateXPathDictionary, items("")), 98103);
  EXPECT_EQ(client_.ask(Command::RemoveXPathHandle, items("zoo")), 0);
  EXPECT_EQ(client_.ask(Command::RemoveXPathHandle, items("zoo")), 98115) << "removed twice";
  EXPECT_EQ(client_.ask(Command::RemoveXPathHandle, items("output")), 98117);
  EXPECT_EQ(failure("/", "/", "zoo"), 98115);
  EXPECT_THAT(handles(), ElementsAre("output", "ark"));
  client_.state.active = nullptr;
  EXPECT_EQ(client_.ask(Command::CreateXPathDictionary, items("new")), 98004);
}

TEST_F(XPath, TheDictionaryAnswers) {
  Variable& sex = client_.state.active->variables.change(0);
  sex.missing = {kMissingRangeAndOne, {-9, -1, 99}, {}};
  sex.measure = Measure::kNominal;
  sex.attributes = {{"source", {"field", "\"book\""}}};
  client_.state.active->responseSets = {{"$both", "Both", ResponseSetKind::kDichotomies, "1", {"sex", "body_mass"}}};
  client_.ask(Command::CreateXPathDictionary, items("d"));
  const auto ask = [this](const std::string& expression) { return evaluate(expression, "/dictionary", "d"); };
  EXPECT_THAT(ask("@name"), ElementsAre("penguins"));
  EXPECT_THAT(ask("variable/@name"), ElementsAre("sex", "body_mass", "island", "seen"));
  EXPECT_THAT(ask("variable[@name='sex']/@*"),
              ElementsAre("0", "sex", "Sex of the penguin", "number", "F8.0", "nominal", "input", "right", "8"));
  EXPECT_THAT(ask("variable[@type='string']/@width"), ElementsAre("9"));
  EXPECT_THAT(ask("variable[@name='sex']/label[@value='2']"), ElementsAre("Male"));
  EXPECT_THAT(ask("variable[@name='island']/label/@value"), ElementsAre("BIS"));
  EXPECT_THAT(ask("variable/missing/@*"), ElementsAre("-9", "-1", "99"));
  EXPECT_THAT(ask("variable/attribute[@name='source']/value"), ElementsAre("field", "\"book\""));
  EXPECT_THAT(ask("response-set/@*"), ElementsAre("$both", "Both", "dichotomies", "1"));
  EXPECT_THAT(ask("response-set/member/@variable"), ElementsAre("sex", "body_mass"));
}

TEST_F(XPath, TheDictionaryIsAsItWasThen) {
  client_.ask(Command::CreateXPathDictionary, items("d"));
  client_.state.active->variables.change(0).label = "changed";
  EXPECT_THAT(evaluate("//variable[1]/@label", "/", "d"), ElementsAre("Sex of the penguin"));
}

TEST_F(XPath, XmlInUtf16) {
  EXPECT_EQ(client_.ask(Command::GetXmlUtf16Length), 0);
  EXPECT_EQ(client_.reply.FirstLong(), 0);
  client_.ask(Command::PostKovaOutput, items("A \U0001F427 <&>"));
  const std::u16string text = xml("output");
  EXPECT_EQ(text,
            u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n"
            u"<output>\n  <posted>A \U0001F427 &lt;&amp;&gt;</posted>\n</output>\n");
  client_.ask(Command::GetXmlUtf16Length);
  EXPECT_EQ(client_.reply.FirstLong(), static_cast<int>(text.size()))
      << "a character beyond the first plane counts two";
  EXPECT_EQ(client_.ask(Command::GetXmlUtf16, items("unknown")), 98115);
}

TEST_F(XPath, TheWholeDocument) {
  client_.start("Summary", "Zusammenfassung");
  client_.ask(Command::AddProcFootnotes, items("about all"));
  auto table = client_.table(kTable);
  table.dimension(kRow).category(kRow, "a").number(kRow, 0.5);
  table.tell(Command::PivotTableCaption, items("Caption")).tell(Command::HidePivotTableTitle);
  client_.ask(Command::AddTextBlock, items("o", "t", "line", 0));
  client_.end();
  EXPECT_EQ(xml("output"),
            uR"xml(<?xml version="1.0" encoding="UTF-16"?>
<output>
  <procedure name="Summary" label="Zusammenfassung" marks="a">
    <table title="&lt;Title> &amp; 'more'" subtype="means" outline="Outline" title-hidden="true">
      <dimension name="Species" place="row" position="1">
        <category type="text">a</category>
      </dimension>
      <cell type="number" number="0.5" format="GeneralStat">
        <at dimension="Species" category="a" />0.500</cell>
      <caption>Caption</caption>
    </table>
    <text title="t" outline="o">line</text>
    <footnote mark="a">about all</footnote>
  </procedure>
</output>
)xml");
}

TEST_F(XPath, Images) {
  const kit::ScratchFolder folder;
  const std::string bytes("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x02\0\0\0\x03 pixels", 31);
  folder.write("plot.png", bytes);
  client_.ask(Command::GetGraphic, items(folder.path("plot.png")));
  EXPECT_THAT(evaluate("//image/@name"), ElementsAre("image1"));
  EXPECT_THAT(evaluate("//image/@height"), ElementsAre("3"));
  EXPECT_EQ(client_.ask(Command::GetImage, items("output", "image1")), 0);
  EXPECT_STREQ(client_.reply.FirstString(), "PNG");
  EXPECT_EQ(client_.reply.FirstLong(), 31);
  EXPECT_EQ(std::string(client_.reply.GetBinaryData(), static_cast<std::size_t>(client_.reply.BinaryLength())), bytes);
  EXPECT_EQ(client_.ask(Command::GetImage, items("output", "image2")), 98114);
  EXPECT_EQ(client_.ask(Command::GetImage, items("unknown", "image1")), 98115);
  client_.ask(Command::CreateXPathDictionary, items("d"));
  EXPECT_EQ(client_.ask(Command::GetImage, items("d", "image1")), 98114);
}

TEST_F(XPath, Tags) {
  putOut("Summary");
  putOut("Other");
  putOut("Summary");
  EXPECT_EQ(client_.ask(Command::GetOMSTagList), 0);
  EXPECT_THAT(client_.reply.Strings().values(), ElementsAre("Summary", "Other", "means"));
}

TEST_F(XPath, WhiteSpaceIsKept) {
  client_.start("  two\nlines\t ");
  client_.ask(Command::AddTextBlock, items("o", " ", "  ", 0));
  client_.ask(Command::AddTextBlock, items("o", "t", "\n a\n\nb ", 0));
  client_.end();
  EXPECT_THAT(evaluate("//procedure/@name"), ElementsAre("  two\nlines  "));
  EXPECT_THAT(evaluate("//text/@title"), ElementsAre(" ", "t"));
  EXPECT_THAT(evaluate("//text"), ElementsAre("  ", "\n a\n\nb "));
  client_.state.active->variables.change(0).label = " \n";
  client_.ask(Command::CreateXPathDictionary, items("d"));
  EXPECT_THAT(evaluate("//variable[1]/@label", "/", "d"), ElementsAre(" \n"));
}

// Comparing each cell with each other would take minutes.
TEST_F(XPath, ManyCellsAreQuick) {
  client_.start("P");
  auto table = client_.table(kTable);
  table.dimension(kRow);
  for (int i = 0; i < 10000; ++i) table.category(kRow, std::to_string(i)).number(kRow, i);
  client_.end();
  EXPECT_EQ(evaluate("//cell").size(), 10000U);
  EXPECT_EQ(evaluate("//cell/@number").size(), 10000U);
  const std::vector<std::string> both = evaluate("//cell/@number | //category");
  ASSERT_EQ(both.size(), 20000U);
  EXPECT_EQ(both[9999], "9999") << "the categories stand before the cells";
  EXPECT_EQ(both[10000], "0");
  EXPECT_THAT(evaluate("ancestor::*/@name", "//cell[10000]"), ElementsAre("P"));
  EXPECT_THAT(evaluate("(//cell | //category)[2]"), ElementsAre("1")) << "sorted before one is picked";
}

}  // namespace
}  // namespace kova::engine
