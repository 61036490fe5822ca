#include "platform/os/loader.h"

#include "platform/win32/system_win32.h"

namespace kova::os {
namespace {

// The system's text in the user's language, as it is.
std::string systemText(Error error) {
  char* text = nullptr;
  const DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  const DWORD language = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);
  const DWORD length = FormatMessageA(flags, nullptr, error, language, reinterpret_cast<char*>(&text), 0, nullptr);
  const std::string result(text ? text : "", length);
  LocalFree(text);
  return result;
}

}  // namespace

Error LoadSharedLibrary(const std::string& path, LibraryHandle* out, std::string* message) {
  const HMODULE library = LoadLibraryA(path.c_str());
  if (library == nullptr) {
    const Error error = lastError();
    *message = systemText(error);
    return error;
  }
  *out = library;
  return kSuccess;
}

Error FindSymbol(LibraryHandle library, const char* name, void** out, std::string* message) {
  const FARPROC address = GetProcAddress(static_cast<HMODULE>(library), name);
  if (address == nullptr) {
    const Error error = lastError();
    *message = systemText(error);
    return error;
  }
  *out = reinterpret_cast<void*>(address);
  return kSuccess;
}

Error UnloadLibrary(LibraryHandle library) { return resultOf(FreeLibrary(static_cast<HMODULE>(library))); }

}  // namespace kova::os
