#include "engine/data_set_handlers.h"

#include <string>
#include <utility>

#include "engine/case_selection.h"
#include "engine/data_set_access.h"
#include "engine/data_set_rules.h"

namespace kova::engine {
namespace {

ErrorCode caseCount(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(dataSet.cases.caseCount()));
  return ErrorCode::kNone;
}

ErrorCode selectedCaseCount(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(static_cast<int>(CaseSelection(dataSet).count()));
  return ErrorCode::kNone;
}

ErrorCode caseLength(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  if (dataSet.cases.caseBytes() > kMostCaseBytes) return ErrorCode::kOutOfMemory;
  reply.SetLong(static_cast<int>(dataSet.cases.caseBytes()));
  return ErrorCode::kNone;
}

// This engine keeps no dates or periods of a series, so a data set that is there has none.
ErrorCode trendsInfo(const DataSet& /*dataSet*/, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetLong(0);
  return ErrorCode::kNone;
}

ErrorCode setCache(DataSet& dataSet, const RequestItems& items) {
  dataSet.cacheFlag = items.integer(0);
  return ErrorCode::kNone;
}

// Whether a filter selects cases; without a data set there is none.
ErrorCode isUseOrFilter(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  DataSet* dataSet = nullptr;
  const bool isOpen = findOfProcedure(state, &dataSet) == ErrorCode::kNone;
  reply.SetLong(isOpen && !dataSet->filter.empty() ? 1 : 0);
  return ErrorCode::kNone;
}

ErrorCode firstUnit(EngineState& state, const CleXDSmb& request, CleXDSmb& reply) {
  DataSet* dataSet = nullptr;
  std::size_t position = 0;
  const ErrorCode code = reachVariable<OfNamed>(state, request, &dataSet, &position);
  if (code == ErrorCode::kNone) reply.SetLong(static_cast<int>(dataSet->cases.firstUnit(position)));
  return code;
}

// The cases are in memory: no cache makes them faster.
ErrorCode isNeedCache(EngineState& /*state*/, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetLong(0);
  return ErrorCode::kNone;
}

bool meansActive(const std::string& name) { return name.empty() || name == "*"; }

// Without a name the engine chooses one, and the data set becomes active, so that the program can learn it.
ErrorCode createDataset(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  const bool isNamed = !meansActive(request.Strings()[0]);
  const bool takesDictionary = request.Longs()[1] != 0;
  const std::string name = isNamed ? request.Strings()[0] : freeDataSetName(state);
  const ErrorCode code = checkDataSetName(state, name);
  if (code != ErrorCode::kNone) return code;
  if (takesDictionary && state.active == nullptr) return ErrorCode::kNoActiveDataSet;
  DataSet created = takesDictionary ? dictionaryOf(*state.active) : DataSet();
  created.name = name;
  created.isCreated = true;
  DataSet* const added = addDataSet(&state, std::move(created));
  if (!isNamed || request.Longs()[0] != 0) state.active = added;
  return ErrorCode::kNone;
}

ErrorCode setDatasetName(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  ErrorCode code = checkAllTexts(request);
  if (code != ErrorCode::kNone) return code;
  const std::string& old = request.Strings()[0];
  DataSet* dataSet = nullptr;
  code = meansActive(old) ? findActive(state, &dataSet) : findNamed(state, old, &dataSet);
  if (code != ErrorCode::kNone) return code;
  std::string name = request.Strings()[1];
  code = checkDataSetName(state, name, dataSet);
  if (code == ErrorCode::kNone) dataSet->name.swap(name);
  return code;
}

ErrorCode getNewDatasetName(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  reply.SetString(freeDataSetName(state));
  return ErrorCode::kNone;
}

ErrorCode activeName(const DataSet& dataSet, const RequestItems& /*items*/, CleXDSmb& reply) {
  reply.SetString(dataSet.name);
  return ErrorCode::kNone;
}

ErrorCode setActive(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfNamed>(state, request, &dataSet);
  if (code == ErrorCode::kNone) state.active = dataSet;
  return code;
}

ErrorCode copyDataset(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* source = nullptr;
  ErrorCode code = reachDataSet<OfNamed>(state, request, &source);
  if (code != ErrorCode::kNone) return code;
  code = checkDataSetName(state, request.Strings()[1]);
  if (code != ErrorCode::kNone) return code;
  DataSet copy = *source;
  copy.name = request.Strings()[1];
  copy.source.clear();
  copy.isCreated = true;
  addDataSet(&state, std::move(copy));
  return ErrorCode::kNone;
}

ErrorCode createdNames(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  for (const auto& dataSet : state.dataSets) {
    if (dataSet->isCreated) reply.SetString(dataSet->name);
  }
  return ErrorCode::kNone;
}

ErrorCode openNames(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  for (const auto& dataSet : state.dataSets) reply.SetString(dataSet->name);
  return ErrorCode::kNone;
}

ErrorCode closeDataset(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfNamed>(state, request, &dataSet);
  return code == ErrorCode::kNone ? closeDataSet(&state, dataSet) : code;
}

constexpr HandlerRow kRows[] = {
    {Command::GetRowCount, askDataSet<OfActive, caseCount>},
    {Command::GetRowCountInProcDS, askDataSet<OfProcedure, caseCount>},
    {Command::GetSelectedRowCountInProcDS, askDataSet<OfProcedure, selectedCaseCount>},
    {Command::IsUseOrFilter, isUseOrFilter},
    {Command::GetCaseCountInDS, askDataSet<OfNamed, caseCount>},
    {Command::GetCaseLength, askDataSet<OfNamed, caseLength>},
    {Command::GetVarObsIndex, firstUnit},
    {Command::GetTrendsInfoInDS, askDataSet<OfNamed, trendsInfo>},
    {Command::IsNeedCache, isNeedCache},
    {Command::SetCacheInDS, changeNamed<setCache>},
    {Command::CreateDataset, createDataset},
    {Command::SetDatasetName, setDatasetName},
    {Command::GetNewDatasetName, getNewDatasetName},
    {Command::GetActive, askDataSet<OfActive, activeName>},
    {Command::SetActive, setActive},
    {Command::CopyDataset, copyDataset},
    {Command::GetKovaDatasets, createdNames},
    {Command::GetOpenedKovaDatasets, openNames},
    {Command::CloseDataset, closeDataset},
};

}  // namespace

std::span<const HandlerRow> dataSetHandlers() { return kRows; }

}  // namespace kova::engine
