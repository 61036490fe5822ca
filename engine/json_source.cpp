#include "engine/json_source.h"

#include <optional>
#include <set>
#include <utility>

#include "engine/data_problem.h"

namespace kova::engine {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// Finds places in a text that is known to be JSON, as far as it is looked at.
class JsonScanner {
 public:
  explicit JsonScanner(std::string_view text) : text_(text) { skipBlanks(); }

  std::size_t position() const { return position_; }

  // Goes to the value of that key or index; false, and no move, when there is none.
  bool enter(const std::string& step) {
    const std::size_t start = position_;
    const char open = text_[position_];
    if (open == '{' || open == '[') {
      ++position_;
      skipBlanks();
      for (std::size_t index = 0; text_[position_] != '}' && text_[position_] != ']'; ++index) {
        const std::string name = open == '{' ? takeKey() : std::to_string(index);
        if (name == step) return true;
        skipValue();
        skipSeparator(',');
      }
    }
    position_ = start;
    return false;
  }

  // Goes to the first key that its object has had before, and gives it; nothing when there is none.
  std::optional<std::string> enterSecondKey() {
    std::vector<std::set<std::string>> keys;  // Of each object that is open here.
    while (position_ < text_.size()) {
      const std::size_t start = position_;
      if (text_[start] == '"') {
        const std::string text = takeString();
        skipBlanks();
        const bool isKey = position_ < text_.size() && text_[position_] == ':';
        if (!isKey || keys.back().insert(text).second) continue;
        position_ = start;
        return text;
      }
      if (text_[start] == '{') keys.emplace_back();
      if (text_[start] == '}') keys.pop_back();
      ++position_;
    }
    return std::nullopt;
  }

  // Goes to the first number beyond the range of a double, or to the end. What comes behind that number need not be
  // JSON.
  void enterHugeNumber() {
    while (position_ < text_.size()) {
      if (text_[position_] == '"') {
        skipString();
      } else if (text_[position_] == '-' || (text_[position_] >= '0' && text_[position_] <= '9')) {
        const std::size_t start = position_;
        skipPlain();
        if (nlohmann::json::accept(text_.substr(start, position_ - start))) continue;
        position_ = start;
        return;
      } else {
        ++position_;
      }
    }
  }

 private:
  void skipBlanks() { position_ = std::min(text_.find_first_not_of(kBlanks, position_), text_.size()); }

  void skipSeparator(char separator) {
    skipBlanks();
    if (text_[position_] == separator) ++position_;
    skipBlanks();
  }

  std::string takeKey() {
    std::string key = takeString();
    skipSeparator(':');
    return key;
  }

  std::string takeString() {
    const std::size_t start = position_;
    skipString();
    return nlohmann::json::parse(text_.substr(start, position_ - start)).get<std::string>();
  }

  void skipString() {
    for (++position_; text_[position_] != '"'; ++position_) {
      if (text_[position_] == '\\') ++position_;
    }
    ++position_;
  }

  // A number or a word.
  void skipPlain() { position_ = std::min(text_.find_first_of(",:{}[]\" \t\r\n", position_), text_.size()); }

