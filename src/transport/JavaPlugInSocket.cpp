#include "transport/JavaPlugInSocket.h"

namespace {

JavaPlugInSocket* theSocket = nullptr;

}  // namespace

JavaPlugInSocket* GetJavaExtSocket() { return theSocket; }

void SetavaExtSocket(JavaPlugInSocket* socket) { theSocket = socket; }
