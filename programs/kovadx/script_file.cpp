#include "script_file.h"

#include <algorithm>

#include "command_line.h"
#include "engine/data_problem.h"
#include "engine/text_file.h"

namespace kova::program {
namespace {

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const bool hasReturn = end > begin && text[end - 1] == '\r';
    lines.push_back(text.substr(begin, end - begin - (hasReturn ? 1 : 0)));
    begin = end + 1;
  }
  return lines;
}

}  // namespace

bool readScript(const std::string& path, std::vector<std::string>* lines) {
  try {
    const std::string text = engine::readTextFile(path);
    const std::size_t wrong = std::min(engine::findInvalidUtf8(text), text.find('\0'));
    if (wrong != std::string::npos) {
      const engine::RowAndColumn at = engine::positionOf(text, wrong);
      throw engine::DataProblem(engine::problemLine({path, at.row, at.column}, "UTF-8 text", "another byte"));
    }
    *lines = linesOf(text);
    return true;
  } catch (const engine::DataProblem& problem) {
    printError(std::string("can not read the script: ") + problem.what());
    return false;
  }
}

}  // namespace kova::program
