// What the runtime asks of the platform's loader.
#ifndef KOVADX_RUNTIMES_PYTHON_LIBPYTHON_POSIX_H
#define KOVADX_RUNTIMES_PYTHON_LIBPYTHON_POSIX_H

namespace kova::python {

// Lets every library that is loaded from now on see the functions of libpython. Python's own extension modules (ctypes,
// sqlite3, numpy) name no library that holds them, and a host loads a runtime and all that it needs for the runtime's
// eyes alone. Without effect where they can be seen already.
void showLibpython();

}  // namespace kova::python

#endif
