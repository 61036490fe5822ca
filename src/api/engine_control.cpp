// Calls that have the engine do something, or ask how it is.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int Submit(const char* text, int length) { return Tell(Command::Submit, Bytes{text, length}); }

bool IsBackendReady() {
  int ready = 0;
  return Tell(Command::IsBackendReady, IntoLong{&ready}) == 0 && ready != 0;
}
