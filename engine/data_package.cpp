#include "engine/data_package.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>

#include "engine/csv_rows.h"
#include "engine/data_problem.h"
#include "engine/resource.h"
#include "engine/text_file.h"
#include "platform/os/file.h"

namespace kova::engine {
namespace {

constexpr std::string_view kDescriptorName = "datapackage.json";

// The table of a resource. Two walks over it: the first checks every row's shape and finds the widths of the strings
// that have none, the second stores the values.
class TableReader {
 public:
  explicit TableReader(Resource resource) : resource_(std::move(resource)), text_(readTextFile(resource_.tablePath)) {}

  DataSet read() {
    walk([this](const CsvRow& row) { measureRow(row); });
    if (!hasHeading_) fail(1, 0, quotedText(resource_.fields[0].variable.name) + " as heading", "nothing");
    DataSet dataSet;
    dataSet.name = resource_.name;
    dataSet.attributes = std::move(resource_.own.attributes);
    dataSet.responseSets = std::move(resource_.own.responseSets);
    dataSet.weight = std::move(resource_.own.weight);
    dataSet.split = std::move(resource_.own.split);
    dataSet.filter = std::move(resource_.own.filter);
    dataSet.cases = makeStore();
    walk([&](const CsvRow& row) { storeRow(row, &dataSet.cases); });
    for (Field& field : resource_.fields) dataSet.variables.push_back(std::move(field.variable));
    return dataSet;
  }

 private:
  template <typename Visit>
  void walk(Visit visit) {
    hasHeading_ = false;
    forEachCsvRow(resource_.tablePath, text_, resource_.delimiter, [&](const CsvRow& row) {
      if (hasHeading_) {
        visit(row);
      } else {
        checkHeading(row);
      }
    });
  }

  void checkHeading(const CsvRow& row) {
    hasHeading_ = true;
    checkCount(row);
    checkUtf8(row);
    for (std::size_t i = 0; i < row.values.size(); ++i) {
      const std::string& name = resource_.fields[i].variable.name;
      if (row.values[i] != name) fail(row.row, i, "the heading " + quotedText(name), quotedText(row.values[i]));
    }
  }

  void checkCount(const CsvRow& row) const {
    const std::size_t count = row.values.size();
    const std::size_t expected = resource_.fields.size();
    if (count == expected) return;
    const FilePlace place{resource_.tablePath, row.row, std::min(count, expected) + 1, ""};
    throw DataProblem(problemLine(place, std::to_string(expected) + " values", std::to_string(count)));
  }

  void checkUtf8(const CsvRow& row) const {
    for (std::size_t i = 0; i < row.values.size(); ++i) {
      if (findInvalidUtf8(row.values[i]) != std::string::npos) fail(row.row, i, "text in UTF-8", "a byte that is not");
    }
  }

  // A string field's text.
  std::string_view textOf(const CsvRow& row, std::size_t index) {
    const std::string& text = row.values[index];
    if (!resource_.fields[index].hasEscapes || text.find('%') == std::string::npos) return text;
    auto bytes = withoutEscapes(text);
    if (!bytes) fail(row.row, index, "% and two hexadecimal digits for each byte", quotedText(text));
    unescaped_ = std::move(*bytes);
    return unescaped_;
  }

  void measureRow(const CsvRow& row) {
    ++caseCount_;
    checkCount(row);
    checkUtf8(row);
    for (std::size_t i = 0; i < row.values.size(); ++i) {
      Field& field = resource_.fields[i];
      if (!field.isText() || field.meansNoValue(row.values[i])) continue;
      const std::size_t bytes = textOf(row, i).size();
      const auto size = std::min<std::size_t>(bytes, kWidestString + 1);
      const auto widest = static_cast<std::size_t>(field.widthFromData ? kWidestString : field.variable.width);
      if (size > widest) fail(row.row, i, "at most " + std::to_string(widest) + " bytes", std::to_string(bytes));
      if (field.widthFromData) field.variable.width = std::max(field.variable.width, static_cast<int>(size));
    }
  }

  // A string is also as wide as its labelled and missing values.
  std::vector<int> takeWidths() {
    std::vector<int> widths;
    for (Field& field : resource_.fields) {
      Variable& variable = field.variable;
      if (field.widthFromData) {
        for (const auto& label : variable.textLabels) widen(label.value, &variable);
        for (const std::string& text : variable.missing.texts) widen(text, &variable);
      }
      if (variable.format.width == 0) variable.format.width = variable.width;
      widths.push_back(variable.width);
    }
    return widths;
  }

  // A few bytes of a table can ask for any number of bytes here: its fields say how wide their strings are.
  CaseStore makeStore() {
    const std::vector<int> widths = takeWidths();
    const std::uint64_t caseBytes = CaseStore::caseBytesOf(widths);
    if (caseBytes > kMostCasesBytes / std::max<std::uint64_t>(caseCount_, 1)) {
      throw DataProblem(problemLine({resource_.tablePath}, "cases that need at most 4 GiB of memory",
                                    std::to_string(caseCount_) + " cases of " + std::to_string(caseBytes) + " bytes"));
    }
    CaseStore cases(widths);
    cases.reserve(caseCount_);
    return cases;
  }

  static void widen(const std::string& text, Variable* variable) {
    variable->width = std::max(variable->width, static_cast<int>(text.size()));
  }

  void storeRow(const CsvRow& row, CaseStore* cases) {
    const std::size_t position = cases->caseCount();
    cases->appendCase();
    for (std::size_t i = 0; i < row.values.size(); ++i) {
      const Field& field = resource_.fields[i];
      const std::string& text = row.values[i];
      if (field.meansNoValue(text)) continue;
      if (field.isText()) {
        cases->setText(position, i, textOf(row, i));
      } else if (const auto number = numberOf(field, text)) {
        cases->setNumber(position, i, *number);
      } else {
        fail(row.row, i, expectationOf(field), quotedText(text));
      }
    }
  }

  [[noreturn]] void fail(std::size_t row, std::size_t index, const std::string& expected,
                         const std::string& found) const {
    const FilePlace place{resource_.tablePath, row, index + 1, resource_.fields[index].variable.name};
    throw DataProblem(problemLine(place, expected, found));
  }

  Resource resource_;
  std::string text_;
  std::string unescaped_;  // The bytes of the last text that had escapes.
  bool hasHeading_ = false;
  std::size_t caseCount_ = 0;
};

// A folder's name may end as a descriptor's does.
std::string descriptorOf(const std::string& path) {
  const bool hasSeparator = !path.empty() && (path.back() == '/' || path.back() == '\\');
  const std::string inside = path + (hasSeparator || path.empty() ? "" : "/") + std::string(kDescriptorName);
  return path.ends_with(".json") && !os::FileExists(inside) ? path : inside;
}

}  // namespace

bool readDataPackage(const std::string& path, DataSet* dataSet, std::string* problem) noexcept {
  try {
    return readDescriptor(descriptorOf(path), dataSet, problem);
  } catch (const std::exception&) {
    problem->assign("no memory");  // Short enough to need none.
  }
  return false;
}

bool readDescriptor(const std::string& descriptor, DataSet* dataSet, std::string* problem) noexcept {
  try {
    DataSet read = TableReader(readResource(descriptor)).read();
    read.source = descriptor;
    *dataSet = std::move(read);
    return true;
  } catch (const std::bad_alloc&) {
    problem->assign("no memory");  // Short enough to need none.
  } catch (const std::exception& error) {
    try {
      *problem = error.what();
    } catch (const std::exception&) {
      problem->assign("no memory");
    }
  }
  return false;
}

}  // namespace kova::engine
