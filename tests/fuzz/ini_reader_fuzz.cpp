// Any bytes as a configuration file: every request on it ends, and its answer has the stated form.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "config/KovaDXConfigReader.h"
#include "tests/kit/scratch_folder.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

class Reader : public KovaDXConfigReader {
 public:
  Reader() = default;
  using KovaDXConfigReader::RetrieveKeyValue;
};

// A buffer of exactly the size that the reader is told, so that every write beyond it is seen.
struct Answer {
  std::vector<char> buffer;
  unsigned long length;
};

Answer ask(const char* section, const char* key, unsigned long size, const std::string& path) {
  Answer answer{std::vector<char>(size, 'x'), 0};
  answer.length = Reader().GetPrivateProfileString(section, key, "default", answer.buffer.data(), size, path.c_str());
  return answer;
}

// The names of a list; each has its NUL, and one more stands behind the last.
std::vector<std::string> namesOf(const Answer& answer) {
  std::vector<std::string> names;
  require(answer.length < answer.buffer.size());
  require(answer.buffer[answer.length] == '\0');
  for (std::size_t at = 0; at < answer.length; at += names.back().size() + 1) names.emplace_back(&answer.buffer[at]);
  return names;
}

void requireValue(const Answer& answer) {
  require(answer.length < answer.buffer.size());
  require(std::strlen(answer.buffer.data()) == answer.length);
}

}  // namespace

// The first byte chooses the room for an answer, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return -1;
  static const kova::kit::ScratchFolder folder;
  const std::string path = folder.write("config.ini", std::string(reinterpret_cast<const char*>(data + 1), size - 1));
  const unsigned long room = 1UL + data[0] * 16UL;
  for (const std::string& section : namesOf(ask(nullptr, nullptr, room, path))) {
    if (section.empty()) continue;  // It would ask for the list again.
    for (const std::string& key : namesOf(ask(section.c_str(), nullptr, room, path))) {
      if (!key.empty()) requireValue(ask(section.c_str(), key.c_str(), room, path));
    }
    std::vector<std::string> keys, values;
    Reader().RetrieveKeyValue(path.c_str(), section.c_str(), keys, values);
    require(keys.size() == values.size());
  }
  requireValue(ask("SUPPORTED_LANG", "X", room, path));
  return 0;
}
