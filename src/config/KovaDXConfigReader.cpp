#include "config/KovaDXConfigReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "config/process_values.h"
#include "config/text_utilities.h"
#include "platform/os/file.h"

namespace {

constexpr const char* kConfigFileName = "kovadxcfg.ini";
constexpr const char* kGlobalName = "_GLOBAL_";
constexpr const char* kAlwaysSupported = "JAVAEXTENSION";
constexpr const char* kLanguageDelimiter = ";";
constexpr unsigned long kValueSize = 2048;

struct GlobalKey {
  const char* section;
  const char* key;
};
constexpr GlobalKey kGlobalKeys[] = {
    {KovaDXConfigReader::SECTION_SUPPORT_LANG, XConfigOptions::KEY_X},
    {KovaDXConfigReader::SECTION_SUPPORT_LANG, XConfigOptions::KEY_TRACE},
    {KovaDXConfigReader::SECTION_VERSION, XConfigOptions::KEY_KOVADX_VERSION},
    {KovaDXConfigReader::SECTION_VERSION, XConfigOptions::KEY_KOVADX_VERSION_MAJOR},
    {KovaDXConfigReader::SECTION_VERSION, XConfigOptions::KEY_KOVADX_VERSION_MINOR},
    {KovaDXConfigReader::SECTION_VERSION, XConfigOptions::KEY_KOVADX_VERSION_PATCH},
    {KovaDXConfigReader::SECTION_VERSION, XConfigOptions::KEY_KOVADX_VERSION_BUGFIX},
};

std::string withoutBlanks(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string::npos) return std::string();
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// A value has one size limit, whether it is the file's or the caller's.
std::string cutToBuffer(const std::string& text) { return text.substr(0, kValueSize - 1).c_str(); }

}  // namespace

KovaDXConfigReader* KovaDXConfigReader::m_instance = nullptr;

KovaDXConfigReader* KovaDXConfigReader::GetInstance() {
  if (m_instance == nullptr) m_instance = new KovaDXConfigReader();
  return m_instance;
}

XConfigOptions* KovaDXConfigReader::GetInstance(const std::string& name) { return GetInstance()->GetOptions(name); }

KovaDXConfigReader::KovaDXConfigReader() : configPath_(KovaDXConfigReader::GetConfigFullPath()) {}

XConfigOptions* KovaDXConfigReader::GetOptions(std::string name) {
  const auto found = cache_.find(name);
  if (found != cache_.end()) return found->second.get();
  auto options = std::make_unique<XConfigOptions>(name);
  std::vector<std::string> keys;
  std::vector<std::string> values;
  RetrieveKeyValue(configPath_.c_str(), name.c_str(), keys, values);
  const std::size_t count = std::min(keys.size(), values.size());
  for (std::size_t i = 0; i < count; ++i) options->PutOption(keys[i], values[i]);
  return (cache_[name] = std::move(options)).get();
}

XConfigOptions KovaDXConfigReader::GetOptions() { return *GetOptions(xName_); }

void KovaDXConfigReader::SetXName(std::string name) { xName_ = std::move(name); }

std::string KovaDXConfigReader::GetXName() { return xName_; }

std::string KovaDXConfigReader::GetOption(const std::string& section, const std::string& key,
                                          const std::string& defaultValue) {
  char buffer[kValueSize] = {};
  const unsigned long count =
      GetPrivateProfileString(section.c_str(), key.c_str(), "", buffer, kValueSize, configPath_.c_str());
  return withoutBlanks(count == 0 ? cutToBuffer(defaultValue) : std::string(buffer));
}

std::string KovaDXConfigReader::GetConfigFullPath() {
  const char* const home = GetKOVAHOME();
  std::string path(home == nullptr ? "" : home);
  DecoratePathEnd(path);
  return path + kConfigFileName;
}

XConfigOptions KovaDXConfigReader::GetGlobalOptions() { return *GetNGlobalOptions(); }

std::vector<std::string> KovaDXConfigReader::GetSupportLanguage() {
  return GetListFromDelims(globalValue(XConfigOptions::KEY_X), kLanguageDelimiter);
}

bool KovaDXConfigReader::IsSupportLanguage(std::string name) {
  if (name == kAlwaysSupported) return true;
  const std::vector<std::string> supported = GetSupportLanguage();
  return std::find(supported.begin(), supported.end(), name) != supported.end();
}

std::string KovaDXConfigReader::GetTracePath() { return globalValue(XConfigOptions::KEY_TRACE); }

std::string KovaDXConfigReader::GetVersion() { return globalValue(XConfigOptions::KEY_KOVADX_VERSION); }

std::string KovaDXConfigReader::GetVersionMajor() { return globalValue(XConfigOptions::KEY_KOVADX_VERSION_MAJOR); }

std::string KovaDXConfigReader::GetVersionMinor() { return globalValue(XConfigOptions::KEY_KOVADX_VERSION_MINOR); }

std::string KovaDXConfigReader::GetVersionPatch() { return globalValue(XConfigOptions::KEY_KOVADX_VERSION_PATCH); }

std::string KovaDXConfigReader::GetVersionBugfix() { return globalValue(XConfigOptions::KEY_KOVADX_VERSION_BUGFIX); }

XConfigOptions* KovaDXConfigReader::GetNGlobalOptions() {
  const auto found = cache_.find(kGlobalName);
  if (found != cache_.end()) return found->second.get();
  auto options = std::make_unique<XConfigOptions>(kGlobalName);
  for (const GlobalKey& global : kGlobalKeys) {
    options->PutOption(global.key, GetOption(global.section, global.key, ""));
  }
  return (cache_[kGlobalName] = std::move(options)).get();
}

void KovaDXConfigReader::RetrieveKeyValue(const char* path, const char* section, std::vector<std::string>& keys,
                                          std::vector<std::string>& values) {
  std::FILE* const opened = kova::os::OpenFile(path, "rt", nullptr);
  if (opened == nullptr) return;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(opened, std::fclose);
  if (GotoSectionStart(file.get(), section) == 0) return;
  char line[kLineSize];
  while (readLine(file.get(), line) && line[0] != '[') {
    if (line[0] == '\0' || line[0] == ';' || line[0] == '=') continue;
    const char* const equals = std::strchr(line, '=');
    if (equals == nullptr) {
      keys.emplace_back(line);
      values.emplace_back();
    } else {
      keys.emplace_back(line, static_cast<std::size_t>(equals - line));
      values.emplace_back(equals + 1);
    }
  }
}

std::string KovaDXConfigReader::globalValue(const char* key) { return GetNGlobalOptions()->GetOption(key); }
