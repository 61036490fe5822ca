// The layout of a data set's cases in a data step, and one case of it that is read and written cell by cell.
//
// A value owned by the data step's registry, or by whoever makes one; copies are deep. One thread uses it at a time.
// Operations that make room may throw std::bad_alloc. A cell that would lie outside the buffer gives 10, whatever the
// layout says.
#ifndef KOVADX_MESSAGE_DATASTEPDATASMB_H
#define KOVADX_MESSAGE_DATASTEPDATASMB_H

#include <cstdint>
#include <vector>

#include "export.h"

class KOVADX_API DatastepDataSmb {
 public:
  // Layout. A type is 0 for a number, else the width of a text in bytes; positions are 0-based.

  // Appends a variable. The buffer stays as it is.
  void AddVarType(int type);
  // Inserts a variable at position `at`, or behind the last one when it is the count, and makes the case larger; its
  // content is discarded. A position outside changes nothing; so it is with the two below.
  void InsertVarType(int at, int type);
  // Takes a variable out and makes the case smaller; its content is discarded. A case that would get a negative size
  // keeps its size and its content.
  void EraseVarType(int at);
  // Changes a variable's type and the size of the case with it; its content is discarded.
  void UpdateVarType(int at, int type);

  // The first unit of each variable within the case. Insert, erase and update compute all of them anew; a variable
  // without one stands behind those before it.
  void AddVarObsIndex(int index) { obsIndex_.push_back(index); }
  void ClearVarObsIndex() { obsIndex_.clear(); }
  // -1 and 0 outside.
  int GetVarObsIndex(int var) const;
  int GetVarObsLength(int var) const;

  // Copies the types into an array made by malloc, which the caller releases with free. Stores nothing when there are
  // no variables or no memory.
  void GetVarInfo(int*& types, int& count) const;
  int VarCount() const { return static_cast<int>(types_.size()); }
  // 0 outside.
  int VarType(int var) const { return has(var) ? types_[static_cast<std::size_t>(var)] : 0; }

  // The case.

  // Stores the size in bytes and makes a new, zeroed buffer of as many whole units.
  void SetOneCaseSize(int size);
  int GetOneCaseSize() const { return oneCaseSize_; }

  // Takes a copy of the bytes for the case, and their number for its size. Null counts as zeros, a negative size as 0.
  void SetCaseValue(void* data, int size);
  // The buffer and its size; valid until the layout or the case is changed. Null when its size is 0.
  void* GetCaseValue(int& size);

  // Cells. A result other than 0 (nothing written then) or `error` is 10 for a variable that is not there.

  // 57 when the variable is a text.
  int SetNCellValue(unsigned int var, double value);
  // `error` is 56 when the variable is a text, and untouched on success; `missing` is 1 for the number that stands for
  // "no value", else 0.
  double GetNCellValue(unsigned int var, int& missing, int& error) const;
  // Fills the variable's units with blanks and then with as much of the text as they hold; null counts as empty. 56
  // when it has no units.
  //
  // Deliberate: a number is not refused, its unit takes the text.
  int SetCCellValue(unsigned int var, const char* text);
  // As many bytes as the variable is wide, with a NUL behind them, in a block made by malloc, which the caller releases
  // with free. Null with `error` 57 when the variable is a number; `error` is untouched on success.
  char* GetCCellValue(unsigned int var, int& error) const;

 private:
  bool has(std::int64_t var) const { return var >= 0 && var < static_cast<std::int64_t>(types_.size()); }
  void insertType(int at, int type);
  void resize(std::int64_t size);
  void resizeBy(std::int64_t units);
  void indexAnew();
  std::int64_t firstUnit(unsigned int var) const;
  // Where the first `length` bytes of the variable's cell lie; null when they are not within the buffer.
  char* cell(unsigned int var, std::int64_t length);
  const char* cell(unsigned int var, std::int64_t length) const;

  int oneCaseSize_ = 0;
  std::vector<char> case_;
  std::vector<int> types_;
  std::vector<int> obsIndex_;
  std::vector<int> obsLength_;
};

#endif
