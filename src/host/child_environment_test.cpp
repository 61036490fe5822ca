// Every entry that a runtime's process gets, in its order. This runs on the platform's own backend, so that each
// platform is tested with its own separators.
#include "host/child_environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "config/XCmdArgument.h"
#include "config/XConfigOptions.h"
#include "config/process_values.h"
#include "message/JavaExtensionSmb.h"
#include "platform/os/environment.h"
#include "transport/XPipeManager.h"

namespace {

namespace os = kova::os;

using Texts = std::vector<std::string>;
using testing::ElementsAreArray;

const std::string kList(1, os::kListSeparator);

// The names of this process's own environment that matter.
constexpr const char* kNames[] = {
    "KOVA_HOME",
    "KOVADXTEMP",
    "KOVA_EXTENSIONS_PATH",
    "KOVAEX_EXTENSIONS_PATH",
    "R_HOME",
    "KOVA_R_LIBS",
    "R_LIBS_USER",
    "PATH",
    "KOVA_RPACKAGES_PATH",
    "PYTHONHOME",
    "BACKEND_PYTHON_SCRIPT",
    "CPRLMX_HOST",
    "CPRLMX_PORT",
    "JAVA_CLIENT_PORT",
    "CLASSPATH",
};

// A path as this platform's programs write it.
std::string native(std::string path) {
  std::replace(path.begin(), path.end(), '\\', os::kPathSeparator);
  return path;
}

std::string own(const char* name) { return os::GetEnvironment(name).value_or("(none)"); }

// What a language's entries begin with when nothing is configured and nothing set.
const Texts kCommon = {"KOVA_HOME=C:\\kova home", "KOVADXTEMP=T:\\temp\\",
                       "KOVA_EXTENSIONS_PATH=", "KOVAEX_EXTENSIONS_PATH="};

Texts afterCommon(const Texts& rest) {
  Texts all = kCommon;
  all.insert(all.end(), rest.begin(), rest.end());
  return all;
}

class ChildEnvironment : public testing::Test {
 protected:
  ChildEnvironment() {
    for (const char* name : kNames) {
      before_[name] = os::GetEnvironment(name).value_or("");
      os::SetEnvironment(name, "");
    }
    SetKOVAHOME("C:\\kova home");
    SetXPipeManager(&pipes_);
    JavaExtensionSmb().CleanUp();
  }
  ~ChildEnvironment() override {
    JavaExtensionSmb().CleanUp();
    SetXPipeManager(nullptr);
    for (const auto& [name, value] : before_) os::SetEnvironment(name, value);
  }

  static Texts entriesOf(XConfigOptions& options) {
    XCmdArgument environment;
    kova::pushChildEnvironment(options, environment);
    Texts entries;
    for (int i = 0; i < environment.argc(); ++i) entries.emplace_back(environment.argumentAt(i));
    return entries;
  }

  // Of a language with that home and nothing else in its section.
  static Texts entriesOf(const std::string& language, const std::string& home = "") {
    XConfigOptions options(language);
    options.PutOption("HOME", home);
    return entriesOf(options);
  }

  XPipeManager pipes_{"T:\\temp\\", "1a2b"};

