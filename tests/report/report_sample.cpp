// Writes a report with everything that a report can hold, for the browser to look at.
//
// Usage: report_sample HTML GRAPHIC. HTML is the page to write, GRAPHIC a PNG file to take in.
#include <cstdio>
#include <fstream>
#include <string>

#include "engine/output_client.h"
#include "engine/report_html.h"
#include "engine/report_text.h"

namespace kova::engine {
namespace {

const DimensionKey kSpecies{"Species", 0, 1, false, false};
const DimensionKey kIsland{"Island", 0, 2, false, false};
const DimensionKey kSex{"Sex", 1, 1, false, false};
const DimensionKey kStatistic{"Statistics", 1, 2, true, false};

struct Line {
  const char* species;
  const char* island;
  int count[2];
  double mean[2];
  double deviation[2];
};

constexpr Line kLines[] = {
    {"Adelie", "Biscoe", {22, 22}, {3369.32, 4050.0}, {343.47, 355.57}},
    {"Adelie", "Dream", {27, 28}, {3344.44, 4045.54}, {212.06, 330.55}},
    {"Adelie", "Torgersen", {24, 23}, {3395.83, 4034.78}, {259.14, 372.47}},
    {"Chinstrap", "Dream", {34, 34}, {3527.21, 3938.97}, {285.33, 362.14}},
    {"Gentoo", "Biscoe", {58, 61}, {4679.74, 5484.84}, {281.58, 313.16}},
};

// Counts, means and deviations by species, island and sex.
void addSummary(OutputClient* client) {
  auto table = client->table({"Summary", "Body mass (g) by species, island and sex", "summary", false});
  for (const DimensionKey& key : {kSpecies, kIsland, kSex, kStatistic}) table.dimension(key);
  for (const Line& line : kLines) {
    table.category(kSpecies, line.species).category(kIsland, line.island);
    for (const int sex : {0, 1}) {
      table.tell(Command::AddVarValueDoubleCategory, kSex, items(0, sex + 1.0));
      client->ask(Command::SetFormatSpecCount);
      table.category(kStatistic, "Count").number(kStatistic, line.count[sex]);
      client->ask(Command::SetFormatSpecMean, items(1));
      table.category(kStatistic, "Mean").number(kStatistic, line.mean[sex]);
      client->ask(Command::SetFormatSpecStdDev, items(1));
      table.category(kStatistic, "Std. deviation").number(kStatistic, line.deviation[sex]);
    }
  }
  table.tell(Command::AddCellFootnotes, kStatistic, items("Heaviest group."));
  table.tell(Command::AddCategoryFootnotes, kStatistic, items("Of the sample, with n - 1."));
  table.tell(Command::AddDimFootnotes, kSex, items("Determined by a blood sample."));
  table.tell(Command::AddTitleFootnotes, items("Animals with missing values are left out."));
  table.tell(Command::PivotTableCaption, items("Palmer Station, 2007 to 2009."));
  table.tell(Command::AddCaptionFootnotes, items("Palmer Station, 2007 to 2009.", "Antarctica."));
}

// Rows nested three deep, whose inner headings span too.
void addDeepTable(OutputClient* client) {
  const DimensionKey year{"Year", 0, 1, false, false};
  const DimensionKey species{"Species", 0, 2, false, false};
  const DimensionKey sex{"Sex", 0, 3, false, false};
  const DimensionKey statistic{"Statistics", 1, 1, true, false};
  auto table = client->table({"Details", "Bill length by year", "bills", false});
  for (const DimensionKey& key : {year, species, sex, statistic}) table.dimension(key);
  client->ask(Command::SetFormatSpecGeneralStat);
  double value = 37.1234;
  for (const double when : {2007.0, 2008.0}) {
    table.tell(Command::AddNumberCategory, year, items(when));
    for (const char* name : {"Adelie", "Gentoo"}) {
      table.category(species, name);
      for (const char* which : {"Female", "Male"}) {
        table.category(sex, which);
        table.category(statistic, "Mean (mm)").number(statistic, value += 1.5);
        table.category(statistic, "Median (mm)").number(statistic, value - 0.25);
      }
    }
  }
}

// One table for each layer, with texts that markup and other scripts could break.
void addLayers(OutputClient* client) {
  const DimensionKey layer{"Year", 2, 1, false, false};
  const DimensionKey row{"<Name> & \"more\"", 0, 1, false, false};
  const DimensionKey column{"Of", 1, 1, true, false};
  auto table = client->table({"Texts", "Notes of the observers", "notes", false});
  for (const DimensionKey& key : {layer, row, column}) table.dimension(key);
  for (const char* year : {"2007", "2008"}) {
    table.category(layer, year);
    for (const char* name : {"O'Brien <b>", "\u6771\u4EAC", "Zo\u0065\u0308"}) {
      table.category(row, name).category(column, "Note").text(column, "Said: \"5 < 6 & 7 > 6\"\nin two lines");
      table.category(column, "Seen").tell(Command::SetDateCell, column, items("2008-02-29"));
    }
  }
}

int write(const char* page, const char* graphic) {
  OutputClient client;
  client.openData();
  client.start("Summary", "Penguins of the Palmer archipelago");
  client.ask(Command::AddProcFootnotes, items("Data in the public domain."));
  addSummary(&client);
  addDeepTable(&client);
  client.ask(Command::AddTextBlock, items("Remarks", "What it shows",
                                          "Males are heavier than females in every species & on every island.", 0));
  client.end();
  client.start("Notes", "Notes & graphics");
  addLayers(&client);
  client.ask(Command::SetGraphicsLabel, items("Body mass by species", "Graphics"));
  client.ask(Command::GetGraphic, items(graphic));
  client.end();
  client.ask(Command::PostKovaOutput, items("Ready-made output\n  stays <as it is>\n"));
  for (const OutputSection& section : client.state.output.log.sections()) {
    std::fputs(sectionText(section, 100).c_str(), stdout);
  }
  std::ofstream(page, std::ios::binary) << htmlReport(client.state.output.log.sections());
  return 0;
}

}  // namespace
}  // namespace kova::engine

int main(int count, char** texts) { return count == 3 ? kova::engine::write(texts[1], texts[2]) : 2; }
