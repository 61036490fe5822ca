#include "platform/PlugInDynamicLoadedLibrary.h"

#include "platform/os/loader.h"

using namespace kova;

namespace {

constexpr const char* kEnding = ".dll";
constexpr std::size_t kEndingLength = 4;

}  // namespace

std::string PlugInDecorateDynamicPathName(const std::string& name) {
  const bool getsEnding = name.size() <= kEndingLength || name.ends_with(kEnding);
  return getsEnding ? name + kEnding : name;
}

PlugInDynamicLoadedLibrary::PlugInDynamicLoadedLibrary(const std::string& path, int mode) : mode_(mode), path_(path) {}

PlugInDynamicLoadedLibrary::~PlugInDynamicLoadedLibrary() {
  if (module_ != nullptr) os::UnloadLibrary(module_);
}

// The backend may run out of memory over its text; nothing throws out of here.
int PlugInDynamicLoadedLibrary::LoadLibraryNow() {
  try {
    error_.clear();
    return module_ != nullptr ? 0 : static_cast<int>(os::LoadSharedLibrary(path_, &module_, &error_));
  } catch (...) {
    return os::kNotEnoughMemory;
  }
}

void* PlugInDynamicLoadedLibrary::GetSymbolAddress(const std::string& name) {
  if (LoadLibraryNow() != 0) return nullptr;
  try {
    void* address = nullptr;
    return os::FindSymbol(module_, name.c_str(), &address, &error_) == os::kSuccess ? address : nullptr;
  } catch (...) {
    return nullptr;
  }
}

std::string PlugInDynamicLoadedLibrary::GetErrorString() const { return error_; }
