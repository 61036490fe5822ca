// The dictionary of a data set as an XML document; docs/output.md lists its elements.
#ifndef KOVADX_ENGINE_XPATH_DICTIONARY_H
#define KOVADX_ENGINE_XPATH_DICTIONARY_H

#include "engine/data_set.h"
#include "pugixml.hpp"

namespace kova::engine {

void appendDictionary(pugi::xml_node parent, const DataSet& dataSet);

}  // namespace kova::engine

#endif
