// A batch of received cases and the way through it: decodes the values of the current case and tells which are missing.
//
// A case is a run of units of 8 bytes: a number takes one, an IEEE double; a string takes as many as its width fills,
// left-justified and padded with blanks. Numbers of cases come from the engine and are not trusted: only a case that
// lies whole within the batch is served, and no value is read from beyond the batch.
//
// The client keeps one for its case cursor. It owns the batch and the descriptions of the variables. One thread at a
// time uses it.
#ifndef KOVADX_MESSAGE_CURSORDATASMB_H
#define KOVADX_MESSAGE_CURSORDATASMB_H

#include <bit>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "export.h"
#include "message/case_layout.h"
#include "message/void_data.h"

// One unit of a case.
union OBS {
  double number;
  char bytes[kova::kUnitBytes];
};

// What a cursor knows of a variable.
//
// The code of a number: 0 no missing values, 1 to 3 that many single ones, -2 a range from the first to the second, -3
// that range and, single, the third. The code of a string: 0 to 3 single ones, each of at most 8 bytes, padded with
// blanks.
struct VarInfo {
  int type = 0;  // 0 for a number, else the string's width in bytes.
  OBS missing[3] = {};
  int missingCode = 0;
};

namespace kova {

// Cases that lie one behind the other.
struct CaseRun {
  const void* cases = nullptr;
  int count = 0;
};

}  // namespace kova

class KOVADX_API CursorDataSmb {
 public:
  static constexpr int CACHE_SIZE = 20971520;  // The largest batch that is asked for, in bytes.
  static constexpr int NO_CACHE_DATA = 1900;   // The batch is used up, or there is none.

  CursorDataSmb() = default;
  CursorDataSmb(const CursorDataSmb&) = delete;
  CursorDataSmb& operator=(const CursorDataSmb&) = delete;
  ~CursorDataSmb() = default;

  // What the cursor is for: 0 reading, 1 writing, 2 anything else.
  int GetAccessType() const { return accessType_; }
  void SetAccessType(int type) { accessType_ = type; }
  // Bytes per case.
  int GetOneCaseSize() const { return oneCaseSize_; }
  void SetOneCaseSize(int size) { oneCaseSize_ = size; }
  // How many cases are to be served; -1 without a batch.
  int GetReceivedCases() const { return receivedCases_; }
  void SetReceivedCases(int cases) { receivedCases_ = cases; }
  bool HasData() const { return receivedCases_ > 0; }
  // What NextCase returns, once, when the batch is used up; 0 for none.
  int GetLastError() const { return lastError_; }
  void SetLastError(int error) { lastError_ = error; }
  // The position of the current case in the batch, which alone is changed: the next case is the one behind it.
  void SetCurCasePos(int position) { position_ = position; }

  // The first unit of each variable within a case.
  std::vector<unsigned int>& GetObsIndex() { return obsIndex_; }
  // `i` must be below its size.
  unsigned int OBSIndex(int i) const {
    assert(i >= 0 && static_cast<std::size_t>(i) < obsIndex_.size());
    return obsIndex_[static_cast<std::size_t>(i)];
  }

  // A new description, all zero, which is the caller's own until it is added.
  VarInfo* NewVarInfo() const { return new VarInfo(); }
  // Takes the description over as that of the next variable; null adds nothing.
  void AddVarInfo(VarInfo* info);
  const std::vector<std::unique_ptr<VarInfo>>& Variables() const { return variables_; }

  // Replaces the batch by a copy of `size` bytes, whose first case becomes the current one; null leaves no batch. The
  // number of received cases stays as it is. Throws std::bad_alloc, and there is no batch then.
  void SetCasePtr(void* data, int size);
  // The same, but the bytes are taken over and not copied, unless they lie at an address that is no multiple of 8.
  void TakeCases(kova::VoidData&& cases);

  // Makes the next case the current one: 0. At the end of the batch there is no current case any more, and the result
  // is the last error, which is forgotten, or NO_CACHE_DATA when there is none.
  int NextCase();
  // Serves the current case and all behind it at once: the last of them becomes the current one. They stay where they
  // are until the batch is replaced.
  kova::CaseRun ServeRest();

