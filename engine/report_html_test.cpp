// Output as HTML: the markup of small documents, and that nothing that was said becomes markup.
#include "engine/report_html.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/output_client.h"
#include "engine/report_html_table.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

using testing::HasSubstr;
using testing::Not;

const DimensionKey kRow{"Species", 0, 1, false, false};
const DimensionKey kInnerRow{"Island", 0, 2, false, false};
const DimensionKey kColumn{"Sex", 1, 1, false, false};
const DimensionKey kInnerColumn{"Statistics", 1, 2, true, false};

class HtmlReport : public testing::Test {
 protected:
  HtmlReport() {
    client_.openData();
    client_.start("P", "Procedure");
  }

  std::string page() {
    if (client_.state.output.log.hasProcedure()) client_.end();
    return htmlReport(client_.state.output.log.sections());
  }

  // What stands in the page's main part.
  std::string shown() {
    const std::string html = page();
    const auto start = html.find("<main>\n") + 7;
    return html.substr(start, html.find("</main>") - start);
  }

  OutputClient client_;
};

TEST_F(HtmlReport, APageOfItsOwn) {
  const std::string html = page();
  EXPECT_THAT(html, testing::StartsWith("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                                        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                                        "<meta name=\"color-scheme\" content=\"light dark\">\n"
                                        "<title>Procedure \u2013 report</title>\n"));
  EXPECT_THAT(html, testing::EndsWith("</main>\n</body>\n</html>\n"));
  for (const char* part : {"prefers-color-scheme: dark", "@media print", "color-scheme: light dark"}) {
    EXPECT_THAT(html, HasSubstr(part));
  }
  for (const char* foreign : {"<script", "http:", "https:", "@import", "url("}) {
    EXPECT_THAT(html, Not(HasSubstr(foreign))) << "it needs nothing else";
  }
}

TEST_F(HtmlReport, WithoutOutput) {
  client_.end();
  EXPECT_THAT(htmlReport({}), HasSubstr("<title>Report</title>"));
  EXPECT_THAT(htmlReport({}), HasSubstr("<p class=\"soft\">There is no output.</p>"));
}

TEST_F(HtmlReport, NestedHeadingsSpanTheirGroups) {
  auto table = client_.table({"", "Body mass", "s", false});
  for (const DimensionKey& key : {kRow, kInnerRow, kColumn, kInnerColumn}) table.dimension(key);
  client_.ask(Command::SetFormatSpecCount);
  for (const auto& [species, island] : {std::pair{"Adelie", "Biscoe"}, {"Adelie", "Dream"}, {"Gentoo", "Biscoe"}}) {
    table.category(kRow, species).category(kInnerRow, island);
    for (const char* sex : {"Female", "Male"}) {
      table.category(kColumn, sex).category(kInnerColumn, "n").number(kInnerColumn, 1);
      table.category(kInnerColumn, "Note").text(kInnerColumn, "x");
    }
  }
  EXPECT_EQ(shown(), R"(<section id="s1" aria-labelledby="s1-heading">
<h2 id="s1-heading">Procedure</h2>
<figure>
<div class="scroll" role="region" aria-labelledby="s1-1-caption-1" tabindex="0">
<table>
<caption id="s1-1-caption-1">Body mass</caption>
<colgroup span="2"></colgroup>
<colgroup span="2"></colgroup>
<colgroup span="2"></colgroup>
<thead>
<tr><td colspan="2" rowspan="2"></td><th scope="col" colspan="4" class="span">Sex</th></tr>
<tr><th scope="colgroup" colspan="2" class="span">Female</th><th scope="colgroup" colspan="2" class="span group">Male</th></tr>
<tr><th scope="col">Species</th><th scope="col">Island</th><th scope="col" class="n">n</th><th scope="col">Note</th><th scope="col" class="n group">n</th><th scope="col">Note</th></tr>
</thead>
<tbody>
<tr><th scope="rowgroup" rowspan="2">Adelie</th><th scope="row">Biscoe</th><td class="n">1</td><td>x</td><td class="n group">1</td><td>x</td></tr>
<tr><th scope="row">Dream</th><td class="n">1</td><td>x</td><td class="n group">1</td><td>x</td></tr>
</tbody>
<tbody>
<tr><th scope="row">Gentoo</th><th scope="row">Biscoe</th><td class="n">1</td><td>x</td><td class="n group">1</td><td>x</td></tr>
</tbody>
</table>
</div>
</figure>
</section>
)");
}

