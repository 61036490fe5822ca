// Libraries that are a table of addresses in the test itself.
#include "platform/os/loader.h"

#include <map>

#include "platform/os/file.h"
#include "tests/os_fake/fake_kernel.h"
#include "tests/os_fake/os_fake.h"

namespace kova::os {

using fake::Call;

namespace {

constexpr Error kModuleNotFound = 126;
constexpr Error kProcedureNotFound = 127;

// Libraries stay known after reset(), so that open handles stay valid; they are only no longer found.
struct Libraries {
  std::map<std::string, std::shared_ptr<fake::Library>> byPath;
  unsigned handles = 0;
};

Libraries& libraries() {
  static Libraries* const theLibraries = new Libraries;
  return *theLibraries;
}

std::string withEnding(const std::string& path) {
  const std::string native = NativePath(path);
  return native.find('.', native.rfind('/') + 1) == std::string::npos ? native + ".dll" : native;
}

Error failed(Error error, std::string* message) {
  *message = "fake: loader error " + std::to_string(error) + "\r\n";
  return error;
}

using Held = std::shared_ptr<fake::Library>;

}  // namespace

Error LoadSharedLibrary(const std::string& path, LibraryHandle* out, std::string* message) {
  Held library;
  {
    const Call call("LoadSharedLibrary", path.c_str());
    if (call.failure()) return failed(*call.failure(), message);
    const auto found = libraries().byPath.find(withEnding(path));
    if (found == libraries().byPath.end()) return failed(kModuleNotFound, message);
    library = found->second;
    if (library->loadError != kSuccess) return failed(library->loadError, message);
    ++libraries().handles;
  }
  if (library->onLoad) library->onLoad();
  *out = new Held(library);
  return kSuccess;
}

Error FindSymbol(LibraryHandle library, const char* name, void** out, std::string* message) {
  const Call call("FindSymbol", name);
  if (call.failure()) return failed(*call.failure(), message);
  const auto& symbols = (*static_cast<Held*>(library))->symbols;
  const auto found = symbols.find(name);
  if (found == symbols.end()) return failed(kProcedureNotFound, message);
  *out = found->second;
  return kSuccess;
}

Error UnloadLibrary(LibraryHandle library) {
  const Call call("UnloadLibrary");
  if (call.failure()) return *call.failure();
  --libraries().handles;
  delete static_cast<Held*>(library);
  return kSuccess;
}

}  // namespace kova::os

namespace kova::fake {

void resetLibraries() { os::libraries().byPath.clear(); }

void registerLibrary(const std::string& path, Library library) {
  const std::string key = os::withEnding(path);
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::libraries().byPath[key] = std::make_shared<Library>(std::move(library));
}

unsigned loadedLibraries() {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  return os::libraries().handles;
}

}  // namespace kova::fake
