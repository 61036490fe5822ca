#include "engine/random_data_set.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <limits>
#include <random>
#include <utility>

#include "engine/dictionary_rules.h"
#include "engine/text_rules.h"

namespace kova::engine {
namespace {

class Maker {
 public:
  explicit Maker(std::uint64_t seed) : random_(seed) {}

  DataSet make() {
    DataSet dataSet;
    dataSet.name = text();
    const int count = upTo(6) + 1;
    std::vector<int> widths;
    for (int i = 0; i < count; ++i) {
      Variable variable = makeVariable(i);
      widths.push_back(variable.width);
      dataSet.variables.push_back(std::move(variable));
    }
    dataSet.cases = CaseStore(widths);
    fill(&dataSet, chance(4) ? 0 : upTo(40));
    dataSet.attributes = attributes();
    refer(&dataSet);
    return dataSet;
  }

 private:
  int upTo(int most) { return static_cast<int>(random_() % (static_cast<unsigned>(most) + 1U)); }
  bool chance(int one) { return upTo(one - 1) == 0; }

  template <typename List>
  auto oneOf(const List& list) {
    return list[static_cast<std::size_t>(upTo(static_cast<int>(std::size(list)) - 1))];
  }

  std::string text() {
    static const char* const kTexts[] = {"",
                                         "plain",
                                         "a,b",
                                         "say \"so\"",
                                         "two\nlines",
                                         "\r\n",
                                         " leading",
                                         "trailing  ",
                                         "NA",
                                         "9",
                                         "-0",
                                         "NaN",
                                         "INF",
                                         "%41",
                                         "\xC3\xA4\xC3\xB6",
                                         "\"",
                                         ";",
                                         "\t",
                                         "true",
                                         "2024-01-01",
                                         "null",
                                         "\xEF\xBB\xBFx",
                                         "'",
                                         "100%"};
    return oneOf(kTexts);
  }

  std::string label() { return chance(3) ? "" : text(); }

  // Bytes that need not be a text.
  std::string bytes(int width) {
    std::string made = chance(5) ? rawBytes(upTo(width)) : text();
    if (made.size() > static_cast<std::size_t>(width)) made.resize(static_cast<std::size_t>(width));
    return made;
  }

  std::string rawBytes(int count) {
    std::string made;
    for (int i = 0; i < count; ++i) made += static_cast<char>(upTo(255));
    return made;
  }

  double number() {
    static const double kNumbers[] = {0.0,
                                      -0.0,
                                      1,
                                      -1,
                                      0.1,
                                      99,
                                      -99,
                                      9,
                                      86400,
                                      -86400,
                                      3600.5,
                                      1e22,
                                      5e-324,
                                      1e-320,
                                      2.5,
                                      9007199254740992.0,
                                      9007199254740994.0,
                                      -62167219200.0,
                                      253402300799.0,
                                      253402300800.0,
                                      1709164800.0,
                                      43199,
                                      kLowestNumber,
                                      kHighestNumber};
    return chance(4) ? std::bit_cast<double>(finiteBits()) : oneOf(kNumbers);
  }

  std::uint64_t finiteBits() {
    std::uint64_t bits = 0;
    do bits = random_();
    while (!isValidNumber(std::bit_cast<double>(bits)));
    return bits;
  }

  // What a case may hold besides: no value, infinities, not-a-numbers of any bits.
  double cell(int style) {
    if (chance(8)) return kSystemMissing;
    if (style == 0) return static_cast<double>(upTo(5));
    if (style == 1) return 86400.0 * upTo(40000);
    if (style == 2) return upTo(86399);
    if (chance(20)) return std::numeric_limits<double>::infinity() * (chance(2) ? 1 : -1);
    if (chance(20)) return std::bit_cast<double>(random_() | 0x7FF8000000000000U);
    return number();
  }

  Variable makeVariable(int position) {
    static const char* const kNames[] = {"v", "a,b", "say \"x\"", " n", "\xC3\x9F", "\xEF\xBB\xBFz", "50%", "A-1"};
    Variable variable;
    variable.name = oneOf(kNames) + std::to_string(position);
    variable.label = label();
    static const int kWidths[] = {1, 3, 7, 8, 9, 20, 300, 32767};
    variable.width = chance(2) ? 0 : oneOf(kWidths);
    if (variable.width == 32767 && !chance(5)) variable.width = 12;
    variable.measure = static_cast<Measure>(upTo(3));
    variable.role = static_cast<Role>(upTo(5));
    variable.alignment = static_cast<Alignment>(upTo(2));
    variable.columnWidth = chance(2) ? kUsualColumnWidth : upTo(kWidestColumn - 1) + 1;
    variable.attributes = attributes();
    describe(&variable);
    return variable;
  }

