#include "engine/new_variable_handlers.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "engine/case_bytes.h"
#include "engine/data_pass_access.h"
#include "engine/data_set_access.h"
#include "engine/dictionary_rules.h"

namespace kova::engine {
namespace {

// What is announced is checked where it is announced, so that the program learns which one is wrong.
ErrorCode announce(DataPass* pass, const std::vector<NewVariable>& variables) {
  Variables& announced = pass->announced;
  if (pass->room && announced.size() + variables.size() > *pass->room) return ErrorCode::kNewVariablesFull;
  const ErrorCode code = checkNewVariables(pass->cursor.dataSet(), variables);
  if (code != ErrorCode::kNone) return code;
  std::vector<Variable> added(variables.size());
  for (std::size_t i = 0; i < variables.size(); ++i) {
    if (announced.find(variables[i].name)) return ErrorCode::kNameTaken;
    added[i].name = variables[i].name;
    added[i].width = variables[i].type;
  }
  announced.insert(announced.size(), std::move(added));
  return ErrorCode::kNone;
}

ErrorCode allocNewVarsBuffer(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataPass* pass = nullptr;
  const ErrorCode code = findChangingPass(state, &pass);
  if (code != ErrorCode::kNone) return code;
  if (request.FirstLong() < 0) return ErrorCode::kNewVariablesFull;
  pass->announced = Variables();
  pass->room = static_cast<std::size_t>(request.FirstLong());
  return ErrorCode::kNone;
}

ErrorCode setOneVarNameAndType(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataPass* pass = nullptr;
  const ErrorCode code = findChangingPass(state, &pass);
  return code == ErrorCode::kNone ? announce(pass, {{request.Strings()[0], request.FirstLong()}}) : code;
}

// Their count, then each one's name and type.
ErrorCode setVarNameAndType(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataPass* pass = nullptr;
  const ErrorCode code = findChangingPass(state, &pass);
  if (code != ErrorCode::kNone) return code;
  const int count = request.FirstLong();
  if (count != request.Strings().Size() || count != request.Longs().Size() - 1) return ErrorCode::kMalformedRequest;
  std::vector<NewVariable> variables;
  for (int i = 0; i < count; ++i) variables.push_back({request.Strings()[i], request.Longs()[i + 1]});
  return announce(pass, variables);
}

// Behind all others. Where those of this pass are no longer the last ones, another pass has made some since.
ErrorCode commitHeader(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& /*reply*/) {
  DataPass* pass = nullptr;
  ErrorCode code = findChangingPass(state, &pass);
  if (code != ErrorCode::kNone) return code;
  DataSet& dataSet = pass->cursor.dataSet();
  const std::size_t position = dataSet.variables.size();
  const bool isFirst = pass->newCount == 0;
  if (!isFirst && pass->firstNew + pass->newCount != position) return ErrorCode::kDataSetInUse;
  std::vector<NewVariable> variables;
  for (const Variable& one : pass->announced) variables.push_back({one.name, one.width});
  code = insertVariables(&dataSet, position, variables);
  if (code != ErrorCode::kNone) return code;
  if (isFirst) pass->firstNew = position;
  pass->newCount += variables.size();
  pass->announced = Variables();
  pass->room.reset();
  return ErrorCode::kNone;
}

// A block of cases as CommitManyCases sends it: what it holds must be what its counts and types say.
struct CaseBlock {
  const char* bytes;
  std::size_t count;
  std::size_t caseBytes;
};

ErrorCode readBlock(const DataSet& dataSet, std::size_t firstVariable, std::size_t variables, const CleXDSmb& request,
                    CaseBlock* block) {
  const LongData& types = request.LongArrays()[0];
  const int cases = request.Longs()[0];
  if (cases < 0 || types.Size() != static_cast<int>(variables) || request.Longs()[1] != static_cast<int>(variables)) {
    return ErrorCode::kCaseBlockDiffers;
  }
  for (std::size_t i = 0; i < variables; ++i) {
    if (types[static_cast<int>(i)] != dataSet.variables[firstVariable + i].width) return ErrorCode::kCaseBlockDiffers;
  }
  int length = 0;
  const auto* const bytes = static_cast<const char*>(request.GetVoidData(length));
  const std::size_t caseBytes = dataSet.cases.bytesOfVariables(firstVariable, variables);
  const auto needed = static_cast<std::uint64_t>(cases) * caseBytes;
  if (needed != static_cast<std::uint64_t>(length)) return ErrorCode::kCaseBlockDiffers;
  for (int i = 0; i < cases; ++i) {
    const ErrorCode code =
        checkCaseBytes(dataSet, firstVariable, variables, bytes + static_cast<std::size_t>(i) * caseBytes);
    if (code != ErrorCode::kNone) return code;
  }
  *block = {bytes, static_cast<std::size_t>(cases), caseBytes};
  return ErrorCode::kNone;
}

ErrorCode appendBlock(DataSet* dataSet, const CleXDSmb& request) {
  if (dataSet->variables.size() == 0) return ErrorCode::kNoVariables;
  CaseBlock block{};
  const ErrorCode code = readBlock(*dataSet, 0, dataSet->variables.size(), request, &block);
  if (code != ErrorCode::kNone) return code;
  if (!dataSet->cases.mayAdd(block.count)) return ErrorCode::kOutOfMemory;
  dataSet->cases.appendCases(block.bytes, block.count);
  return ErrorCode::kNone;
}

// The block goes on where the last one ended, in the cases of the pass.
ErrorCode fillNewVariables(DataPass* pass, const CleXDSmb& request) {
  DataSet& dataSet = pass->cursor.dataSet();
  CaseBlock block{};
  const ErrorCode code = readBlock(dataSet, pass->firstNew, pass->newCount, request, &block);
  if (code != ErrorCode::kNone) return code;
  std::size_t end = pass->filledTo;
  for (std::size_t i = 0; i < block.count; ++i) {
    const std::size_t next = pass->cursor.selectedFrom(end);
    if (next == pass->cursor.caseCount()) return ErrorCode::kTooManyCases;
    end = next + 1;
  }
  while (pass->filledTo < end) {
    const std::size_t place = pass->cursor.selectedFrom(pass->filledTo);
    dataSet.cases.setVariables(place, pass->firstNew, pass->newCount, block.bytes);
    block.bytes += block.caseBytes;
    pass->filledTo = place + 1;
  }
  return ErrorCode::kNone;
}

// A pass that has made variables fills them; otherwise the cases are added to the data set.
ErrorCode commitManyCases(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfNamed>(state, request, &dataSet);
  if (code != ErrorCode::kNone) return code;
  DataPass* pass = nullptr;
  const ErrorCode passCode = findChangingPass(state, &pass);
  const bool isOfPass = pass != nullptr && &pass->cursor.dataSet() == dataSet;
  if (isOfPass && passCode != ErrorCode::kNone) return passCode;
  return isOfPass && pass->newCount > 0 ? fillNewVariables(pass, request) : appendBlock(dataSet, request);
}

constexpr HandlerRow kRows[] = {
    {Command::SetVarNameAndType, setVarNameAndType},   {Command::CommitHeader, commitHeader},
    {Command::AllocNewVarsBuffer, allocNewVarsBuffer}, {Command::SetOneVarNameAndType, setOneVarNameAndType},
    {Command::CommitManyCases, commitManyCases},
};

}  // namespace

std::span<const HandlerRow> newVariableHandlers() { return kRows; }

}  // namespace kova::engine
