// One variable of a data set that is written as a field of a Data Package: it looks at every value that will be
// written, chooses the form in which all of them come back bit for bit, and writes them.
//
// Refers to the variable and the cases, which must outlive it. One thread at a time uses it.
#ifndef KOVADX_ENGINE_FIELD_WRITER_H
#define KOVADX_ENGINE_FIELD_WRITER_H

#include <cstddef>
#include <set>
#include <string>

#include "engine/case_store.h"
#include "engine/field.h"

namespace kova::engine {

// A plain value.
struct FieldForm {
  FieldType type = FieldType::kString;
  std::set<std::string> notNumbers;  // The texts of all not-a-numbers.
  bool hasEscapes = false;           // A text is not UTF-8 or has a NUL byte.
  bool allLabelled = false;          // Every value has a label, is one of the discrete missing ones or none at all.
};

class FieldWriter {
 public:
  FieldWriter(const Variable& variable, const CaseStore& cases, std::size_t index);

  // Every case that will be written is to be looked at first.
  void look(std::size_t position);

  const Variable& variable() const { return variable_; }
  const FieldForm& form() const { return form_; }

  // Adds the value to a line of the table. No value is an empty text.
  void appendValue(std::size_t position, std::string* line) const;

 private:
  void addKnown(double number);
  void lookAtNumber(double number);
  void lookAtText(const std::string& text);
  std::string textAt(std::size_t position) const;

  const Variable& variable_;
  const CaseStore& cases_;
  std::size_t index_;
  FieldForm form_;
  std::set<double> knownNumbers_;  // Labelled or missing.
  std::set<std::string> knownTexts_;
};

}  // namespace kova::engine

#endif
