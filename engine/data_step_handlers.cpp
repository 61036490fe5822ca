#include "engine/data_step_handlers.h"

#include "engine/case_bytes.h"
#include "engine/data_set_access.h"
#include "engine/data_set_rules.h"
#include "engine/dictionary_rules.h"

namespace kova::engine {
namespace {

// One conversation has one data step at a time; others may have theirs meanwhile.
ErrorCode startDataStep(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  const bool isNew = state.steps.try_emplace(state.conversation).second;
  return isNew ? ErrorCode::kNone : ErrorCode::kDataStepRunning;
}

// Its changes were made as they came, and stay.
ErrorCode endDataStep(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  return state.steps.erase(state.conversation) == 0 ? ErrorCode::kNoDataStep : ErrorCode::kNone;
}

// None outside a data step.
ErrorCode touchedNames(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  const auto step = state.steps.find(state.conversation);
  if (step == state.steps.end()) return ErrorCode::kNone;
  for (const DataSet* dataSet : step->second.touched) reply.SetString(dataSet->name);
  return ErrorCode::kNone;
}

// Makes the change within a data step alone. What is read by a case cursor keeps its cases and variables in place.
template <DataSetChange change>
ErrorCode rearrange(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  if (!state.steps.contains(state.conversation)) return ErrorCode::kNoDataStep;
  DataSet* dataSet = nullptr;
  ErrorCode code = reachDataSet<OfNamed>(state, request, &dataSet);
  if (code != ErrorCode::kNone) return code;
  if (isBeingRead(state, *dataSet)) return ErrorCode::kDataSetInUse;
  reserveTouch(&state);
  code = change(*dataSet, {request, OfNamed::kTexts, 0});
  if (code == ErrorCode::kNone) touch(&state, dataSet);
  return code;
}

ErrorCode insertOneVariable(DataSet& dataSet, const RequestItems& items) {
  const int position = items.integer(0);
  if (!isBelow(position, dataSet.variables.size() + 1)) return ErrorCode::kIndexOutOfRange;
  return insertVariables(&dataSet, static_cast<std::size_t>(position), {{items.text(0), items.integer(1)}});
}

ErrorCode deleteOneVariable(DataSet& dataSet, const RequestItems& items) {
  if (!isBelow(items.integer(0), dataSet.variables.size())) return ErrorCode::kIndexOutOfRange;
  const auto position = static_cast<std::size_t>(items.integer(0));
  deleteVariables(&dataSet, {&position, 1});
  return ErrorCode::kNone;
}

// The variable at the first position comes to stand at the second one.
ErrorCode moveOneVariable(DataSet& dataSet, const RequestItems& items) {
  const int from = items.integer(0);
  const int to = items.integer(1);
  const std::size_t count = dataSet.variables.size();
  if (!isBelow(from, count) || !isBelow(to, count)) return ErrorCode::kIndexOutOfRange;
  dataSet.cases.moveVariable(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
  dataSet.variables.move(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
  return ErrorCode::kNone;
}

ErrorCode insertOneCase(DataSet& dataSet, const RequestItems& items) {
  const int position = items.integer(0);
  if (dataSet.variables.size() == 0) return ErrorCode::kNoVariables;
  if (!isBelow(position, dataSet.cases.caseCount() + 1)) return ErrorCode::kCaseOutOfRange;
  if (!dataSet.cases.mayAdd(1)) return ErrorCode::kOutOfMemory;
  dataSet.cases.insertCase(static_cast<std::size_t>(position));
  return ErrorCode::kNone;
}

ErrorCode deleteOneCase(DataSet& dataSet, const RequestItems& items) {
  const int position = items.integer(0);
  if (!isBelow(position, dataSet.cases.caseCount())) return ErrorCode::kCaseOutOfRange;
  dataSet.cases.eraseCase(static_cast<std::size_t>(position));
  return ErrorCode::kNone;
}

// A case is told by its position among all cases and a flag, which is 0: there is no other way yet.
ErrorCode reachCase(EngineState& state, const CleXDSmb& request, DataSet** dataSet, std::size_t* position) {
  const ErrorCode code = reachDataSet<OfNamed>(state, request, dataSet);
  if (code != ErrorCode::kNone) return code;
  if (request.Longs()[1] != 0) return ErrorCode::kCaseFlagUnknown;
  if (!isBelow(request.Longs()[0], (*dataSet)->cases.caseCount())) return ErrorCode::kCaseOutOfRange;
  *position = static_cast<std::size_t>(request.Longs()[0]);
  return ErrorCode::kNone;
}

ErrorCode getCaseValue(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  DataSet* dataSet = nullptr;
  std::size_t position = 0;
  const ErrorCode code = reachCase(state, request, &dataSet, &position);
  if (code != ErrorCode::kNone) return code;
  const std::size_t size = dataSet->cases.caseBytes();
  if (size > kMostCaseBytes) return ErrorCode::kOutOfMemory;
  touch(&state, dataSet);
  reply.AllocVoidData(static_cast<int>(size));
  reply.SaveDataIntoVoidData(dataSet->cases.caseAt(position), static_cast<int>(size));
  return ErrorCode::kNone;
}

// The variables that a block is about: of the longs behind the case and the flag, the first one and their number; all
// of them where there are no such longs. The last of the longs is kept for later, and 0.
ErrorCode readPart(const DataSet& dataSet, const CleXDSmb& request, std::size_t* first, std::size_t* count) {
  const std::size_t variables = dataSet.variables.size();
  *first = 0;
  *count = variables;
  if (request.Longs().Size() == 2) return ErrorCode::kNone;
  if (request.Longs().Size() < 5) return ErrorCode::kMalformedRequest;
  const int firstVariable = request.Longs()[2];
  const int variableCount = request.Longs()[3];
  if (!isBelow(firstVariable, variables) || variableCount < 1) return ErrorCode::kIndexOutOfRange;
  *first = static_cast<std::size_t>(firstVariable);
  *count = static_cast<std::size_t>(variableCount);
  if (*count > variables - *first) return ErrorCode::kIndexOutOfRange;
  return request.Longs()[4] == 0 ? ErrorCode::kNone : ErrorCode::kCaseFlagUnknown;
}

// SetCaseValue has two longs, SetCasePartValue five.
ErrorCode setCaseValue(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  if (!state.steps.contains(state.conversation)) return ErrorCode::kNoDataStep;
  DataSet* dataSet = nullptr;
  std::size_t position = 0;
  std::size_t first = 0;
  std::size_t count = 0;
  ErrorCode code = reachCase(state, request, &dataSet, &position);
  if (code == ErrorCode::kNone) code = readPart(*dataSet, request, &first, &count);
  if (code != ErrorCode::kNone) return code;
  int length = 0;
  const void* const bytes = request.GetVoidData(length);
  if (dataSet->cases.bytesOfVariables(first, count) != static_cast<std::size_t>(length)) {
    return ErrorCode::kCaseSizeWrong;
  }
  code = checkCaseBytes(*dataSet, first, count, bytes);
  if (code != ErrorCode::kNone) return code;
  touch(&state, dataSet);
  dataSet->cases.setVariables(position, first, count, bytes);
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::StartDataStep, startDataStep},
    {Command::EndDataStep, endDataStep},
    {Command::GetDatastepDatasets, touchedNames},
    {Command::InsertVariable, rearrange<insertOneVariable>},
    {Command::DeleteVariable, rearrange<deleteOneVariable>},
    {Command::MoveVariables, rearrange<moveOneVariable>},
    {Command::InsertCase, rearrange<insertOneCase>},
    {Command::DeleteCase, rearrange<deleteOneCase>},
    {Command::GetCaseValue, getCaseValue},
    {Command::SetCaseValue, setCaseValue},
};

}  // namespace

std::span<const HandlerRow> dataStepHandlers() { return kRows; }

}  // namespace kova::engine