  // The current case's value, and 0, 1 or 2 as IsMissing says. 0; 10 when there is no such variable, 24 when it is of
  // the other kind, NO_CACHE_DATA without a current case; nothing is stored then.
  int GetNumericValue(unsigned int var, double& value, int& missing) const;
  // The string as strncpy would copy as many bytes as the variable is wide: `buffer` must have room for them, and no
  // NUL follows a value that fills the width. A null buffer gets nothing.
  //
  // Deliberate: `length` is not looked at.
  int GetStringValue(unsigned int var, char*& buffer, int length, int& missing) const;

  // 0 when the value is valid, 1 when it is user-missing, 2 when it is system-missing. `value` points at all units of
  // the variable. Single missing numbers are compared bit for bit, ranges as numbers.
  static int IsMissing(const VarInfo* info, const OBS* value);

 private:
  static int isMissingNumber(const VarInfo& info, OBS value);
  static int isMissingText(const VarInfo& info, const OBS* value);

  const OBS* unitsOf(unsigned int var, std::int64_t count) const;
  bool holds(std::int64_t index) const;
  void makeCurrent(int index);
  void leaveCases();

  int position_ = -1;
  kova::VoidData batch_;
  const OBS* current_ = nullptr;  // The first unit of the current case; null without one.
  int accessType_ = 0;
  int oneCaseSize_ = 0;
  int receivedCases_ = -1;
  std::vector<unsigned int> obsIndex_;
  int lastError_ = 0;
  std::vector<std::unique_ptr<VarInfo>> variables_;
  std::int64_t unitsLeft_ = 0;  // From the current case to the end of the batch.
};

// The road of every single value stands here, to be compiled into its caller.

inline int CursorDataSmb::isMissingNumber(const VarInfo& info, OBS value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const auto equals = [=](const OBS& missing) { return bits == std::bit_cast<std::uint64_t>(missing); };
  if (bits == kova::kSystemMissingBits) return 2;
  if (info.missingCode == 0) return 0;
  bool missing = false;
  switch (info.missingCode) {
    case -3:
      missing = equals(info.missing[2]);
      [[fallthrough]];
    case -2:
      return missing || (info.missing[0].number <= value.number && value.number <= info.missing[1].number) ? 1 : 0;
    case 3:
      missing = equals(info.missing[2]);
      [[fallthrough]];
    case 2:
      missing = missing || equals(info.missing[1]);
      [[fallthrough]];
    case 1:
      return missing || equals(info.missing[0]) ? 1 : 0;
    default:
      return 0;
  }
}

inline const OBS* CursorDataSmb::unitsOf(unsigned int var, std::int64_t count) const {
  if (var >= obsIndex_.size()) return nullptr;
  const std::int64_t first = obsIndex_[var];
  return first + count <= unitsLeft_ ? current_ + first : nullptr;
}

inline int CursorDataSmb::GetNumericValue(unsigned int var, double& value, int& missing) const {
  if (var >= variables_.size()) return 10;
  const VarInfo& info = *variables_[var];
  if (info.type != 0) return 24;
  const OBS* const place = unitsOf(var, 1);
  if (place == nullptr) return NO_CACHE_DATA;
  const OBS unit = *place;
  value = unit.number;
  missing = isMissingNumber(info, unit);
  return 0;
}

inline bool CursorDataSmb::holds(std::int64_t index) const {
  return index >= 0 && oneCaseSize_ >= 0 && (index + 1) * oneCaseSize_ <= batch_.length();
}

// Cases begin at whole units, whatever the stated size is.
inline void CursorDataSmb::makeCurrent(int index) {
  const std::int64_t units = std::int64_t{index} * (oneCaseSize_ / kova::kUnitBytes);
  position_ = index;
  current_ = static_cast<const OBS*>(batch_.data()) + units;
  unitsLeft_ = batch_.length() / kova::kUnitBytes - units;
}

inline int CursorDataSmb::NextCase() {
  const std::int64_t next = std::int64_t{position_} + 1;
  if (next < receivedCases_ && holds(next)) {
    makeCurrent(static_cast<int>(next));
    return 0;
  }
  leaveCases();
  receivedCases_ = -1;
  const int error = lastError_;
  lastError_ = 0;
  return error != 0 ? error : NO_CACHE_DATA;
}

inline void CursorDataSmb::leaveCases() {
  position_ = -1;
  current_ = nullptr;
  unitsLeft_ = 0;
}

#endif
