#include "engine/text_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "engine/data_problem.h"
#include "platform/os/error.h"
#include "platform/os/file.h"

namespace kova::engine {
namespace {

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// How many bytes the character that begins with this byte has; 0 when none begins so.
std::size_t lengthFrom(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

// The second byte shuts out overlong forms, surrogates and what lies beyond the last character.
bool secondByteFits(unsigned char first, unsigned char second) {
  switch (first) {
    case 0xE0:
      return second >= 0xA0 && second <= 0xBF;
    case 0xED:
      return second >= 0x80 && second <= 0x9F;
    case 0xF0:
      return second >= 0x90 && second <= 0xBF;
    case 0xF4:
      return second >= 0x80 && second <= 0x8F;
    default:
      return second >= 0x80 && second <= 0xBF;
  }
}

bool isCharacter(std::string_view bytes) {
  if (bytes.size() > 1 && !secondByteFits(static_cast<unsigned char>(bytes[0]), static_cast<unsigned char>(bytes[1]))) {
    return false;
  }
  return std::all_of(bytes.begin() + 1, bytes.end(),
                     [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; });
}

// Opening a pipe may wait for ever, and a device may have no end. What can not be seen is told by the open.
void checkPlainFile(const std::string& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(os::NativePath(path), ignored);
  if (!std::filesystem::exists(status) || std::filesystem::is_regular_file(status)) return;
  const char* const found = std::filesystem::is_directory(status) ? "a folder" : "a pipe or a device";
  throw DataProblem(problemLine({path}, "a file that can be read", found));
}

}  // namespace

std::string readTextFile(const std::string& path) {
  checkPlainFile(path);
  os::Error error = 0;
  const std::unique_ptr<std::FILE, Closer> file(os::OpenFile(path, "rb", &error));
  if (!file) throw DataProblem(problemLine({path}, "a file that can be read", os::ErrorText(error)));
  std::string text;
  std::array<char, 65536> chunk;
  std::size_t count = 0;
  while ((count = std::fread(chunk.data(), 1, chunk.size(), file.get())) > 0) text.append(chunk.data(), count);
  if (std::ferror(file.get()) != 0) throw DataProblem(problemLine({path}, "a file that can be read", "a read error"));
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  return text;
}

std::size_t findInvalidUtf8(std::string_view text) {
  std::size_t offset = 0;
  while (offset < text.size()) {
    const std::size_t length = lengthFrom(static_cast<unsigned char>(text[offset]));
    if (length == 0 || length > text.size() - offset || !isCharacter(text.substr(offset, length))) return offset;
    offset += length;
  }
  return std::string_view::npos;
}

RowAndColumn positionOf(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto lineStart = before.rfind('\n');
  const auto row = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
  return {row, lineStart == std::string_view::npos ? offset + 1 : offset - lineStart};
}

std::string folderOf(const std::string& path) {
  const auto separator = path.find_last_of("/\\");
  return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

}  // namespace kova::engine
