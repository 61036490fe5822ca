// The place of a Data Package that is to be written: the descriptor's path, and the table beside it.
#ifndef KOVADX_ENGINE_PACKAGE_PLACE_H
#define KOVADX_ENGINE_PACKAGE_PLACE_H

#include <string>

namespace kova::engine {

// Looked at once, when it is made; a plain value.
class PackagePlace {
 public:
  // Throws SaveProblem unless the path is free, or has an empty file or a descriptor, which may be replaced.
  explicit PackagePlace(std::string descriptor);

  const std::string& descriptor() const { return descriptor_; }

  // The new table's name in the descriptor's folder, and its path. No file has it, so that an older package stays whole
  // until the new descriptor takes its place.
  const std::string& tableName() const { return tableName_; }
  std::string tablePath() const;

  // The path of the table that goes with the older descriptor; empty when there is none, or one with a name of its own.
  std::string oldTablePath() const;

 private:
  std::string descriptor_;
  std::string tableName_;
  std::string oldTableName_;
};

}  // namespace kova::engine

#endif
