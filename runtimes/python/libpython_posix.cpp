#include "runtimes/python/libpython_posix.h"

#include <Python.h>
#include <dlfcn.h>

namespace kova::python {

void showLibpython() {
  Dl_info info = {};
  if (dladdr(reinterpret_cast<void*>(&Py_IsInitialized), &info) == 0) return;
  // The library is there already, so that this changes who sees it and loads nothing. The handle is never given up.
  dlopen(info.dli_fname, RTLD_NOW | RTLD_GLOBAL | RTLD_NOLOAD);
}

}  // namespace kova::python
