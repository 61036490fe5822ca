// A small reader of INI-style text files with the calling form of the platform's profile-string function, but with
// loose matching rules of its own. It has no state: every call opens, scans and closes the file, and any thread may
// call. It reports no errors; what is absent shows as a count of 0.
//
// The file: a line whose first character (after white space) is "[" begins a section, named by what follows up to "]";
// ";" begins a comment line; every other non-empty line is an entry, a key before the first "=" and a value after it.
// Lines are read 2047 bytes at a time; a longer line counts as several lines.
//
// Deliberate: names match as case-insensitive prefixes. Section "PY" finds "[PYTHON]", key "HOME" finds "HOMEDIR=x"
// when that line comes first. A file therefore lists the plain name before the longer ones that begin with it.
#ifndef KOVADX_CONFIG_PLUGINCONFIGREADER_H
#define KOVADX_CONFIG_PLUGINCONFIGREADER_H

#include <cstdio>
#include <string>

#include "export.h"

class KOVADX_API PlugInConfigReader {
 public:
  PlugInConfigReader() = default;
  PlugInConfigReader(const PlugInConfigReader&) = default;
  PlugInConfigReader& operator=(const PlugInConfigReader&) = default;
  virtual ~PlugInConfigReader() = default;

  // Fills `buffer` with `size` zero bytes, then reads from the file at `path`:
  // - with section and key, the value of the entry, cut to size - 1 characters and not trimmed behind the "=";
  // - with a section alone (key null or empty), its key names, each followed by a NUL, the whole by one more NUL;
  // - without a section (null or empty), the names of all sections in the same form.
  // A name that does not fit whole ends a list. Returns the number of characters written, the NUL behind each name of a
  // list counted; 0 when there is no such file, section, key or value, or no room.
  // Deliberate: `defaultValue` is ignored. A caller that wants a default applies it itself when the result is 0.
  unsigned long GetPrivateProfileString(const char* section, const char* key, const char* defaultValue, char* buffer,
                                        unsigned long size, const char* path);

 protected:
  // Reads on from the file's position until the header of `section` has been read: 1, or 0 at the end of the file.
  int GotoSectionStart(std::FILE* file, const char* section);

  // The three kinds of request, on an open file. `buffer` holds `size` zero bytes.
  unsigned long RetrieveValue(std::FILE* file, const char* section, const char* key, char* buffer, unsigned long size);
  unsigned long RetrieveKeyNames(std::FILE* file, const char* section, char* buffer, unsigned long size);
  unsigned long RetrieveSectionNames(std::FILE* file, char* buffer, unsigned long size);

  // Removes white space from both ends of a text, in place.
  void TrimAll(char* text);

  // Reads the next line into `line` and trims it. False at the end of the file.
  static constexpr int kLineSize = 2048;
  bool readLine(std::FILE* file, char (&line)[kLineSize]);
};

#endif
