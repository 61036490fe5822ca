// What expressions give, case by case, and what is wrong with others.
#include "engine/expression.h"

#include <chrono>

#include "engine/command_kit.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsNan;
using testing::NanSensitiveDoubleEq;

class ExpressionTest : public CommandTest {
 protected:
  // The value for the first case, computed into a variable of its own; nothing when it is missing.
  double valueOf(const std::string& expression) {
    run("compute result = " + expression);
    if (!main().variables.find("result")) return -12345;
    const double value = numbers("result").front();
    run("drop result");
    return value;
  }

  std::string textOf(const std::string& expression) {
    run("compute result = " + expression);
    const std::string value = texts("result").front();
    run("drop result");
    return value;
  }
};

TEST_F(ExpressionTest, BindAsTheyAreReadAloud) {
  struct Row {
    const char* expression;
    double value;
  };
  const Row rows[] = {
      {"1 + 2 * 3", 7},   {"(1 + 2) * 3", 9},
      {"10 - 4 - 3", 3},  {"2 ^ 3 ^ 2", 512},
      {"-2 ^ 2", -4},     {"2 ^ -1", 0.5},
      {"- - 3", 3},       {"7 / 2 / 2", 1.75},
      {"1 < 2", 1},       {"2 <= 1", 0},
      {"1 != 1", 0},      {"'b' > 'a'", 1},
      {"'a ' = 'a'", 1},  {"not 1 = 2", 1},
      {"not 0 and 0", 0}, {"1 or 0 and 0", 1},
      {"not not 5", 1},   {"1 + 1 = 2 and 3 > 2", 1},
      {"2 OR 0", 1},      {"1 > 2 or 'x' = 'x'", 1},
  };
  for (const Row& row : rows) EXPECT_DOUBLE_EQ(valueOf(row.expression), row.value) << row.expression;
}

TEST_F(ExpressionTest, HaveFunctionsOfNumbers) {
  struct Row {
    const char* expression;
    double value;
  };
  const Row rows[] = {
      {"abs(-3)", 3},
      {"sqrt(16)", 4},
      {"exp(0)", 1},
      {"ln(exp(2))", 2},
      {"log10(1000)", 3},
      {"round(2.5)", 3},
      {"round(-2.5)", -3},
      {"round(3.14159, 2)", 3.14},
      {"floor(-1.5)", -2},
      {"ceiling(-1.5)", -1},
      {"mod(7, 3)", 1},
      {"mod(-7, 3)", -1},
      {"min(3, 1, 2)", 1},
      {"MAX(3, 1, 2)", 3},
      {"sum(1, 2, 3)", 6},
      {"mean(1, 2, 6)", 3},
      {"if(1 > 2, 10, 20)", 20},
      {"any(2, 1, 2)", 1},
      {"any('a', 'b', 'c')", 0},
      {"case()", 1},
      {"length('Z\u00FCrich ')", 6},
      {"contains('abc', 'bc')", 1},
      {"number(' 12.5 ')", 12.5},
      {"number('+5')", 5},
      {"any('a ', 'a')", 1},
  };
  for (const Row& row : rows) EXPECT_DOUBLE_EQ(valueOf(row.expression), row.value) << row.expression;
}

// A zero with a sign would look like the missing value 0, and be none.
TEST_F(ExpressionTest, GiveAZeroWithoutASign) {
  main().cases.setNumber(0, 2, -0.0);
  for (const char* expression : {"round(-0.3)", "ceiling(-0.3)", "mod(-4, 2)", "-0", "0 * -1", "-1e-200 * 1e-200",
                                 "one", "value(one)", "number('-0')", "min(-0, 0)", "if(1, -0, 1)"}) {
    const double value = valueOf(expression);
    EXPECT_TRUE(value == 0 && !std::signbit(value)) << expression;
  }
  EXPECT_EQ(textOf("text(-0)"), "0");
}

