#include "engine/package_place.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "engine/data_problem.h"
#include "engine/new_file.h"
#include "engine/text_file.h"
#include "platform/os/file.h"

namespace kova::engine {
namespace {

constexpr std::string_view kTableEnd = ".csv";

[[noreturn]] void refuseFile(const std::string& path, ErrorCode code, const char* problem) {
  throw SaveProblem(code, path + " " + problem);
}

// A link is not followed: the table would not lie beside what it leads to.
void checkPlainFile(const std::string& path) {
  std::error_code ignored;
  const auto status = std::filesystem::symlink_status(os::NativePath(path), ignored);
  const bool isFree = status.type() == std::filesystem::file_type::not_found ||
                      status.type() == std::filesystem::file_type::none;  // Why it can not be seen is told later.
  const bool hasName = !path.empty() && path.back() != '/' && path.back() != '\\';
  if (hasName && (isFree || std::filesystem::is_regular_file(status))) return;
  refuseFile(path, ErrorCode::kDataFileNotPlain, "is a folder, a link or a device; name a file");
}

// What stands at the start of a file that is not blank; 0 when nothing does.
char firstCharacter(const std::string& path) {
  std::FILE* const file = os::OpenFile(path, "rb", nullptr);
  if (file == nullptr) return 0;
  int character = std::fgetc(file);
  while (character == ' ' || character == '\t' || character == '\r' || character == '\n') character = std::fgetc(file);
  std::fclose(file);
  return character == EOF ? '\0' : static_cast<char>(character);
}

// The descriptor at the path; nothing when there is none, or an empty file. Anything else was named by mistake.
nlohmann::json oldDescriptor(const std::string& path) {
  if (!os::FileExists(path)) return nullptr;
  const char first = firstCharacter(path);
  std::error_code ignored;
  if (first == 0 && std::filesystem::file_size(os::NativePath(path), ignored) == 0) return nullptr;
  nlohmann::json old;
  try {
    // A byte order mark may stand in front of it.
    if (first == '{' || first == '\xEF') old = nlohmann::json::parse(readTextFile(path), nullptr, false);
  } catch (const DataProblem&) {
    old = nullptr;
  }
  if (!old.is_object() || !old.contains("resources") || !old["resources"].is_array()) {
    refuseFile(path, ErrorCode::kDataFileForeign,
               "is no descriptor of a Data Package; choose another name, or remove it");
  }
  return old;
}

std::string tableOf(const nlohmann::json& descriptor) {
  if (!descriptor.is_object() || descriptor["resources"].empty() || !descriptor["resources"][0].is_object()) return {};
  const auto& resource = descriptor["resources"][0];
  const auto path = resource.find("path");
  return path != resource.end() && path->is_string() ? path->get<std::string>() : std::string();
}

// The descriptor's name without its end. A table's name is a text of the descriptor, and no address.
std::string stemOf(const std::string& descriptor) {
  std::string stem = descriptor.substr(folderOf(descriptor).size());
  if (stem.ends_with(".json") && stem.size() > 5) stem.resize(stem.size() - 5);
  std::replace_if(
      stem.begin(), stem.end(), [](char c) { return c == ':' || static_cast<unsigned char>(c) < 0x20; }, '_');
  return findInvalidUtf8(stem) == std::string::npos ? stem : "table";
}

std::string numberedName(const std::string& stem, int number) {
  return stem + (number == 1 ? "" : "-" + std::to_string(number)) + std::string(kTableEnd);
}

// True of a name that the function above gives.
bool isNumberedName(std::string_view name, const std::string& stem) {
  if (!name.starts_with(stem) || !name.ends_with(kTableEnd) || name.size() < stem.size() + kTableEnd.size())
    return false;
  name.remove_prefix(stem.size());
  name.remove_suffix(kTableEnd.size());
  return name.empty() ||
         (name.size() > 1 && name[0] == '-' && name.find_first_not_of("0123456789", 1) == std::string_view::npos);
}

}  // namespace

PackagePlace::PackagePlace(std::string descriptor) : descriptor_(std::move(descriptor)) {
  checkPlainFile(descriptor_);
  const std::string stem = stemOf(descriptor_);
  const std::string old = tableOf(oldDescriptor(descriptor_));
  if (isNumberedName(old, stem)) oldTableName_ = old;
  int number = 1;
  do tableName_ = numberedName(stem, number++);
  while (os::FileExists(tablePath()));
}

std::string PackagePlace::tablePath() const { return folderOf(descriptor_) + tableName_; }

std::string PackagePlace::oldTablePath() const {
  return oldTableName_.empty() ? std::string() : folderOf(descriptor_) + oldTableName_;
}

}  // namespace kova::engine
