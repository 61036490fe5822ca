#include "api/call_arguments.h"

#include <initializer_list>

namespace kova {

// Filled in its place within the request, so that its texts are copied once.
void TextList::append(CleXDSmb& request) const {
  if (!texts) return;
  StringData& list = request.GetStringArrayRef().emplace_back();
  for (int i = 0; i < count; ++i) list.SetValue(texts[i]);
}

void Texts::append(CleXDSmb& request) const {
  for (int i = 0; texts && i < count; ++i) request.SetString(texts[i]);
}

void Longs::append(CleXDSmb& request) const {
  for (int i = 0; values && i < count; ++i) request.SetLong(values[i]);
}

void LongList::append(CleXDSmb& request) const {
  if (!values) return;
  LongData& list = request.GetLongArrayRef().emplace_back();
  for (int i = 0; i < count; ++i) list.SetValue(values[i]);
}

void TableKey::append(CleXDSmb& request) const {
  for (const char* const key : {key1, key2, key3}) request.SetString(key);
  request.SetLong(flag);
}

void DimensionKey::append(CleXDSmb& request) const {
  request.SetString(key);
  for (const int value : {int1, int2, flag1, flag2}) request.SetLong(value);
}

int NormalisedFlag(bool flag) {
  // Looked at as a byte, and through volatile, so that nothing is known about its value.
  const volatile bool stored = flag;
  return *reinterpret_cast<const volatile unsigned char*>(&stored) != 0 ? 1 : 0;
}

}  // namespace kova
