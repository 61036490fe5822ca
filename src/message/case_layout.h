// How the values of a case lie in memory and on the wire: in units of 8 bytes, one variable behind the other. Shared by
// the records of cases.
#ifndef KOVADX_MESSAGE_CASE_LAYOUT_H
#define KOVADX_MESSAGE_CASE_LAYOUT_H

#include <cstdint>

namespace kova {

constexpr int kUnitBytes = 8;

// The number that stands for "no value": the most negative finite double.
constexpr std::uint64_t kSystemMissingBits = 0xFFEFFFFFFFFFFFFF;

// The units that a variable takes: one for a number (type 0) and for a string of at most 8 bytes, else as many as its
// width fills, the last one perhaps in part.
constexpr int UnitsOfType(int type) { return type <= kUnitBytes ? 1 : (type - 1) / kUnitBytes + 1; }

}  // namespace kova

#endif
