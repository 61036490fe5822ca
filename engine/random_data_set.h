// Data sets made by chance, from everything that a data set may hold. For tests alone.
#ifndef KOVADX_ENGINE_RANDOM_DATA_SET_H
#define KOVADX_ENGINE_RANDOM_DATA_SET_H

#include <cstdint>

#include "engine/data_set.h"

namespace kova::engine {

// The same one for the same seed.
DataSet randomDataSet(std::uint64_t seed);

}  // namespace kova::engine

#endif
