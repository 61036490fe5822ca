// One shared library that is loaded when it is first needed and kept for the object's life, with the platform's text of
// the last failure. The object owns the loaded library and unloads it at its end. No lock: one thread at a time uses
// it.
#ifndef KOVADX_PLATFORM_PLUGINDYNAMICLOADEDLIBRARY_H
#define KOVADX_PLATFORM_PLUGINDYNAMICLOADEDLIBRARY_H

#include <string>

#include "export.h"

// The name under which a configured library is loaded. Deliberate: a name of at most four characters gets ".dll", a
// longer one that ends in exactly ".dll" gets it once more, and every other one stays as it is, since the platform's
// loader adds its own ending.
KOVADX_API std::string PlugInDecorateDynamicPathName(const std::string& name);

class KOVADX_API PlugInDynamicLoadedLibrary {
 public:
  // Keeps the path and the mode, and loads nothing. Deliberate: loading does not look at the mode.
  PlugInDynamicLoadedLibrary(const std::string& path, int mode);
  PlugInDynamicLoadedLibrary(const PlugInDynamicLoadedLibrary&) = delete;
  PlugInDynamicLoadedLibrary& operator=(const PlugInDynamicLoadedLibrary&) = delete;
  ~PlugInDynamicLoadedLibrary();

  // Loads the library. 0, also when it is loaded already; otherwise the platform's error number.
  int LoadLibraryNow();

  // The address of what the library exports under that name; it is loaded for that when it is not yet. Null when it can
  // not be loaded or exports no such thing.
  void* GetSymbolAddress(const std::string& name);

  // The platform's text for the failure of the last operation, which may end in a line break; empty after a success.
  std::string GetErrorString() const;

 private:
  void* module_ = nullptr;
  [[maybe_unused]] int mode_;
  [[maybe_unused]] int unused_ = 0;  // Keeps its place in the object's layout.
  std::string path_;
  std::string error_;
};

#endif
