// A message that carries a rectangle of cells of a data set: rows of a data step, fetched at once.
//
// It lies in the message's arrays, one entry a cell, row by row: the first integer array has the missing flags, the
// first double array the numbers, the first string array the texts. Owned and used as `CleXDSmb` says.
#ifndef KOVADX_MESSAGE_DATASTEPSMB_H
#define KOVADX_MESSAGE_DATASTEPSMB_H

#include <cstddef>
#include <optional>

#include "message/CleXDSmb.h"

class KOVADX_API DatastepSmb : public CleXDSmb {
 public:
  // The data set's row that the rectangle begins with, and its number of columns. `error` becomes 0.
  void SetrowInfo(long firstRow, int& error);
  void SetvarCount(int count, int& error);
  int FirstRow() const { return firstRow_; }
  int VarCount() const { return varCount_; }

  // The cell of that row of the data set and that column. `error` becomes 0, or 10 when the arrays have no such cell;
  // the results are 0.0 and null then, and `flag` is untouched. The text ends in a NUL, in a block made by malloc,
  // which the caller releases with free.
  //
  // Deliberate: the name is not looked at, and a column beyond the rectangle is one of a row nearby.
  double GetNCellValue(const char* dataset, long row, int column, int& flag, int& error);
  char* GetCCellValue(const char* dataset, long row, int column, int& flag, int& error);

 private:
  // The entry that the cell has in arrays of those lengths; none outside of either.
  std::optional<std::size_t> entry(long row, int column, std::size_t length) const;

  int varCount_ = 0;
  int firstRow_ = -1;
};

#endif
