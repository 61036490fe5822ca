// The values that the next commit sends: of variables by name, in the order in which they were given.
//
// One buffer for the process, never destroyed. Its calls take turns as all calls of the client interface do.
#ifndef KOVADX_API_NEW_VALUES_H
#define KOVADX_API_NEW_VALUES_H

#include <string>
#include <utility>
#include <vector>

#include "message/CleXDSmb.h"

namespace kova {

class NewValues {
 public:
  // Throw std::bad_alloc and add nothing then. A null name or text adds nothing either: name and value stay in step.
  void add(const char* varName, double value);
  void add(const char* varName, const char* value);

  // Sends all: the numbers, the names of their variables, a list of the names of string variables and one of texts.
  void append(CleXDSmb& request) const;

  // Forgets all and gives the memory back.
  void clear() { *this = {}; }

 private:
  std::vector<std::pair<std::string, double>> numbers_;
  std::vector<std::pair<std::string, std::string>> texts_;
};

NewValues& TheNewValues();

}  // namespace kova

#endif
