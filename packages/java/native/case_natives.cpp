// The native methods of the case cursor.
#include <cstring>

#include "com_qor_statistics_kova_Native.h"
#include "kovadx_ext.h"
#include "native_call.h"

using namespace kova::java;

namespace {

constexpr int kEndOfCases = 23;
constexpr int kEndOfGroup = 67;
constexpr int kMissingUnits = 3;
constexpr int kLayoutSize = 3 + kMissingUnits;

}  // namespace

KOVA_NATIVE(void, makeCaseCursor)(JNIEnv* env, jclass, jbyteArray mode) {
  tell(env, "MakeCaseCursor", [&] { return MakeCaseCursor(textOf(env, mode).c_str()); });
}

KOVA_NATIVE(void, removeCaseCursor)(JNIEnv* env, jclass) { tell(env, "RemoveCaseCursor", RemoveCaseCursor); }

KOVA_NATIVE(jlongArray, getCaseVariable)(JNIEnv* env, jclass, jint index) {
  return guarded(env, "KovaGetCaseVariable", [&] {
    int type = 0;
    int offset = 0;
    int missingKind = 0;
    const void* missing = nullptr;
    checkLocal("KovaGetCaseVariable", KovaGetCaseVariable(index, &type, &offset, &missingKind, &missing));
    jlong layout[kLayoutSize] = {type, offset, missingKind};
    std::memcpy(layout + 3, missing, kMissingUnits * sizeof(jlong));
    const jlongArray array = env->NewLongArray(kLayoutSize);
    checkJava(env);
    env->SetLongArrayRegion(array, 0, kLayoutSize, layout);
    return array;
  });
}

KOVA_NATIVE(jint, getCaseSize)(JNIEnv* env, jclass) {
  return guarded(env, "KovaGetCaseLayout", [&] {
    int variables = 0;
    int caseSize = 0;
    checkLocal("KovaGetCaseLayout", KovaGetCaseLayout(&variables, &caseSize));
    return caseSize;
  });
}

KOVA_NATIVE(jobject, nextCaseBlock)(JNIEnv* env, jclass, jbooleanArray isGroupEnd) {
  return guarded(env, "KovaNextCaseBlock", [&]() -> jobject {
    const void* cases = nullptr;
    int caseCount = 0;
    int caseSize = 0;
    const int code = KovaNextCaseBlock(&cases, &caseCount, &caseSize);
    if (code == kEndOfCases || code == kEndOfGroup) {
      const jboolean told = code == kEndOfGroup ? JNI_TRUE : JNI_FALSE;
      env->SetBooleanArrayRegion(isGroupEnd, 0, 1, &told);
      return nullptr;
    }
    checkLocal("KovaNextCaseBlock", code);
    // Java reads it only; the interface has no form of its own for that.
    return env->NewDirectByteBuffer(const_cast<void*>(cases), jlong{caseCount} * caseSize);
  });
}
