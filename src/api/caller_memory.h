// Results in memory of the caller's own: malloc blocks, which the exported Free functions give back to free.
//
// A result is owned by its object until release() hands it out, so that a call that fails half-way leaks nothing. What
// makes one throws std::bad_alloc.
#ifndef KOVADX_API_CALLER_MEMORY_H
#define KOVADX_API_CALLER_MEMORY_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "message/DoubleData.h"
#include "message/StringData.h"

namespace kova {

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

// One text, or any bytes with a NUL behind them.
using CallerText = std::unique_ptr<char[], FreeBlock>;

// A copy in a block of its length plus one.
CallerText CopyForCaller(const char* bytes, std::size_t length);
CallerText CopyForCaller(const std::string& text);

// The first `count` doubles of an item that has at least as many; count is above 0.
class CallerDoubles {
 public:
  CallerDoubles(const DoubleData& doubles, int count);

  double* release() { return values_.release(); }

 private:
  std::unique_ptr<double[], FreeBlock> values_;
};

// `count` texts of an item from the text at `first` on, each in a block of its own. The item has as many; count is
// above 0.
class CallerTexts {
 public:
  CallerTexts(const StringData& texts, int first, int count);
  CallerTexts(const CallerTexts&) = delete;
  CallerTexts& operator=(const CallerTexts&) = delete;
  ~CallerTexts();

  char** release() { return std::exchange(texts_, nullptr); }

 private:
  char** texts_;
  int count_ = 0;  // How many are filled.
};

// Frees `count` texts, then their array.
void FreeTexts(char** texts, int count);

}  // namespace kova

#endif
