#include "api/call_results.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "api/caller_memory.h"
#include "api/client_state.h"
#include "api/local_results.h"
#include "api/string_list.h"

namespace kova {
namespace {

constexpr std::size_t kShortTextLength = 8;

// Hands a result out, or leaves it to its owner's end when nobody wants it.
template <class Value, class Owner>
void handOut(Value* place, Owner& owner) {
  if (place) *place = owner.release();
}

const std::string& textAt(const StringData& texts, int index) {
  static const std::string kNone;
  return index < texts.Size() ? texts[index] : kNone;
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

void takeTexts(const StringData& texts, int found, char*** place, int* count) {
  if (found > 0) {
    CallerTexts list(texts, 0, found);
    handOut(place, list);
  }
  StoreAt(count, found);
}

}  // namespace

void IntoLong::take(const CleXDSmb& reply) const { StoreAt(place, reply.FirstLong()); }

void IntoLongs::take(const CleXDSmb& reply) const {
  const LongData& longs = reply.Longs();
  for (int i = 0; i < 3; ++i) StoreAt(places[i], i < longs.Size() ? longs[i] : 0);
}

void IntoDouble::take(const CleXDSmb& reply) const { StoreAt(place, reply.FirstDouble()); }

void IntoDoublePair::take(const CleXDSmb& reply) const {
  const DoubleData& doubles = reply.Doubles();
  StoreAt(first, reply.FirstDouble());
  StoreAt(second, doubles.Size() > 1 ? doubles[1] : 0.0);
}

void IntoDoubles::take(const CleXDSmb& reply) const {
  const DoubleData& doubles = reply.Doubles();
  for (int i = 0; i < std::min(3, doubles.Size()); ++i) StoreAt(places[i], doubles[i]);
}

void IntoShortTexts::take(const CleXDSmb& reply) const {
  const StringData& texts = reply.Strings();
  for (int i = 0; i < std::min(3, texts.Size()); ++i) storeShortText(buffers[i], texts[i]);
}

void IntoText::take(const CleXDSmb& reply) const {
  CallerText text = CopyForCaller(textAt(reply.Strings(), 0));
  handOut(place, text);
}

void IntoTextPair::take(const CleXDSmb& reply) const {
  CallerText text1 = CopyForCaller(textAt(reply.Strings(), 0));
  CallerText text2 = CopyForCaller(textAt(reply.Strings(), 1));
  handOut(first, text1);
  handOut(second, text2);
}

void IntoSharedText::take(const CleXDSmb& reply) const { StoreAt(place, KeepSharedText(textAt(reply.Strings(), 0))); }

void IntoSharedText::drop() const {
  DropSharedText();
  if (place) *place = nullptr;
}

void IntoWideText::take(const CleXDSmb& reply) const { StoreAt(place, KeepWideText(reply.GetwStringData())); }

void IntoTexts::take(const CleXDSmb& reply) const { takeTexts(reply.Strings(), reply.Strings().Size(), texts, count); }

void IntoNames::take(const CleXDSmb& reply) const {
  const bool areListed = reply.Strings().Size() == 0 && !reply.StringArrays().empty();
  const StringData& texts = areListed ? reply.StringArrays().front() : reply.Strings();
  takeTexts(texts, texts.Size(), names, count);
}

void IntoCountedTexts::take(const CleXDSmb& reply) const {
  const int found = std::max(0, std::min(reply.FirstLong(), reply.Strings().Size()));
  takeTexts(reply.Strings(), found, texts, count);
}

void IntoNumberLabels::take(const CleXDSmb& reply) const {
  const int found = labelCount(reply, reply.Doubles().Size(), reply.Strings().Size());
  if (found > 0) {
    CallerDoubles numbers(reply.Doubles(), found);
    CallerTexts list(reply.Strings(), 0, found);
    handOut(values, numbers);
    handOut(labels, list);
  }
  StoreAt(count, found);
}

void IntoTextLabels::take(const CleXDSmb& reply) const {
  const auto& lists = reply.StringArrays();
  const int found = lists.size() < 2 ? 0 : labelCount(reply, lists[0].Size(), lists[1].Size());
  if (found > 0) {
    CallerTexts keys(lists[0], 0, found);
    CallerTexts list(lists[1], 0, found);
    handOut(values, keys);
    handOut(labels, list);
  }
  StoreAt(count, found);
}

void IntoResponseSet::take(const CleXDSmb& reply) const {
  const StringData& texts = reply.Strings();
  const int found = std::max(0, texts.Size() - 2);
  CallerText labelText = CopyForCaller(textAt(texts, 0));
  CallerText valueText = CopyForCaller(textAt(texts, 1));
  if (found > 0) {
    CallerTexts list(texts, 2, found);
    handOut(names, list);
  }
  handOut(label, labelText);
  handOut(countedValue, valueText);
  StoreAt(codeAs, reply.FirstLong());
  StoreAt(count, found);
}

void IntoImage::take(const CleXDSmb& reply) const {
  const std::string& typeName = textAt(reply.Strings(), 0);
  const int length = std::max(0, std::min(reply.FirstLong(), reply.BinaryLength()));
  CallerText bytes = CopyForCaller(reply.GetBinaryData(), static_cast<std::size_t>(length));
  CallerText typeText = typeName.empty() ? nullptr : CopyForCaller(typeName);
  handOut(image, bytes);
  handOut(type, typeText);
  StoreAt(size, length);
}

void Returned<const char*>::take(const CleXDSmb& reply) const { *value = KeepSharedText(textAt(reply.Strings(), 0)); }

void Returned<const char*>::drop() const { DropSharedText(); }

void Returned<StringList*>::take(const CleXDSmb& reply) const { *value = new StringList{reply.Strings().values()}; }

}  // namespace kova
