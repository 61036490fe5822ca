#include "engine/resource.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <utility>

#include "engine/json_source.h"
#include "engine/table_schema.h"
#include "platform/os/file.h"

namespace kova::engine {
namespace {

// Properties of a dialect that may stand there with this value alone.
const std::pair<const char*, nlohmann::json> kFixedDialect[] = {
    {"quoteChar", "\""},
    {"doubleQuote", true},
    {"skipInitialSpace", false},
    {"header", true},
};

// Properties of a dialect that do not change how a table is read here.
constexpr std::string_view kIgnoredDialect[] = {
    "$schema", "caseSensitiveHeader", "csvddfVersion", "delimiter", "lineTerminator", "name", "title"};

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

// A descriptor may come from anywhere: it must not reach files outside its own folder.
bool staysInside(const std::string& path) {
  if (path.empty() || path[0] == '/' || path[0] == '\\' || path.find(':') != std::string::npos) return false;
  std::size_t start = 0;
  while (start <= path.size()) {
    const std::size_t end = std::min(path.find_first_of("/\\", start), path.size());
    if (path.compare(start, end - start, "..") == 0) return false;
    start = end + 1;
  }
  return true;
}

// The path's own words may stay inside while a link on its way leads out.
bool leadsInside(const std::string& folder, const std::string& path) {
  std::error_code ignored;
  const auto root = std::filesystem::canonical(folder.empty() ? "." : os::NativePath(folder), ignored);
  const auto target = std::filesystem::weakly_canonical(root / os::NativePath(path), ignored);
  return !root.empty() && std::mismatch(root.begin(), root.end(), target.begin(), target.end()).first == root.end();
}

std::string readPath(const JsonNode& resource, const std::string& folder) {
  JsonNode node = resource["path"];
  if (node.exists() && node.value().is_array() && node.value().size() == 1) node = node.elements().front();
  const std::string path = node.text();
  if (!staysInside(path)) node.fail("a path inside the descriptor's folder, relative to it and without \"..\"");
  if (!leadsInside(folder, path)) node.fail("a path that no link leads out of the descriptor's folder");
  return folder + path;
}

void checkKind(const JsonNode& resource) {
  if (lowerCase(resource["format"].text("csv")) != "csv") resource["format"].fail("\"csv\"");
  const std::string encoding = lowerCase(resource["encoding"].text("utf-8"));
  if (encoding != "utf-8" && encoding != "utf8") resource["encoding"].fail("\"utf-8\"");
  if (resource["compression"].exists()) resource["compression"].fail("a table that is not compressed");
}

char readDelimiter(const JsonNode& dialect) {
  if (!dialect.exists()) return ',';
  for (const auto& [key, value] : kFixedDialect) {
    const JsonNode property = dialect[key];
    if (property.exists() && property.value() != value) property.fail(value.dump());
  }
  for (const auto& [key, value] : dialect.value().items()) {
    const auto hasName = [&name = key](const auto& row) { return name == row.first; };
    const bool isKnown =
        std::find(std::begin(kIgnoredDialect), std::end(kIgnoredDialect), key) != std::end(kIgnoredDialect);
    if (!isKnown && std::none_of(std::begin(kFixedDialect), std::end(kFixedDialect), hasName)) {
      dialect[key].fail("no dialect but delimiter");
    }
  }
  const std::string delimiter = dialect["delimiter"].text(",");
  if (delimiter.size() != 1 || std::string_view("\"\r\n\0", 4).find(delimiter[0]) != std::string_view::npos) {
    dialect["delimiter"].fail("one character of one byte");
  }
  return delimiter[0];
}

JsonNode firstResource(const JsonNode& root) {
  const auto resources = root["resources"].elements();
  if (resources.empty()) root["resources"].fail("at least one resource");
  return resources.front();
}

// The variables as far as other parts of the descriptor must know them.
Variables variablesOf(const std::vector<Field>& fields) {
  Variables variables;
  for (const Field& field : fields) {
    Variable variable;
    variable.name = field.variable.name;
    variable.width = field.widthFromData ? kWidestString : field.variable.width;
    variables.push_back(std::move(variable));
  }
  return variables;
}

}  // namespace

Resource readResource(const std::string& descriptorPath) {
  const JsonSource source(descriptorPath);
  const JsonNode root(source);
  const JsonNode node = firstResource(root);
  Resource resource;
  resource.name = node["name"].text("data");
  resource.tablePath = readPath(node, folderOf(descriptorPath));
  checkKind(node);
  resource.delimiter = readDelimiter(node["dialect"]);
  resource.fields = readTableSchema(node["schema"]);
  const Variables variables = variablesOf(resource.fields);
  readOwnKeys(root["x-kova"], variables, &resource.own);
  readOwnKeys(node["x-kova"], variables, &resource.own);
  return resource;
}

}  // namespace kova::engine
