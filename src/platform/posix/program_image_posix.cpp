#include "platform/posix/program_image_posix.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/os/environment.h"
#include "platform/os/file.h"
#include "platform/posix/command_line_posix.h"

namespace kova::os {
namespace {

constexpr const char* kDefaultPath = "/usr/local/bin:/usr/bin:/bin";

// A name without a folder is looked for along PATH; an empty entry there is the present folder.
std::vector<std::string> placesOf(const std::string& program) {
  if (program.empty() || program.find('/') != std::string::npos) return {program};
  const std::string path = GetEnvironment("PATH").value_or(kDefaultPath);
  std::vector<std::string> places;
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find(kListSeparator, begin), path.size());
    const std::string folder = path.substr(begin, end - begin);
    places.push_back((folder.empty() ? "." : folder) + kPathSeparator + program);
    begin = end + 1;
  }
  return places;
}

bool isSet(const ProcessStart& start, const char* entry) {
  const char* equals = std::strchr(entry, '=');
  if (equals == nullptr) return false;
  const std::string name(entry, equals);
  return std::any_of(start.environment.begin(), start.environment.end(),
                     [&](const auto& variable) { return variable.first == name; });
}

std::vector<std::string> environmentOf(const ProcessStart& start) {
  std::vector<std::string> entries;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    if (!isSet(start, *entry)) entries.emplace_back(*entry);
  }
  for (const auto& [name, value] : start.environment) {
    if (!value.empty()) entries.push_back(name + "=" + value);
  }
  return entries;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

ProgramImage::ProgramImage(const ProcessStart& start)
    : places_(placesOf(NativePath(start.program))),
      argumentTexts_(start.commandLine.empty() ? start.arguments : splitCommandLine(start.commandLine)),
      environmentTexts_(environmentOf(start)) {
  argumentTexts_.insert(argumentTexts_.begin(), NativePath(start.program));
  arguments_ = pointersTo(argumentTexts_);
  environment_ = pointersTo(environmentTexts_);
}

int ProgramImage::execute() const {
  int result = ENOENT;
  for (const std::string& place : places_) {
    execve(place.c_str(), arguments_.data(), environment_.data());
    if (errno == ENOENT || errno == ENOTDIR) continue;
    result = errno;
    // A file that may not be run does not hide one of the same name further on.
    if (result != EACCES) break;
  }
  return result;
}

}  // namespace kova::os
