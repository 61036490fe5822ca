#include "platform/posix/command_line_posix.h"

namespace kova::os {
namespace {

// Takes one text apart, argument by argument.
class Splitter {
 public:
  explicit Splitter(const std::string& text) : text_(text) {}

  std::vector<std::string> split() {
    std::vector<std::string> arguments;
    while (skipBlanks()) arguments.push_back(next());
    return arguments;
  }

 private:
  bool isBlank() const { return text_[place_] == ' ' || text_[place_] == '\t'; }

  // False when nothing comes behind them.
  bool skipBlanks() {
    while (place_ < text_.size() && isBlank()) ++place_;
    return place_ < text_.size();
  }

  std::string next() {
    std::string argument;
    bool quoted = false;
    while (place_ < text_.size() && (quoted || !isBlank())) {
      if (takeBackslashes(&argument)) continue;
      if (text_[place_] == '"') {
        quoted = !quoted;
      } else {
        argument += text_[place_];
      }
      ++place_;
    }
    return argument;
  }

  // Takes backslashes, and the quote behind them that they make a part of the argument. False when none are there.
  bool takeBackslashes(std::string* argument) {
    const std::size_t begin = place_;
    while (place_ < text_.size() && text_[place_] == '\\') ++place_;
    const std::size_t count = place_ - begin;
    const bool beforeQuote = place_ < text_.size() && text_[place_] == '"';
    argument->append(beforeQuote ? count / 2 : count, '\\');
    if (beforeQuote && count % 2 == 1) *argument += text_[place_++];
    return count > 0;
  }

  const std::string& text_;
  std::size_t place_ = 0;
};

}  // namespace

std::vector<std::string> splitCommandLine(const std::string& text) { return Splitter(text).split(); }

}  // namespace kova::os
