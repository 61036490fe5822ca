#include "engine/attributes.h"

#include <algorithm>
#include <utility>

#include "engine/text_rules.h"

namespace kova::engine {
namespace {

auto named(std::string_view name) {
  return [name](const Attribute& attribute) { return sameName(attribute.name, name); };
}

}  // namespace

const Attribute* findAttribute(const Attributes& attributes, std::string_view name) {
  const auto found = std::find_if(attributes.begin(), attributes.end(), named(name));
  return found == attributes.end() ? nullptr : &*found;
}

void setAttribute(Attributes* attributes, Attribute attribute) {
  const auto found = std::find_if(attributes->begin(), attributes->end(), named(attribute.name));
  if (found == attributes->end()) {
    attributes->push_back(std::move(attribute));
  } else {
    found->values = std::move(attribute.values);
  }
}

bool eraseAttribute(Attributes* attributes, std::string_view name) {
  return std::erase_if(*attributes, named(name)) > 0;
}

}  // namespace kova::engine
