#include "engine/csv_rows.h"

#include <csv.h>

#include <algorithm>
#include <exception>
#include <new>

#include "engine/data_problem.h"

namespace kova::engine {
namespace {

constexpr std::size_t kPieceBytes = 65536;

int neverSpace(unsigned char) { return 0; }

// The parser calls back through C: an exception is kept here and thrown again behind it.
class CsvWalk {
 public:
  CsvWalk(std::string file, const std::function<void(const CsvRow&)>& visit) : file_(std::move(file)), visit_(visit) {}

  void run(std::string_view text, char delimiter) {
    csv_parser parser;
    csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL);
    csv_set_delim(&parser, static_cast<unsigned char>(delimiter));
    csv_set_space_func(&parser, neverSpace);
    parse(&parser, text);
    const int error = csv_error(&parser);
    csv_free(&parser);
    if (failure_) std::rethrow_exception(failure_);
    if (error == CSV_ENOMEM || error == CSV_ETOOBIG) throw std::bad_alloc();
    if (error != CSV_SUCCESS) throwAboutQuotes();
  }

 private:
  void parse(csv_parser* parser, std::string_view text) {
    while (!text.empty()) {
      const std::size_t size = std::min(text.size(), kPieceBytes);
      if (csv_parse(parser, text.data(), size, onValue, onRow, this) != size || failure_) return;
      text.remove_prefix(size);
    }
    csv_fini(parser, onValue, onRow, this);
  }

  static void onValue(void* bytes, std::size_t length, void* self) {
    static_cast<CsvWalk*>(self)->guarded(
        [=](CsvWalk& walk) { walk.addValue(static_cast<const char*>(bytes), length); });
  }

  static void onRow(int terminator, void* self) {
    static_cast<CsvWalk*>(self)->guarded([=](CsvWalk& walk) { walk.endRow(terminator); });
  }

  template <typename Step>
  void guarded(Step step) {
    if (failure_) return;
    try {
      step(*this);
    } catch (...) {
      failure_ = std::current_exception();
    }
  }

  void addValue(const char* bytes, std::size_t length) {
    if (count_ == values_.size()) values_.emplace_back();
    values_[count_].assign(bytes, length);
    ++count_;
  }

  void endRow(int terminator) {
    const bool endsCrLf = terminator == '\n' && lastTerminator_ == '\r' && count_ == 0;
    lastTerminator_ = terminator;
    if (endsCrLf) {
      lastTerminator_ = 0;
      return;
    }
    if (count_ == 0 && columns_ == 1) addValue("", 0);
    if (count_ > 0) {
      values_.resize(count_);
      if (columns_ == 0) columns_ = count_;
      visit_({row_, values_});
    }
    count_ = 0;
    ++row_;
  }

  [[noreturn]] void throwAboutQuotes() const {
    throw DataProblem(
        problemLine({file_, row_, count_ + 1, ""}, "quotes around the whole value, and quotes inside it doubled", ""));
  }

  std::string file_;
  const std::function<void(const CsvRow&)>& visit_;
  std::vector<std::string> values_;  // The first count_ of them are this row's; the others keep their memory.
  std::size_t count_ = 0;
  std::size_t row_ = 1;
  std::size_t columns_ = 0;  // Of the first row; 0 before it.
  int lastTerminator_ = 0;
  std::exception_ptr failure_;
};

// Some readers drop blanks around a value, and a byte order mark at the start of a file is none of its first value's.
bool needsQuotes(std::string_view value) {
  if (value.empty()) return false;
  const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
  return value.find_first_of("\",\r\n") != std::string_view::npos || isBlank(value.front()) || isBlank(value.back()) ||
         value.starts_with("\xEF\xBB\xBF");
}

}  // namespace

void forEachCsvRow(const std::string& file, std::string_view text, char delimiter,
                   const std::function<void(const CsvRow&)>& visit) {
  CsvWalk(file, visit).run(text, delimiter);
}

void appendCsvValue(std::string_view value, std::string* line) {
  if (!needsQuotes(value)) {
    line->append(value);
    return;
  }
  line->push_back('"');
  for (const char c : value) {
    if (c == '"') line->push_back('"');
    line->push_back(c);
  }
  line->push_back('"');
}

}  // namespace kova::engine
