// Small text functions that the configuration, the trace log and the client share. All of them work in the classic
// locale, whatever locale the host program has set, and none keeps state: any thread may call them.
#ifndef KOVADX_CONFIG_TEXT_UTILITIES_H
#define KOVADX_CONFIG_TEXT_UTILITIES_H

#include <string>
#include <vector>

// Turns every "/" into "\" and makes the text end in "\". An empty text stays empty. The text is the same on every
// platform; a platform that writes paths with "/" turns the "\" back just before its own calls.
void DecoratePathEnd(std::string& path);

// A copy in which every "\" stands twice, for a path that is put into script text.
std::string transPath(const std::string& path);

// A copy in upper case; only the letters a to z change.
std::string UpperString(const std::string& text);

// Compares the first n characters without regard to case: the difference of the first unequal pair (of the upper-case
// characters, as unsigned bytes), 0 when there is none. A text ends at its NUL: two texts that end together are equal
// however large n is. A null text counts as empty.
int strincmp(const char* a, const char* b, unsigned long long n);

// The pieces of a text between the occurrences of a delimiter, which is taken as a whole, from left to right. An empty
// piece between two delimiters is kept; what follows the last delimiter is a piece only when it is not empty. An empty
// delimiter splits nothing.
std::vector<std::string> GetListFromDelims(const std::string& text, const std::string& delimiter);

// Lets the calling thread sleep.
void msleep(unsigned int milliseconds);

namespace kova {

// True for blank, tab, line feed, carriage return, vertical tab and form feed: white space of the classic locale.
bool isWhiteSpace(char c);

}  // namespace kova

#endif
