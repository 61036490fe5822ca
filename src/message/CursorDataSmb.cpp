#include "message/CursorDataSmb.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr char kBlanks[] = "        ";
constexpr std::size_t kUnit = kova::kUnitBytes;

// One missing value is at most one unit long: what the value has behind it must be blank.
bool matches(const OBS* value, int units, const OBS& missing) {
  if (std::memcmp(value, &missing, kUnit) != 0) return false;
  return std::all_of(value + 1, value + units, [](const OBS& unit) { return std::memcmp(&unit, kBlanks, kUnit) == 0; });
}

}  // namespace

void CursorDataSmb::AddVarInfo(VarInfo* info) {
  std::unique_ptr<VarInfo> owned(info);
  if (owned) variables_.push_back(std::move(owned));
}

void CursorDataSmb::SetCasePtr(void* data, int size) {
  kova::VoidData copy;
  leaveCases();
  batch_.release();
  if (data == nullptr) return;
  if (!copy.copyOf(data, size)) throw std::bad_alloc();
  TakeCases(std::move(copy));
}

void CursorDataSmb::TakeCases(kova::VoidData&& cases) {
  kova::VoidData taken = std::move(cases);
  if (reinterpret_cast<std::uintptr_t>(taken.data()) % alignof(OBS) != 0)
    return SetCasePtr(taken.data(), taken.length());
  leaveCases();
  batch_ = std::move(taken);
  if (batch_.data() != nullptr) makeCurrent(0);
}

kova::CaseRun CursorDataSmb::ServeRest() {
  if (current_ == nullptr || oneCaseSize_ < kova::kUnitBytes) return {};
  const int held = std::min(receivedCases_, batch_.length() / oneCaseSize_);
  const auto first = (current_ - static_cast<const OBS*>(batch_.data())) / (oneCaseSize_ / kova::kUnitBytes);
  const kova::CaseRun rest{current_, held - static_cast<int>(first)};
  if (rest.count < 1) return {};
  makeCurrent(held - 1);
  return rest;
}

int CursorDataSmb::GetStringValue(unsigned int var, char*& buffer, int /*length*/, int& missing) const {
  if (var >= variables_.size()) return 10;
  const VarInfo& info = *variables_[var];
  if (info.type == 0) return 24;
  const OBS* const units = unitsOf(var, kova::UnitsOfType(info.type));
  if (units == nullptr) return NO_CACHE_DATA;
  if (buffer != nullptr) std::strncpy(buffer, units->bytes, static_cast<std::size_t>(std::max(info.type, 0)));
  missing = isMissingText(info, units);
  return 0;
}

int CursorDataSmb::IsMissing(const VarInfo* info, const OBS* value) {
  return info->type == 0 ? isMissingNumber(*info, *value) : isMissingText(*info, value);
}

int CursorDataSmb::isMissingText(const VarInfo& info, const OBS* value) {
  if (info.missingCode < 1 || info.missingCode > 3) return 0;
  const int units = kova::UnitsOfType(info.type);
  const auto equals = [&](const OBS& missing) { return matches(value, units, missing); };
  return std::any_of(info.missing, info.missing + info.missingCode, equals) ? 1 : 0;
}
