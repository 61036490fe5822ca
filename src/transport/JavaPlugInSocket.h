// The one socket through which the process reaches a Java runtime.
#ifndef KOVADX_TRANSPORT_JAVAPLUGINSOCKET_H
#define KOVADX_TRANSPORT_JAVAPLUGINSOCKET_H

#include "export.h"

class JavaPlugInSocket;

// The process's socket; null until it is set. Setting stores the pointer and nothing else: whoever made the socket owns
// it. (The setter's name is a part of the interface: sic.) Set on one thread, before it is used.
KOVADX_API JavaPlugInSocket* GetJavaExtSocket();
KOVADX_API void SetavaExtSocket(JavaPlugInSocket* socket);

#endif
