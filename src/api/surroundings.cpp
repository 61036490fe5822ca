// Calls about the engine's surroundings: languages, the host application, files, sockets.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int GetKovaOutputWidth(int* errorCode) { return Ask<int>(Command::GetKovaOutputWidth, errorCode); }

const char* GetKOVALocale(int* errorCode) { return Ask<const char*>(Command::GetKOVALocale, errorCode); }

const char* GetOutputLanguage(int* errorCode) { return Ask<const char*>(Command::GetOutputLanguage, errorCode); }

int SetOutputLanguage(const char* language, int* errorCode) {
  return Send(Command::SetOutputLanguage, errorCode, Text{language});
}

int GetCLocale(char** locale) { return Tell(Command::GetCLocale, IntoText{locale}); }

int IsUTF8mode(int* isUtf8) { return Tell(Command::IsUTF8mode, IntoLong{isUtf8}); }

const char* TransCode(const char* text, int* errorCode) {
  return Ask<const char*>(Command::TransCode, errorCode, Text{text});
}

int GetNestDepth(int* depth) { return Tell(Command::GetNestDepth, IntoLong{depth}); }

int GetHostAppNameAndVersion(char** name, char** version) {
  return Tell(Command::GetHostAppNameAndVersion, IntoTextPair{name, version});
}

int SetHostAppNameAndVersion(const char* name, const char* version) {
  return Tell(Command::SetHostAppNameAndVersion, Text{name}, Text{version});
}

int GetHostAppCopyright(char** copyright) { return Tell(Command::GetHostAppCopyright, IntoText{copyright}); }

int SetHostAppCopyright(const char* copyright) { return Tell(Command::SetHostAppCopyright, Text{copyright}); }

char** GetFileHandles(int* count, int* errorCode) {
  char** names = nullptr;
  SendWhenRunning(Command::GetFileHandles, errorCode, IntoTexts{&names, count});
  return names;
}

bool IsDistributedMode() { return Affirmed(Command::IsDistributedMode); }

int GetZenthorServerMode() {
  int mode = 0;
  return Tell(Command::GetZenthorServerMode, IntoLong{&mode}) == 0 ? mode : -1;
}

int SetZenthorServerMode(int mode) { return Tell(Command::SetZenthorServerMode, Long{mode}); }

int CreateSocket(int* port) { return Tell(Command::CreateSocket, IntoLong{port}); }

int AcceptSocket() { return Tell(Command::AcceptSocket); }