TEST_F(ExpressionTest, TakeAsManyArgumentsAsTheyHaveRoomFor) {
  std::string sum = "sum(1";
  for (int i = 1; i < 9'999; ++i) sum += ", 1";
  EXPECT_EQ(valueOf(sum + ")"), 9'999);
  refuse(ErrorCode::kSyntaxTooLarge, "compute x = " + sum + ", 1, 1)", "more than 10000 values and operators.");
}

TEST_F(ExpressionTest, HaveFunctionsOfTexts) {
  struct Row {
    const char* expression;
    const char* value;
  };
  const Row rows[] = {
      {"upper('a\u00E9z')", "A\u00E9Z"},
      {"lower(\"ABC\")", "abc"},
      {"concat('a', ' ', town)", "a Bremen"},
      {"substring('Z\u00FCrich', 2)", "\u00FCrich"},
      {"substring('Z\u00FCrich', 2, 2)", "\u00FCr"},
      {"substring('abc', 9)", ""},
      {"substring('', 1)", ""},
      {"text(0.1)", "0.1"},
      {"text(-123)", "-123"},
      {"if(score = 1, 'yes', 'no')", "yes"},
      {"concat(text(1), upper('x'))", "1X"},
  };
  for (const Row& row : rows) EXPECT_EQ(textOf(row.expression), row.value) << row.expression;
}

TEST_F(ExpressionTest, TakeMissingValuesAsUnknown) {
  const double none = std::nan("");
  struct Row {
    const char* expression;
    std::vector<double> values;
  };
  const Row rows[] = {
      {"score", {1, 2, none, none, 4}},
      {"value(score)", {1, 2, -5, none, 4}},
      {"-score + 0", {-1, -2, none, none, -4}},
      {"score > 1", {0, 1, none, none, 1}},
      {"score > 1 and 0", {0, 0, 0, 0, 0}},
      {"score > 1 and 1", {0, 1, none, none, 1}},
      {"score > 1 or 1", {1, 1, 1, 1, 1}},
      {"score > 1 or 0", {0, 1, none, none, 1}},
      {"not score", {0, 0, none, none, 0}},
      {"missing(score)", {0, 0, 1, 1, 0}},
      {"missing(town)", {0, 1, 0, 0, 0}},
      {"missing(value(town))", {0, 0, 0, 0, 0}},
      {"valid(score, town, two)", {3, 2, 2, 2, 2}},
      {"sum(score, two)", {11, 2, 0, 20, 4}},
      {"mean(score, two)", {5.5, 1, 0, 20, 4}},
      {"min(score)", {1, 2, none, none, 4}},
      {"if(score > 1, 1, 2)", {2, 1, none, none, 1}},
      {"any(one, score, 5)", {1, 1, 0, 0, 1}},
      {"any(score, 1)", {1, 0, none, none, 0}},
      {"town = 'Bonn'", {0, none, 1, 0, 0}},
      {"town = ''", {0, none, 0, 1, 0}},
      {"length(town)", {6, none, 4, 0, 6}},
      {"number(town)", {none, none, none, none, none}},
      {"contains(town, 'e')", {1, none, 0, 0, 0}},
  };
  for (const Row& row : rows) {
    run(std::string("compute result = ") + row.expression);
    std::vector<testing::Matcher<double>> expected;
    for (const double value : row.values) expected.push_back(NanSensitiveDoubleEq(value));
    EXPECT_THAT(numbers("result"), ElementsAreArray(expected)) << row.expression;
    run("drop result");
  }
}

TEST_F(ExpressionTest, GiveNoValueWhereThereIsNoNumber) {
  for (const char* expression :
       {"1 / 0", "0 / 0", "sqrt(-1)", "ln(0)", "mod(1, 0)", "1e300 * 1e300", "10 ^ 400", "(-8) ^ 0.5", "exp(1000)",
        "round(1, 99)", "-1e308 - 1e308", "number('+-5')", "number('++5')", "number('+')"}) {
    EXPECT_THAT(valueOf(expression), IsNan()) << expression;
  }
  run("compute result = 1 / two");
  EXPECT_EQ(last(),
            "compute result: 2 results were no numbers (a division by zero, a value out of range) and are "
            "missing.\n\n");
  run("compute result = -1.7976931348623157e308");
  EXPECT_THAT(last(), HasSubstr("compute result: 5 results were no numbers")) << "it is the system-missing value";
  main().cases.setNumber(0, 2, std::nan(""));
  run("compute result = one + 1");
  EXPECT_THAT(numbers("result").front(), IsNan());
}

TEST_F(ExpressionTest, RefuseWhatIsNotWrittenRight) {
  struct Row {
    const char* expression;
    ErrorCode code;
    const char* words;
  };
  const Row rows[] = {
      {"", ErrorCode::kSyntaxNotValid, "column 13: Expected a value, found the end of the command."},
      {"1 +", ErrorCode::kSyntaxNotValid, "Expected a value, found the end of the command."},
      {"(1", ErrorCode::kSyntaxNotValid, "Expected \")\", found the end of the command."},
      {"1)", ErrorCode::kSyntaxNotValid, "column 14: Expected the end of the command, found \")\"."},
      {"1 2", ErrorCode::kSyntaxNotValid, "column 15: Expected the end of the command, found the number 2."},
      {"1 == 2", ErrorCode::kSyntaxNotValid, "Expected a value, found \"=\"."},
      {"1 < 2 < 3", ErrorCode::kSyntaxNotValid, "column 19: Two comparisons stand one behind the other."},
      {"and 1", ErrorCode::kSyntaxNotValid, "Expected a value, found \"and\"."},
      {"to", ErrorCode::kSyntaxNotValid, "Expected a value, found \"to\"."},
      {"scoer + 1", ErrorCode::kNoSuchVariable, "There is no variable \"scoer\". Did you mean score?"},
      {"nothinglikeit", ErrorCode::kNoSuchVariable, "There is no variable \"nothinglikeit\". Submit variables;"},
      {"sqr(2)", ErrorCode::kSyntaxNotValid, "There is no function \"sqr\". Did you mean sqrt? Submit help functions"},
      {"abs()", ErrorCode::kSyntaxNotValid, "The function abs can not have 0 arguments. Write: abs(X)"},
      {"abs(1, 2)", ErrorCode::kSyntaxNotValid, "The function abs can not have 2 arguments."},
      {"case(1)", ErrorCode::kSyntaxNotValid, "The function case can not have 1 argument."},
      {"abs(1 2)", ErrorCode::kSyntaxNotValid, "Expected \",\", found the number 2."},
      {"abs('x')", ErrorCode::kSyntaxKindsDiffer, "The function abs needs a number here, and this is a text."},
      {"length(1)", ErrorCode::kSyntaxKindsDiffer, "column 20: The function length needs a text here"},
      {"if(1, 'a', 2)", ErrorCode::kSyntaxKindsDiffer, "The function if needs a text here, and this is a number."},
      {"value(1)", ErrorCode::kSyntaxNotValid, "Expected a variable, found the number 1."},
      {"1 + 'a'", ErrorCode::kSyntaxKindsDiffer, "column 15: \"+\" stands between a number and a text."},
      {"'a' + 'b'", ErrorCode::kSyntaxKindsDiffer,
       "\"+\" stands between two texts. It needs two numbers; concat joins"},
      {"town > 1", ErrorCode::kSyntaxKindsDiffer, "\">\" stands between a text and a number."},
      {"-town", ErrorCode::kSyntaxKindsDiffer, "\"-\" stands in front of a text, and needs a number."},
      {"not town", ErrorCode::kSyntaxKindsDiffer, "\"not\" stands in front of a text"},
      {"1 where town", ErrorCode::kSyntaxKindsDiffer, "The condition is a text, and must be true or false."},
  };
  for (const Row& row : rows) refuse(row.code, std::string("compute x = ") + row.expression, row.words);
}

TEST_F(ExpressionTest, AreNestedOnlySoDeep) {
  const auto nested = [](int depth, const std::string& open, const std::string& close) {
    std::string text = "compute x = ";
    for (int i = 0; i < depth; ++i) text += open;
    text += "1";
    for (int i = 0; i < depth; ++i) text += close;
    return text;
  };
  run(nested(90, "(", ")"));
  EXPECT_DOUBLE_EQ(numbers("x").front(), 1);
  for (const auto& [open, close] : {std::pair("(", ")"), {"-", ""}, {"not ", ""}, {"abs(", ")"}, {"2^", ""}}) {
    refuse(ErrorCode::kSyntaxTooLarge, nested(100'000, open, close), "nested more than 100 deep here.");
  }
  std::string sum = "compute x = 1";
  for (int i = 0; i < 4'000; ++i) sum += " + 1";
  run(sum);
  EXPECT_DOUBLE_EQ(numbers("x").front(), 4'001);
  for (int i = 0; i < 4'000; ++i) sum += " + 1";
  refuse(ErrorCode::kSyntaxTooLarge, sum, "more than 10000 values and operators.");
  refuse(ErrorCode::kSyntaxTooLarge, "compute x = '" + std::string(32'768, 'x') + "'", "longer than any value");
}

// Many functions of wide texts take memory for the widest text each, and no more.
TEST_F(ExpressionTest, CutTextsThatNoVariableCanHold) {
  run("compute wide = '" + std::string(20'000, 'x') + "'; compute result = concat(wide, wide)");
  EXPECT_EQ(variable("result").width, 32'767);
  EXPECT_EQ(texts("result").front().size(), 32'767U);
}

// A program of a few steps for each case, without memory taken for it.
TEST_F(ExpressionTest, AreQuickOverManyCases) {
  constexpr std::size_t kCases = 200'000;
  main().cases.reserve(kCases);
  while (main().cases.caseCount() < kCases) main().cases.appendCase();
  const auto start = std::chrono::steady_clock::now();
  run("compute result = sqrt(score * score + one ^ 2) where one > 2 or town = 'Bonn'");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << "under a sanitizer too";
}

}  // namespace
}  // namespace kova::engine
