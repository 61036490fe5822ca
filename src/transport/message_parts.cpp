#include "transport/message_parts.h"

#include <cstdlib>
#include <utility>

#include "message/block.h"
#include "platform/os/error.h"

namespace kova {

int parsed(int parseResult, const CleXDSmb& message, int* transportStatus) {
  if (parseResult != 0) return *transportStatus = parseResult;
  return message.GetErrorCode();
}

int parseCutMessage(CleXDSmb& message, const char* data, int received, int total, int* transportStatus) {
  if (received < kMessageHeader) return *transportStatus;
  // The stated length may be a lie. Memory that comes zeroed from the system costs nothing where nobody touches it.
  void* zeroed = std::calloc(1, static_cast<std::size_t>(total));
  if (zeroed == nullptr) return *transportStatus = static_cast<int>(os::kNotEnoughMemory);
  std::memcpy(zeroed, data, static_cast<std::size_t>(received));
  Block block = Block::adopt(zeroed, static_cast<std::size_t>(total));
  return parsed(message.AdoptReceived(std::move(block), received), message, transportStatus);
}

}  // namespace kova
