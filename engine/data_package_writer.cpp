#include "engine/data_package_writer.h"

#include <exception>
#include <new>
#include <nlohmann/json.hpp>
#include <vector>

#include "engine/csv_rows.h"
#include "engine/field_description.h"
#include "engine/field_writer.h"
#include "engine/new_file.h"
#include "engine/package_place.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kPieceBytes = std::size_t{256} << 10;
constexpr int kIndent = 1;

// The texts of the dictionary may have come from anywhere.
void checkTexts(const Json& value, const std::string& descriptor) {
  ErrorCode code = ErrorCode::kNone;
  if (value.is_string()) code = checkText(value.get_ref<const std::string&>());
  if (code != ErrorCode::kNone) {
    throw SaveProblem(code, descriptor + " can not be written: a text of the dictionary " +
                                (code == ErrorCode::kTextNotUtf8 ? "is not UTF-8" : "has a NUL byte") +
                                "; change the labels and attributes");
  }
  if (!value.is_structured()) return;
  for (const Json& part : value) checkTexts(part, descriptor);
}

Json describeResponseSet(const ResponseSet& set) {
  Json description = {{"name", set.name}};
  if (!set.label.empty()) description["label"] = set.label;
  const bool counts = set.kind == ResponseSetKind::kDichotomies;
  description["kind"] = counts ? "dichotomies" : "categories";
  if (counts) description["countedValue"] = set.countedValue;
  description["variables"] = set.variables;
  return description;
}

Json describeOwn(const DataSet& dataSet) {
  Json own = Json::object();
  if (!dataSet.attributes.empty()) own["attributes"] = describeAttributes(dataSet.attributes);
  for (const ResponseSet& set : dataSet.responseSets) own["responseSets"].push_back(describeResponseSet(set));
  if (!dataSet.weight.empty()) own["weight"] = dataSet.weight;
  if (!dataSet.split.empty()) own["split"] = dataSet.split;
  if (!dataSet.filter.empty()) own["filter"] = dataSet.filter;
  return own;
}

class PackageWriter {
 public:
  PackageWriter(const DataSet& dataSet, const CasePick& picks, const PackagePlace& place)
      : dataSet_(dataSet), picks_(picks), place_(place) {
    if (dataSet.variables.size() == 0) {
      throw SaveProblem(ErrorCode::kDataSetWithoutVariables, place.descriptor() +
                                                                 " can not be written: the data set has no variables; "
                                                                 "make one first");
    }
    for (std::size_t i = 0; i < dataSet.variables.size(); ++i)
      fields_.emplace_back(dataSet.variables[i], dataSet.cases, i);
  }

  void write(FileSystem& files) {
    forEachCase([this](std::size_t position) {
      for (FieldWriter& field : fields_) field.look(position);
    });
    const std::string description = descriptorText();
    NewFile table(place_.tablePath(), files);
    writeTable(&table);
    table.finish();
    NewFile descriptor(place_.descriptor(), files);
    descriptor.write(description);
    descriptor.finish();
    table.putInPlace();
    try {
      descriptor.putInPlace();
    } catch (const SaveProblem&) {
      table.takeBack();
      throw;
    }
    if (const std::string old = place_.oldTablePath(); !old.empty()) files.remove(old);
  }

 private:
  template <typename Visit>
  void forEachCase(Visit visit) const {
    for (std::size_t i = 0; i < dataSet_.cases.caseCount(); ++i) {
      if (!picks_ || picks_(i)) visit(i);
    }
  }

  std::string descriptorText() const {
    Json resource = {{"name", dataSet_.name}, {"path", place_.tableName()}, {"type", "table"},
                     {"format", "csv"},       {"mediatype", "text/csv"},    {"encoding", "utf-8"}};
    Json& fields = resource["schema"]["fields"];
    for (const FieldWriter& field : fields_) fields.push_back(describeField(field));
    if (Json own = describeOwn(dataSet_); !own.empty()) resource["x-kova"] = std::move(own);
    Json root = {{"$schema", "https://datapackage.org/profiles/2.0/datapackage.json"}};
    root["resources"] = Json::array({std::move(resource)});
    checkTexts(root, place_.descriptor());
    return root.dump(kIndent) + "\n";
  }

  void writeTable(NewFile* table) const {
    std::string piece;
    for (const FieldWriter& field : fields_) {
      if (&field != &fields_.front()) piece += ',';
      appendCsvValue(field.variable().name, &piece);
    }
    piece += '\n';
    forEachCase([&](std::size_t position) {
      appendRow(position, &piece);
      if (piece.size() < kPieceBytes) return;
      table->write(piece);
      piece.clear();
    });
    table->write(piece);
  }

  // Other readers pass over a blank line even where there is one column.
  void appendRow(std::size_t position, std::string* piece) const {
    const std::size_t start = piece->size();
    for (const FieldWriter& field : fields_) {
      if (&field != &fields_.front()) *piece += ',';
      field.appendValue(position, piece);
    }
    if (piece->size() == start) *piece += "\"\"";
    *piece += '\n';
  }

  const DataSet& dataSet_;
  const CasePick& picks_;
  const PackagePlace& place_;
  std::vector<FieldWriter> fields_;
};

// Runs what may throw, and gives the code and the line of what went wrong.
template <typename Step>
ErrorCode guarded(std::string* problem, Step step) noexcept {
  try {
    step();
    return ErrorCode::kNone;
  } catch (const SaveProblem& failure) {
    try {
      *problem = failure.what();
    } catch (const std::exception&) {
      problem->assign("no memory");  // Short enough to need none.
    }
    return failure.code();
  } catch (const std::bad_alloc&) {
    problem->assign("no memory");
    return ErrorCode::kOutOfMemory;
  } catch (const std::exception&) {
    problem->assign("it failed");
  }
  return ErrorCode::kInternalFailure;
}

}  // namespace

ErrorCode writeDataPackage(const DataSet& dataSet, const CasePick& picks, const std::string& descriptor,
                           FileSystem& files, std::string* problem) noexcept {
  return guarded(problem, [&] {
    const PackagePlace place(descriptor);
    PackageWriter(dataSet, picks, place).write(files);
  });
}

ErrorCode checkPackagePlace(const std::string& descriptor, FileSystem& files, std::string* problem) noexcept {
  return guarded(problem, [&] {
    const PackagePlace place(descriptor);
    NewFile(place.descriptor(), files).finish();
  });
}

}  // namespace kova::engine