  void skipValue() {
    int depth = 0;
    do {
      const char character = text_[position_];
      if (character == '"') {
        skipString();
      } else if (character == '{' || character == '[') {
        ++depth;
        ++position_;
      } else if (character == '}' || character == ']') {
        --depth;
        ++position_;
      } else if (depth > 0 && (character == ',' || character == ':')) {
        ++position_;
      } else {
        skipPlain();
      }
      if (depth > 0) skipBlanks();
    } while (depth > 0);
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

// The parser's words for what it met: the part of its message behind the last " - ", up to what it repeats of the
// input.
std::string reasonOf(const nlohmann::json::parse_error& error) {
  std::string_view what = error.what();
  const auto dash = what.find(" - ");
  if (dash == std::string_view::npos) return "text that is not JSON";
  what = what.substr(dash + 3, what.find(';', dash) - dash - 3);
  constexpr std::string_view kUnexpected = "unexpected ";
  return std::string(what.starts_with(kUnexpected) ? what.substr(kUnexpected.size()) : what);
}

// Of two members with one key the parser would keep the last in silence.
void checkKeys(const std::string& path, const std::string& text) {
  JsonScanner scanner(text);
  const auto key = scanner.enterSecondKey();
  if (!key) return;
  const auto [row, column] = positionOf(text, scanner.position());
  throw DataProblem(
      problemLine({path, row, column, ""}, "keys that differ within an object", quotedText(*key) + " again"));
}

nlohmann::json parse(const std::string& path, const std::string& text) {
  const std::size_t invalid = findInvalidUtf8(text);
  if (invalid != std::string::npos) {
    const auto [row, column] = positionOf(text, invalid);
    throw DataProblem(problemLine({path, row, column, ""}, "text in UTF-8", "a byte that is not"));
  }
  try {
    auto root = nlohmann::json::parse(text);
    checkKeys(path, text);
    return root;
  } catch (const nlohmann::json::parse_error& error) {
    const auto [row, column] = positionOf(text, error.byte > 0 ? error.byte - 1 : 0);
    throw DataProblem(problemLine({path, row, column, ""}, "JSON", reasonOf(error)));
  } catch (const nlohmann::json::out_of_range&) {
    JsonScanner scanner(text);
    scanner.enterHugeNumber();
    const auto [row, column] = positionOf(text, scanner.position());
    throw DataProblem(problemLine({path, row, column, ""}, "numbers within the range of a double", "a larger one"));
  }
}

std::string describe(const nlohmann::json* value) {
  if (value == nullptr) return "nothing";
  if (value->is_string()) return quotedText(value->get_ref<const std::string&>());
  if (value->is_object()) return "an object";
  if (value->is_array()) return "a list";
  return value->dump();
}

}  // namespace

JsonSource::JsonSource(const std::string& path) : path_(path), text_(readTextFile(path)), root_(parse(path, text_)) {}

RowAndColumn JsonSource::positionOf(const std::vector<std::string>& way) const {
  JsonScanner scanner(text_);
  for (const std::string& step : way) {
    if (!scanner.enter(step)) break;
  }
  return kova::engine::positionOf(text_, scanner.position());
}

JsonNode::JsonNode(const JsonNode& parent, std::string step, const nlohmann::json* value)
    : source_(parent.source_), value_(value), way_(parent.way_) {
  way_.push_back(std::move(step));
}

JsonNode JsonNode::operator[](const std::string& key) const {
  if (!exists() || !value_->is_object()) fail("an object");
  const auto found = value_->find(key);
  return {*this, key, found == value_->end() ? nullptr : &*found};
}

std::vector<JsonNode> JsonNode::elements() const {
  if (!exists() || !value_->is_array()) fail("a list");
  std::vector<JsonNode> nodes;
  for (std::size_t index = 0; index < value_->size(); ++index) {
    nodes.push_back(JsonNode(*this, std::to_string(index), &(*value_)[index]));
  }
  return nodes;
}

std::string JsonNode::text() const {
  if (!exists() || !value_->is_string()) fail("a text");
  auto text = value_->get<std::string>();
  if (text.find('\0') != std::string::npos) fail("a text without NUL characters");
  return text;
}

std::string JsonNode::text(const std::string& fallback) const { return exists() ? text() : fallback; }

void JsonNode::fail(std::string_view expected) const {
  const auto [row, column] = source_->positionOf(way_);
  throw DataProblem(problemLine({source_->path(), row, column, pointer()}, expected, describe(value_)));
}

std::string JsonNode::pointer() const {
  std::string text;
  for (const std::string& step : way_) {
    if (!text.empty()) text += '/';
    text += step;
  }
  return text;
}

}  // namespace kova::engine
