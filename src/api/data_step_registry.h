// What this process knows of the data sets that a data step has touched: for each name the layout of its cases and one
// case.
//
// Owned by DataSetCaches. Its calls take turns as all calls of the client interface do.
#ifndef KOVADX_API_DATA_STEP_REGISTRY_H
#define KOVADX_API_DATA_STEP_REGISTRY_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "message/DatastepDataSmb.h"

namespace kova {

class DataStepRegistry {
 public:
  // The record of exactly that name; null when there is none. It stays where it is until the registry is cleared. The
  // name found or added last is remembered by its position, so that the next call for it searches nothing.
  DatastepDataSmb* find(std::string_view name) noexcept;

  // Keeps a record under a name that is not there yet. Throws std::bad_alloc, and nothing is kept then.
  DatastepDataSmb* add(std::string_view name, DatastepDataSmb record);

  // Forgets all records and the remembered name.
  void clear();

  std::size_t size() const { return names_.size(); }
  // How often the names have been searched.
  unsigned searches() const { return searches_; }

 private:
  // In step with each other.
  std::vector<std::string> names_;
  std::vector<std::unique_ptr<DatastepDataSmb>> records_;
  std::size_t last_ = 0;  // The position remembered; nothing is behind the last name.
  unsigned searches_ = 0;
};

}  // namespace kova

#endif
