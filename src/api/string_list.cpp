// Looks into lists of texts and destroys them: local functions.
#include "api/string_list.h"

#include "api/kovadx.h"

using kova::StringList;

int GetStringListLength(void* list) {
  return list ? static_cast<int>(static_cast<StringList*>(list)->texts.size()) : 0;
}

const char* GetStringFromList(void* list, int index) {
  if (index < 0 || index >= GetStringListLength(list)) return "";
  return static_cast<StringList*>(list)->texts[static_cast<std::size_t>(index)].c_str();
}

void RemoveStringList(void* list) { delete static_cast<StringList*>(list); }
