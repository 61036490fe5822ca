// One language's option set: the entries of its section of the configuration file, and among them the environment
// variables for its runtime. KovaDXConfigReader makes and owns the sets; a copy is independent of its source.
// Not locked: a set is filled on one thread and read afterwards.
#ifndef KOVADX_CONFIG_XCONFIGOPTIONS_H
#define KOVADX_CONFIG_XCONFIGOPTIONS_H

#include <map>
#include <string>

#include "export.h"

class KOVADX_API XConfigOptions {
 public:
  // The defined keys. Every other key of a language's section names an environment variable.
  static constexpr const char* KEY_LIB_NAME = "LIB_NAME";
  static constexpr const char* KEY_HOME = "HOME";
  static constexpr const char* KEY_ARGS = "ARGS";
  static constexpr const char* KEY_X = "X";
  static constexpr const char* KEY_KOVADX_VERSION = "KovadxVersion";
  static constexpr const char* KEY_KOVADX_VERSION_MAJOR = "KovadxVersionMajor";
  static constexpr const char* KEY_KOVADX_VERSION_MINOR = "KovadxVersionMinor";
  static constexpr const char* KEY_KOVADX_VERSION_PATCH = "KovadxVersionPatch";
  static constexpr const char* KEY_KOVADX_VERSION_BUGFIX = "KovadxFixPack";
  static constexpr const char* KEY_TRACE = "TRACE";
  static constexpr const char* KEY_INNER_PROCESS = "INNER_PROCESS";
  static constexpr const char* KEY_NESTABLE = "NESTABLE";
  static constexpr const char* KEY_WORK_ON_32 = "WORK_ON_32";
  static constexpr const char* KEY_EXTERNAL_RUNTIME = "IS_EXTERNAL_RUNTIME";

  // An empty set with the name of its section.
  explicit XConfigOptions(const std::string& name);
  XConfigOptions(const XConfigOptions&) = default;
  XConfigOptions& operator=(const XConfigOptions&) = default;
  virtual ~XConfigOptions() = default;

  const std::string& XName() const;

  // Stores a value as it is. A key that is not defined also becomes an environment variable, whose value is expanded:
  // each "%NAME%" of a variable put earlier is replaced, then the process-wide expander (below) sees the text.
  void PutOption(const std::string& key, const std::string& value);

  // The raw value. An absent key is added with an empty value. The reference is valid as long as the set.
  const std::string& GetOption(const std::string& key);

  // The values of LIB_NAME, HOME and ARGS.
  const std::string& GetXLibName();
  const std::string& GetXHome();
  const std::string& GetXArgs();

  // The environment variables for the runtime, expanded.
  const std::map<std::string, std::string>& GetXEnvVars();

  // A flag is set only by the exact text "true".
  bool IsInnerProcess();
  // Deliberate: the set named "PYTHON" is always nestable, whatever the file says.
  bool IsNestable();
  bool WorkOn32();
  bool IsExternalRuntime();

  // True for the fourteen defined keys, case and all.
  static bool IsDefinedKey(const std::string& key);

 private:
  // Expands `in` into `out`; the result of the process-wide expander. A reference to a variable that holds a reference
  // to itself would be replaced for ever: the replacing ends after 1000 times, or before the text outgrows 64 KiB.
  bool ExpandEnvVars(const std::string& in, std::string& out);
  // The value of one of this set's own variables; `value` is untouched when there is none of that exact name.
  bool FindUserEnv(const std::string& name, std::string& value);
  // Does nothing; kept as a part of the class's shape.
  void GetInfoFromJNI(const std::string& name);

  bool replaceFirstReference(std::string& text);
  bool isTrue(const char* key);

  std::string name_;
  std::map<std::string, std::string> options_;
  std::map<std::string, std::string> environment_;
};

// The process-wide expander: what the engine installs to expand "%NAME%" references by its own means. Null at load;
// each call replaces it, null takes it away. Installed on one thread, before option sets are read.
KOVADX_API void SetExpandEnvStr(bool (*expander)(const std::string& in, std::string& out));

// Calls the installed expander and returns its result. Without one, copies `in` to `out` and returns false.
KOVADX_API bool ExpandEnvStr(const std::string& in, std::string& out);

#endif
