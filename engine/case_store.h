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
#include <string>
#include <string_view>
#include <vector>

namespace kova::engine {

// The value that stands for "no value" in a numeric variable: the most negative finite double.
constexpr double kSystemMissing = std::bit_cast<double>(std::uint64_t{0xFFEFFFFFFFFFFFFF});

constexpr std::size_t kUnitBytes = 8;

constexpr std::uint64_t kMostCasesBytes = std::uint64_t{4} << 30;  // Of all cases of a data set.

class CaseStore {
 public:
  CaseStore() = default;

  // For variables of these widths in bytes, 0 for a number.
  explicit CaseStore(const std::vector<int>& widths);

  std::size_t caseCount() const { return caseUnits_ == 0 ? 0 : units_.size() / caseUnits_; }
  std::size_t caseBytes() const { return caseUnits_ * kUnitBytes; }

  // What caseBytes() is for variables of these widths.
  static std::uint64_t caseBytesOf(const std::vector<int>& widths);

  // Takes the memory for that many cases at once.
  void reserve(std::size_t cases) { units_.reserve(cases * caseUnits_); }

  // The first unit of a variable within a case.
  std::size_t firstUnit(std::size_t variable) const { return slots_[variable].first; }

  // Adds a case of system-missing numbers and blank strings.
  void appendCase();

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

  std::vector<int> widths() const;
  void copyCase(const CaseStore& from, std::size_t position, std::size_t changed);
  char* bytesOf(std::size_t position, std::size_t variable);
  const char* bytesOf(std::size_t position, std::size_t variable) const;

  std::vector<Slot> slots_;
  std::vector<std::uint64_t> emptyCase_;
  std::vector<std::uint64_t> units_;
  std::size_t caseUnits_ = 0;
};

}  // namespace kova::engine

#endif
