#include "engine/case_values.h"

#include <optional>
#include <utility>

#include "engine/case_bytes.h"
#include "engine/data_set_access.h"

namespace kova::engine {
namespace {

ErrorCode readNumbers(const DataSet& dataSet, const CleXDSmb& request, CaseValues* values) {
  if (request.Doubles().Size() != request.Strings().Size()) return ErrorCode::kMalformedRequest;
  for (int i = 0; i < request.Doubles().Size(); ++i) {
    const auto variable = dataSet.variables.find(request.Strings()[i]);
    if (!variable) return ErrorCode::kNoSuchVariable;
    if (!dataSet.variables[*variable].isNumeric()) return ErrorCode::kWrongKind;
    const ErrorCode code = checkNumber(request.Doubles()[i]);
    if (code != ErrorCode::kNone) return code;
    values->numbers.push_back({*variable, request.Doubles()[i]});
  }
  return ErrorCode::kNone;
}

ErrorCode readTexts(const DataSet& dataSet, const CleXDSmb& request, CaseValues* values) {
  const std::vector<std::string>& names = request.StringArrays()[0].values();
  const std::vector<std::string>& texts = request.StringArrays()[1].values();
  if (names.size() != texts.size()) return ErrorCode::kMalformedRequest;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto variable = dataSet.variables.find(names[i]);
    if (!variable) return ErrorCode::kNoSuchVariable;
    if (dataSet.variables[*variable].isNumeric()) return ErrorCode::kWrongKind;
    const ErrorCode code = checkCellText(dataSet.variables[*variable], texts[i]);
    if (code != ErrorCode::kNone) return code;
    values->texts.push_back({*variable, &texts[i]});
  }
  return ErrorCode::kNone;
}

}  // namespace

void CaseValues::writeTo(DataSet* dataSet, std::size_t position) const {
  for (const Number& number : numbers) dataSet->cases.setNumber(position, number.variable, number.value);
  for (const Text& text : texts) dataSet->cases.setText(position, text.variable, *text.value);
}

ErrorCode readCaseValues(const DataSet& dataSet, const CleXDSmb& request, CaseValues* values) {
  CaseValues read;
  ErrorCode code = checkAllTexts(request);
  if (code == ErrorCode::kNone) code = readNumbers(dataSet, request, &read);
  if (code == ErrorCode::kNone) code = readTexts(dataSet, request, &read);
  if (code == ErrorCode::kNone) *values = std::move(read);
  return code;
}

}  // namespace kova::engine
