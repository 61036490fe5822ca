// The native methods that read the dictionary.
#include "com_qor_statistics_kova_Native.h"
#include "kovadx.h"
#include "native_call.h"

using namespace kova::java;

namespace {

constexpr int kMostMissing = 3;
constexpr std::size_t kMissingTextSize = 9;  // As the library asks for: 8 bytes and a NUL.

jbyteArray askText(JNIEnv* env, const char* function, const char* (*call)(int, int*), jint index) {
  return guarded(env, function, [&] {
    int code = 0;
    const char* const text = call(index, &code);
    check(function, code);
    return bytesOf(env, text);
  });
}

// The lists of value labels go back to the library, whatever becomes of their copies.
struct NumberLabels {
  double* values = nullptr;
  char** labels = nullptr;
  int count = 0;
  NumberLabels() = default;
  NumberLabels(const NumberLabels&) = delete;
  NumberLabels& operator=(const NumberLabels&) = delete;
  ~NumberLabels() { FreeNValueLabels(values, labels, count); }
};

struct TextLabels {
  char** values = nullptr;
  char** labels = nullptr;
  int count = 0;
  TextLabels() = default;
  TextLabels(const TextLabels&) = delete;
  TextLabels& operator=(const TextLabels&) = delete;
  ~TextLabels() { FreeCValueLabels(values, labels, count); }
};

jobjectArray pairOf(JNIEnv* env, const char* elementType, jobject first, jobject second) {
  const jclass type = env->FindClass(elementType);
  checkJava(env);
  const jobjectArray pair = env->NewObjectArray(2, type, nullptr);
  checkJava(env);
  env->SetObjectArrayElement(pair, 0, first);
  env->SetObjectArrayElement(pair, 1, second);
  return pair;
}

jdoubleArray doublesOf(JNIEnv* env, const double* values, int count) {
  const jdoubleArray array = env->NewDoubleArray(count);
  checkJava(env);
  if (count > 0) env->SetDoubleArrayRegion(array, 0, count, values);
  return array;
}

}  // namespace

KOVA_NATIVE(jint, getVariableCount)(JNIEnv* env, jclass) { return ask(env, "GetVariableCount", GetVariableCount); }

KOVA_NATIVE(jbyteArray, getVariableName)(JNIEnv* env, jclass, jint index) {
  return askText(env, "GetVariableName", GetVariableName, index);
}

KOVA_NATIVE(jbyteArray, getVariableLabel)(JNIEnv* env, jclass, jint index) {
  return askText(env, "GetVariableLabel", GetVariableLabel, index);
}

KOVA_NATIVE(jbyteArray, getVariableFormat)(JNIEnv* env, jclass, jint index) {
  return askText(env, "GetVariableFormat", GetVariableFormat, index);
}

KOVA_NATIVE(jint, getVariableType)(JNIEnv* env, jclass, jint index) {
  return ask(env, "GetVariableType", [&](int* code) { return GetVariableType(index, code); });
}

KOVA_NATIVE(jint, getVariableMeasurementLevel)(JNIEnv* env, jclass, jint index) {
  return ask(env, "GetVariableMeasurementLevel", [&](int* code) { return GetVariableMeasurementLevel(index, code); });
}

KOVA_NATIVE(jintArray, getVariableFormatType)(JNIEnv* env, jclass, jint index) {
  return guarded(env, "GetVariableFormatType", [&] {
    jint numbers[3] = {0, 0, 0};
    check("GetVariableFormatType", GetVariableFormatType(index, &numbers[0], &numbers[1], &numbers[2]));
    const jintArray array = env->NewIntArray(3);
    checkJava(env);
    env->SetIntArrayRegion(array, 0, 3, numbers);
    return array;
  });
}

KOVA_NATIVE(jint, getVarNMissingValues)(JNIEnv* env, jclass, jint index, jdoubleArray values) {
  return guarded(env, "GetVarNMissingValues", [&] {
    int kind = 0;
    double three[kMostMissing] = {0, 0, 0};
    check("GetVarNMissingValues", GetVarNMissingValues(index, &kind, &three[0], &three[1], &three[2]));
    env->SetDoubleArrayRegion(values, 0, kMostMissing, three);
    checkJava(env);
    return kind;
  });
}

KOVA_NATIVE(jint, getVarCMissingValues)(JNIEnv* env, jclass, jint index, jobjectArray values) {
  return guarded(env, "GetVarCMissingValues", [&] {
    int kind = 0;
    char three[kMostMissing][kMissingTextSize] = {};
    check("GetVarCMissingValues", GetVarCMissingValues(index, &kind, three[0], three[1], three[2]));
    for (int i = 0; i < kMostMissing; ++i) {
      env->SetObjectArrayElement(values, i, bytesOf(env, three[i]));
      checkJava(env);
    }
    return kind;
  });
}

KOVA_NATIVE(jobjectArray, getNValueLabels)(JNIEnv* env, jclass, jint index) {
  return guarded(env, "GetNValueLabels", [&] {
    NumberLabels lists;
    check("GetNValueLabels", GetNValueLabels(index, &lists.values, &lists.labels, &lists.count));
    return pairOf(env, "java/lang/Object", doublesOf(env, lists.values, lists.count),
                  bytesOf(env, lists.labels, lists.count));
  });
}

KOVA_NATIVE(jobjectArray, getCValueLabels)(JNIEnv* env, jclass, jint index) {
  return guarded(env, "GetCValueLabels", [&] {
    TextLabels lists;
    check("GetCValueLabels", GetCValueLabels(index, &lists.values, &lists.labels, &lists.count));
    return pairOf(env, "[[B", bytesOf(env, lists.values, lists.count), bytesOf(env, lists.labels, lists.count));
  });
}
