#include "api/data_step_batch.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kova {
namespace {

// Where the rows of a reply lie.
struct Rectangle {
  int firstRow;
  int rows;
  int columns;
};

int cellCount(const CleXDSmb& reply) { return reply.LongArrays().empty() ? 0 : reply.LongArrays().front().Size(); }

Rectangle asTold(const CleXDSmb& reply) {
  const LongData& longs = reply.Longs();
  const int columns = std::max(0, longs[2]);
  const int rows = std::max(0, longs[1]);
  return {longs[0], columns == 0 ? rows : std::min(rows, cellCount(reply) / columns), columns};
}

Rectangle asAsked(const CleXDSmb& reply, int firstRow, int rowCount) {
  const int rows = std::max(0, rowCount);
  return {firstRow, rows, rows == 0 ? 0 : cellCount(reply) / rows};
}

}  // namespace

void DataStepBatch::fill(std::string_view dataSet, int firstRow, int rowCount, CleXDSmb&& reply) {
  auto record = std::make_unique<DatastepSmb>();
  std::string name(dataSet);
  const Rectangle held = reply.Longs().Size() < 3 ? asAsked(reply, firstRow, rowCount) : asTold(reply);
  static_cast<CleXDSmb&>(*record) = std::move(reply);
  int error = 0;
  record->SetrowInfo(held.firstRow, error);
  record->SetvarCount(held.columns, error);
  record_ = std::move(record);
  dataSet_ = std::move(name);
  rows_ = held.rows;
}

bool DataStepBatch::holds(std::string_view dataSet, int firstRow, int rowCount) const {
  if (!record_ || dataSet_ != dataSet || firstRow < record_->FirstRow()) return false;
  const std::int64_t end = std::int64_t{firstRow} + std::max(0, rowCount);
  return end <= std::int64_t{record_->FirstRow()} + rows_;
}

}  // namespace kova
