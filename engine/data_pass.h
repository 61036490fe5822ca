// A conversation's pass over the cases of a data set, and the variables that it adds. A plain value of the engine's
// state; one thread at a time uses it.
#ifndef KOVADX_ENGINE_DATA_PASS_H
#define KOVADX_ENGINE_DATA_PASS_H

#include <cstddef>
#include <optional>
#include <vector>

#include "engine/case_cursor.h"
#include "engine/dictionary_rules.h"

namespace kova::engine {

struct DataPass {
  DataPass(DataSet* dataSet, CaseCursor::Access access)
      : cursor(dataSet, access), firstNew(dataSet->variables.size()) {}

  bool hasNewVariables() const { return cursor.dataSet().variables.size() > firstNew; }

  CaseCursor cursor;
  std::size_t firstNew;                // The position of the first variable that the pass has made, behind all others.
  std::size_t filledTo = 0;            // Behind the last case whose new variables were filled in bulk.
  std::vector<NewVariable> announced;  // Those to be made next.
  std::optional<std::size_t> room;     // For how many of them, where the program has said so.
  bool changesEnded = false;
};

}  // namespace kova::engine

#endif
