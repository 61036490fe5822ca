// What runners need of the client interface, which stands above them: the interface fills this in.
//
// One table for the process; InitDxGlobal sets it, before any runner is made. Any thread reads it then.
#ifndef KOVADX_HOST_CLIENT_FUNCTIONS_H
#define KOVADX_HOST_CLIENT_FUNCTIONS_H

namespace kova {

struct ClientFunctions {
  int (*stopReceiveXdApiThread)() = nullptr;
  int (*postKovaOutput)(const char* text, int length) = nullptr;
  void* callbackTable = nullptr;  // What setup_dxcallback hands to a runtime: opaque, the same for all.
};

// The table; all null until it is set.
const ClientFunctions& clientFunctions();
void setClientFunctions(const ClientFunctions& functions);

}  // namespace kova

#endif
