#include "platform/os/error.h"

#include "platform/win32/system_win32.h"

namespace kova::os {

std::string ErrorText(Error error) {
  char* text = nullptr;
  const DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  const DWORD length = FormatMessageA(flags, nullptr, error, 0, reinterpret_cast<char*>(&text), 0, nullptr);
  std::string result(text ? text : "", length);
  LocalFree(text);
  const std::size_t end = result.find_last_not_of("\r\n ");
  result.resize(end == std::string::npos ? 0 : end + 1);
  return result;
}

}  // namespace kova::os
