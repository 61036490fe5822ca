#include "engine/output_graphic.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>

#include "platform/os/file.h"

namespace kova::engine {
namespace {

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// A PNG file begins with its mark and the block that tells the picture's size.
constexpr std::string_view kMark = "\x89PNG\r\n\x1A\n";
constexpr std::size_t kHeaderAt = 8 + 4;
constexpr std::size_t kWidthAt = 16;
constexpr std::size_t kHeightAt = 20;
constexpr std::size_t kHeadBytes = 24;
constexpr std::uint32_t kLargestSide = 0x7FFFFFFF;

// False when the file can not be read or is too large. Only a plain file is opened: a pipe might never end.
bool readBytes(const std::string& path, std::string* bytes) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(os::NativePath(path), ignored)) return false;
  const std::unique_ptr<std::FILE, Closer> file(os::OpenFile(path, "rb", nullptr));
  if (!file) return false;
  std::array<char, 65536> chunk;
  std::size_t count = 0;
  while ((count = std::fread(chunk.data(), 1, chunk.size(), file.get())) > 0) {
    if (count > kLargestGraphic - bytes->size()) return false;
    bytes->append(chunk.data(), count);
  }
  return std::ferror(file.get()) == 0;
}

std::uint32_t bigEndian(std::string_view bytes) {
  std::uint32_t value = 0;
  for (const char byte : bytes.substr(0, 4)) value = value << 8 | static_cast<unsigned char>(byte);
  return value;
}

}  // namespace

ErrorCode readGraphic(const std::string& path, Graphic* graphic) {
  std::string bytes;
  if (path.empty() || !readBytes(path, &bytes)) return ErrorCode::kGraphicNotReadable;
  const std::string_view view = bytes;
  const bool isPng = view.size() > kHeadBytes && view.starts_with(kMark) && view.substr(kHeaderAt, 4) == "IHDR";
  if (!isPng) return ErrorCode::kGraphicNotReadable;
  const std::uint32_t width = bigEndian(view.substr(kWidthAt));
  const std::uint32_t height = bigEndian(view.substr(kHeightAt));
  if (width == 0 || height == 0 || width > kLargestSide || height > kLargestSide) return ErrorCode::kGraphicNotReadable;
  graphic->type = "PNG";
  graphic->width = static_cast<int>(width);
  graphic->height = static_cast<int>(height);
  graphic->bytes = std::move(bytes);
  return ErrorCode::kNone;
}

}  // namespace kova::engine
