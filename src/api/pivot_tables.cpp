// Calls that build pivot tables: the tables themselves.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int StartPivotTable(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag) {
  return Tell(Command::StartPivotTable, TableKey{tableKey1, tableKey2, tableKey3, NormalisedFlag(tableFlag)});
}

int HidePivotTableTitle(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag) {
  return Tell(Command::HidePivotTableTitle, TableKey{tableKey1, tableKey2, tableKey3, tableFlag});
}

int PivotTableCaption(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                      const char* caption) {
  return Tell(Command::PivotTableCaption, TableKey{tableKey1, tableKey2, tableKey3, tableFlag}, Text{caption});
}

int AddOutlineFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, const char* footnote,
                        bool tableFlag) {
  return Tell(Command::AddOutlineFootnotes, Text{tableKey1}, Text{tableKey2}, Text{tableKey3}, Text{footnote},
              Long{tableFlag});
}

int AddTitleFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, const char* footnote,
                      bool tableFlag) {
  return Tell(Command::AddTitleFootnotes, Text{tableKey1}, Text{tableKey2}, Text{tableKey3}, Text{footnote},
              Long{tableFlag});
}

int AddCaptionFootnotes(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag,
                        const char* text1, const char* text2) {
  return Tell(Command::AddCaptionFootnotes, TableKey{tableKey1, tableKey2, tableKey3, tableFlag}, Text{text1},
              Text{text2});
}

int MinDataColumnWidth(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag, int width) {
  return Tell(Command::MinDataColumnWidth, TableKey{tableKey1, tableKey2, tableKey3, tableFlag}, Long{width});
}

int MaxDataColumnWidth(const char* tableKey1, const char* tableKey2, const char* tableKey3, bool tableFlag, int width) {
  return Tell(Command::MaxDataColumnWidth, TableKey{tableKey1, tableKey2, tableKey3, tableFlag}, Long{width});
}
