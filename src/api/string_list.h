// A list of texts that the library keeps for the caller, who holds it as an opaque handle: what EvaluateXPath,
// GetOMSTagList and GetHandleList return. RemoveStringList destroys it. It does not change, so any thread may read it.
#ifndef KOVADX_API_STRING_LIST_H
#define KOVADX_API_STRING_LIST_H

#include <string>
#include <vector>

namespace kova {

struct StringList {
  std::vector<std::string> texts;
};

}  // namespace kova

#endif
