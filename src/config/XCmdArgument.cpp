#include "config/XCmdArgument.h"

#include <cstring>

#include "config/text_utilities.h"

namespace {

char* copyOf(const std::string& text) {
  char* const copy = new char[text.size() + 1];
  std::memcpy(copy, text.c_str(), text.size() + 1);
  return copy;
}

bool needsQuotes(const std::string& argument) {
  return argument.find(' ') != std::string::npos && argument.front() != '"' && argument.front() != '\'';
}

std::string inQuotes(const std::string& argument) {
  std::string quoted = '"' + argument;
  if (quoted.back() == '\\') quoted += '\\';
  return quoted + '"';
}

}  // namespace

XCmdArgument::XCmdArgument() = default;

XCmdArgument::XCmdArgument(const std::string& commandLine) {
  if (commandLine.empty()) return;
  arguments_ = GetListFromDelims(commandLine, " ");
  dirty_ = true;
}

XCmdArgument::XCmdArgument(int argc, char** argv) {
  for (int i = 0; argv != nullptr && i < argc; ++i) arguments_.emplace_back(argv[i] == nullptr ? "" : argv[i]);
}

XCmdArgument::~XCmdArgument() {
  freeVector();
  delete[] commandLine_;
}

void XCmdArgument::pushArgument(const std::string& argument, bool keepAsIs) {
  arguments_.push_back(!keepAsIs && needsQuotes(argument) ? inQuotes(argument) : argument);
  dirty_ = true;
}

void XCmdArgument::modifyArgument(int index, const std::string& argument) {
  if (!isInList(index)) return;
  arguments_[static_cast<std::size_t>(index)] = argument;
  dirty_ = true;
}

const char* XCmdArgument::argumentAt(int index) {
  return isInList(index) ? arguments_[static_cast<std::size_t>(index)].c_str() : nullptr;
}

int XCmdArgument::argc() {
  if (dirty_) makeVector();
  return count_;
}

char** XCmdArgument::argv() {
  if (dirty_) makeVector();
  return vector_;
}

const char* XCmdArgument::cmdline() {
  if (!dirty_) return commandLine_;
  delete[] commandLine_;
  commandLine_ = nullptr;
  dirty_ = false;
  std::string text;
  for (const std::string& argument : arguments_) text += ' ' + argument;
  if (!text.empty()) commandLine_ = copyOf(text);
  return commandLine_;
}

void XCmdArgument::makeVector() {
  freeVector();
  vector_ = new char*[arguments_.size() + 1]();
  for (const std::string& argument : arguments_) vector_[count_++] = copyOf(argument);
  dirty_ = false;
}

void XCmdArgument::freeVector() {
  for (int i = 0; i < count_; ++i) delete[] vector_[i];
  delete[] vector_;
  vector_ = nullptr;
  count_ = 0;
}

bool XCmdArgument::isInList(int index) const {
  return index >= 0 && static_cast<std::size_t>(index) < arguments_.size();
}