// How many times a part stands in a text.
std::size_t countOf(std::string_view part, std::string_view text) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// The headings that reach below the end of their body.
std::size_t headingsThatReachOut(std::string_view html) {
  constexpr std::string_view kRowSpan = " rowspan=\"";
  std::size_t count = 0;
  for (auto start = html.find("<tbody>"); start != std::string_view::npos; start = html.find("<tbody>", start + 1)) {
    const std::string_view body = html.substr(start, html.find("</tbody>", start) - start);
    for (auto at = body.find(kRowSpan); at != std::string_view::npos; at = body.find(kRowSpan, at + 1)) {
      const std::size_t span = std::stoul(std::string(body.substr(at + kRowSpan.size(), 9)));
      if (span > countOf("</tr>", body.substr(at))) ++count;
    }
  }
  return count;
}

// Browsers end a heading where its body ends, and put the cells beside it under wrong columns then.
TEST_F(HtmlReport, RowHeadingsEndWithinTheirBody) {
  const DimensionKey outerName{"Only the name", 0, 1, false, true};
  const DimensionKey inmost{"Sex", 0, 3, false, false};
  for (const DimensionKey& outer : {kRow, outerName}) {
    for (const int outerCount : {1, 2}) {
      auto table = client_.table({outer.name, "Title", std::to_string(outerCount), false});
      table.dimension(outer).dimension(kInnerRow).dimension(inmost);
      for (int i = 0; i < outerCount * 4; ++i) {
        table.category(outer, std::to_string(i / 4)).category(kInnerRow, std::to_string(i / 2 % 2));
        table.category(inmost, std::to_string(i % 2)).number(inmost, i);
      }
      EXPECT_EQ(table.code(), 0);
    }
  }
  const std::string html = shown();
  EXPECT_EQ(headingsThatReachOut(html), 0U) << html;
  EXPECT_EQ(countOf("<tbody>", html), 1U + 2U + 1U + 1U);
  EXPECT_THAT(html, HasSubstr("<th scope=\"rowgroup\" rowspan=\"4\">0</th><th scope=\"row\" rowspan=\"2\">0</th>"));
}

