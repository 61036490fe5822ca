// The mark of everything that the shared library exports. A class or function without it stays hidden.
#ifndef KOVADX_EXPORT_H
#define KOVADX_EXPORT_H

#ifndef KOVADX_API
#if defined(_WIN32) && defined(KOVADX_BUILD)
#define KOVADX_API __declspec(dllexport)
#elif defined(_WIN32)
#define KOVADX_API
#else
#define KOVADX_API __attribute__((visibility("default")))
#endif
#endif

#endif
