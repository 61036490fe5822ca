#include "engine/pivot_table.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kova::engine {

void addNote(Notes* notes, std::string_view text) {
  if (std::find(notes->begin(), notes->end(), text) == notes->end()) notes->emplace_back(text);
}

std::vector<std::size_t> PivotTable::dimensionsAt(Place place) const {
  std::vector<std::size_t> found;
  for (std::size_t index = 0; index < dimensions_.size(); ++index) {
    if (dimensions_[index].place() == place) found.push_back(index);
  }
  std::stable_sort(found.begin(), found.end(), [this](std::size_t left, std::size_t right) {
    return dimensions_[left].key.position < dimensions_[right].key.position;
  });
  return found;
}

ErrorCode PivotTable::addDimension(const DimensionKey& key) {
  const bool isPlace = key.place >= static_cast<int>(Place::kRow) && key.place <= static_cast<int>(Place::kLayer);
  if (!isPlace || key.position < 0) return ErrorCode::kOutputNumberOutOfRange;
  if (findDimension(key) != nullptr) return ErrorCode::kDimensionExists;
  if (!cells_.empty()) return ErrorCode::kDimensionAfterCells;
  Dimension dimension;
  dimension.key = key;
  dimensions_.push_back(std::move(dimension));
  return ErrorCode::kNone;
}

Dimension* PivotTable::findDimension(const DimensionKey& key) {
  const auto found = std::find_if(dimensions_.begin(), dimensions_.end(),
                                  [&key](const Dimension& dimension) { return dimension.key == key; });
  return found == dimensions_.end() ? nullptr : &*found;
}

void PivotTable::select(Dimension* dimension, OutputValue value) {
  const auto next = static_cast<std::uint32_t>(dimension->categories.size());
  const auto [entry, isNew] = dimension->byIdentity.try_emplace(identityOf(value), next);
  if (isNew) dimension->categories.push_back({std::move(value), {}});
  dimension->current = entry->second;
}

std::optional<std::string> PivotTable::currentPlace() const {
  std::string place(dimensions_.size() * sizeof(std::uint32_t), '\0');
  char* next = place.data();
  for (const Dimension& dimension : dimensions_) {
    if (!dimension.current) return std::nullopt;
    std::memcpy(next, &*dimension.current, sizeof(std::uint32_t));
    next += sizeof(std::uint32_t);
  }
  return place;
}

ErrorCode PivotTable::setCell(OutputValue value) {
  auto place = currentPlace();
  if (!place) return ErrorCode::kNoCategory;
  const auto [entry, isNew] = cellsByPlace_.try_emplace(std::move(*place), cells_.size());
  if (!isNew) {
    cells_[entry->second].value = std::move(value);
    return ErrorCode::kNone;
  }
  Cell cell;
  cell.at.reserve(dimensions_.size());
  for (const Dimension& dimension : dimensions_) cell.at.push_back(*dimension.current);
  cell.value = std::move(value);
  cells_.push_back(std::move(cell));
  return ErrorCode::kNone;
}

ErrorCode PivotTable::addCellNote(std::string_view text) {
  const auto place = currentPlace();
  if (!place) return ErrorCode::kNoCategory;
  const auto found = cellsByPlace_.find(*place);
  if (found == cellsByPlace_.end()) return ErrorCode::kCellNotSet;
  addNote(&cells_[found->second].notes, text);
  return ErrorCode::kNone;
}

ErrorCode PivotTable::limitColumns(std::optional<int> least, std::optional<int> most) {
  const int newLeast = least.value_or(leastColumnWidth_);
  const int newMost = most.value_or(mostColumnWidth_);
  if (newLeast < 1 || newMost > kWidestColumn || newLeast > newMost) return ErrorCode::kOutputNumberOutOfRange;
  leastColumnWidth_ = newLeast;
  mostColumnWidth_ = newMost;
  return ErrorCode::kNone;
}

}  // namespace kova::engine
