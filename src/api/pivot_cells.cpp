// Calls that build pivot tables: their dimensions, categories and cells.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int AddDimension(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                 const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2) {
  return Tell(Command::AddDimension, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2});
}

int AddDimFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                    const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, const char* footnote) {
  return Tell(Command::AddDimFootnotes, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Text{footnote});
}

int AddNumberCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                      const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, double value) {
  return Tell(Command::AddNumberCategory, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Double{value});
}

int AddStringCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                      const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, const char* text) {
  return Tell(Command::AddStringCategory, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Text{text});
}

int AddVarNameCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                       const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, int varIndex) {
  return Tell(Command::AddVarNameCategory, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Long{varIndex});
}

int AddVarValueDoubleCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                              const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, int varIndex,
                              double value) {
  return Tell(Command::AddVarValueDoubleCategory, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Long{varIndex}, Double{value});
}

int AddVarValueStringCategory(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                              const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, int varIndex,
                              const char* value) {
  return Tell(Command::AddVarValueStringCategory, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Long{varIndex}, Text{value});
}

int AddCategoryFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                         const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2,
                         const char* footnote) {
  return Tell(Command::AddCategoryFootnotes, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Text{footnote});
}

int SetNumberCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                  const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, double value) {
  return Tell(Command::SetNumberCell, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Double{value});
}

int SetStringCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                  const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, const char* text) {
  return Tell(Command::SetStringCell, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Text{text});
}

int SetVarNameCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                   const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, int varIndex) {
  return Tell(Command::SetVarNameCell, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Long{varIndex});
}

int SetVarValueDoubleCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                          const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, int varIndex,
                          double value) {
  return Tell(Command::SetVarValueDoubleCell, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Long{varIndex}, Double{value});
}

int SetVarValueStringCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                          const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, int varIndex,
                          const char* value) {
  return Tell(Command::SetVarValueStringCell, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Long{varIndex}, Text{value});
}

int SetDateCell(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag, const char* dimKey,
                int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, const char* date) {
  return Tell(Command::SetDateCell, TableKey{tableKey1, tableKey2, tableKey3, tableFlag},
              DimensionKey{dimKey, dimInt1, dimInt2, dimFlag1, dimFlag2}, Text{date});
}

// Deliberate: all texts stand before all numbers here.
int AddCellFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                     const char* dimKey, int dimInt1, int dimInt2, bool dimFlag1, bool dimFlag2, const char* footnote) {
  return Tell(Command::AddCellFootnotes, Text{tableKey1}, Text{tableKey2}, Text{tableKey3}, Text{dimKey},
              Text{footnote}, Long{tableFlag}, Long{dimInt1}, Long{dimInt2}, Long{dimFlag1}, Long{dimFlag2});
}
