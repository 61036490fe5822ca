// The cases of a data set, stored as they travel: a case is a run of units of 8 bytes. A number takes one unit, an IEEE
// double; a string of width w takes 1 unit when w <= 8, else (w + 7) / 8, its text padded with blanks. A batch of cases
// is thus one piece of this memory.
//
// It owns the cases. One thread at a time uses it.
#ifndef KOVADX_ENGINE_CASE_STORE_H
#define KOVADX_ENGINE_CASE_STORE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "message/case_layout.h"

namespace kova::engine {

// The value that stands for "no value" in a numeric variable.
constexpr double kSystemMissing = std::bit_cast<double>(kSystemMissingBits);

constexpr std::uint64_t kMostCasesBytes = std::uint64_t{4} << 30;  // Of all cases of a data set.

// Leaves new elements as they are, for memory that is written right away.
template <typename Value>
struct UnfilledAllocator : std::allocator<Value> {
  UnfilledAllocator() = default;
  template <typename Other>
  explicit UnfilledAllocator(const UnfilledAllocator<Other>& /*other*/) {}

  template <typename Other>
  struct rebind {
    using other = UnfilledAllocator<Other>;
  };

  void construct(Value* place) { ::new (static_cast<void*>(place)) Value; }
  template <typename... Arguments>
  void construct(Value* place, Arguments&&... arguments) {
    ::new (static_cast<void*>(place)) Value(std::forward<Arguments>(arguments)...);
  }
};

class CaseStore {
 public:
  CaseStore() = default;

  // For variables of these widths in bytes, 0 for a number.
  explicit CaseStore(const std::vector<int>& widths);

  // Without variables there are no cases.
  std::size_t caseCount() const { return caseUnits_ == 0 ? 0 : units_.size() / caseUnits_; }
  std::size_t caseBytes() const { return caseUnits_ * kUnitBytes; }

  // What caseBytes() is for variables of these widths.
  static std::uint64_t caseBytesOf(const std::vector<int>& widths);

  // Takes the memory for that many cases at once.
  void reserve(std::size_t cases) { units_.reserve(cases * caseUnits_); }

  // Those of the variables.
  std::vector<int> widths() const;

  // The first unit of a variable within a case, and the bytes that so many variables take from the first of them on.
  std::size_t firstUnit(std::size_t variable) const { return slots_[variable].first; }
  std::size_t bytesOfVariables(std::size_t first, std::size_t count) const;

  // True when that many more cases leave all within kMostCasesBytes.
  bool mayAdd(std::uint64_t cases) const;

  // Adds a case of system-missing numbers and blank strings: behind all others, or in front of the one at a position,
  // which may be the number of cases.
  void appendCase();
  void insertCase(std::size_t position);

  // Adds that many cases, whose bytes lie one behind the other, behind all others. One copy.
  void appendCases(const void* bytes, std::size_t count);

  void eraseCase(std::size_t position);

  // The bytes of a case, caseBytes() of them, or those of its variables from the first on; valid until the next change.
  const void* caseAt(std::size_t position) const { return units_.data() + position * caseUnits_; }
  const void* variablesAt(std::size_t position, std::size_t first) const { return bytesOf(position, first); }

  // Overwrites so many variables of a case, from the first on, with bytesOfVariables() bytes.
  void setVariables(std::size_t position, std::size_t first, std::size_t count, const void* bytes);

  // One value. Positions must exist and the kind must be the variable's. A text longer than the variable is cut.
  void setNumber(std::size_t position, std::size_t variable, double value);
  void setText(std::size_t position, std::size_t variable, std::string_view text);
  double number(std::size_t position, std::size_t variable) const;
  std::string text(std::size_t position, std::size_t variable) const;  // Of the variable's width, blanks included.

  // True when both cases have the same value of the variable, byte for byte.
  bool sameValue(std::size_t position, std::size_t other, std::size_t variable) const;

  // True when all cases take at most kMostCasesBytes with another width of a variable.
  bool mayChangeWidth(std::size_t variable, int width) const;

  // Gives a variable another width. A text is cut behind a whole character of UTF-8 or filled up with blanks; where a
  // number becomes a text or the other way about, the cases have no value of it any more.
  void changeWidth(std::size_t variable, int width);

  // True when all cases take at most kMostCasesBytes with more variables of these widths.
  bool mayInsertVariables(const std::vector<int>& widths) const;

  // Adds variables of these widths in front of the one at a position, which may be the number of variables. The cases
  // have no values of them.
  void insertVariables(std::size_t position, const std::vector<int>& widths);

  // Positions rise. With the last variable the cases go too.
  void eraseVariables(std::span<const std::size_t> variables);

  // Puts a variable to another position; those between the two move by one.
  void moveVariable(std::size_t from, std::size_t to);

  bool operator==(const CaseStore&) const = default;

  // All cases, one behind the other; valid until the next change.
  const void* data() const { return units_.data(); }

 private:
  struct Slot {
    std::size_t first;
    std::size_t units;
    std::size_t width;

    bool operator==(const Slot&) const = default;
  };

  // Units that stand in one run in both an old case and a new one.
  struct Run {
    std::size_t from;
    std::size_t to;
    std::size_t units;
  };

  CaseStore rearranged(const std::vector<int>& widths, const std::vector<std::optional<std::size_t>>& sources) const;
  std::vector<Run> runsFrom(const CaseStore& old, const std::vector<std::optional<std::size_t>>& sources) const;
  void takeText(std::size_t position, std::size_t variable, const CaseStore& old);
  char* bytesOf(std::size_t position, std::size_t variable);
  const char* bytesOf(std::size_t position, std::size_t variable) const;

  std::vector<Slot> slots_;
  std::vector<std::uint64_t> emptyCase_;
  std::vector<std::uint64_t, UnfilledAllocator<std::uint64_t>> units_;
  std::size_t caseUnits_ = 0;
};

}  // namespace kova::engine

#endif
