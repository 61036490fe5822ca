// A variable's print format, as text ("F8.1") and as the triple of numbers that travels.
#ifndef KOVADX_ENGINE_FORMAT_H
#define KOVADX_ENGINE_FORMAT_H

#include <optional>
#include <string>
#include <string_view>

namespace kova::engine {

enum class FormatType : int {
#define KOVA_FORMAT(code, name, hasDecimals) k##name = (code),
#include "engine/formats.def"
#undef KOVA_FORMAT
};

constexpr int kWidestNumber = 40;
constexpr int kMostDecimals = 16;
constexpr int kWidestString = 32767;

struct Format {
  FormatType type = FormatType::kF;
  int width = 8;
  int decimals = 2;

  bool isText() const { return type == FormatType::kA; }
  bool operator==(const Format&) const = default;
};

// Name, width and, where the format has them, a dot and the decimals: "F8.1", "F8.0", "A9", "DATE10".
std::string formatText(const Format& format);

// The format of this number, if there is one, and whether decimals belong to it.
std::optional<FormatType> formatTypeOf(int number);
bool hasDecimals(FormatType type);

// Reads such a text in upper or lower case. The width is 1 to 40, for A 1 to 32767; decimals are 0 to 16 and fewer than
// the width, 0 when they are left out. Nothing when it is no format.
std::optional<Format> parseFormat(std::string_view text);

}  // namespace kova::engine

#endif
