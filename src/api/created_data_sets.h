// The names of the data sets that this process has had the engine create, in their order.
//
// Owned by DataSetCaches. Its calls take turns as all calls of the client interface do.
#ifndef KOVADX_API_CREATED_DATA_SETS_H
#define KOVADX_API_CREATED_DATA_SETS_H

#include <algorithm>
#include <string>
#include <vector>

namespace kova {

class CreatedDataSets {
 public:
  void add(const std::string& name) { names_.push_back(name); }

  // Takes out the first entry of exactly that name; nothing happens without one.
  void remove(const std::string& name) {
    const auto found = std::find(names_.begin(), names_.end(), name);
    if (found != names_.end()) names_.erase(found);
  }

  void clear() { names_.clear(); }
  const std::vector<std::string>& names() const { return names_; }

 private:
  std::vector<std::string> names_;
};

}  // namespace kova

#endif
