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

TEST(Variables, TenThousandAreFound) {
  Variables variables;
  for (int i = 0; i < 10000; ++i) variables.push_back(named("v" + std::to_string(i)));
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(variables.find("V" + std::to_string(i)), static_cast<std::size_t>(i));
}

}  // namespace
}  // namespace kova::engine
