// The process-wide reader of "kovadxcfg.ini", the configuration file in the home folder: which languages are supported,
// where the trace log goes, the version, and one option set a language. The one instance is made on first use and never
// destroyed; its file's path is fixed then, and each option set is read once and kept, so that later changes of the
// home folder or of the file are not seen. It owns the option sets. Not locked: the first use of the reader and of each
// set happens on one thread.
#ifndef KOVADX_CONFIG_KOVADXCONFIGREADER_H
#define KOVADX_CONFIG_KOVADXCONFIGREADER_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "config/PlugInConfigReader.h"
#include "config/XConfigOptions.h"
#include "export.h"

class KOVADX_API KovaDXConfigReader : public PlugInConfigReader {
 public:
  static constexpr const char* SECTION_SUPPORT_LANG = "SUPPORTED_LANG";
  static constexpr const char* SECTION_VERSION = "version";

  // The one reader.
  static KovaDXConfigReader* GetInstance();
  // The option set `name` of the one reader.
  static XConfigOptions* GetInstance(const std::string& name);

  KovaDXConfigReader(const KovaDXConfigReader&) = delete;
  KovaDXConfigReader& operator=(const KovaDXConfigReader&) = delete;
  ~KovaDXConfigReader() override = default;

  // The option set of a section, read on the first request and kept under exactly that name; never null. An absent
  // section gives an empty set. The reader keeps owning it.
  virtual XConfigOptions* GetOptions(std::string name);
  // A copy of the set of the current language name.
  virtual XConfigOptions GetOptions();

  // The current language name, empty at first.
  virtual void SetXName(std::string name);
  virtual std::string GetXName();

  // One value from the file (at most 2047 characters), or the default when it is absent or empty; without the blanks at
  // its ends.
  virtual std::string GetOption(const std::string& section, const std::string& key, const std::string& defaultValue);

 protected:
  // The full path of the configuration file: the home folder with "\" at its end, and the file's name. Without a home
  // folder the bare name, which the current folder is searched for.
  virtual std::string GetConfigFullPath();

 public:
  // A copy of the set of the values that belong to no language: the supported languages, the trace folder, the version.
  XConfigOptions GetGlobalOptions();

  // The supported languages as the file lists them, separated by ";", case and blanks kept.
  std::vector<std::string> GetSupportLanguage();
  // True for a listed name, case and all. "JAVAEXTENSION" is always supported.
  bool IsSupportLanguage(std::string name);

  // The folder that receives the trace file; empty when tracing is off.
  std::string GetTracePath();
  // The version, whole and in parts.
  std::string GetVersion();
  std::string GetVersionMajor();
  std::string GetVersionMinor();
  std::string GetVersionPatch();
  // Deliberate: the level of bug fixes is the fix pack's.
  std::string GetVersionBugfix();

 protected:
  KovaDXConfigReader();

  // The set behind GetGlobalOptions, read on the first request and kept.
  XConfigOptions* GetNGlobalOptions();

  // Appends the keys and values of a section in the file's order; a line without "=" is a key with an empty value. Key
  // and value are not trimmed around the "=". Nothing is appended when the file or the section is absent.
  void RetrieveKeyValue(const char* path, const char* section, std::vector<std::string>& keys,
                        std::vector<std::string>& values);

 private:
  static KovaDXConfigReader* m_instance;

  std::string globalValue(const char* key);

  std::string configPath_;
  std::string xName_;
  std::map<std::string, std::unique_ptr<XConfigOptions>> cache_;
};

#endif
