// A list of program arguments, given as a count and vector or as one command-line text. An object owns its list and
// both forms; it is used by one thread at a time.
//
// The forms are made when they are asked for. Deliberate: one flag tells whether the list has changed, and whichever
// form is asked for first is made anew and clears it; the other form keeps what it held until the next change.
#ifndef KOVADX_CONFIG_XCMDARGUMENT_H
#define KOVADX_CONFIG_XCMDARGUMENT_H

#include <string>
#include <vector>

#include "export.h"

class KOVADX_API XCmdArgument {
 public:
  // An empty list.
  XCmdArgument();
  // The pieces of a text between single blanks: two blanks in a row make an empty argument.
  explicit XCmdArgument(const std::string& commandLine);
  // Copies of the strings of a vector. Deliberate: the list does not count as changed, so argc(), argv() and cmdline()
  // give 0 and null until an argument is pushed or modified.
  XCmdArgument(int argc, char** argv);
  XCmdArgument(const XCmdArgument&) = delete;
  XCmdArgument& operator=(const XCmdArgument&) = delete;
  ~XCmdArgument();

  // Appends an argument. Unless it is kept as is or begins with a quote, one that holds a blank is put into double
  // quotes; a "\" at its end is doubled then, so that it does not escape the closing quote.
  void pushArgument(const std::string& argument, bool keepAsIs);

  // Replaces an argument as it is. An index outside the list is ignored.
  void modifyArgument(int index, const std::string& argument);

  // An argument, owned by the list and valid until the list changes; null outside the list.
  const char* argumentAt(int index);

  // The list as a vector with a null behind its last entry, and the number of its entries; null and 0 when none was
  // ever made. Owned by the object and valid until the vector is made anew.
  int argc();
  char** argv();

  // The list as one text, a blank before each argument, the first too; null when none was ever made. Owned by the
  // object and valid until the text is made anew.
  const char* cmdline();

 private:
  void makeVector();
  void freeVector();
  bool isInList(int index) const;

  bool dirty_ = false;
  std::vector<std::string> arguments_;
  int count_ = 0;
  char** vector_ = nullptr;
  char* commandLine_ = nullptr;
};

#endif
