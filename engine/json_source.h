// A JSON file and its parts, read so that every problem names the row and column where it stands.
#ifndef KOVADX_ENGINE_JSON_SOURCE_H
#define KOVADX_ENGINE_JSON_SOURCE_H

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "engine/text_file.h"

namespace kova::engine {

// The file: its text and what was parsed from it. Owns both; immutable.
class JsonSource {
 public:
  // Reads and parses. Throws DataProblem.
  explicit JsonSource(const std::string& path);

  const std::string& path() const { return path_; }
  const nlohmann::json& root() const { return root_; }

  // Where the value at the end of these keys and indexes stands. When it is not there: where the deepest part of the
  // way that is there stands.
  RowAndColumn positionOf(const std::vector<std::string>& way) const;

 private:
  std::string path_;
  std::string text_;
  nlohmann::json root_;
};

// One value of a source, or the place where one is missing. Copies are cheap enough; the source must outlive them.
class JsonNode {
 public:
  explicit JsonNode(const JsonSource& source) : source_(&source), value_(&source.root()) {}

  bool exists() const { return value_ != nullptr; }
  const nlohmann::json& value() const { return *value_; }
  const JsonSource& source() const { return *source_; }

  // A member of an object, or an element of a list; one that is missing does not exist. Throws when this is no object
  // or no list.
  JsonNode operator[](const std::string& key) const;
  std::vector<JsonNode> elements() const;

  // The text. Throws when it is missing, no text or one with a NUL character; the second form gives the fallback when
  // it is missing.
  std::string text() const;
  std::string text(const std::string& fallback) const;

  // Throws DataProblem: what was expected here, and what stands here instead.
  [[noreturn]] void fail(std::string_view expected) const;

 private:
  JsonNode(const JsonNode& parent, std::string step, const nlohmann::json* value);
  std::string pointer() const;

  const JsonSource* source_;
  const nlohmann::json* value_;
  std::vector<std::string> way_;
};

}  // namespace kova::engine

#endif
