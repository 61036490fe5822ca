#include "config/XConfigOptions.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const char* kTrue = "true";
constexpr const char* kAlwaysNestable = "PYTHON";
constexpr int kMaxReplacements = 1000;
constexpr std::size_t kMaxExpandedSize = 64 * 1024;

constexpr const char* kDefinedKeys[] = {
    XConfigOptions::KEY_LIB_NAME,
    XConfigOptions::KEY_HOME,
    XConfigOptions::KEY_ARGS,
    XConfigOptions::KEY_X,
    XConfigOptions::KEY_KOVADX_VERSION,
    XConfigOptions::KEY_KOVADX_VERSION_MAJOR,
    XConfigOptions::KEY_KOVADX_VERSION_MINOR,
    XConfigOptions::KEY_KOVADX_VERSION_PATCH,
    XConfigOptions::KEY_KOVADX_VERSION_BUGFIX,
    XConfigOptions::KEY_TRACE,
    XConfigOptions::KEY_INNER_PROCESS,
    XConfigOptions::KEY_NESTABLE,
    XConfigOptions::KEY_WORK_ON_32,
    XConfigOptions::KEY_EXTERNAL_RUNTIME,
};

bool (*installedExpander)(const std::string&, std::string&) = nullptr;

}  // namespace

XConfigOptions::XConfigOptions(const std::string& name) : name_(name) {}

const std::string& XConfigOptions::XName() const { return name_; }

void XConfigOptions::PutOption(const std::string& key, const std::string& value) {
  options_[key] = value;
  if (IsDefinedKey(key)) return;
  // Expanded before the variable is stored, so that a value can refer to an earlier variable of its own name.
  std::string expanded;
  ExpandEnvVars(value, expanded);
  environment_[key] = expanded;
}

const std::string& XConfigOptions::GetOption(const std::string& key) { return options_[key]; }

const std::string& XConfigOptions::GetXLibName() { return GetOption(KEY_LIB_NAME); }

const std::string& XConfigOptions::GetXHome() { return GetOption(KEY_HOME); }

const std::string& XConfigOptions::GetXArgs() { return GetOption(KEY_ARGS); }

const std::map<std::string, std::string>& XConfigOptions::GetXEnvVars() { return environment_; }

bool XConfigOptions::IsInnerProcess() { return isTrue(KEY_INNER_PROCESS); }

bool XConfigOptions::IsNestable() { return isTrue(KEY_NESTABLE) || name_ == kAlwaysNestable; }

bool XConfigOptions::WorkOn32() { return isTrue(KEY_WORK_ON_32); }

bool XConfigOptions::IsExternalRuntime() { return isTrue(KEY_EXTERNAL_RUNTIME); }

bool XConfigOptions::IsDefinedKey(const std::string& key) {
  return std::find(std::begin(kDefinedKeys), std::end(kDefinedKeys), key) != std::end(kDefinedKeys);
}

bool XConfigOptions::ExpandEnvVars(const std::string& in, std::string& out) {
  std::string text(in);
  for (int replaced = 0; replaced < kMaxReplacements && replaceFirstReference(text); ++replaced) {
  }
  // An expander that fails may leave its output alone: then the text stays as it is.
  out = text;
  return ExpandEnvStr(text, out);
}

// Replaces the first "%NAME%" of the text. False when it is none of this set's variables (deliberate: a later reference
// to a known variable behind it stays as it is), when there is none, or when the text would become too long.
bool XConfigOptions::replaceFirstReference(std::string& text) {
  const std::size_t begin = text.find('%');
  if (begin == std::string::npos) return false;
  const std::size_t end = text.find('%', begin + 1);
  if (end == std::string::npos) return false;
  std::string value;
  if (!FindUserEnv(text.substr(begin + 1, end - begin - 1), value)) return false;
  const std::size_t referenceSize = end - begin + 1;
  if (text.size() - referenceSize + value.size() > kMaxExpandedSize) return false;
  text.replace(begin, referenceSize, value);
  return true;
}

bool XConfigOptions::FindUserEnv(const std::string& name, std::string& value) {
  const auto found = environment_.find(name);
  if (found == environment_.end()) return false;
  value = found->second;
  return true;
}

void XConfigOptions::GetInfoFromJNI(const std::string&) {}

bool XConfigOptions::isTrue(const char* key) { return GetOption(key) == kTrue; }

void SetExpandEnvStr(bool (*expander)(const std::string&, std::string&)) { installedExpander = expander; }

bool ExpandEnvStr(const std::string& in, std::string& out) {
  if (installedExpander != nullptr) return installedExpander(in, out);
  out = in;
  return false;
}
