#include "api/caller_memory.h"

#include <cstddef>
#include <cstdlib>
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

char* CopyForCaller(const std::string& text) {
  char* const copy = static_cast<char*>(allocate(text.size() + 1));
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

CallerDoubles::CallerDoubles(const DoubleData& doubles, int count)
    : values_(static_cast<double*>(allocate(static_cast<std::size_t>(count) * sizeof(double)))) {
  std::memcpy(values_, doubles.values().data(), static_cast<std::size_t>(count) * sizeof(double));
}

CallerDoubles::~CallerDoubles() { std::free(values_); }

CallerTexts::CallerTexts(const StringData& texts, int count)
    : texts_(static_cast<char**>(allocate(static_cast<std::size_t>(count) * sizeof(char*)))) {
  try {
    for (; count_ < count; ++count_) texts_[count_] = CopyForCaller(texts[count_]);
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