  void describe(Variable* variable) {
    if (variable->isNumeric()) {
      describeNumber(variable);
    } else {
      describeText(variable);
    }
  }

  void describeNumber(Variable* variable) {
    static const Format kFormats[] = {
        {FormatType::kF, 8, 2}, {FormatType::kF, 8, 0},   {FormatType::kDATE, 10, 0}, {FormatType::kTIME, 8, 0},
        {FormatType::kN, 5, 0}, {FormatType::kE, 20, 16}, {FormatType::kF, 40, 16},   {FormatType::kDATETIME, 19, 0}};
    variable->format = oneOf(kFormats);
    const int count = chance(2) ? 0 : upTo(6);
    for (int i = 0; i < count; ++i) {
      const double value = chance(2) ? upTo(5) : number();
      const auto same = [value](const auto& other) { return other.value == value; };
      auto& labels = variable->numberLabels;
      if (std::none_of(labels.begin(), labels.end(), same)) labels.push_back({value, label()});
    }
    static const int kKinds[] = {0, 0, 1, 2, 3, kMissingRange, kMissingRangeAndOne};
    const auto value = [&] { return chance(2) ? upTo(5) : number(); };
    std::array<double, kMostMissing> numbers = {value(), value(), value()};
    const int kind = oneOf(kKinds);
    if (kind < 0 && numbers[0] > numbers[1]) std::swap(numbers[0], numbers[1]);
    for (int i = kind == kMissingRange ? 2 : std::abs(kind); i < kMostMissing; ++i)
      numbers.at(static_cast<std::size_t>(i)) = 0;
    makeMissing(*variable, kind, numbers, &variable->missing);
  }

  void describeText(Variable* variable) {
    variable->format = {FormatType::kA, chance(4) ? 5 : variable->width, 0};
    const auto fitting = [&](std::size_t longest) {
      std::string made;
      do made = text();
      while (made.size() > std::min(longest, static_cast<std::size_t>(variable->width)));
      return std::string(withoutEndBlanks(made));
    };
    const int count = chance(2) ? 0 : upTo(6);
    for (int i = 0; i < count; ++i) {
      const std::string value = fitting(kWidestString);
      const auto same = [&](const auto& other) { return other.value == value; };
      auto& labels = variable->textLabels;
      if (std::none_of(labels.begin(), labels.end(), same)) labels.push_back({value, label()});
    }
    std::array<std::string, kMostMissing> texts;
    const int kind = upTo(3);
    for (int i = 0; i < kind; ++i) texts.at(static_cast<std::size_t>(i)) = fitting(kMissingTextBytes);
    makeMissing(*variable, kind, texts, &variable->missing);
  }

  Attributes attributes() {
    static const char* const kNames[] = {"unit", "Codes", "@x", "a.b", "Zone", "\xC3\xA4"};
    Attributes made;
    for (int i = chance(2) ? 0 : upTo(4); i > 0; --i) {
      Attribute attribute{oneOf(kNames), {}};
      for (int j = upTo(2); j >= 0; --j) attribute.values.push_back(text());
      setAttribute(&made, std::move(attribute));
    }
    return made;
  }

  void fill(DataSet* dataSet, int cases) {
    std::vector<int> styles;
    for (std::size_t i = 0; i < dataSet->variables.size(); ++i) styles.push_back(upTo(4));
    for (int i = 0; i < cases; ++i) {
      const auto position = static_cast<std::size_t>(i);
      dataSet->cases.appendCase();
      for (std::size_t j = 0; j < styles.size(); ++j) {
        const int width = dataSet->variables[j].width;
        if (width == 0) {
          dataSet->cases.setNumber(position, j, cell(styles[j]));
        } else {
          dataSet->cases.setText(position, j, bytes(width));
        }
      }
    }
  }

  // What names variables: the weight, the filter, the split, a response set.
  void refer(DataSet* dataSet) {
    std::vector<std::string> numbers;
    for (const Variable& variable : dataSet->variables) {
      if (variable.isNumeric()) numbers.push_back(variable.name);
      if (chance(3)) dataSet->split.push_back(variable.name);
    }
    if (!numbers.empty() && chance(2)) dataSet->weight = oneOf(numbers);
    if (!numbers.empty() && chance(2)) dataSet->filter = oneOf(numbers);
    if (numbers.size() < 2) return;
    const bool counts = chance(2);
    dataSet->responseSets.push_back({"$all", label(),
                                     counts ? ResponseSetKind::kDichotomies : ResponseSetKind::kCategories,
                                     counts ? "1.50" : "", numbers});
    if (chance(2)) dataSet->responseSets.push_back({"$again", "", ResponseSetKind::kCategories, "", numbers});
  }

  std::mt19937_64 random_;
};

}  // namespace

DataSet randomDataSet(std::uint64_t seed) { return Maker(seed).make(); }

}  // namespace kova::engine
