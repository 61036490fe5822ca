#include "host/child_programs.h"

#include <initializer_list>
#include <string_view>

#include "config/text_utilities.h"
#include "platform/os/environment.h"
#include "platform/os/file.h"

namespace kova {
namespace {

constexpr std::string_view kEnding = ".exe";

std::string below(std::string folder, const char* name) {
  DecoratePathEnd(folder);
  return folder + name;
}

// A place to look at besides: none without a folder, since a program below the current one is nobody's runtime.
std::string belowIfKnown(const std::string& folder, const char* name) {
  return folder.empty() ? std::string() : below(folder, name);
}

// The first that is there, else the first.
std::string present(const std::string& stated, std::initializer_list<std::string> others) {
  if (os::FileExists(stated) || os::kPathSeparator == '\\') return stated;
  for (const std::string& other : others) {
    if (os::FileExists(other)) return other;
  }
  return stated;
}

std::string withOrWithoutEnding(const std::string& stated) {
  return present(stated, {stated.substr(0, stated.size() - kEnding.size())});
}

}  // namespace

std::string startxProgram(const std::string& kovaHome, bool on32) {
  return withOrWithoutEnding(below(kovaHome, on32 ? "startx32.exe" : "startx.exe"));
}

std::string engineProgram(const std::string& kovaHome) { return withOrWithoutEnding(below(kovaHome, "StartXD.exe")); }

std::string rConsoleProgram(const std::string& rHome) {
  return present(below(rHome, "bin\\x64\\Rterm.exe"), {belowIfKnown(rHome, "bin\\R")});
}

std::string javaProgram(const std::string& kovaHome) {
  const std::string jre = below(kovaHome, "JRE/bin/");
  const std::string javaHome = os::GetEnvironment("JAVA_HOME").value_or("");
  return present(jre + "java.exe", {jre + "java", belowIfKnown(javaHome, "bin/java")});
}

}  // namespace kova
