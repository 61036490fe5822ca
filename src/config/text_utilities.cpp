#include "config/text_utilities.h"

#include <algorithm>

#include "platform/os/clock.h"

namespace {

// Not std::toupper: the host program may have set a locale in which other bytes are letters too.
char upperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

int upperByte(char c) { return static_cast<unsigned char>(upperCase(c)); }

}  // namespace

void DecoratePathEnd(std::string& path) {
  if (path.empty()) return;
  std::replace(path.begin(), path.end(), '/', '\\');
  if (path.back() != '\\') path += '\\';
}

std::string transPath(const std::string& path) {
  std::string result;
  result.reserve(path.size());
  for (const char c : path) {
    result += c;
    if (c == '\\') result += c;
  }
  return result;
}

std::string UpperString(const std::string& text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), upperCase);
  return result;
}

int strincmp(const char* a, const char* b, unsigned long long n) {
  if (a == nullptr) a = "";
  if (b == nullptr) b = "";
  for (unsigned long long i = 0; i < n; ++i) {
    const int difference = upperByte(a[i]) - upperByte(b[i]);
    if (difference != 0) return difference;
    if (a[i] == '\0') return 0;
  }
  return 0;
}

std::vector<std::string> GetListFromDelims(const std::string& text, const std::string& delimiter) {
  std::vector<std::string> pieces;
  std::size_t begin = 0;
  if (!delimiter.empty()) {
    for (std::size_t end = text.find(delimiter); end != std::string::npos; end = text.find(delimiter, begin)) {
      pieces.push_back(text.substr(begin, end - begin));
      begin = end + delimiter.size();
    }
  }
  if (begin < text.size()) pieces.push_back(text.substr(begin));
  return pieces;
}

void msleep(unsigned int milliseconds) { kova::os::SleepMs(milliseconds); }

namespace kova {

bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace kova
