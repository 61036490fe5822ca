#include "engine/variables.h"

#include <gtest/gtest.h>

namespace kova::engine {
namespace {

Variable named(const std::string& name) {
  Variable variable;
  variable.name = name;
  return variable;
}

TEST(Variables, AreFoundByNameInAnyCase) {
  const Variables variables{named("Age"), named("\u00E9t\u00E9")};
  EXPECT_EQ(variables.find("age"), 0U);
  EXPECT_EQ(variables.find("AGE"), 0U);
  EXPECT_EQ(variables.find("\u00E9T\u00E9"), 1U);
  EXPECT_EQ(variables.find("ag"), std::nullopt);
  EXPECT_EQ(variables.find(""), std::nullopt);
}

TEST(Variables, AreFoundUnderTheirNewNameAlone) {
  Variables variables{named("a"), named("b")};
  variables.rename(1, "c");
  EXPECT_EQ(variables.find("c"), 1U);
  EXPECT_EQ(variables.find("b"), std::nullopt);
  variables.rename(1, "C");
  EXPECT_EQ(variables.find("c"), 1U);
  EXPECT_EQ(variables[1].name, "C");
  variables.rename(0, "b");
  EXPECT_EQ(variables.find("B"), 0U);
}

TEST(Variables, CopiesGoTheirOwnWay) {
  Variables variables{named("a")};
  Variables copy = variables;
  EXPECT_TRUE(copy == variables);
  copy.rename(0, "z");
  EXPECT_FALSE(copy == variables);
  EXPECT_EQ(variables.find("a"), 0U);
  EXPECT_EQ(copy.find("a"), std::nullopt);
}

std::string namesOf(const Variables& variables) {
  std::string names;
  for (const Variable& variable : variables) names += variable.name;
  return names;
}

// The names in their order; each is found at its place.
void expectNames(const Variables& variables, const std::string& names) {
  EXPECT_EQ(namesOf(variables), names);
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(variables.find(std::string(1, names[i])), i) << names;
}

TEST(Variables, AreInsertedAnywhere) {
  for (const auto& [place, names] : {std::pair<std::size_t, const char*>{0, "xyabc"}, {1, "axybc"}, {3, "abcxy"}}) {
    Variables variables{named("a"), named("b"), named("c")};
    variables.insert(place, {named("x"), named("y")});
    expectNames(variables, names);
  }
  Variables variables;
  variables.insert(0, {});
  variables.insert(0, {named("a")});
  expectNames(variables, "a");
}

TEST(Variables, AreErasedWithTheirNames) {
  for (const auto& [place, names] : {std::pair<std::size_t, const char*>{0, "bc"}, {1, "ac"}, {2, "ab"}}) {
    Variables variables{named("a"), named("b"), named("c")};
    const std::string erased = variables[place].name;
    variables.erase({&place, 1});
    expectNames(variables, names);
    EXPECT_EQ(variables.find(erased), std::nullopt);
    variables.push_back(named(erased));
    expectNames(variables, names + erased);
  }
}

TEST(Variables, AreErasedTogether) {
  Variables variables{named("a"), named("b"), named("c"), named("d"), named("e")};
  variables.erase({});
  expectNames(variables, "abcde");
  variables.erase(std::vector<std::size_t>{1, 2, 4});
  expectNames(variables, "ad");
  EXPECT_EQ(variables.find("e"), std::nullopt);
}

TEST(Variables, MoveBothWays) {
  struct Row {
    std::size_t from;
    std::size_t to;
    const char* names;
  };
  for (const Row row : {Row{0, 3, "bcda"}, Row{3, 0, "dabc"}, Row{1, 2, "acbd"}, Row{2, 2, "abcd"}}) {
    Variables variables{named("a"), named("b"), named("c"), named("d")};
    variables.move(row.from, row.to);
    expectNames(variables, row.names);
  }
}

TEST(Variables, TenThousandAreFound) {
  Variables variables;
  for (int i = 0; i < 10000; ++i) variables.push_back(named("v" + std::to_string(i)));
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(variables.find("V" + std::to_string(i)), static_cast<std::size_t>(i));
}

}  // namespace
}  // namespace kova::engine
