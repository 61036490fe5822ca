// The rows of the wire table for procedures, text blocks and the formats of cells.
#include "tests/api/wire_row.h"

namespace kova::wire {

std::vector<Row> procedureRows() {
  return {
      tells("StartProcedure", [] { return StartProcedure("Means", "Means by species"); },
            {.code = 78, .texts = {"Means", "Means by species"}}),
      tells("EndProcedure", EndProcedure, {.code = 79}),
      makeRow(
          "HasProcedure", kBareReply, [] { return outcome(0, HasProcedure()); }, {.code = 117}, {.longs = {6}}, "6",
          "0", "0"),
      tells("AddTextBlock", [] { return AddTextBlock("Notes", "Method", "First line", 2); },
            {.code = 74, .longs = {2}, .texts = {"Notes", "Method", "First line"}}),
      tells("AddProcFootnotes", [] { return AddProcFootnotes("a note"); }, {.code = 37, .texts = {"a note"}}),
      tells("SetFormatSpecCoefficient", SetFormatSpecCoefficient, {.code = 46}),
      tells("SetFormatSpecCoefficientSE", SetFormatSpecCoefficientSE, {.code = 47}),
      tells("SetFormatSpecCoefficientVar", SetFormatSpecCoefficientVar, {.code = 48}),
      tells("SetFormatSpecCorrelation", SetFormatSpecCorrelation, {.code = 49}),
      tells("SetFormatSpecGeneralStat", SetFormatSpecGeneralStat, {.code = 50}),
      tells("SetFormatSpecMean", [] { return SetFormatSpecMean(3); }, {.code = 51, .longs = {3}}),
      tells("SetFormatSpecCount", SetFormatSpecCount, {.code = 52}),
      tells("SetFormatSpecPercent", SetFormatSpecPercent, {.code = 53}),
      tells("SetFormatSpecPercentNoSign", SetFormatSpecPercentNoSign, {.code = 54}),
      tells("SetFormatSpecProportion", SetFormatSpecProportion, {.code = 55}),
      tells("SetFormatSpecSignificance", SetFormatSpecSignificance, {.code = 56}),
      tells("SetFormatSpecResidual", SetFormatSpecResidual, {.code = 57}),
      tells("SetFormatSpecVariable", [] { return SetFormatSpecVariable(4); }, {.code = 58, .longs = {4}}),
      tells("SetFormatSpecStdDev", [] { return SetFormatSpecStdDev(5); }, {.code = 59, .longs = {5}}),
      tells("SetFormatSpecDifference", [] { return SetFormatSpecDifference(-6); }, {.code = 60, .longs = {-6}}),
      tells("SetFormatSpecSum", [] { return SetFormatSpecSum(7); }, {.code = 61, .longs = {7}}),
  };
}

}  // namespace kova::wire
