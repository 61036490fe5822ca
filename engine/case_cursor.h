// One pass of a program over the selected cases of a data set: what it has been given, and where it stands.
//
// The cases are those that were there when the pass began; cases that are added behind them are not visited. A split
// divides them into groups; a pass comes to the end of each group and tells so once. Variables that are added behind
// the others during the pass are no part of the cases that it hands out. Values may change meanwhile: whether a case is
// selected counts when the pass comes to it.
//
// Held by the engine's state, for one conversation; the data set must outlive it. One thread at a time uses it.
#ifndef KOVADX_ENGINE_CASE_CURSOR_H
#define KOVADX_ENGINE_CASE_CURSOR_H

#include <cstddef>
#include <optional>

#include "engine/case_selection.h"
#include "engine/data_set.h"
#include "engine/error_codes.h"
#include "message/CleXDSmb.h"

namespace kova::engine {

class CaseCursor {
 public:
  enum class Access { kRead, kWrite, kAppend };  // A pass that appends has no cases to hand out.

  CaseCursor(DataSet* dataSet, Access access);

  DataSet& dataSet() const { return *dataSet_; }
  Access access() const { return access_; }

  // The bytes of a case as the pass hands them out, and how many cases there are, the others included.
  std::size_t caseBytes() const { return caseBytes_; }
  std::size_t caseCount() const { return caseCount_; }

  // How many cases it has handed out, and the position of the last of them: nothing before the first one and once the
  // pass has told of its end.
  std::size_t handedOut() const { return handedOut_; }
  std::optional<std::size_t> current() const { return current_; }

  // Goes on to the next case. kEndOfSplitGroup once behind the last case of each group but the last; kEndOfCases when
  // there is no other case. There is no current case then.
  ErrorCode step();

  // The cases to be handed out next, at most that many and all of one group; they count as handed out. Those codes come
  // with the last case of a group, and are not told again. The last case of the batch becomes the current one.
  struct Batch {
    std::size_t begin = 0;  // The selected ones of [begin, end) are in it.
    std::size_t end = 0;
    std::size_t count = 0;
    ErrorCode code = ErrorCode::kNone;
  };
  Batch nextBatch(std::size_t most);

  // Puts the batch's cases into a message's raw block, one behind the other; to be called before a value changes.
  void addTo(CleXDSmb* message, const Batch& batch) const;

  // The first selected case at a position or behind it, or caseCount().
  std::size_t selectedFrom(std::size_t position) const;

  // True when the next case, if there is one, belongs to another group than the current one.
  bool isAtGroupEnd() const;

  // The position behind the last case of the group in which the pass stands.
  std::size_t groupEnd() const;

 private:
  ErrorCode codeAt(std::size_t position) const;
  std::size_t endOfGroup(std::size_t first) const;
  void beginGroup();

  DataSet* dataSet_;
  Access access_;
  CaseSelection selection_;
  std::size_t caseBytes_;
  std::size_t caseCount_;
  std::size_t next_;                     // The next case that was selected when it was looked for, or caseCount_.
  std::optional<std::size_t> groupEnd_;  // Of the group that was begun; nothing between two groups.
  std::optional<std::size_t> current_;
  std::size_t handedOut_ = 0;
};

}  // namespace kova::engine

#endif
