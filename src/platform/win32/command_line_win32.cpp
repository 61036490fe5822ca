#include "platform/win32/command_line_win32.h"

#include <map>

#include "platform/win32/system_win32.h"

namespace kova::os {
namespace {

// The order that the system wants in an environment block: by name, upper and lower case alike.
struct ByName {
  bool operator()(const std::wstring& left, const std::wstring& right) const {
    return CompareStringOrdinal(left.c_str(), static_cast<int>(left.size()), right.c_str(),
                                static_cast<int>(right.size()), TRUE) == CSTR_LESS_THAN;
  }
};
using Variables = std::map<std::wstring, std::wstring, ByName>;

std::wstring wide(const std::string& text) {
  const int size = static_cast<int>(text.size());
  std::wstring result(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0)), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text.data(), size, result.data(), static_cast<int>(result.size()));
  return result;
}

Variables ownVariables() {
  Variables result;
  wchar_t* const block = GetEnvironmentStringsW();
  if (block == nullptr) return result;
  for (const wchar_t* entry = block; *entry != L'\0';) {
    const std::wstring text(entry);
    // The system's own entries begin with "=", which belongs to the name.
    const std::size_t equals = text.find(L'=', 1);
    if (equals != std::wstring::npos) result[text.substr(0, equals)] = text.substr(equals + 1);
    entry += text.size() + 1;
  }
  FreeEnvironmentStringsW(block);
  return result;
}

// Backslashes stand for themselves except before a quote, where each must be doubled.
std::string quoted(const std::string& argument) {
  if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos) return argument;
  std::string result = "\"";
  std::size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '\\') {
      ++backslashes;
    } else {
      if (c == '"') result.append(backslashes + 1, '\\');
      backslashes = 0;
    }
    result += c;
  }
  result.append(backslashes, '\\');
  return result + '"';
}

}  // namespace

std::string programFile(const std::string& name) {
  std::string path(MAX_PATH, '\0');
  const DWORD length =
      SearchPathA(nullptr, name.c_str(), ".exe", static_cast<DWORD>(path.size()), path.data(), nullptr);
  if (length == 0 || length >= path.size()) return name;
  path.resize(length);
  return path;
}

std::string commandLine(const std::string& program, const std::vector<std::string>& arguments) {
  // The program's name ends at its second quote; no backslash is special in it.
  std::string result = '"' + program + '"';
  for (const std::string& argument : arguments) result += ' ' + quoted(argument);
  return result;
}

std::wstring environmentBlock(const std::vector<std::pair<std::string, std::string>>& changes) {
  Variables variables = ownVariables();
  for (const auto& [name, value] : changes) {
    variables.erase(wide(name));
    if (!value.empty()) variables[wide(name)] = wide(value);
  }
  std::wstring block;
  for (const auto& [name, value] : variables) block += name + L'=' + value + L'\0';
  if (block.empty()) block += L'\0';
  return block + L'\0';
}

}  // namespace kova::os
