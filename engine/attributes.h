// Custom attributes of a variable or of a data set: names, each with one or more texts. Plain values of their holder.
#ifndef KOVADX_ENGINE_ATTRIBUTES_H
#define KOVADX_ENGINE_ATTRIBUTES_H

#include <string>
#include <string_view>
#include <vector>

namespace kova::engine {

struct Attribute {
  std::string name;
  std::vector<std::string> values;  // At least one.

  bool operator==(const Attribute&) const = default;
};

// In the order in which they were first set; no two of the same name.
using Attributes = std::vector<Attribute>;

// The attribute of this name, or null.
const Attribute* findAttribute(const Attributes& attributes, std::string_view name);

// Adds the attribute, or replaces the values of the one that has its name.
void setAttribute(Attributes* attributes, Attribute attribute);

// False when there is none of this name.
bool eraseAttribute(Attributes* attributes, std::string_view name);

}  // namespace kova::engine

#endif
