#include "config/process_values.h"

#include "config/never_destroyed.h"
#include "config/text_utilities.h"
#include "platform/os/environment.h"

namespace {

constexpr const char* kUnnamed = "UNNAMEDX";
constexpr const char* kHomeVariable = "KOVA_HOME";

struct ProcessValues {
  std::string xName;
  std::string home;
  int appMode = -1;
  bool initialised = false;
  bool inStat = false;
};

ProcessValues& values() {
  static kova::NeverDestroyed<ProcessValues> theValues;
  return theValues.object();
}

void storeHome(std::string path) {
  if (!path.empty() && path.back() == '\\') path.pop_back();
  values().home = path;
}

}  // namespace

std::string GetXName() { return values().xName; }

void SetXName(const std::string& name) { values().xName = name.empty() ? kUnnamed : UpperString(name); }

namespace kova {

void clearXName() { values().xName.clear(); }

}  // namespace kova

// The two functions that allocate answer a lack of memory as if no folder were given: nothing leaves a C function.
const char* GetKOVAHOME() {
  try {
    if (values().home.empty()) storeHome(kova::os::GetEnvironment(kHomeVariable).value_or(""));
    return values().home.c_str();
  } catch (...) {
    return "";
  }
}

void SetKOVAHOME(const char* path) {
  if (path == nullptr || *path == '\0') return;
  try {
    storeHome(path);
  } catch (...) {
    return;
  }
}

int GetAppMode() { return values().appMode; }

void SetAppMode(int mode) { values().appMode = mode; }

bool IsDXGlobalInit() { return values().initialised; }

void SetDXGlobalInitFin(bool finished) { values().initialised = finished; }

bool IsInStat() { return values().inStat; }

void SetInStat(bool inStat) { values().inStat = inStat; }
