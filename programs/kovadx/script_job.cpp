#include "script_job.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

#include "message/JavaExtensionSmb.h"
#include "platform/os/environment.h"
#include "platform/os/file.h"
#include "script_file.h"
#include "transport/XPipeManager.h"

namespace kova::program {
namespace {

constexpr const char* kR = "R";
constexpr const char* kJava = "JAVAEXTENSION";

// R's console breaks a longer line in two.
constexpr std::size_t kLongestStatement = 4095;

std::filesystem::path fullPath(const std::string& path) {
  return std::filesystem::absolute(os::NativePath(path)).lexically_normal();
}

// A text between quotes, as R reads it.
std::string quotedForR(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '\\' || c == '"') quoted += '\\';
    quoted += c == '\n' ? std::string("\\n") : std::string(1, c);
  }
  return quoted + "\"";
}

// R is told of its packages by a list of folders, out of which it takes quotes.
bool canBeToldToR(const std::string& folder) {
  return folder.find_first_of(std::string("'\"") + os::kListSeparator) == std::string::npos;
}

std::optional<std::vector<std::string>> prepareForR(const RunOptions& options, const std::string& home) {
  std::vector<std::string> lines;
  if (!readScript(options.script, &lines)) return std::nullopt;
  if (!canBeToldToR(home)) {
    printError("the home folder's name has a character that R can not be told: " + home +
               "; move it to a folder without quotes and '" + os::kListSeparator + "' in its name");
    return std::nullopt;
  }
  const std::string package =
      home + os::kPathSeparator + "R" + os::kPathSeparator + "rpackage" + os::kPathSeparator + "kovastatistics";
  if (!std::filesystem::is_directory(package)) {
    printError("R's package is not there: " + package + "; install it, or name another home folder with --home");
    return std::nullopt;
  }
  const std::string statement = "kovastatistics::runScript(" + quotedForR(fullPath(options.script).string()) + ")";
  if (statement.size() >= kLongestStatement) {
    printError("the script's path is too long for R's console: " + options.script + "; move it");
    return std::nullopt;
  }
  return std::vector<std::string>{statement};
}

// Java gets the name on its command line, without quotes, and the paths in lists. What those can not carry, if
// anything.
std::optional<std::string> notForJava(const std::filesystem::path& jar, const std::string& home) {
  const auto has = [](const std::string& text, char c) { return text.find(c) != std::string::npos; };
  const std::string name = jar.stem().string();
  const std::string separator(1, os::kListSeparator);
  if (has(name, ' ')) return "a blank in its name";
  if (has(name, '\t')) return "a tab in its name";
  if (has(name, '"')) return "a \" in its name";
  if (has(jar.parent_path().string(), ';')) return "a ; in its folder";
  if (has(jar.string(), os::kListSeparator)) return "a " + separator + " in its path";
  if (has(home, os::kListSeparator)) return "a " + separator + " in the home folder, " + home;
  return std::nullopt;
}

std::optional<std::vector<std::string>> prepareForJava(const RunOptions& options, const std::string& home) {
  std::error_code absent;
  const std::filesystem::path jar = fullPath(options.script);
  if (jar.extension() != ".jar" || !std::filesystem::is_regular_file(jar, absent)) {
    printError("no such extension: " + options.script + "; name its .jar file");
    return std::nullopt;
  }
  if (const auto problem = notForJava(jar, home)) {
    printError("Java can not be given the extension " + jar.string() + " with " + *problem + "; rename or move it");
    return std::nullopt;
  }
  return std::vector<std::string>{};
}

// The record of packages/java: its own length, then texts, each with a NUL behind it.
std::string recordOf(const std::vector<std::string>& texts) {
  std::string record(sizeof(std::uint32_t), '\0');
  for (const std::string& text : texts) record.append(text).push_back('\0');
  for (std::size_t i = 0; i < sizeof(std::uint32_t); ++i) record[i] = static_cast<char>(record.size() >> (8 * i));
  return record;
}

}  // namespace

bool runsAsChild(const RunOptions& options) {
  if (!options.process.empty()) return options.process == "child";
  return endsWithResult(options);
}

bool endsWithResult(const RunOptions& options) { return options.language == kR || options.language == kJava; }

std::optional<std::vector<std::string>> prepareScript(const RunOptions& options, const std::string& home) {
  if (runsAsChild(options) && options.language == kJava) return prepareForJava(options, home);
  if (runsAsChild(options) && options.language == kR) return prepareForR(options, home);
  std::vector<std::string> lines;
  if (!readScript(options.script, &lines)) return std::nullopt;
  return lines;
}

void fillJavaRecord(const RunOptions& options) {
  if (options.language != kJava) return;
  const std::filesystem::path jar = fullPath(options.script);
  const XPipeManager& manager = *GetXPipeManager();
  std::string bytes = recordOf({manager.getPipePath(), manager.getPipePid(), options.language});
  JavaExtensionSmb record;
  record.SetExtensionPath(jar.parent_path().string());
  record.SetCommandName(jar.stem().string());
  record.SetDataLen(static_cast<int>(bytes.size()));
  record.SetSendBuf(bytes.data());
}

}  // namespace kova::program
