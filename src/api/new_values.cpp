#include "api/new_values.h"

#include "config/never_destroyed.h"

namespace kova {

void NewValues::add(const char* varName, double value) {
  if (varName) numbers_.emplace_back(varName, value);
}

void NewValues::add(const char* varName, const char* value) {
  if (varName && value) texts_.emplace_back(varName, value);
}

void NewValues::append(CleXDSmb& request) const {
  for (const auto& [name, value] : numbers_) {
    request.SetDouble(value);
    request.SetString(name);
  }
  StringData names;
  StringData values;
  for (const auto& [name, value] : texts_) {
    names.SetValue(name);
    values.SetValue(value);
  }
  request.SetStringArray(names);
  request.SetStringArray(values);
}

NewValues& TheNewValues() {
  static NeverDestroyed<NewValues> values;
  return values.object();
}

}  // namespace kova
