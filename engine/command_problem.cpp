#include "engine/command_problem.h"

#include <algorithm>
#include <utility>

#include "engine/output_texts.h"

namespace kova::engine {
namespace {

bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }

}  // namespace

CommandProblem::CommandProblem(ErrorCode code, std::size_t offset, std::string happened, std::string advice)
    : code_(code), offset_(offset), happened_(std::move(happened)), advice_(std::move(advice)) {}

CommandProblem::CommandProblem(ErrorCode code, std::size_t offset)
    : CommandProblem(code, offset, errorMeaning(static_cast<int>(code)), errorAdvice(static_cast<int>(code))) {}

std::string CommandProblem::lineFor(std::string_view text) const {
  const std::string_view before = text.substr(0, offset_);
  const std::size_t lineEnd = before.rfind('\n');
  const std::string_view ofLine = before.substr(lineEnd == std::string_view::npos ? 0 : lineEnd + 1);
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const auto column = std::count_if(ofLine.begin(), ofLine.end(), beginsCharacter) + 1;
  return onOneLine("Error " + std::to_string(static_cast<int>(code_)) + " in line " + std::to_string(line) +
                   ", column " + std::to_string(column) + ": " + happened_ + " " + advice_);
}

}  // namespace kova::engine
