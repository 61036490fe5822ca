#include "engine/case_cursor.h"

#include <algorithm>
#include <string>
#include <vector>

namespace kova::engine {

CaseCursor::CaseCursor(DataSet* dataSet, Access access)
    : dataSet_(dataSet),
      access_(access),
      selection_(*dataSet),
      caseBytes_(dataSet->cases.caseBytes()),
      caseCount_(dataSet->cases.caseCount()),
      next_(access == Access::kAppend ? caseCount_ : selectedFrom(0)) {}

ErrorCode CaseCursor::step() {
  next_ = selectedFrom(next_);
  const ErrorCode code = codeAt(next_);
  current_.reset();
  if (code != ErrorCode::kNone) {
    groupEnd_.reset();
    return code;
  }
  beginGroup();
  current_ = next_;
  next_ = selectedFrom(next_ + 1);
  ++handedOut_;
  return ErrorCode::kNone;
}

CaseCursor::Batch CaseCursor::nextBatch(std::size_t most) {
  next_ = selectedFrom(next_);
  current_.reset();
  if (next_ == caseCount_) return {next_, next_, 0, ErrorCode::kEndOfCases};
  beginGroup();
  Batch batch{next_, next_, 0, ErrorCode::kNone};
  if (selection_.takesAll()) {
    batch.count = std::min(most, *groupEnd_ - next_);
    batch.end = next_ + batch.count;
    next_ = batch.end;
  }
  while (!selection_.takesAll() && batch.count < most && next_ < *groupEnd_) {
    batch.end = next_ + 1;
    next_ = selectedFrom(batch.end);
    ++batch.count;
  }
  if (batch.count > 0) current_ = batch.end - 1;
  handedOut_ += batch.count;
  batch.code = codeAt(next_);
  if (batch.code != ErrorCode::kNone) groupEnd_.reset();
  return batch;
}

void CaseCursor::addTo(CleXDSmb* message, const Batch& batch) const {
  message->AllocVoidData(static_cast<int>(batch.count * caseBytes_));
  const CaseStore& cases = dataSet_->cases;
  if (selection_.takesAll() && cases.caseBytes() == caseBytes_) {
    message->SaveDataIntoVoidData(cases.caseAt(batch.begin), static_cast<int>(batch.count * caseBytes_));
    return;
  }
  for (std::size_t i = batch.begin; i < batch.end; ++i) {
    if (selection_(i)) message->SaveDataIntoVoidData(cases.caseAt(i), static_cast<int>(caseBytes_));
  }
}

bool CaseCursor::isAtGroupEnd() const {
  return handedOut_ > 0 && (!groupEnd_ || codeAt(selectedFrom(next_)) != ErrorCode::kNone);
}

std::size_t CaseCursor::groupEnd() const {
  if (groupEnd_) return *groupEnd_;
  return endOfGroup(current_ ? *current_ : selectedFrom(next_));
}

ErrorCode CaseCursor::codeAt(std::size_t position) const {
  if (position == caseCount_) return ErrorCode::kEndOfCases;
  return groupEnd_ && position >= *groupEnd_ ? ErrorCode::kEndOfSplitGroup : ErrorCode::kNone;
}

std::size_t CaseCursor::selectedFrom(std::size_t position) const {
  while (position < caseCount_ && !selection_(position)) ++position;
  return position;
}

// A group is a run of cases in which no variable of the split changes.
std::size_t CaseCursor::endOfGroup(std::size_t first) const {
  const DataSet& dataSet = *dataSet_;
  std::vector<std::size_t> variables;
  for (const std::string& name : dataSet.split) variables.push_back(dataSet.variables.find(name).value());
  if (variables.empty()) return caseCount_;
  const auto isSame = [&](std::size_t position) {
    return std::all_of(variables.begin(), variables.end(),
                       [&](std::size_t variable) { return dataSet.cases.sameValue(first, position, variable); });
  };
  std::size_t end = first;
  while (end < caseCount_ && isSame(end)) ++end;
  return end;
}

void CaseCursor::beginGroup() {
  if (!groupEnd_) groupEnd_ = endOfGroup(next_);
}

}  // namespace kova::engine
