// Calls that make output: procedures, text blocks, the formats of cells.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int StartProcedure(const char* name, const char* label) {
  return Tell(Command::StartProcedure, Text{name}, Text{label ? label : name});
}

int EndProcedure() { return Tell(Command::EndProcedure); }

int HasProcedure() {
  int open = 0;
  Fetch(Command::HasProcedure, nullptr, IntoLong{&open});
  return open;
}

int AddTextBlock(const char* text1, const char* text2, const char* text3, int number) {
  return Tell(Command::AddTextBlock, Text{text1}, Text{text2}, Text{text3}, Long{number});
}

int AddProcFootnotes(const char* footnote) { return Tell(Command::AddProcFootnotes, Text{footnote}); }

int SetFormatSpecCoefficient() { return Tell(Command::SetFormatSpecCoefficient); }

int SetFormatSpecCoefficientSE() { return Tell(Command::SetFormatSpecCoefficientSE); }

int SetFormatSpecCoefficientVar() { return Tell(Command::SetFormatSpecCoefficientVar); }

int SetFormatSpecCorrelation() { return Tell(Command::SetFormatSpecCorrelation); }

int SetFormatSpecGeneralStat() { return Tell(Command::SetFormatSpecGeneralStat); }

int SetFormatSpecMean(int varIndex) { return Tell(Command::SetFormatSpecMean, Long{varIndex}); }

int SetFormatSpecCount() { return Tell(Command::SetFormatSpecCount); }

int SetFormatSpecPercent() { return Tell(Command::SetFormatSpecPercent); }

int SetFormatSpecPercentNoSign() { return Tell(Command::SetFormatSpecPercentNoSign); }

int SetFormatSpecProportion() { return Tell(Command::SetFormatSpecProportion); }

int SetFormatSpecSignificance() { return Tell(Command::SetFormatSpecSignificance); }

int SetFormatSpecResidual() { return Tell(Command::SetFormatSpecResidual); }

int SetFormatSpecVariable(int varIndex) { return Tell(Command::SetFormatSpecVariable, Long{varIndex}); }

int SetFormatSpecStdDev(int varIndex) { return Tell(Command::SetFormatSpecStdDev, Long{varIndex}); }

int SetFormatSpecDifference(int varIndex) { return Tell(Command::SetFormatSpecDifference, Long{varIndex}); }

int SetFormatSpecSum(int varIndex) { return Tell(Command::SetFormatSpecSum, Long{varIndex}); }
