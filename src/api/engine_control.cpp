// Calls that have the engine do something, or ask how it is.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int Submit(const char* text, int length) { return Tell(Command::Submit, Bytes{text, length}); }

int QueueCommandPart(const char* text, int length) { return Tell(Command::QueueCommandPart, Bytes{text, length}); }

bool IsBackendReady() { return Affirmed(Command::IsBackendReady); }

bool IsXDriven() { return IsBackendReady() && Affirmed(Command::IsXDriven); }

int StopReceiveXdApiThread() { return Send(Command::StopReceiveXdApiThread, nullptr); }

int GetXDriveMode(int* mode) { return Tell(Command::GetXDriveMode, IntoLong{mode}); }

int SetXDriveMode(int mode) { return Tell(Command::SetXDriveMode, Long{mode}); }

int SetMode(int mode) { return Tell(Command::SetMode, Long{mode}); }

int GetSetting(const char* item, const char* subItem, char** value) {
  const IntoSharedText text{value};
  const int code = Tell(Command::GetSetting, Text{item}, Text{subItem}, text);
  if (code != 0) text.drop();
  return code;
}
