// The native methods of procedures and of pivot tables without their dimensions.
#include "com_qor_statistics_kova_Native.h"
#include "kovadx.h"
#include "native_call.h"

using namespace kova::java;

namespace {

constexpr int kInvalidParameter = 87;

// How numbers are shown. One of the two functions is there.
struct FormatRow {
  const char* name;
  int (*plain)();
  int (*ofVariable)(int);
};

constexpr FormatRow kFormats[] = {
    {"SetFormatSpecCoefficient", SetFormatSpecCoefficient, nullptr},
    {"SetFormatSpecCoefficientSE", SetFormatSpecCoefficientSE, nullptr},
    {"SetFormatSpecCoefficientVar", SetFormatSpecCoefficientVar, nullptr},
    {"SetFormatSpecCorrelation", SetFormatSpecCorrelation, nullptr},
    {"SetFormatSpecCount", SetFormatSpecCount, nullptr},
    {"SetFormatSpecDifference", nullptr, SetFormatSpecDifference},
    {"SetFormatSpecGeneralStat", SetFormatSpecGeneralStat, nullptr},
    {"SetFormatSpecMean", nullptr, SetFormatSpecMean},
    {"SetFormatSpecPercent", SetFormatSpecPercent, nullptr},
    {"SetFormatSpecPercentNoSign", SetFormatSpecPercentNoSign, nullptr},
    {"SetFormatSpecProportion", SetFormatSpecProportion, nullptr},
    {"SetFormatSpecResidual", SetFormatSpecResidual, nullptr},
    {"SetFormatSpecSignificance", SetFormatSpecSignificance, nullptr},
    {"SetFormatSpecStdDev", nullptr, SetFormatSpecStdDev},
    {"SetFormatSpecSum", nullptr, SetFormatSpecSum},
    {"SetFormatSpecVariable", nullptr, SetFormatSpecVariable},
};

void setFormat(const std::string& function, int variable) {
  for (const FormatRow& row : kFormats) {
    if (function == row.name) return check(row.name, row.plain ? row.plain() : row.ofVariable(variable));
  }
  checkLocal("SetFormatSpec", kInvalidParameter);
}

// A table's key.
class Table {
 public:
  Table(JNIEnv* env, jobjectArray texts, jboolean split) : split_(split != JNI_FALSE) {
    for (int i = 0; i < kTexts; ++i) {
      const auto bytes = static_cast<jbyteArray>(env->GetObjectArrayElement(texts, i));
      checkJava(env);
      texts_[i] = textOf(env, bytes);
      env->DeleteLocalRef(bytes);
    }
  }

  template <typename Function, typename... Rest>
  int call(Function function, Rest... rest) const {
    return function(texts_[0].c_str(), texts_[1].c_str(), texts_[2].c_str(), split_, rest...);
  }

  // For the two functions that have the flag behind the footnote.
  template <typename Function>
  int callFlagLast(Function function, const char* footnote) const {
    return function(texts_[0].c_str(), texts_[1].c_str(), texts_[2].c_str(), footnote, split_);
  }

 private:
  static constexpr int kTexts = 3;
  std::string texts_[kTexts];
  bool split_;
};

}  // namespace

KOVA_NATIVE(void, startProcedure)(JNIEnv* env, jclass, jbyteArray name, jbyteArray label) {
  tell(env, "StartProcedure", [&] { return StartProcedure(textOf(env, name).c_str(), textOf(env, label).c_str()); });
}

KOVA_NATIVE(void, endProcedure)(JNIEnv* env, jclass) { tell(env, "EndProcedure", EndProcedure); }

KOVA_NATIVE(void, splitChange)(JNIEnv* env, jclass, jbyteArray name) {
  tell(env, "SplitChange", [&] { return SplitChange(textOf(env, name).c_str()); });
}

KOVA_NATIVE(void, addTextBlock)
(JNIEnv* env, jclass, jbyteArray outline, jbyteArray title, jbyteArray text, jint emptyLines) {
  tell(env, "AddTextBlock", [&] {
    return AddTextBlock(textOf(env, outline).c_str(), textOf(env, title).c_str(), textOf(env, text).c_str(),
                        emptyLines);
  });
}

KOVA_NATIVE(void, addProcFootnotes)(JNIEnv* env, jclass, jbyteArray footnote) {
  tell(env, "AddProcFootnotes", [&] { return AddProcFootnotes(textOf(env, footnote).c_str()); });
}

KOVA_NATIVE(void, setFormatSpec)(JNIEnv* env, jclass, jbyteArray function, jint variable) {
  guarded(env, "SetFormatSpec", [&] { setFormat(textOf(env, function), variable); });
}

KOVA_NATIVE(void, startPivotTable)(JNIEnv* env, jclass, jobjectArray table, jboolean split) {
  tell(env, "StartPivotTable", [&] { return Table(env, table, split).call(StartPivotTable); });
}

KOVA_NATIVE(void, hidePivotTableTitle)(JNIEnv* env, jclass, jobjectArray table, jboolean split) {
  tell(env, "HidePivotTableTitle", [&] { return Table(env, table, split).call(HidePivotTableTitle); });
}

KOVA_NATIVE(void, pivotTableCaption)
(JNIEnv* env, jclass, jobjectArray table, jboolean split, jbyteArray caption) {
  tell(env, "PivotTableCaption",
       [&] { return Table(env, table, split).call(PivotTableCaption, textOf(env, caption).c_str()); });
}

KOVA_NATIVE(void, addOutlineFootnotes)
(JNIEnv* env, jclass, jobjectArray table, jboolean split, jbyteArray footnote) {
  tell(env, "AddOutlineFootnotes",
       [&] { return Table(env, table, split).callFlagLast(AddOutlineFootnotes, textOf(env, footnote).c_str()); });
}

KOVA_NATIVE(void, addTitleFootnotes)
(JNIEnv* env, jclass, jobjectArray table, jboolean split, jbyteArray footnote) {
  tell(env, "AddTitleFootnotes",
       [&] { return Table(env, table, split).callFlagLast(AddTitleFootnotes, textOf(env, footnote).c_str()); });
}

KOVA_NATIVE(void, addCaptionFootnotes)
(JNIEnv* env, jclass, jobjectArray table, jboolean split, jbyteArray caption, jbyteArray footnote) {
  tell(env, "AddCaptionFootnotes", [&] {
    return Table(env, table, split)
        .call(AddCaptionFootnotes, textOf(env, caption).c_str(), textOf(env, footnote).c_str());
  });
}

KOVA_NATIVE(void, minDataColumnWidth)(JNIEnv* env, jclass, jobjectArray table, jboolean split, jint width) {
  tell(env, "MinDataColumnWidth", [&] { return Table(env, table, split).call(MinDataColumnWidth, width); });
}

KOVA_NATIVE(void, maxDataColumnWidth)(JNIEnv* env, jclass, jobjectArray table, jboolean split, jint width) {
  tell(env, "MaxDataColumnWidth", [&] { return Table(env, table, split).call(MaxDataColumnWidth, width); });
}