TEST_F(HtmlReport, FootnotesAreLinkedBothWays) {
  client_.ask(Command::AddProcFootnotes, items("About the procedure."));
  auto table = client_.table({"Outline", "Title", "s", false});
  table.dimension(kRow).category(kRow, "a").number(kRow, 1);
  table.tell(Command::AddOutlineFootnotes, items("outline")).tell(Command::AddTitleFootnotes, items("title"));
  table.tell(Command::AddDimFootnotes, kRow, items("dimension"));
  table.tell(Command::AddCategoryFootnotes, kRow, items("category"));
  table.tell(Command::AddCellFootnotes, kRow, items("cell")).tell(Command::AddCellFootnotes, kRow, items("title"));
  table.tell(Command::PivotTableCaption, items("Caption"));
  table.tell(Command::AddCaptionFootnotes, items("Caption", "caption"));
  EXPECT_EQ(table.code(), 0);
  EXPECT_EQ(shown(), R"(<section id="s1" aria-labelledby="s1-heading">
<h2 id="s1-heading">Procedure<sup class="one"><a href="#s1-note-a" id="s1-mark-a" aria-label="Footnote a">a</a></sup></h2>
<ol class="notes">
<li id="s1-note-a">About the procedure. <a class="back" href="#s1-mark-a" aria-label="Back to mark a">)"
                     "\u21A9\uFE0E"
                     R"(</a></li>
</ol>
<h3>Outline<sup class="one"><a href="#s1-1-note-a" id="s1-1-mark-a" aria-label="Footnote a">a</a></sup></h3>
<figure>
<div class="scroll" role="region" aria-labelledby="s1-1-caption-1" tabindex="0">
<table>
<caption id="s1-1-caption-1">Title<sup class="one"><a href="#s1-1-note-b" id="s1-1-mark-b" aria-label="Footnote b">b</a></sup></caption>
<colgroup></colgroup>
<colgroup></colgroup>
<thead>
<tr><th scope="col">Species<sup class="one"><a href="#s1-1-note-c" id="s1-1-mark-c" aria-label="Footnote c">c</a></sup></th><td></td></tr>
</thead>
<tbody>
<tr><th scope="row">a<sup class="one"><a href="#s1-1-note-d" id="s1-1-mark-d" aria-label="Footnote d">d</a></sup></th><td class="n">1.000<sup><a href="#s1-1-note-b" aria-label="Footnote b">b</a>,<a href="#s1-1-note-e" id="s1-1-mark-e" aria-label="Footnote e">e</a></sup></td></tr>
</tbody>
</table>
</div>
<figcaption>Caption<sup class="one"><a href="#s1-1-note-f" id="s1-1-mark-f" aria-label="Footnote f">f</a></sup></figcaption>
<ol class="notes">
<li id="s1-1-note-a">outline <a class="back" href="#s1-1-mark-a" aria-label="Back to mark a">)"
                     "\u21A9\uFE0E"
                     R"(</a></li>
<li id="s1-1-note-b">title <a class="back" href="#s1-1-mark-b" aria-label="Back to mark b">)"
                     "\u21A9\uFE0E"
                     R"(</a></li>
<li id="s1-1-note-c">dimension <a class="back" href="#s1-1-mark-c" aria-label="Back to mark c">)"
                     "\u21A9\uFE0E"
                     R"(</a></li>
<li id="s1-1-note-d">category <a class="back" href="#s1-1-mark-d" aria-label="Back to mark d">)"
                     "\u21A9\uFE0E"
                     R"(</a></li>
<li id="s1-1-note-e">cell <a class="back" href="#s1-1-mark-e" aria-label="Back to mark e">)"
                     "\u21A9\uFE0E"
                     R"(</a></li>
<li id="s1-1-note-f">caption <a class="back" href="#s1-1-mark-f" aria-label="Back to mark f">)"
                     "\u21A9\uFE0E"
                     R"(</a></li>
</ol>
</figure>
</section>
)");
}

TEST_F(HtmlReport, AHiddenTitleIsStillReadAloud) {
  auto table = client_.table({"", "Hidden", "s", false});
  table.tell(Command::HidePivotTableTitle).dimension(kRow).category(kRow, "a").number(kRow, 1);
  table.tell(Command::AddTitleFootnotes, items("note"));
  const std::string html = shown();
  EXPECT_THAT(html, HasSubstr("<caption id=\"s1-1-caption-1\"><span class=\"hidden\">Hidden</span></caption>"));
  EXPECT_THAT(html, HasSubstr("<ol class=\"notes\">\n<li class=\"plain\">note</li>\n</ol>"))
      << "there is no mark to go back to";
}

TEST_F(HtmlReport, NotesOfWhatIsHiddenComeLastWithoutALink) {
  const DimensionKey unnamed{"Unnamed", 0, 1, true, false};
  auto table = client_.table({"", "", "s", false});
  table.tell(Command::AddTitleFootnotes, items("title"));
  table.dimension(unnamed).tell(Command::AddDimFootnotes, unnamed, items("name"));
  table.category(unnamed, "without a cell").tell(Command::AddCategoryFootnotes, unnamed, items("category"));
  table.category(unnamed, "a").number(unnamed, 1).tell(Command::AddCellFootnotes, unnamed, items("cell"));
  const std::string html = shown();
  EXPECT_THAT(html, HasSubstr("<caption id=\"s1-1-caption-1\"></caption>"));
  EXPECT_THAT(html, HasSubstr("<li id=\"s1-1-note-a\">cell <a class=\"back\" href=\"#s1-1-mark-a\""));
  EXPECT_THAT(html, HasSubstr("</li>\n<li class=\"plain\">title</li>\n<li class=\"plain\">name</li>\n"
                              "<li class=\"plain\">category</li>\n</ol>"));
}

