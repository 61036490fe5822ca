#include "message/error_codes.h"

#include <algorithm>
#include <iterator>

namespace kova {
namespace {

struct Row {
  int code;
  const char* name;
  const char* happened;
  const char* advice;
};

// In the order of the codes.
constexpr Row kRows[] = {
#define KOVA_ERROR(code, name, happened, advice) {code, #name, happened, advice},
#include "message/error_codes.def"
#undef KOVA_ERROR
};

static_assert(std::is_sorted(std::begin(kRows), std::end(kRows),
                             [](const Row& a, const Row& b) { return a.code < b.code; }));

constexpr Row kUnknown = {0, "", "", ""};

const Row& rowOf(int code) {
  const auto* found = std::lower_bound(std::begin(kRows), std::end(kRows), code,
                                       [](const Row& row, int wanted) { return row.code < wanted; });
  return found != std::end(kRows) && found->code == code ? *found : kUnknown;
}

}  // namespace

const char* errorName(int code) { return rowOf(code).name; }

const char* errorMeaning(int code) { return rowOf(code).happened; }

const char* errorAdvice(int code) { return rowOf(code).advice; }

}  // namespace kova
