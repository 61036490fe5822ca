#include "message/DatastepDataSmb.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "message/case_layout.h"

using kova::kUnitBytes;
using kova::UnitsOfType;

namespace {

constexpr int kNoSuchVariable = 10;
constexpr int kIsText = 56;
constexpr int kIsNumber = 57;

int cutToInt(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, 0, std::numeric_limits<int>::max()));
}

}  // namespace

void DatastepDataSmb::AddVarType(int type) { insertType(VarCount(), type); }

void DatastepDataSmb::InsertVarType(int at, int type) {
  if (at < 0 || at > VarCount()) return;
  insertType(at, type);
  indexAnew();
  resizeBy(UnitsOfType(type));
}

void DatastepDataSmb::EraseVarType(int at) {
  if (!has(at)) return;
  const std::int64_t size = oneCaseSize_ - std::int64_t{UnitsOfType(VarType(at))} * kUnitBytes;
  types_.erase(types_.begin() + at);
  obsLength_.erase(obsLength_.begin() + at);
  indexAnew();
  if (size >= 0) resize(size);
}

void DatastepDataSmb::UpdateVarType(int at, int type) {
  if (!has(at)) return;
  const auto var = static_cast<std::size_t>(at);
  const std::int64_t more = std::int64_t{UnitsOfType(type)} - obsLength_[var];
  types_[var] = type;
  obsLength_[var] = UnitsOfType(type);
  indexAnew();
  resizeBy(more);
}

int DatastepDataSmb::GetVarObsIndex(int var) const {
  return var >= 0 && var < static_cast<int>(obsIndex_.size()) ? obsIndex_[static_cast<std::size_t>(var)] : -1;
}

int DatastepDataSmb::GetVarObsLength(int var) const { return has(var) ? obsLength_[static_cast<std::size_t>(var)] : 0; }

void DatastepDataSmb::GetVarInfo(int*& types, int& count) const {
  if (types_.empty()) return;
  const std::size_t bytes = types_.size() * sizeof(int);
  auto* const copy = static_cast<int*>(std::malloc(bytes));
  if (copy == nullptr) return;
  std::memcpy(copy, types_.data(), bytes);
  types = copy;
  count = VarCount();
}

void DatastepDataSmb::SetOneCaseSize(int size) {
  oneCaseSize_ = size;
  case_.assign(static_cast<std::size_t>(std::max(size, 0) / kUnitBytes * kUnitBytes), 0);
}

void DatastepDataSmb::SetCaseValue(void* data, int size) {
  const int length = std::max(size, 0);
  const auto* const bytes = static_cast<const char*>(data);
  // Made before the old buffer goes: the bytes may lie in that.
  std::vector<char> copy(static_cast<std::size_t>(length));
  if (bytes != nullptr) std::copy_n(bytes, length, copy.begin());
  case_ = std::move(copy);
  oneCaseSize_ = length;
}

void* DatastepDataSmb::GetCaseValue(int& size) {
  size = static_cast<int>(case_.size());
  return case_.empty() ? nullptr : case_.data();
}

int DatastepDataSmb::SetNCellValue(unsigned int var, double value) {
  if (!has(var)) return kNoSuchVariable;
  if (types_[var] != 0) return kIsNumber;
  char* const place = cell(var, kUnitBytes);
  if (place == nullptr) return kNoSuchVariable;
  std::memcpy(place, &value, sizeof value);
  return 0;
}

double DatastepDataSmb::GetNCellValue(unsigned int var, int& missing, int& error) const {
  double value = 0;
  const char* const place = cell(var, kUnitBytes);
  if (has(var) && types_[var] != 0) {
    error = kIsText;
  } else if (place == nullptr) {
    error = kNoSuchVariable;
  } else {
    std::memcpy(&value, place, sizeof value);
    missing = std::bit_cast<std::uint64_t>(value) == kova::kSystemMissingBits ? 1 : 0;
  }
  return value;
}

int DatastepDataSmb::SetCCellValue(unsigned int var, const char* text) {
  if (!has(var)) return kNoSuchVariable;
  const std::size_t room = static_cast<std::size_t>(obsLength_[var]) * kUnitBytes;
  if (room == 0) return kIsText;
  char* const place = cell(var, static_cast<std::int64_t>(room));
  if (place == nullptr) return kNoSuchVariable;
  std::memset(place, ' ', room);
  if (text != nullptr) std::memcpy(place, text, std::min(std::strlen(text), room));
  return 0;
}

char* DatastepDataSmb::GetCCellValue(unsigned int var, int& error) const {
  if (has(var) && types_[var] == 0) {
    error = kIsNumber;
    return nullptr;
  }
  const int width = has(var) ? std::max(types_[var], 0) : 0;
  const char* const place = cell(var, width);
  if (place == nullptr) {
    error = kNoSuchVariable;
    return nullptr;
  }
  auto* const copy = static_cast<char*>(std::calloc(static_cast<std::size_t>(width) + 1, 1));
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy, place, static_cast<std::size_t>(width));
  return copy;
}

// Both lists grow or none does.
void DatastepDataSmb::insertType(int at, int type) {
  types_.insert(types_.begin() + at, type);
  try {
    obsLength_.insert(obsLength_.begin() + at, UnitsOfType(type));
  } catch (...) {
    types_.erase(types_.begin() + at);
    throw;
  }
}

void DatastepDataSmb::resize(std::int64_t size) { SetOneCaseSize(cutToInt(size)); }

void DatastepDataSmb::resizeBy(std::int64_t units) { resize(oneCaseSize_ + units * kUnitBytes); }

void DatastepDataSmb::indexAnew() {
  obsIndex_.clear();
  std::int64_t unit = 0;
  for (const int length : obsLength_) {
    obsIndex_.push_back(cutToInt(unit));
    unit += length;
  }
}

std::int64_t DatastepDataSmb::firstUnit(unsigned int var) const {
  if (var < obsIndex_.size()) return obsIndex_[var];
  std::int64_t unit = 0;
  for (unsigned int before = 0; before < var; ++before) unit += obsLength_[before];
  return unit;
}

const char* DatastepDataSmb::cell(unsigned int var, std::int64_t length) const {
  if (!has(var)) return nullptr;
  const std::int64_t first = firstUnit(var) * kUnitBytes;
  const bool isWithin = first >= 0 && first + length <= static_cast<std::int64_t>(case_.size());
  return isWithin ? case_.data() + first : nullptr;
}

char* DatastepDataSmb::cell(unsigned int var, std::int64_t length) {
  return const_cast<char*>(static_cast<const DatastepDataSmb*>(this)->cell(var, length));
}
