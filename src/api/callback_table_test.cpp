#include "api/callback_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "api/kovadx.h"

namespace {

// The functions that the header declares.
std::vector<std::string> declaredNames() {
  std::ifstream file(KOVA_SOURCE_DIR "/src/api/kovadx.h");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::regex declaration("\nKOVADX_API [^;(]*?(\\w+)\\(");
  std::vector<std::string> names;
  for (std::sregex_iterator match(text.begin(), text.end(), declaration), end; match != end; ++match) {
    names.push_back((*match)[1]);
  }
  std::sort(names.begin(), names.end());
  return names;
}

template <class Value>
Value valueAt(const void* place, std::size_t offset) {
  Value value;
  std::memcpy(&value, static_cast<const char*>(place) + offset, sizeof value);
  return value;
}

TEST(CallbackTable, StaysWhereItIs) {
  EXPECT_NE(kova::callbackTable(), nullptr);
  EXPECT_EQ(kova::callbackTable(), kova::callbackTable());
}

TEST(CallbackTable, HoldsEveryFunctionOfTheHeaderInTheOrderOfNames) {
  const std::vector<std::string> names = declaredNames();
  ASSERT_GT(names.size(), 150u);
  const void* const table = kova::callbackTable();
  EXPECT_EQ(valueAt<std::uint32_t>(table, 0), 24u) << "its size";
  EXPECT_EQ(valueAt<std::uint32_t>(table, 4), 1u) << "its version";
  ASSERT_EQ(valueAt<std::uint64_t>(table, 8), names.size());
  using Function = void (*)();
  const auto* const functions = valueAt<const Function*>(table, 16);
  const auto placeOf = [&](const std::string& name) {
    return functions[std::find(names.begin(), names.end(), name) - names.begin()];
  };
  EXPECT_EQ(placeOf("AcceptSocket"), reinterpret_cast<Function>(&AcceptSocket));
  EXPECT_EQ(placeOf("GetVariableCount"), reinterpret_cast<Function>(&GetVariableCount));
  EXPECT_EQ(placeOf("GetXmlUtf16"), reinterpret_cast<Function>(&GetXmlUtf16));
  EXPECT_EQ(placeOf("TransCode"), reinterpret_cast<Function>(&TransCode));
}

}  // namespace
