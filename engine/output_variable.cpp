#include "engine/output_variable.h"

#include <algorithm>

#include "engine/data_set_access.h"

namespace kova::engine {

ErrorCode findVariable(const EngineState& state, int position, const Variable** variable) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = findOfProcedure(state, &dataSet);
  if (code != ErrorCode::kNone) return code;
  const Variables& variables = dataSet->variables;
  if (position < 0 || static_cast<std::size_t>(position) >= variables.size()) return ErrorCode::kIndexOutOfRange;
  *variable = &variables[static_cast<std::size_t>(position)];
  return ErrorCode::kNone;
}

Format withMoreDecimals(Format format, int more) {
  if (hasDecimals(format.type)) format.decimals = std::min(format.decimals + more, kMostDecimals);
  return format;
}

}  // namespace kova::engine
