// What every native method of the Java package is made of: one call of the client library, with the lock around it and
// the copy of its result, and its failures as Java exceptions.
//
// The client library keeps the text that it returned last, so threads take turns from the call to the copy. A call
// never leads back into Java, so that the lock is never wanted twice by one thread.
#ifndef KOVA_JAVA_NATIVE_CALL_H
#define KOVA_JAVA_NATIVE_CALL_H

#include <jni.h>

#include <exception>
#include <mutex>
#include <string>

// The headers that javac writes declare the functions; one whose arguments differ does not compile.
#define KOVA_NATIVE(Result, name) JNIEXPORT Result JNICALL Java_com_qor_statistics_kova_Native_##name

namespace kova::java {

// A call of the client library that ended with a code.
struct CallFailure {
  const char* function;
  int code;
};

// A Java exception is on its way already.
struct JavaFailure {};

constexpr int kNotEnoughMemory = 8;

std::mutex& callLock();

void throwKovaException(JNIEnv* env, const CallFailure& failure);

// Runs `body` with the lock held. When it fails, a Java exception is on its way and the result means nothing.
template <typename Body>
auto guarded(JNIEnv* env, const char* function, Body body) -> decltype(body()) {
  using Result = decltype(body());
  CallFailure failure{function, kNotEnoughMemory};
  try {
    const std::lock_guard<std::mutex> lock(callLock());
    return body();
  } catch (const JavaFailure&) {
    return Result();
  } catch (const CallFailure& told) {
    failure = told;
  } catch (const std::exception&) {
    // Only memory can be wanting.
  }
  throwKovaException(env, failure);
  return Result();
}

// Takes the code of a call that asked the engine. A reply that was cut short is a failure too, whatever the call says.
void check(const char* function, int code);

// Takes the code of a call that asked nobody.
void checkLocal(const char* function, int code);

// A function of the status shape without results: `body` gives its code.
template <typename Body>
void tell(JNIEnv* env, const char* function, Body body) {
  guarded(env, function, [&] { check(function, body()); });
}

// A function of the value shape: `body` stores its code and gives its result.
template <typename Body>
auto ask(JNIEnv* env, const char* function, Body body) -> decltype(body(nullptr)) {
  return guarded(env, function, [&] {
    int code = 0;
    const auto result = body(&code);
    check(function, code);
    return result;
  });
}

// Fails when the last call of the JNI interface has left an exception behind.
void checkJava(JNIEnv* env);

// The bytes of a Java array; none of a null one.
std::string textOf(JNIEnv* env, jbyteArray bytes);

// A Java array with the bytes of a text; null of a null one.
jbyteArray bytesOf(JNIEnv* env, const char* text);

// A Java list of such arrays.
jobjectArray bytesOf(JNIEnv* env, const char* const* texts, int count);

}  // namespace kova::java

#endif