TEST_F(HtmlReport, NothingThatWasSaidIsMarkup) {
  const std::string evil = "<script>alert(\"1\")</script>&amp;'";
  client_.end();
  client_.start(evil, evil);
  client_.ask(Command::AddProcFootnotes, items(evil + "1"));
  const DimensionKey key{evil, 0, 1, false, false};
  const DimensionKey layer{evil, 2, 1, false, false};
  auto table = client_.table({evil + "o", evil, evil, false});
  table.dimension(key).dimension(layer).category(key, evil).category(layer, evil).text(key, evil);
  table.tell(Command::PivotTableCaption, items(evil)).tell(Command::AddTitleFootnotes, items(evil));
  client_.ask(Command::AddTextBlock, items(evil + "p", evil, evil, 0));
  client_.ask(Command::PostKovaOutput, items(evil));
  const std::string html = page();
  EXPECT_THAT(html, Not(HasSubstr("<script")));
  EXPECT_THAT(html, HasSubstr("<td>&lt;script&gt;alert(&quot;1&quot;)&lt;/script&gt;&amp;amp;&#39;</td>"));
}

TEST_F(HtmlReport, ControlCharactersAreReplaced) {
  EXPECT_EQ(htmlText(std::string("a\0b\x1B\x7F\u0080\uFFFE\tc\r\nd\re", 17)),
            "a\uFFFDb\uFFFD\uFFFD\uFFFD\uFFFD c\nd\ne");
  EXPECT_EQ(htmlText("\u00C4\uFFFD\u0085x"), "\u00C4\uFFFD\nx");
}

TEST_F(HtmlReport, LayersAreTablesOfTheirOwn) {
  const DimensionKey layer{"Year", 2, 1, false, false};
  auto table = client_.table({"", "Title", "s", false});
  table.dimension(layer).dimension(kRow).category(kRow, "a");
  for (const char* year : {"2007", "2008"}) table.category(layer, year).text(kRow, year);
  table.tell(Command::AddTitleFootnotes, items("note"));
  const std::string html = shown();
  EXPECT_THAT(html,
              HasSubstr("aria-label=\"Footnote a\">a</a></sup> <span class=\"layer\">Year: 2007</span></caption>"));
  EXPECT_THAT(html,
              HasSubstr("<caption id=\"s1-1-caption-2\">Title <span class=\"layer\">Year: 2008</span></caption>"));
}

TEST_F(HtmlReport, TablesWithoutHeadings) {
  const DimensionKey hidden{"x", 0, 1, true, true};
  client_.table({"", "T", "s", false}).dimension(hidden).category(hidden, "a").text(hidden, "alone");
  EXPECT_THAT(shown(),
              HasSubstr("<table class=\"bare\">\n<caption id=\"s1-1-caption-1\">T</caption>\n<colgroup></colgroup>\n"
                        "<tbody>\n<tr><td>alone</td></tr>\n</tbody>\n</table>"));
}

TEST_F(HtmlReport, ColumnWidthLimits) {
  auto table = client_.table({"", "T", "s", false});
  table.dimension(kRow).dimension(kColumn).category(kRow, "a");
  table.category(kColumn, "t").text(kRow, "b").category(kColumn, "m").number(kRow, 1);
  table.tell(Command::MinDataColumnWidth, items(5)).tell(Command::MaxDataColumnWidth, items(9));
  const std::string html = shown();
  EXPECT_THAT(html, HasSubstr("<td style=\"min-width:5ch;max-width:9ch;overflow-wrap:anywhere\">b</td>"));
  EXPECT_THAT(html, HasSubstr("<td class=\"n\" style=\"min-width:5ch\">1.000</td>")) << "numbers are never broken";
  EXPECT_THAT(html, HasSubstr("<th scope=\"col\" style=\"min-width:5ch;max-width:9ch;overflow-wrap:anywhere\">t</th>"));
  EXPECT_THAT(html,
              HasSubstr("<th scope=\"col\" class=\"n\" style=\"min-width:5ch;max-width:9ch;overflow-wrap:anywhere"));
  EXPECT_THAT(html, HasSubstr("<th scope=\"colgroup\" colspan=\"2\" class=\"span\">Sex</th>"));
}

