#include "api/record_file.h"

#include <cstring>
#include <vector>

#include "api/guard.h"
#include "api/kovadx.h"
#include "config/never_destroyed.h"
#include "platform/os/file.h"

namespace kova {

void RecordFile::open(const char* path) {
  if (!file_ && path) file_ = os::OpenFile(path, "a+", nullptr);
}

void RecordFile::close() {
  if (file_) std::fclose(file_);
  file_ = nullptr;
}

void RecordFile::write(const char* text) {
  std::fputs(text, file_);
  std::fflush(file_);
}

void RecordFile::writeConverted(const char* text, RecordConverter converter) {
  const std::size_t length = std::strlen(text);
  const std::size_t room = 4 * length + 4;
  std::vector<char> block(room + 1);  // One byte more than the converter knows of: a converter may fill its room.
  converter(text, length + 1, block.data(), room);
  write(block.data());
}

RecordFile& TheRecordFile() {
  static NeverDestroyed<RecordFile> file;
  return file.object();
}

}  // namespace kova

namespace {

bool engineTextsAreUtf8() {
  int isUtf8 = 0;
  return IsUTF8mode(&isUtf8) == 0 && isUtf8 != 0;
}

}  // namespace

int SetRecordBrowserOutput(const char* path, bool on) {
  return kova::Guarded([&] {
    kova::RecordFile& file = kova::TheRecordFile();
    on ? file.open(path) : file.close();
    return 0;
  });
}

void RecordBrowserOutput(const char* text, size_t length, kova::RecordConverter converter) {
  kova::RecordFile& file = kova::TheRecordFile();
  if (!file.isOpen() || !text || length == 0) return;
  kova::Guarded([&] {
    converter&& engineTextsAreUtf8() ? file.writeConverted(text, converter) : file.write(text);
    return 0;
  });
}
