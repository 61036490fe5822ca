#include "native_call.h"

#include <cstring>

#include "kovadx_ext.h"

namespace kova::java {

std::mutex& callLock() {
  static std::mutex lock;
  return lock;
}

void throwKovaException(JNIEnv* env, const CallFailure& failure) {
  const jclass type = env->FindClass("com/qor/statistics/kova/KovaException");
  const jmethodID make = type ? env->GetMethodID(type, "<init>", "(Ljava/lang/String;I)V") : nullptr;
  const jstring function = make ? env->NewStringUTF(failure.function) : nullptr;
  // Whatever was not to be had has left an exception of its own.
  if (!function) return;
  const jobject exception = env->NewObject(type, make, function, static_cast<jint>(failure.code));
  if (exception) env->Throw(static_cast<jthrowable>(exception));
}

void checkLocal(const char* function, int code) {
  if (code != 0) throw CallFailure{function, code};
}

void check(const char* function, int code) { checkLocal(function, code != 0 ? code : KovaLastReceiveStatus()); }

void checkJava(JNIEnv* env) {
  if (env->ExceptionCheck()) throw JavaFailure();
}

std::string textOf(JNIEnv* env, jbyteArray bytes) {
  if (!bytes) return {};
  const jsize length = env->GetArrayLength(bytes);
  std::string text(static_cast<std::size_t>(length), '\0');
  env->GetByteArrayRegion(bytes, 0, length, reinterpret_cast<jbyte*>(text.data()));
  checkJava(env);
  return text;
}

jbyteArray bytesOf(JNIEnv* env, const char* text) {
  if (!text) return nullptr;
  const jsize length = static_cast<jsize>(std::strlen(text));
  const jbyteArray bytes = env->NewByteArray(length);
  checkJava(env);
  env->SetByteArrayRegion(bytes, 0, length, reinterpret_cast<const jbyte*>(text));
  return bytes;
}

jobjectArray bytesOf(JNIEnv* env, const char* const* texts, int count) {
  const jclass type = env->FindClass("[B");
  checkJava(env);
  const jobjectArray list = env->NewObjectArray(count, type, nullptr);
  checkJava(env);
  for (int i = 0; i < count; ++i) {
    const jbyteArray bytes = bytesOf(env, texts[i]);
    env->SetObjectArrayElement(list, i, bytes);
    env->DeleteLocalRef(bytes);
  }
  return list;
}

}  // namespace kova::java
