// Any text as submitted syntax, carried out on a small data set. Files are left alone.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <variant>

#include "engine/command_run.h"
#include "engine/data_set_rules.h"

namespace {

using namespace kova::engine;

void require(bool condition) {
  if (!condition) std::abort();
}

// A number with missing values and labels, a text, and another number; five cases.
DataSet smallDataSet() {
  Variable score;
  score.name = "score";
  score.missing = {kMissingRangeAndOne, {-9.0, -1.0, 99.0}, {}};
  score.numberLabels = {{1.0, "low"}, {2.0, "high"}};
  Variable town;
  town.name = "town";
  town.width = 12;
  town.format = {FormatType::kA, 12, 0};
  town.missing = {kOneMissing, {}, {"NA", "", ""}};
  Variable one;
  one.name = "one";
  DataSet dataSet;
  dataSet.name = "main";
  dataSet.variables = {score, town, one};
  dataSet.cases = CaseStore({0, 12, 0});
  const double scores[] = {1, 2, -5, kSystemMissing, 4};
  const char* const towns[] = {"Bremen", "NA", "Bonn", "", "Z\u00FCrich"};
  for (std::size_t i = 0; i < 5; ++i) {
    dataSet.cases.appendCase();
    dataSet.cases.setNumber(i, 0, scores[i]);
    dataSet.cases.setText(i, 1, towns[i]);
    dataSet.cases.setNumber(i, 2, static_cast<double>(i));
  }
  return dataSet;
}

bool touchesFiles(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
  return text.find("open") != std::string::npos || text.find("save") != std::string::npos;
}

// A failure is told by one line with its place, as the last thing that is put out.
void checkProblem(const OutputLog& log, int code) {
  require(!log.sections().empty());
  const auto* const post = std::get_if<PostedText>(&log.sections().back().items.back().content);
  require(post != nullptr && post->text.starts_with("Error " + std::to_string(code) + " in line "));
  require(post->text.find('\n') == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (touchesFiles(text)) return 0;
  EngineState state;
  addDataSet(&state, smallDataSet());
  state.runBlock = [](const std::string& language, const std::vector<std::string>& lines) {
    require(!language.empty());
    return lines.size() > 3 ? 7 : 0;
  };
  const kova::ErrorCode code = runCommands(&state, text);
  if (code != kova::ErrorCode::kNone) checkProblem(state.output.log, static_cast<int>(code));
  require(!state.output.log.hasProcedure() && state.nestDepth == 0);
  return 0;
}
