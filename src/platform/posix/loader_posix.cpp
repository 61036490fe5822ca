#include "platform/os/loader.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "platform/os/file.h"
#include "platform/posix/error_posix.h"

namespace kova::os {
namespace {

constexpr Error kModuleNotFound = 126;
constexpr Error kProcedureNotFound = 127;
constexpr Error kNoLibrary = 193;

// The files that may be meant, in the order in which they are tried.
std::vector<std::string> candidates(const std::string& path) {
  const std::size_t name = path.rfind('/') + 1;  // Without a separator: 0.
  if (path.find('.', name) != std::string::npos) return {path};
  return {path, path + ".so", path.substr(0, name) + "lib" + path.substr(name) + ".so"};
}

bool isPlainFile(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Why a plain file could not be loaded: the linker gives a text alone. A library that begins as it should lacks
// something that it needs.
Error errorOfFile(const std::string& path) {
  Error error = kSuccess;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenFile(path, "r", &error), &std::fclose);
  if (file == nullptr) return error;
  char begin[5] = "";
  const bool isRead = std::fread(begin, 1, 4, file.get()) == 4;
  return isRead && std::string(begin) == "\177ELF" ? kModuleNotFound : kNoLibrary;
}

std::string linkerText() {
  const char* const text = dlerror();
  return text == nullptr ? std::string() : text;
}

}  // namespace

Error LoadSharedLibrary(const std::string& path, LibraryHandle* out, std::string* message) {
  return orNoMemory([&] {
    Error error = kModuleNotFound;
    std::string text;
    for (const std::string& candidate : candidates(NativePath(path))) {
      if (void* const library = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        *out = library;
        return kSuccess;
      }
      // What is there and can not be loaded tells more than the names that nobody has.
      const std::string why = linkerText();
      const bool isThere = isPlainFile(candidate);
      if (isThere) error = errorOfFile(candidate);
      if (isThere || text.empty()) text = why;
      if (isThere) break;
    }
    *message = text;
    return error;
  });
}

Error FindSymbol(LibraryHandle library, const char* name, void** out, std::string* message) {
  return orNoMemory([&] {
    void* const address = dlsym(library, name);
    if (address == nullptr) {
      *message = linkerText();
      return kProcedureNotFound;
    }
    *out = address;
    return kSuccess;
  });
}

Error UnloadLibrary(LibraryHandle library) { return dlclose(library) == 0 ? kSuccess : kInvalidHandle; }

}  // namespace kova::os
