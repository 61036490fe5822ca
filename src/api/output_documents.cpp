// Calls that read the output back, or add to it as a whole.
#include "api/call_frame.h"
#include "api/kovadx.h"

using namespace kova;

int PostKovaOutput(const char* text, int length) { return Tell(Command::PostKovaOutput, Bytes{text, length}); }

int CreateXPathDictionary(const char* handle) { return Tell(Command::CreateXPathDictionary, Text{handle}); }

int RemoveXPathHandle(const char* handle) { return Tell(Command::RemoveXPathHandle, Text{handle}); }

void* EvaluateXPath(const char* handle, const char* context, const char* expression, int* errorCode) {
  return Ask<StringList*>(Command::EvaluateXPath, errorCode, Text{handle}, Text{context}, Text{expression});
}

const unsigned short* GetXmlUtf16(const char* handle, int* errorCode) {
  const unsigned short* text = nullptr;
  Fetch(Command::GetXmlUtf16, errorCode, Text{handle}, IntoWideText{&text});
  return text;
}

int GetXmlUtf16Length() { return Ask<int>(Command::GetXmlUtf16Length, nullptr); }

char* GetImage(const char* text1, const char* text2, int* imageSize, char** imageType, int* errorCode) {
  char* image = nullptr;
  Fetch(Command::GetImage, errorCode, Text{text1}, Text{text2}, IntoImage{&image, imageSize, imageType});
  return image;
}

void* GetOMSTagList(int* errorCode) { return Ask<StringList*>(Command::GetOMSTagList, errorCode); }

void* GetHandleList(int* errorCode) { return Ask<StringList*>(Command::GetHandleList, errorCode); }

void GetGraphic(const char* text) { Send(Command::GetGraphic, nullptr, Text{text}); }

int SetGraphicsLabel(const char* text1, const char* text2) {
  return Tell(Command::SetGraphicsLabel, Text{text1}, Text{text2});
}
