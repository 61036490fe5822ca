// The native methods of dimensions, categories and cells.
#include "com_qor_statistics_kova_Native.h"
#include "kovadx.h"
#include "native_call.h"

using namespace kova::java;

namespace {

// A dimension's key, the table's included.
class DimensionKey {
 public:
  DimensionKey(JNIEnv* env, jobjectArray texts, jintArray numbers) {
    for (int i = 0; i < kTexts; ++i) {
      const auto bytes = static_cast<jbyteArray>(env->GetObjectArrayElement(texts, i));
      checkJava(env);
      texts_[i] = textOf(env, bytes);
      env->DeleteLocalRef(bytes);
    }
    env->GetIntArrayRegion(numbers, 0, kNumbers, numbers_);
    checkJava(env);
  }

  template <typename Function, typename... Rest>
  int call(Function function, Rest... rest) const {
    const auto& [split, place, position, hidesName, hidesCategories] = numbers_;
    return function(texts_[0].c_str(), texts_[1].c_str(), texts_[2].c_str(), split != 0, texts_[3].c_str(), place,
                    position, hidesName != 0, hidesCategories != 0, rest...);
  }

 private:
  static constexpr int kTexts = 4;
  static constexpr int kNumbers = 5;
  std::string texts_[kTexts];
  jint numbers_[kNumbers] = {};
};

// Where a call goes: what all native methods here begin with.
struct Place {
  JNIEnv* env;
  jobjectArray texts;
  jintArray numbers;
};

template <typename Function, typename... Rest>
void tellAt(const Place& place, const char* name, Function function, Rest... rest) {
  tell(place.env, name, [&] { return DimensionKey(place.env, place.texts, place.numbers).call(function, rest...); });
}

template <typename Function>
void tellText(const Place& place, const char* name, Function function, jbyteArray text) {
  tell(place.env, name, [&] {
    return DimensionKey(place.env, place.texts, place.numbers).call(function, textOf(place.env, text).c_str());
  });
}

template <typename Function>
void tellVariableText(const Place& place, const char* name, Function function, jint variable, jbyteArray text) {
  tell(place.env, name, [&] {
    return DimensionKey(place.env, place.texts, place.numbers)
        .call(function, variable, textOf(place.env, text).c_str());
  });
}

}  // namespace

KOVA_NATIVE(void, addDimension)(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers) {
  tellAt({env, texts, numbers}, "AddDimension", AddDimension);
}

KOVA_NATIVE(void, addDimFootnotes)
(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jbyteArray footnote) {
  tellText({env, texts, numbers}, "AddDimFootnotes", AddDimFootnotes, footnote);
}

KOVA_NATIVE(void, addNumberCategory)(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jdouble value) {
  tellAt({env, texts, numbers}, "AddNumberCategory", AddNumberCategory, value);
}

KOVA_NATIVE(void, addStringCategory)
(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jbyteArray text) {
  tellText({env, texts, numbers}, "AddStringCategory", AddStringCategory, text);
}

KOVA_NATIVE(void, addVarNameCategory)(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jint variable) {
  tellAt({env, texts, numbers}, "AddVarNameCategory", AddVarNameCategory, variable);
}

KOVA_NATIVE(void, addVarValueDoubleCategory)
(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jint variable, jdouble value) {
  tellAt({env, texts, numbers}, "AddVarValueDoubleCategory", AddVarValueDoubleCategory, variable, value);
}

KOVA_NATIVE(void, addVarValueStringCategory)
(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jint variable, jbyteArray value) {
  tellVariableText({env, texts, numbers}, "AddVarValueStringCategory", AddVarValueStringCategory, variable, value);
}

KOVA_NATIVE(void, addCategoryFootnotes)
(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jbyteArray footnote) {
  tellText({env, texts, numbers}, "AddCategoryFootnotes", AddCategoryFootnotes, footnote);
}

KOVA_NATIVE(void, setNumberCell)(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jdouble value) {
  tellAt({env, texts, numbers}, "SetNumberCell", SetNumberCell, value);
}

KOVA_NATIVE(void, setStringCell)(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jbyteArray text) {
  tellText({env, texts, numbers}, "SetStringCell", SetStringCell, text);
}

KOVA_NATIVE(void, setVarNameCell)(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jint variable) {
  tellAt({env, texts, numbers}, "SetVarNameCell", SetVarNameCell, variable);
}

KOVA_NATIVE(void, setVarValueDoubleCell)
(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jint variable, jdouble value) {
  tellAt({env, texts, numbers}, "SetVarValueDoubleCell", SetVarValueDoubleCell, variable, value);
}

KOVA_NATIVE(void, setVarValueStringCell)
(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jint variable, jbyteArray value) {
  tellVariableText({env, texts, numbers}, "SetVarValueStringCell", SetVarValueStringCell, variable, value);
}

KOVA_NATIVE(void, setDateCell)(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jbyteArray date) {
  tellText({env, texts, numbers}, "SetDateCell", SetDateCell, date);
}

KOVA_NATIVE(void, addCellFootnotes)
(JNIEnv* env, jclass, jobjectArray texts, jintArray numbers, jbyteArray footnote) {
  tellText({env, texts, numbers}, "AddCellFootnotes", AddCellFootnotes, footnote);
}
