#include "engine/case_store.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kova::engine {
namespace {

constexpr std::uint64_t kBlanks = 0x2020202020202020;

std::size_t unitsOf(int width) { return width <= 8 ? 1 : static_cast<std::size_t>((width + 7) / 8); }

// How many of the bytes fit without a part of a character.
std::size_t wholeCharacters(const char* bytes, std::size_t size, std::size_t width) {
  if (size <= width) return size;
  while (width > 0 && (static_cast<unsigned char>(bytes[width]) & 0xC0U) == 0x80) --width;
  return width;
}

}  // namespace

CaseStore::CaseStore(const std::vector<int>& widths) {
  for (const int width : widths) {
    slots_.push_back({caseUnits_, unitsOf(width), static_cast<std::size_t>(width)});
    caseUnits_ += slots_.back().units;
    emptyCase_.resize(caseUnits_, width == 0 ? std::bit_cast<std::uint64_t>(kSystemMissing) : kBlanks);
  }
}

std::uint64_t CaseStore::caseBytesOf(const std::vector<int>& widths) {
  std::uint64_t units = 0;
  for (const int width : widths) units += unitsOf(width);
  return units * kUnitBytes;
}

void CaseStore::appendCase() { units_.insert(units_.end(), emptyCase_.begin(), emptyCase_.end()); }

void CaseStore::setNumber(std::size_t position, std::size_t variable, double value) {
  std::memcpy(bytesOf(position, variable), &value, sizeof value);
}

void CaseStore::setText(std::size_t position, std::size_t variable, std::string_view text) {
  const Slot& slot = slots_[variable];
  char* bytes = bytesOf(position, variable);
  std::memset(bytes, ' ', slot.units * kUnitBytes);
  if (!text.empty()) std::memcpy(bytes, text.data(), std::min(slot.width, text.size()));
}

double CaseStore::number(std::size_t position, std::size_t variable) const {
  double value = 0;
  std::memcpy(&value, bytesOf(position, variable), sizeof value);
  return value;
}

std::string CaseStore::text(std::size_t position, std::size_t variable) const {
  return {bytesOf(position, variable), slots_[variable].width};
}

bool CaseStore::sameValue(std::size_t position, std::size_t other, std::size_t variable) const {
  return std::memcmp(bytesOf(position, variable), bytesOf(other, variable), slots_[variable].units * kUnitBytes) == 0;
}

bool CaseStore::mayChangeWidth(std::size_t variable, int width) const {
  const std::uint64_t units = caseUnits_ - slots_[variable].units + unitsOf(width);
  return units * kUnitBytes <= kMostCasesBytes / std::max<std::uint64_t>(caseCount(), 1);
}

void CaseStore::changeWidth(std::size_t variable, int width) {
  std::vector<int> widths = this->widths();
  widths[variable] = width;
  CaseStore changed(widths);
  const std::size_t count = caseCount();
  changed.units_.reserve(count * changed.caseUnits_);
  for (std::size_t i = 0; i < count; ++i) changed.copyCase(*this, i, variable);
  *this = std::move(changed);
}

std::vector<int> CaseStore::widths() const {
  std::vector<int> widths;
  for (const Slot& slot : slots_) widths.push_back(static_cast<int>(slot.width));
  return widths;
}

// Appends a case of a store that differs in one variable's width: what stands before and behind that one is the same.
void CaseStore::copyCase(const CaseStore& from, std::size_t position, std::size_t changed) {
  const std::size_t target = caseCount();
  appendCase();
  const Slot& slot = slots_[changed];
  const Slot& fromSlot = from.slots_[changed];
  const std::uint64_t* source = from.units_.data() + position * from.caseUnits_;
  std::uint64_t* const copy = units_.data() + target * caseUnits_;
  std::copy_n(source, slot.first, copy);
  source += fromSlot.first + fromSlot.units;
  std::copy_n(source, from.caseUnits_ - fromSlot.first - fromSlot.units, copy + slot.first + slot.units);
  const char* const text = from.bytesOf(position, changed);
  const std::size_t bytes = wholeCharacters(text, fromSlot.width, slot.width);
  if (bytes > 0) std::memcpy(bytesOf(target, changed), text, bytes);
}

char* CaseStore::bytesOf(std::size_t position, std::size_t variable) {
  return reinterpret_cast<char*>(units_.data() + position * caseUnits_ + slots_[variable].first);
}

const char* CaseStore::bytesOf(std::size_t position, std::size_t variable) const {
  return reinterpret_cast<const char*>(units_.data() + position * caseUnits_ + slots_[variable].first);
}

}  // namespace kova::engine
