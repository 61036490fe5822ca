// Output as an XML document; docs/output.md lists its elements.
#ifndef KOVADX_ENGINE_OUTPUT_XML_H
#define KOVADX_ENGINE_OUTPUT_XML_H

#include <string_view>

#include "engine/output_log.h"
#include "pugixml.hpp"

namespace kova::engine {

// Adds the section to the document's root element: a procedure, or what came outside of one.
void appendSection(pugi::xml_node root, const OutputSection& section);

// Sets an attribute, without the characters that XML can not hold.
void putAttribute(pugi::xml_node element, const char* name, std::string_view value);
void putAttribute(pugi::xml_node element, const char* name, int value);

// Adds an element that holds a text.
pugi::xml_node appendText(pugi::xml_node parent, const char* name, std::string_view text);

}  // namespace kova::engine

#endif
