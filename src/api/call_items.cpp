#include "api/call_items.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "api/caller_memory.h"
#include "api/client_state.h"

namespace kova {
namespace {

constexpr std::size_t kShortTextLength = 8;

template <class Value>
void store(Value* place, Value value) {
  if (place) *place = value;
}

// Hands a list out, or leaves it to its owner's end when nobody wants it.
template <class Value, class List>
void storeList(Value* place, List& list) {
  if (place) *place = list.release();
}

// What the reply states, as far as both lists have it.
int labelCount(const CleXDSmb& reply, int values, int labels) {
  return std::max(0, std::min({reply.FirstLong(), values, labels}));
}

void storeShortText(char* buffer, const std::string& text) {
  if (!buffer) return;
  const std::size_t length = std::min(text.size(), kShortTextLength);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

}  // namespace

void IntoLong::take(const CleXDSmb& reply) const { store(place, reply.FirstLong()); }

void IntoLongs::take(const CleXDSmb& reply) const {
  const LongData& longs = reply.Longs();
  for (int i = 0; i < 3; ++i) store(places[i], i < longs.Size() ? longs[i] : 0);
}

void IntoDouble::take(const CleXDSmb& reply) const { store(place, reply.FirstDouble()); }

void IntoDoubles::take(const CleXDSmb& reply) const {
  const DoubleData& doubles = reply.Doubles();
  for (int i = 0; i < std::min(3, doubles.Size()); ++i) store(places[i], doubles[i]);
}

void IntoShortTexts::take(const CleXDSmb& reply) const {
  const StringData& texts = reply.Strings();
  for (int i = 0; i < std::min(3, texts.Size()); ++i) storeShortText(buffers[i], texts[i]);
}

void IntoNumberLabels::take(const CleXDSmb& reply) const {
  const int found = labelCount(reply, reply.Doubles().Size(), reply.Strings().Size());
  if (found > 0) {
    CallerDoubles numbers(reply.Doubles(), found);
    CallerTexts texts(reply.Strings(), found);
    storeList(values, numbers);
    storeList(labels, texts);
  }
  store(count, found);
}

void IntoTextLabels::take(const CleXDSmb& reply) const {
  const auto& lists = reply.StringArrays();
  const int found = lists.size() < 2 ? 0 : labelCount(reply, lists[0].Size(), lists[1].Size());
  if (found > 0) {
    CallerTexts keys(lists[0], found);
    CallerTexts texts(lists[1], found);
    storeList(values, keys);
    storeList(labels, texts);
  }
  store(count, found);
}

void Returned<const char*>::take(const CleXDSmb& reply) const {
  const StringData& texts = reply.Strings();
  static const std::string none;
  *value = KeepSharedText(texts.Size() > 0 ? texts[0] : none);
}

void Returned<const char*>::drop() const { DropSharedText(); }

}  // namespace kova
