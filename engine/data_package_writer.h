// Writes a data set as a Data Package: a descriptor and, beside it, the CSV file of its one resource. What is read from
// there again is the same data set, every value bit for bit.
#ifndef KOVADX_ENGINE_DATA_PACKAGE_WRITER_H
#define KOVADX_ENGINE_DATA_PACKAGE_WRITER_H

#include <cstddef>
#include <functional>
#include <string>

#include "engine/data_set.h"
#include "engine/error_codes.h"
#include "engine/file_system.h"

namespace kova::engine {

// Says which cases are written; an empty one takes all.
using CasePick = std::function<bool(std::size_t position)>;

// Writes the descriptor to the path, which may be that of an older one, and the table beside it under a name that no
// file has. Only the last step puts the new package in the older one's place; on a failure, and when the program or the
// machine stops at any time, the older one is whole. kNone, or a code; *problem then tells in one line the file, what
// happened and what to do. Never throws.
ErrorCode writeDataPackage(const DataSet& dataSet, const CasePick& picks, const std::string& descriptor,
                           FileSystem& files, std::string* problem) noexcept;

// Tells beforehand whether a descriptor can be written to the path, as far as it can be told. Leaves nothing behind.
ErrorCode checkPackagePlace(const std::string& descriptor, FileSystem& files, std::string* problem) noexcept;

}  // namespace kova::engine

#endif
