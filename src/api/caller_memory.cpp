#include "api/caller_memory.h"

#include <cstring>
#include <new>

namespace kova {
namespace {

void* allocate(std::size_t size) {
  void* const block = std::malloc(size);
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace

CallerText CopyForCaller(const char* bytes, std::size_t length) {
  CallerText copy(static_cast<char*>(allocate(length + 1)));
  if (length > 0) std::memcpy(copy.get(), bytes, length);
  copy[length] = '\0';
  return copy;
}

CallerText CopyForCaller(const std::string& text) { return CopyForCaller(text.data(), text.size()); }

CallerDoubles::CallerDoubles(const DoubleData& doubles, int count)
    : values_(static_cast<double*>(allocate(static_cast<std::size_t>(count) * sizeof(double)))) {
  std::memcpy(values_.get(), doubles.values().data(), static_cast<std::size_t>(count) * sizeof(double));
}

CallerTexts::CallerTexts(const StringData& texts, int first, int count)
    : texts_(static_cast<char**>(allocate(static_cast<std::size_t>(count) * sizeof(char*)))) {
  try {
    for (; count_ < count; ++count_) texts_[count_] = CopyForCaller(texts[first + count_]).release();
  } catch (...) {
    FreeTexts(texts_, count_);
    throw;
  }
}

CallerTexts::~CallerTexts() {
  if (texts_) FreeTexts(texts_, count_);
}

void FreeTexts(char** texts, int count) {
  if (!texts) return;
  for (int i = 0; i < count; ++i) std::free(texts[i]);
  std::free(texts);
}

}  // namespace kova
