#include "config/PlugInConfigReader.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

#include "config/text_utilities.h"
#include "platform/os/file.h"

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenedFile = std::unique_ptr<std::FILE, FileCloser>;

bool isGiven(const char* text) { return text != nullptr && *text != '\0'; }

// A list of names in a caller's zero-filled buffer: each name with its NUL, and room kept for the NUL behind the last.
class NameList {
 public:
  NameList(char* buffer, unsigned long size) : buffer_(buffer), size_(size) {}

  // Appends a name, or gives false and changes nothing when it does not fit whole.
  bool append(std::string_view name) {
    if (total_ + name.size() + 2 > size_) return false;
    std::copy(name.begin(), name.end(), buffer_ + total_);
    total_ += name.size() + 1;
    return true;
  }

  unsigned long total() const { return static_cast<unsigned long>(total_); }

 private:
  char* buffer_;
  std::size_t size_;
  std::size_t total_ = 0;
};

// The text up to the first `end`, or all of it.
std::string_view upTo(const char* text, char end) {
  const std::string_view whole(text);
  return whole.substr(0, whole.find(end));
}

}  // namespace

unsigned long PlugInConfigReader::GetPrivateProfileString(const char* section, const char* key, const char*,
                                                          char* buffer, unsigned long size, const char* path) {
  if (buffer == nullptr || size == 0 || path == nullptr) return 0;
  std::memset(buffer, 0, size);
  const OpenedFile file(kova::os::OpenFile(path, "rt", nullptr));
  if (!file) return 0;
  if (!isGiven(section)) return RetrieveSectionNames(file.get(), buffer, size);
  if (!isGiven(key)) return RetrieveKeyNames(file.get(), section, buffer, size);
  return RetrieveValue(file.get(), section, key, buffer, size);
}

int PlugInConfigReader::GotoSectionStart(std::FILE* file, const char* section) {
  const std::size_t length = std::strlen(section);
  char line[kLineSize];
  while (readLine(file, line)) {
    if (line[0] == '[' && strincmp(section, line + 1, length) == 0) return 1;
  }
  return 0;
}

unsigned long PlugInConfigReader::RetrieveValue(std::FILE* file, const char* section, const char* key, char* buffer,
                                                unsigned long size) {
  if (size == 0 || GotoSectionStart(file, section) == 0) return 0;
  const std::size_t keyLength = std::strlen(key);
  char line[kLineSize];
  while (readLine(file, line) && line[0] != '[') {
    if (line[0] == ';' || strincmp(key, line, keyLength) != 0) continue;
    const char* const equals = std::strchr(line, '=');
    if (equals == nullptr) return 0;
    const std::string_view value = std::string_view(equals + 1).substr(0, size - 1);
    std::copy(value.begin(), value.end(), buffer);
    return static_cast<unsigned long>(value.size());
  }
  return 0;
}

unsigned long PlugInConfigReader::RetrieveKeyNames(std::FILE* file, const char* section, char* buffer,
                                                   unsigned long size) {
  if (GotoSectionStart(file, section) == 0) return 0;
  NameList names(buffer, size);
  char line[kLineSize];
  while (readLine(file, line) && line[0] != '[') {
    if (line[0] == '\0' || line[0] == ';') continue;
    if (!names.append(upTo(line, '='))) break;
  }
  return names.total();
}

unsigned long PlugInConfigReader::RetrieveSectionNames(std::FILE* file, char* buffer, unsigned long size) {
  NameList names(buffer, size);
  char line[kLineSize];
  while (readLine(file, line)) {
    if (line[0] == '[' && !names.append(upTo(line + 1, ']'))) break;
  }
  return names.total();
}

void PlugInConfigReader::TrimAll(char* text) {
  if (text == nullptr) return;
  char* const end = text + std::strlen(text);
  char* const first = std::find_if_not(text, end, kova::isWhiteSpace);
  char* last = end;
  while (last > first && kova::isWhiteSpace(last[-1])) --last;
  std::copy(first, last, text);
  text[last - first] = '\0';
}

bool PlugInConfigReader::readLine(std::FILE* file, char (&line)[kLineSize]) {
  if (std::fgets(line, kLineSize, file) == nullptr) return false;
  TrimAll(line);
  return true;
}
