// The record file of a process: a plain text file into which a language package mirrors what it shows.
//
// One for the process, never destroyed. Its calls take turns as all calls of the client interface do.
#ifndef KOVADX_API_RECORD_FILE_H
#define KOVADX_API_RECORD_FILE_H

#include <cstddef>
#include <cstdio>

namespace kova {

// Fills `output`, which has room for `outputSize` bytes, from the `inputLength` bytes of `input`.
using RecordConverter = void (*)(const char* input, std::size_t inputLength, char* output, std::size_t outputSize);

class RecordFile {
 public:
  // Opens the file for appending, unless one is open already. One that can not be opened leaves this closed.
  void open(const char* path);
  void close();
  bool isOpen() const { return file_ != nullptr; }

  // Appends the text and brings it to the file at once. Only for an open file.
  void write(const char* text);
  // Appends what the converter makes of the text, its NUL included. Throws std::bad_alloc.
  void writeConverted(const char* text, RecordConverter converter);

 private:
  std::FILE* file_ = nullptr;
};

RecordFile& TheRecordFile();

}  // namespace kova

#endif
