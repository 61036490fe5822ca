// A conversation's pass over the cases of a data set, and the variables that it adds. A plain value of the engine's
// state; one thread at a time uses it.
#ifndef KOVADX_ENGINE_DATA_PASS_H
#define KOVADX_ENGINE_DATA_PASS_H

#include <cstddef>
#include <optional>

#include "engine/case_cursor.h"
#include "engine/variables.h"

namespace kova::engine {

struct DataPass {
  DataPass(DataSet* dataSet, CaseCursor::Access access) : cursor(dataSet, access) {}

  CaseCursor cursor;
  std::size_t firstNew = 0;         // The variables that the pass has made stand side by side: where they begin,
  std::size_t newCount = 0;         // and how many they are.
  std::size_t filledTo = 0;         // Behind the last case whose new variables were filled in bulk.
  Variables announced;              // Those to be made next, of which only name and width are told yet.
  std::optional<std::size_t> room;  // For how many of them, where the program has said so.
  bool changesEnded = false;
};

}  // namespace kova::engine

#endif
