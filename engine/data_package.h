// Reads a Data Package: a descriptor ("datapackage.json") and the CSV file of its first resource.
#ifndef KOVADX_ENGINE_DATA_PACKAGE_H
#define KOVADX_ENGINE_DATA_PACKAGE_H

#include <string>

#include "engine/data_set.h"

namespace kova::engine {

// Reads the package whose descriptor, or whose folder, the path names. On failure *problem tells in one line what is
// wrong, where and what was expected, and *dataSet is untouched. Never throws.
bool readDataPackage(const std::string& path, DataSet* dataSet, std::string* problem) noexcept;

// The same of a path that names a descriptor, whatever its end.
bool readDescriptor(const std::string& descriptor, DataSet* dataSet, std::string* problem) noexcept;

}  // namespace kova::engine

#endif
