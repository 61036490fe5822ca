// What the four kinds of item share: their images are made and read by the message's own encoder and decoder.
#ifndef KOVADX_MESSAGE_ITEM_IMAGE_H
#define KOVADX_MESSAGE_ITEM_IMAGE_H

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "message/byte_reader.h"
#include "message/byte_writer.h"
#include "message/held_bytes.h"

namespace kova {

// The image's length, or 0 when no image can be that long.
template <typename Item>
std::int32_t imageLength(const Item& item) {
  const std::int64_t length = item.wireLength();
  return length <= std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(length) : 0;
}

// Builds the image in `image`; null when it is too long or memory ran out.
template <typename Item>
char* buildImage(const Item& item, HeldBytes& image, std::int32_t& length) {
  image.release();
  length = imageLength(item);
  char* bytes = length > 0 ? image.resize(static_cast<std::size_t>(length)) : nullptr;
  if (bytes == nullptr) {
    length = 0;
    return nullptr;
  }
  ByteWriter writer(bytes);
  item.write(writer);
  assert(writer.position() == bytes + length);
  return bytes;
}

// Reads one image whose end only the caller knows. Returns the number of bytes read; when memory runs out, nothing more
// is read.
template <typename Item>
int parseImage(Item& item, const void* source) {
  ByteReader reader(source, std::numeric_limits<std::int64_t>::max());
  const char* const begin = reader.position();
  if (source == nullptr) return 0;
  try {
    item.read(reader);
  } catch (...) {
    return static_cast<int>(reader.position() - begin);
  }
  return static_cast<int>(reader.position() - begin);
}

}  // namespace kova

#endif