 private:
  std::map<std::string, std::string> before_;
};

TEST_F(ChildEnvironment, MostLanguagesGetTheCommonEntriesAlone) {
  for (const char* language : {"ECHO", "r", "R2", "python", "Python", "javaextension", "JAVAEXTENSION2", ""}) {
    SCOPED_TRACE(language);
    EXPECT_THAT(entriesOf(language, "C:\\home"), ElementsAreArray(kCommon));
  }
}

TEST_F(ChildEnvironment, TheExtensionFoldersArePassedOn) {
  os::SetEnvironment("KOVA_EXTENSIONS_PATH", "one");
  os::SetEnvironment("KOVAEX_EXTENSIONS_PATH", "two three");
  const Texts expected = {"KOVA_HOME=C:\\kova home", "KOVADXTEMP=T:\\temp\\", "KOVA_EXTENSIONS_PATH=one",
                          "KOVAEX_EXTENSIONS_PATH=two three"};
  EXPECT_THAT(entriesOf("ECHO"), ElementsAreArray(expected));
}

TEST_F(ChildEnvironment, TheConfigurationComesFirstAndSilencesTheRest) {
  os::SetEnvironment("KOVA_EXTENSIONS_PATH", "one");
  os::SetEnvironment("KOVAEX_EXTENSIONS_PATH", "two");
  XConfigOptions options("ECHO");
  for (const char* name : {"ZEBRA", "KOVA_HOME", "KOVADXTEMP", "KOVA_EXTENSIONS_PATH", "KOVAEX_EXTENSIONS_PATH"}) {
    options.PutOption(name, std::string("own ") + name);
  }
  options.PutOption("APE", "a=b");
  options.PutOption("LIB_NAME", "is no variable");
  const Texts expected = {"APE=a=b",
                          "KOVADXTEMP=own KOVADXTEMP",
                          "KOVAEX_EXTENSIONS_PATH=own KOVAEX_EXTENSIONS_PATH",
                          "KOVA_EXTENSIONS_PATH=own KOVA_EXTENSIONS_PATH",
                          "KOVA_HOME=own KOVA_HOME",
                          "ZEBRA=own ZEBRA"};
  EXPECT_THAT(entriesOf(options), ElementsAreArray(expected));
}

TEST_F(ChildEnvironment, AnEmptyValueIsConfiguredToo) {
  XConfigOptions options("ECHO");
  options.PutOption("KOVADXTEMP", "");
  const Texts expected = {"KOVADXTEMP=", "KOVA_HOME=C:\\kova home", "KOVA_EXTENSIONS_PATH=", "KOVAEX_EXTENSIONS_PATH="};
  EXPECT_THAT(entriesOf(options), ElementsAreArray(expected));
}

TEST_F(ChildEnvironment, WithoutPipesThereIsNoTemporaryFolder) {
  SetXPipeManager(nullptr);
  EXPECT_EQ(entriesOf("ECHO").at(1), "KOVADXTEMP=");
}

struct HomeRow {
  const char* configured;
  const char* home;
};

TEST_F(ChildEnvironment, AHomeLosesOneSeparatorAtItsEnd) {
  const HomeRow rows[] = {{"C:\\R", "C:\\R"}, {"C:\\R\\", "C:\\R"}, {"C:\\R\\\\", "C:\\R\\"}, {"", ""}};
  for (const HomeRow& row : rows) {
    SCOPED_TRACE(row.configured);
    EXPECT_EQ(entriesOf("R", row.configured).at(4), std::string("R_HOME=") + row.home);
    EXPECT_EQ(entriesOf("PYTHON", row.configured).at(4), std::string("PYTHONHOME=") + row.home);
  }
  const std::string platforms = std::string("home") + os::kPathSeparator;
  EXPECT_EQ(entriesOf("R", platforms).at(4), "R_HOME=home");
}

// ---- R

TEST_F(ChildEnvironment, RWithNothingSet) {
  const std::string packages = native("C:\\kova home\\R\\rpackage");
  EXPECT_THAT(entriesOf("R", "C:\\R"),
              ElementsAreArray(afterCommon({"R_HOME=C:\\R", "KOVA_R_LIBS=" + packages, "R_LIBS_USER=" + packages,
                                            "PATH=" + native("C:\\R\\bin\\x64"), "KOVA_RPACKAGES_PATH="})));
}

TEST_F(ChildEnvironment, RWithValuesOfThisProcess) {
  os::SetEnvironment("R_LIBS_USER", "my own");
  os::SetEnvironment("PATH", "the path");
  os::SetEnvironment("KOVA_RPACKAGES_PATH", "packages");
  const std::string packages = native("C:\\kova home\\R\\rpackage");
  EXPECT_THAT(entriesOf("R", "C:\\R\\"),
              ElementsAreArray(afterCommon(
                  {"R_HOME=C:\\R", "KOVA_R_LIBS=" + packages, "R_LIBS_USER=" + packages + kList + "my own",
                   "PATH=" + native("C:\\R\\bin\\x64") + kList + "the path", "KOVA_RPACKAGES_PATH=packages"})));
}

TEST_F(ChildEnvironment, RWithAConfiguration) {
  os::SetEnvironment("PATH", "the path");
  os::SetEnvironment("KOVA_RPACKAGES_PATH", "packages");
  XConfigOptions options("R");
  options.PutOption("HOME", "C:\\R");
  for (const char* name : {"PATH", "KOVA_RPACKAGES_PATH", "R_HOME"}) options.PutOption(name, "set");
  const std::string packages = native("C:\\kova home\\R\\rpackage");
  Texts expected = {"KOVA_RPACKAGES_PATH=set", "PATH=set", "R_HOME=set"};
  const Texts rest = afterCommon({"R_HOME=C:\\R", "KOVA_R_LIBS=" + packages, "R_LIBS_USER=" + packages});
  expected.insert(expected.end(), rest.begin(), rest.end());
  EXPECT_THAT(entriesOf(options), ElementsAreArray(expected)) << "these three come whatever is configured";
}

// ---- Python

TEST_F(ChildEnvironment, PythonWithNothingSet) {
  for (const char* language : {"PYTHON", "PYTHON3", "MYPYTHON"}) {
    SCOPED_TRACE(language);
    EXPECT_THAT(
        entriesOf(language, "C:\\Py"),
        ElementsAreArray(afterCommon({"PYTHONHOME=C:\\Py", "PATH=" + native("C:\\Py"), "BACKEND_PYTHON_SCRIPT=True",
                                      "CPRLMX_HOST=127.0.0.1", "CPRLMX_PORT=0", "JAVA_CLIENT_PORT=0"})));
  }
}

TEST_F(ChildEnvironment, PythonWithValuesOfThisProcess) {
  os::SetEnvironment("PATH", "the path");
  os::SetEnvironment("BACKEND_PYTHON_SCRIPT", "no");
  os::SetEnvironment("JAVA_CLIENT_PORT", "4711");
  EXPECT_THAT(entriesOf("PYTHON", "C:\\Py\\"),
              ElementsAreArray(afterCommon({"PYTHONHOME=C:\\Py", "PATH=" + native("C:\\Py") + kList + "the path",
                                            "BACKEND_PYTHON_SCRIPT=True", "CPRLMX_HOST=127.0.0.1", "CPRLMX_PORT=0",
                                            "JAVA_CLIENT_PORT=4711"})));
}

TEST_F(ChildEnvironment, PythonWithoutAHomeKeepsThePathAsItIs) {
  EXPECT_EQ(entriesOf("PYTHON").at(5), "PATH=");
  os::SetEnvironment("PATH", "the path");
  EXPECT_EQ(entriesOf("PYTHON").at(5), "PATH=the path");
}

TEST_F(ChildEnvironment, PythonWithAConfiguration) {
  os::SetEnvironment("PATH", "the path");
  XConfigOptions options("PYTHON");
  options.PutOption("HOME", "C:\\Py");
  for (const char* name : {"PATH", "BACKEND_PYTHON_SCRIPT", "JAVA_CLIENT_PORT", "CPRLMX_HOST", "CPRLMX_PORT"}) {
    options.PutOption(name, "set");
  }
  Texts expected = {"BACKEND_PYTHON_SCRIPT=set", "CPRLMX_HOST=set", "CPRLMX_PORT=set", "JAVA_CLIENT_PORT=set",
                    "PATH=set"};
  const Texts rest = afterCommon({"PYTHONHOME=C:\\Py"});
  expected.insert(expected.end(), rest.begin(), rest.end());
  EXPECT_THAT(entriesOf(options), ElementsAreArray(expected));
}

struct AddressRow {
  const char* label;
  bool hostConfigured;
  bool portConfigured;
  const char* ownHost;
  const char* ownPort;
  Texts pushed;  // Behind what is configured.
};

TEST_F(ChildEnvironment, HostAndPortOfTheBackendBelongTogether) {
  const Texts none = {"CPRLMX_HOST=127.0.0.1", "CPRLMX_PORT=0"};
  const Texts owns = {"CPRLMX_HOST=here", "CPRLMX_PORT=9"};
  const AddressRow rows[] = {
      {"nothing", false, false, "", "", none},
      {"a host alone", false, false, "here", "", none},
      {"a port alone", false, false, "", "9", none},
      {"both", false, false, "here", "9", owns},
      {"configured host", true, false, "", "", none},
      {"configured host, own host", true, false, "here", "", none},
      {"configured host, own both", true, false, "here", "9", owns},
      {"configured port", false, true, "", "", none},
      {"configured port, own port", false, true, "", "9", none},
      {"configured port, own both", false, true, "here", "9", owns},
      {"configured both", true, true, "here", "9", {}},
  };
  for (const AddressRow& row : rows) {
    SCOPED_TRACE(row.label);
    os::SetEnvironment("CPRLMX_HOST", row.ownHost);
    os::SetEnvironment("CPRLMX_PORT", row.ownPort);
    XConfigOptions options("PYTHON");
    Texts expected;
    if (row.hostConfigured) options.PutOption("CPRLMX_HOST", "set");
    if (row.portConfigured) options.PutOption("CPRLMX_PORT", "set");
    if (row.hostConfigured) expected.emplace_back("CPRLMX_HOST=set");
    if (row.portConfigured) expected.emplace_back("CPRLMX_PORT=set");
    expected.insert(expected.end(), row.pushed.begin(), row.pushed.end());
    Texts entries = entriesOf(options);
    std::erase_if(entries, [](const std::string& entry) { return !entry.starts_with("CPRLMX_"); });
    EXPECT_THAT(entries, ElementsAreArray(expected));
  }
}

// ---- Java

struct JavaRow {
  const char* label;
  bool package;
  const char* folders;
  const char* ownPath;
  std::string path;
};

TEST_F(ChildEnvironment, TheClassPathOfJava) {
  const std::string jar = native("C:\\kova home\\kovajavaplugin.jar") + kList;
  const JavaRow rows[] = {
      {"no folder", true, "", "", jar},
      {"one folder", true, "C:\\ext", "", jar + native("C:\\ext\\cmd.jar")},
      {"two folders", true, "C:\\a b;D:\\c", "", jar + native("C:\\a b\\cmd.jar") + kList + native("D:\\c\\cmd.jar")},
      {"a separator at the end", true, "C:\\a;", "", jar + native("C:\\a\\cmd.jar")},
      {"an own path", true, "C:\\a", "x.jar", jar + native("C:\\a\\cmd.jar") + kList + "x.jar"},
      {"an own path, no folder", true, "", "x.jar", jar + kList + "x.jar"},
      {"no package", false, "C:\\a;D:\\b", "", jar},
      {"no package, an own path", false, "C:\\a", "x.jar", jar + kList + "x.jar"},
  };
  for (const JavaRow& row : rows) {
    SCOPED_TRACE(row.label);
    JavaExtensionSmb().SetPackageMode(row.package);
    JavaExtensionSmb().SetExtensionPath(row.folders);
    JavaExtensionSmb().SetCommandName("cmd");
    os::SetEnvironment("CLASSPATH", row.ownPath);
    EXPECT_THAT(entriesOf("JAVAEXTENSION"), ElementsAreArray(afterCommon({"CLASSPATH=" + row.path})));
  }
}

TEST_F(ChildEnvironment, AConfiguredClassPathIsFollowedByTheComputedOne) {
  XConfigOptions options("JAVAEXTENSION");
  options.PutOption("CLASSPATH", "set");
  const Texts entries = entriesOf(options);
  EXPECT_EQ(entries.front(), "CLASSPATH=set");
  EXPECT_EQ(entries.back(), "CLASSPATH=" + native("C:\\kova home\\kovajavaplugin.jar") + kList);
}

// ---- Setting them

TEST_F(ChildEnvironment, EntriesAreSetInTheirOrder) {
  os::SetEnvironment("KOVA_EXTENSIONS_PATH", "goes");
  XCmdArgument environment;
  for (const char* entry : {"R_HOME=first", "CLASSPATH=a=b;c d", "KOVA_EXTENSIONS_PATH=", "R_HOME=last"}) {
    environment.pushArgument(entry, true);
  }
  kova::applyEnvironment(environment);
  EXPECT_EQ(own("R_HOME"), "last");
  EXPECT_EQ(own("CLASSPATH"), "a=b;c d");
  EXPECT_EQ(own("KOVA_EXTENSIONS_PATH"), "(none)");
  XCmdArgument none;
  kova::applyEnvironment(none);
}

TEST_F(ChildEnvironment, EveryStartPutsItsHomeBeforeThePath) {
  os::SetEnvironment("PATH", "the path");
  XConfigOptions options("PYTHON");
  options.PutOption("HOME", "C:\\Py");
  for (int start = 0; start < 2; ++start) {
    XCmdArgument environment;
    kova::pushChildEnvironment(options, environment);
    kova::applyEnvironment(environment);
  }
  EXPECT_EQ(own("PATH"), native("C:\\Py") + kList + native("C:\\Py") + kList + "the path");
  EXPECT_EQ(own("KOVA_HOME"), "C:\\kova home");
  EXPECT_EQ(own("KOVADXTEMP"), "T:\\temp\\");
}

}  // namespace
