// The first resource of a Data Package's descriptor: where its table lies and how it is read.
#ifndef KOVADX_ENGINE_RESOURCE_H
#define KOVADX_ENGINE_RESOURCE_H

#include <string>
#include <vector>

#include "engine/field.h"
#include "engine/own_keys.h"

namespace kova::engine {

struct Resource {
  std::string name;
  std::string tablePath;  // The descriptor's folder and the resource's path in it.
  char delimiter = ',';
  std::vector<Field> fields;
  OwnKeys own;  // The package's, and the resource's in front of them.
};

// Reads the descriptor. Throws DataProblem.
Resource readResource(const std::string& descriptorPath);

}  // namespace kova::engine

#endif
