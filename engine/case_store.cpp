#include "engine/case_store.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "engine/erase_elements.h"
#include "engine/move_element.h"

namespace kova::engine {
namespace {

constexpr std::uint64_t kBlanks = 0x2020202020202020;

std::size_t unitsOf(int width) { return static_cast<std::size_t>(UnitsOfType(width)); }

// How many of the bytes fit without a part of a character.
std::size_t wholeCharacters(const char* bytes, std::size_t size, std::size_t width) {
  if (size <= width) return size;
  while (width > 0 && (static_cast<unsigned char>(bytes[width]) & 0xC0U) == 0x80) --width;
  return width;
}

bool fits(std::uint64_t caseUnits, std::uint64_t cases) {
  return caseUnits * kUnitBytes <= kMostCasesBytes / std::max<std::uint64_t>(cases, 1);
}

// Every variable as its own source.
std::vector<std::optional<std::size_t>> inOrder(std::size_t count) {
  std::vector<std::optional<std::size_t>> sources(count);
  for (std::size_t i = 0; i < count; ++i) sources[i] = i;
  return sources;
}

}  // namespace

CaseStore::CaseStore(const std::vector<int>& widths) {
  for (const int width : widths) {
    slots_.push_back({caseUnits_, unitsOf(width), static_cast<std::size_t>(width)});
    caseUnits_ += slots_.back().units;
    emptyCase_.resize(caseUnits_, width == 0 ? kSystemMissingBits : kBlanks);
  }
}

std::uint64_t CaseStore::caseBytesOf(const std::vector<int>& widths) {
  std::uint64_t units = 0;
  for (const int width : widths) units += unitsOf(width);
  return units * kUnitBytes;
}

void CaseStore::appendCase() { units_.insert(units_.end(), emptyCase_.begin(), emptyCase_.end()); }

void CaseStore::insertCase(std::size_t position) {
  units_.insert(units_.begin() + static_cast<std::ptrdiff_t>(position * caseUnits_), emptyCase_.begin(),
                emptyCase_.end());
}

void CaseStore::appendCases(const void* bytes, std::size_t count) {
  if (count == 0) return;
  const std::size_t size = units_.size();
  units_.resize(size + count * caseUnits_);
  std::memcpy(units_.data() + size, bytes, count * caseBytes());
}

void CaseStore::eraseCase(std::size_t position) {
  const auto first = units_.begin() + static_cast<std::ptrdiff_t>(position * caseUnits_);
  units_.erase(first, first + static_cast<std::ptrdiff_t>(caseUnits_));
}

std::size_t CaseStore::bytesOfVariables(std::size_t first, std::size_t count) const {
  std::size_t units = 0;
  for (std::size_t i = first; i < first + count; ++i) units += slots_[i].units;
  return units * kUnitBytes;
}

bool CaseStore::mayAdd(std::uint64_t cases) const {
  return cases <= kMostCasesBytes && fits(caseUnits_, caseCount() + cases);
}

void CaseStore::setVariables(std::size_t position, std::size_t first, std::size_t count, const void* bytes) {
  if (count > 0) std::memcpy(bytesOf(position, first), bytes, bytesOfVariables(first, count));
}

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
  return fits(caseUnits_ - slots_[variable].units + unitsOf(width), caseCount());
}

void CaseStore::changeWidth(std::size_t variable, int width) {
  std::vector<int> changedWidths = widths();
  changedWidths[variable] = width;
  std::vector<std::optional<std::size_t>> sources = inOrder(slots_.size());
  sources[variable].reset();
  CaseStore changed = rearranged(changedWidths, sources);
  for (std::size_t i = 0; i < changed.caseCount(); ++i) changed.takeText(i, variable, *this);
  *this = std::move(changed);
}

bool CaseStore::mayInsertVariables(const std::vector<int>& widths) const {
  return fits(caseUnits_ + caseBytesOf(widths) / kUnitBytes, caseCount());
}

void CaseStore::insertVariables(std::size_t position, const std::vector<int>& widths) {
  const auto place = static_cast<std::ptrdiff_t>(position);
  std::vector<int> all = this->widths();
  std::vector<std::optional<std::size_t>> sources = inOrder(all.size());
  all.insert(all.begin() + place, widths.begin(), widths.end());
  sources.insert(sources.begin() + place, widths.size(), std::nullopt);
  *this = rearranged(all, sources);
}

void CaseStore::eraseVariables(std::span<const std::size_t> variables) {
  std::vector<int> left = widths();
  std::vector<std::optional<std::size_t>> sources = inOrder(left.size());
  eraseElements(&left, variables);
  eraseElements(&sources, variables);
  *this = rearranged(left, sources);
}

void CaseStore::moveVariable(std::size_t from, std::size_t to) {
  std::vector<int> moved = widths();
  std::vector<std::optional<std::size_t>> sources = inOrder(moved.size());
  moveElement(&moved, from, to);
  moveElement(&sources, from, to);
  *this = rearranged(moved, sources);
}

std::vector<int> CaseStore::widths() const {
  std::vector<int> widths;
  for (const Slot& slot : slots_) widths.push_back(static_cast<int>(slot.width));
  return widths;
}

// All cases laid out for other variables. Each takes the values of the old one that is its source; without a source the
// cases have no values of it.
CaseStore CaseStore::rearranged(const std::vector<int>& widths,
                                const std::vector<std::optional<std::size_t>>& sources) const {
  CaseStore changed(widths);
  const std::vector<Run> runs = changed.runsFrom(*this, sources);
  const std::size_t count = changed.caseUnits_ == 0 ? 0 : caseCount();
  changed.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    changed.appendCase();
    const std::uint64_t* const from = units_.data() + i * caseUnits_;
    std::uint64_t* const to = changed.units_.data() + i * changed.caseUnits_;
    for (const Run& run : runs) std::copy_n(from + run.from, run.units, to + run.to);
  }
  return changed;
}

// Variables that stay side by side are copied as one.
std::vector<CaseStore::Run> CaseStore::runsFrom(const CaseStore& old,
                                                const std::vector<std::optional<std::size_t>>& sources) const {
  std::vector<Run> runs;
  for (std::size_t i = 0; i < sources.size(); ++i) {
    if (!sources[i]) continue;
    const Run run{old.slots_[*sources[i]].first, slots_[i].first, slots_[i].units};
    if (!runs.empty() && runs.back().from + runs.back().units == run.from &&
        runs.back().to + runs.back().units == run.to) {
      runs.back().units += run.units;
    } else {
      runs.push_back(run);
    }
  }
  return runs;
}

void CaseStore::takeText(std::size_t position, std::size_t variable, const CaseStore& old) {
  const char* const text = old.bytesOf(position, variable);
  const std::size_t bytes = wholeCharacters(text, old.slots_[variable].width, slots_[variable].width);
  if (bytes > 0) std::memcpy(bytesOf(position, variable), text, bytes);
}

char* CaseStore::bytesOf(std::size_t position, std::size_t variable) {
  return reinterpret_cast<char*>(units_.data() + position * caseUnits_ + slots_[variable].first);
}

const char* CaseStore::bytesOf(std::size_t position, std::size_t variable) const {
  return reinterpret_cast<const char*>(units_.data() + position * caseUnits_ + slots_[variable].first);
}

}  // namespace kova::engine
