#include "engine/temp_file_handlers.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>

#include "engine/case_selection.h"
#include "engine/data_package.h"
#include "engine/data_package_writer.h"
#include "engine/data_set_access.h"
#include "platform/os/file.h"
#include "trace/DxTracer.h"

namespace kova::engine {
namespace {

enum SaveFlag : int { kAllCases = 0, kSelectedCases = 1 };

void trace(const char* operation, const std::string& problem) {
  if (DxTracer* tracer = GetDxTracer()) tracer->write(std::string(operation) + ": " + problem);
}

ErrorCode saveData(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfActive>(state, request, &dataSet);
  if (code != ErrorCode::kNone) return code;
  const int flag = request.FirstLong();
  if (flag != kAllCases && flag != kSelectedCases) return ErrorCode::kSaveFlagOutOfRange;
  const CaseSelection selection(*dataSet);
  const bool takesAll = flag == kAllCases || selection.takesAll();
  FileSystem files;
  std::string problem;
  const ErrorCode saved =
      writeDataPackage(*dataSet, takesAll ? CasePick() : CasePick(selection), request.Strings()[0], files, &problem);
  if (saved == ErrorCode::kNone) {
    state.tempFileCases = takesAll ? dataSet->cases.caseCount() : selection.count();
  } else {
    trace("SaveDataToTempFile", problem);
  }
  return saved;
}

// Opening anything but a plain file may wait for ever.
bool canBeRead(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(os::NativePath(path), ignored)) return false;
  std::FILE* const file = os::OpenFile(path, "rb", nullptr);
  return file != nullptr && std::fclose(file) == 0;
}

ErrorCode readFile(const std::string& path, DataSet* read) {
  if (!canBeRead(path)) return ErrorCode::kDataFileNotReadable;
  std::string problem;
  if (readDescriptor(path, read, &problem)) return ErrorCode::kNone;
  trace("GetDataFromTempFile", problem);
  return ErrorCode::kDataFileDamaged;
}

bool sameVariables(const DataSet& a, const DataSet& b) {
  return std::equal(
      a.variables.begin(), a.variables.end(), b.variables.begin(), b.variables.end(),
      [](const Variable& x, const Variable& y) { return sameName(x.name, y.name) && x.width == y.width; });
}

// The cases from the first row on, at most so many.
CaseStore takeRows(DataSet* from, std::size_t first, std::size_t count) {
  const std::size_t all = from->cases.caseCount();
  if (first == 0 && count >= all) return std::move(from->cases);
  CaseStore rows(from->cases.widths());
  if (first < all) rows.appendCases(from->cases.caseAt(first), std::min(count, all - first));
  return rows;
}

ErrorCode getData(EngineState& state, const CleXDSmb& request, CleXDSmb& /*reply*/) {
  DataSet* dataSet = nullptr;
  const ErrorCode code = reachDataSet<OfActive>(state, request, &dataSet);
  if (code != ErrorCode::kNone) return code;
  const int first = request.Longs()[0];
  const int count = request.Longs()[1];
  if (first < 0 || count < 0) return ErrorCode::kRowRangeNegative;
  if (isBeingRead(state, *dataSet)) return ErrorCode::kDataSetInUse;
  DataSet read;
  const ErrorCode readCode = readFile(request.Strings()[0], &read);
  if (readCode != ErrorCode::kNone) return readCode;
  if (!sameVariables(*dataSet, read)) return ErrorCode::kDataFileDiffers;
  const std::size_t inFile = read.cases.caseCount();
  CaseStore rows = takeRows(&read, static_cast<std::size_t>(first), static_cast<std::size_t>(count));
  touch(&state, dataSet);
  dataSet->cases = std::move(rows);
  state.tempFileCases = inFile;
  return ErrorCode::kNone;
}

ErrorCode rowCount(EngineState& state, const CleXDSmb& /*request*/, CleXDSmb& reply) {
  if (!state.tempFileCases) return ErrorCode::kNoTempFile;
  reply.SetLong(static_cast<int>(*state.tempFileCases));
  return ErrorCode::kNone;
}

constexpr HandlerRow kRows[] = {
    {Command::SaveDataToTempFile, saveData},
    {Command::GetDataFromTempFile, getData},
    {Command::GetRowCountInTempFile, rowCount},
};

}  // namespace

std::span<const HandlerRow> tempFileHandlers() { return kRows; }

}  // namespace kova::engine
