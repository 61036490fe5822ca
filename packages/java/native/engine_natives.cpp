// The native methods that concern the process and the engine as a whole.
#include "com_qor_statistics_kova_Native.h"
#include "kovadx_ext.h"
#include "native_call.h"

using namespace kova::java;

KOVA_NATIVE(void, initXProcess)
(JNIEnv* env, jclass, jbyteArray mode, jbyteArray temporaryFolder, jbyteArray processId, jbyteArray language) {
  guarded(env, "InitXProcess", [&] {
    InitXProcess(textOf(env, mode).c_str(), textOf(env, temporaryFolder).c_str(), textOf(env, processId).c_str(),
                 textOf(env, language).c_str(), "");
  });
}

KOVA_NATIVE(void, setXNameAndSHome)(JNIEnv* env, jclass, jbyteArray language, jbyteArray home) {
  guarded(env, "SetXNameAndSHome", [&] {
    SetXNameAndSHome(textOf(env, language).c_str(), textOf(env, home).c_str());
    checkLocal("SetKovaRunning", SetKovaRunning(true));
  });
}

KOVA_NATIVE(jbyteArray, errorName)(JNIEnv* env, jclass, jint code) {
  return guarded(env, "KovaErrorName", [&] { return bytesOf(env, KovaErrorName(code)); });
}

KOVA_NATIVE(jbyteArray, errorAdvice)(JNIEnv* env, jclass, jint code) {
  return guarded(env, "KovaErrorAdvice", [&] { return bytesOf(env, KovaErrorAdvice(code)); });
}

KOVA_NATIVE(void, submit)(JNIEnv* env, jclass, jbyteArray syntax) {
  tell(env, "Submit", [&] {
    const std::string text = textOf(env, syntax);
    return Submit(text.data(), static_cast<int>(text.size()));
  });
}

KOVA_NATIVE(void, postKovaOutput)(JNIEnv* env, jclass, jbyteArray output) {
  tell(env, "PostKovaOutput", [&] {
    const std::string text = textOf(env, output);
    return PostKovaOutput(text.data(), static_cast<int>(text.size()));
  });
}

KOVA_NATIVE(jint, getRowCount)(JNIEnv* env, jclass) { return ask(env, "GetRowCount", GetRowCount); }