TEST_F(HtmlReport, TextGraphicsAndGroups) {
  const kit::ScratchFolder folder;
  folder.write("plot.png", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x02\0\0\0\x03 p", 26));
  client_.ask(Command::AddTextBlock, items("Remarks", "Title", "a\nb", 0));
  client_.ask(Command::SplitChange, items("P"));
  client_.ask(Command::SetGraphicsLabel, items("A \"plot\"", ""));
  client_.ask(Command::GetGraphic, items(folder.path("plot.png")));
  client_.ask(Command::PostKovaOutput, items("posted"));
  EXPECT_EQ(shown(), R"(<section id="s1" aria-labelledby="s1-heading">
<h2 id="s1-heading">Procedure</h2>
<h3>Split group 1</h3>
<h3>Remarks</h3>
<p class="text-title">Title</p>
<div class="text">a
b</div>
<h3>Split group 2</h3>
<figure>
<img src="data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAIAAAADIHA=" alt="A &quot;plot&quot;" width="2" height="3">
<figcaption>A &quot;plot&quot;</figcaption>
</figure>
<pre class="posted">
posted</pre>
</section>
)");
}

TEST_F(HtmlReport, SeveralProceduresHaveContents) {
  EXPECT_THAT(page(), Not(HasSubstr("<nav")));
  client_.ask(Command::PostKovaOutput, items("loose"));
  client_.start("Q", "Second & last");
  EXPECT_THAT(page(), HasSubstr("<nav aria-label=\"Contents\">\n<ol>\n<li><a href=\"#s1\">Procedure</a></li>\n"
                                "<li><a href=\"#s3\">Second &amp; last</a></li>\n</ol>\n</nav>"));
}

TEST_F(HtmlReport, EmptyAndTooLargeTablesSaySo) {
  client_.table({"", "Empty", "s", false}).dimension(kRow);
  auto table = client_.table({"", "Large", "s", false});
  table.dimension(kRow).dimension(kColumn);
  for (int i = 0; i < 1001; ++i) {
    table.category(kRow, std::to_string(i)).category(kColumn, std::to_string(i)).number(kRow, i);
  }
  const std::string html = shown();
  EXPECT_THAT(html, HasSubstr("<p>Empty</p>\n<p class=\"soft\">No cells.</p>"));
  EXPECT_THAT(html, HasSubstr("<p class=\"soft\">A table of 1001 rows and 1001 columns, too large to be shown;"));
}

TEST_F(HtmlReport, LayersThatAreTooLargeRepeatTheTitleWithoutItsMarks) {
  const DimensionKey layer{"Year", 2, 1, false, false};
  auto table = client_.table({"", "Large", "s", false});
  table.dimension(layer).dimension(kRow).dimension(kColumn).tell(Command::AddTitleFootnotes, items("note"));
  for (const char* year : {"2007", "2008"}) {
    table.category(layer, year);
    for (int i = 0; i < 1001; ++i) {
      table.category(kRow, std::to_string(i)).category(kColumn, std::to_string(i)).number(kRow, i);
    }
  }
  const std::string html = shown();
  EXPECT_EQ(countOf(" id=\"s1-1-mark-a\"", html), 1U);
  EXPECT_EQ(countOf("href=\"#s1-1-note-a\"", html), 1U);
  EXPECT_THAT(html,
              HasSubstr("<p>Large <span class=\"layer\">Year: 2008</span></p>\n<p class=\"soft\">A table of 1001"));
}

}  // namespace
}  // namespace kova::engine
