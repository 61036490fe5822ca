#include "message/DatastepSmb.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr int kNoSuchCell = 10;

}  // namespace

void DatastepSmb::SetrowInfo(long firstRow, int& error) {
  firstRow_ = static_cast<int>(firstRow);
  error = 0;
}

void DatastepSmb::SetvarCount(int count, int& error) {
  varCount_ = count;
  error = 0;
}

double DatastepSmb::GetNCellValue(const char*, long row, int column, int& flag, int& error) {
  error = 0;
  const auto cell = entry(row, column, DoubleArrays().empty() ? 0 : DoubleArrays().front().values().size());
  if (!cell) {
    error = kNoSuchCell;
    return 0.0;
  }
  flag = LongArrays().front().values()[*cell];
  return DoubleArrays().front().values()[*cell];
}

char* DatastepSmb::GetCCellValue(const char*, long row, int column, int& flag, int& error) {
  error = 0;
  const auto cell = entry(row, column, StringArrays().empty() ? 0 : StringArrays().front().values().size());
  if (!cell) {
    error = kNoSuchCell;
    return nullptr;
  }
  const std::string& text = StringArrays().front().values()[*cell];
  auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy, text.c_str(), text.size() + 1);
  flag = LongArrays().front().values()[*cell];
  return copy;
}

std::optional<std::size_t> DatastepSmb::entry(long row, int column, std::size_t length) const {
  const std::size_t flags = LongArrays().empty() ? 0 : LongArrays().front().values().size();
  // No data set has a row that far away, and the differences below would not fit into 64 bits.
  const std::int64_t wideRow = row;
  if (wideRow > INT32_MAX || wideRow < INT32_MIN) return std::nullopt;
  const std::int64_t rows = wideRow - firstRow_;
  const std::int64_t cell = rows * varCount_ + column;
  if (cell < 0 || cell >= static_cast<std::int64_t>(std::min(flags, length))) return std::nullopt;
  return static_cast<std::size_t>(cell);
}
