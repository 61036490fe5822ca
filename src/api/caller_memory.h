// Results in memory of the caller's own: malloc blocks, which the exported Free functions give back to free.
//
// A list is owned by its object until release() hands it out, so that a call that fails half-way leaks nothing. All
// constructors throw std::bad_alloc.
#ifndef KOVADX_API_CALLER_MEMORY_H
#define KOVADX_API_CALLER_MEMORY_H

#include <string>
#include <utility>

#include "message/DoubleData.h"
#include "message/StringData.h"

namespace kova {

// One text in a block of its length plus one.
char* CopyForCaller(const std::string& text);

// The first `count` doubles of an item that has at least as many; count is above 0.
class CallerDoubles {
 public:
  CallerDoubles(const DoubleData& doubles, int count);
  CallerDoubles(const CallerDoubles&) = delete;
  CallerDoubles& operator=(const CallerDoubles&) = delete;
  ~CallerDoubles();

  double* release() { return std::exchange(values_, nullptr); }

 private:
  double* values_;
};

// The first `count` texts of an item that has at least as many, each in a block of its own; count is above 0.
class CallerTexts {
 public:
  CallerTexts(const StringData& texts, int count);
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
