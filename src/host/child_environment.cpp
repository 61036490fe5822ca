#include "host/child_environment.h"

#include <string>
#include <vector>

#include "config/XCmdArgument.h"
#include "config/XConfigOptions.h"
#include "config/process_values.h"
#include "config/text_utilities.h"
#include "message/JavaExtensionSmb.h"
#include "platform/os/environment.h"
#include "transport/XPipeManager.h"

namespace kova {
namespace {

std::string ownValue(const char* name) { return os::GetEnvironment(name).value_or(""); }

// A path that is written with '\', as the child's platform writes it.
std::string inPlatformForm(std::string path) {
  for (char& c : path) {
    if (c == '\\') c = os::kPathSeparator;
  }
  return path;
}

std::string withoutEndSeparator(std::string path) {
  if (path.ends_with('\\') || path.ends_with(os::kPathSeparator)) path.pop_back();
  return path;
}

// A list of folders with one more at its beginning; without an empty one, which would stand for the current folder.
std::string before(const std::string& folder, const char* listName) {
  const auto list = os::GetEnvironment(listName);
  if (!list) return folder;
  return folder.empty() ? *list : folder + os::kListSeparator + *list;
}

class Entries {
 public:
  Entries(XConfigOptions& options, XCmdArgument& environment) : options_(options), environment_(environment) {}

  void push() {
    for (const auto& [name, value] : options_.GetXEnvVars()) always(name, value);
    unlessConfigured("KOVA_HOME", GetKOVAHOME());
    unlessConfigured("KOVADXTEMP", GetXPipeManager() != nullptr ? GetXPipeManager()->getPipePath() : "");
    passOn("KOVA_EXTENSIONS_PATH");
    passOn("KOVAEX_EXTENSIONS_PATH");
    if (options_.XName() == "R") pushForR();
    if (options_.XName().find("PYTHON") != std::string::npos) pushForPython();
    if (options_.XName() == "JAVAEXTENSION") pushForJava();
  }

 private:
  bool isConfigured(const std::string& name) { return options_.GetXEnvVars().contains(name); }

  void always(const std::string& name, const std::string& value) {
    environment_.pushArgument(name + "=" + value, true);
  }

  void unlessConfigured(const std::string& name, const std::string& value) {
    if (!isConfigured(name)) always(name, value);
  }

  void passOn(const char* name) { unlessConfigured(name, ownValue(name)); }

  std::string languageHome() { return withoutEndSeparator(options_.GetXHome()); }

  void pushForR() {
    const std::string home = languageHome();
    const std::string packages = inPlatformForm(std::string(GetKOVAHOME()) + "\\R\\rpackage");
    always("R_HOME", home);
    always("KOVA_R_LIBS", packages);
    always("R_LIBS_USER", before(packages, "R_LIBS_USER"));
    unlessConfigured("PATH", before(inPlatformForm(home + "\\bin\\x64"), "PATH"));
    passOn("KOVA_RPACKAGES_PATH");
  }

  void pushForPython() {
    const std::string home = languageHome();
    always("PYTHONHOME", home);
    unlessConfigured("PATH", before(inPlatformForm(home), "PATH"));
    unlessConfigured("BACKEND_PYTHON_SCRIPT", "True");
    pushBackendAddress();
    unlessConfigured("JAVA_CLIENT_PORT", os::GetEnvironment("JAVA_CLIENT_PORT").value_or("0"));
  }

  // Host and port are one thing: they come together from the configuration, from this process, or from neither.
  void pushBackendAddress() {
    if (isConfigured("CPRLMX_HOST") && isConfigured("CPRLMX_PORT")) return;
    const auto host = os::GetEnvironment("CPRLMX_HOST");
    const auto port = os::GetEnvironment("CPRLMX_PORT");
    const bool isKnown = host && port;
    always("CPRLMX_HOST", isKnown ? *host : "127.0.0.1");
    always("CPRLMX_PORT", isKnown ? *port : "0");
  }

  void pushForJava() {
    std::string path = inPlatformForm(std::string(GetKOVAHOME()) + "\\kovajavaplugin.jar");
    path += os::kListSeparator;
    path += extensionJars();
    const auto own = os::GetEnvironment("CLASSPATH");
    if (own) path += os::kListSeparator + *own;
    always("CLASSPATH", path);
  }

  static std::string extensionJars() {
    const JavaExtensionSmb record;
    if (!record.IsPackageMode()) return {};
    std::string jars;
    for (const std::string& folder : GetListFromDelims(record.GetExtensionPath(), ";")) {
      if (!jars.empty()) jars += os::kListSeparator;
      jars += inPlatformForm(folder + "\\" + record.GetCommandName() + ".jar");
    }
    return jars;
  }

  XConfigOptions& options_;
  XCmdArgument& environment_;
};

}  // namespace

void pushChildEnvironment(XConfigOptions& options, XCmdArgument& environment) { Entries(options, environment).push(); }

void applyEnvironment(XCmdArgument& environment) {
  const int count = environment.argc();
  for (int i = 0; i < count; ++i) {
    const std::string entry = environment.argumentAt(i);
    const std::size_t end = entry.find('=');
    os::SetEnvironment(entry.substr(0, end), end == std::string::npos ? "" : entry.substr(end + 1));
  }
}

}  // namespace kova
