// Whole texts: what is carried out of them, how their problems are told, the help, and blocks in other languages.
#include "engine/command_run.h"

#include <fstream>
#include <iterator>
#include <thread>

#include "engine/command_kit.h"
#include "engine/command_table.h"
#include "engine/engine.h"
#include "engine/expression_functions.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class Commands : public CommandTest {};

TEST_F(Commands, AreCarriedOutUpToTheFirstThatFails) {
  EXPECT_EQ(submit("compute one = 1;\ncompute two = nothing;\ncompute one = 3"), 98011);
  EXPECT_EQ(numbers("one").front(), 1);
  EXPECT_EQ(last(),
            "Error 98011 in line 2, column 15: There is no variable \"nothing\". Submit variables; it lists "
            "them.\n\n");
}

TEST_F(Commands, AreRefusedWholeWhenTheyCanNotBeCut) {
  EXPECT_EQ(submit("compute one = 9; label one 'x"), 98141);
  EXPECT_EQ(numbers("one").front(), 1);
  EXPECT_EQ(submit(std::string("compute one = 9;\n\0", 18)), 98013);
  EXPECT_THAT(last(), HasSubstr("Error 98013 in line 2, column 1: A text has a NUL byte in it."));
  EXPECT_EQ(submit("compute one = 9; # \xFF"), 98012);
  EXPECT_THAT(last(), HasSubstr("Error 98012 in line 1, column 20: A text is not UTF-8."));
  EXPECT_EQ(numbers("one").front(), 1);
}

TEST_F(Commands, OfOtherNamesAreUnknown) {
  refuse(ErrorCode::kSyntaxCommandUnknown, "frequences one",
         "There is no command \"frequences\". Did you mean frequencies?");
  refuse(ErrorCode::kSyntaxCommandUnknown, "42", "There is no command \"42\". Submit help; it lists the commands.");
  refuse(ErrorCode::kSyntaxCommandUnknown, "\x1B", "There is no command \"?\".");
  refuse(ErrorCode::kSyntaxCommandUnknown, std::string(100'000, 'x'), "There is no command \"xxxx");
}

TEST_F(Commands, NothingIsCarriedOutOfNothing) {
  const std::size_t sections = state_.output.log.sections().size();
  run("");
  run(" \n;;# nothing\n");
  EXPECT_EQ(state_.output.log.sections().size(), sections);
}

TEST_F(Commands, ComeInParts) {
  EXPECT_EQ(tell(Command::QueueCommandPart, "compute one ="), 0);
  EXPECT_EQ(tell(Command::QueueCommandPart, "10 *"), 0);
  EXPECT_EQ(numbers("one").front(), 1) << "not yet";
  run("one; compute two = 3");
  EXPECT_THAT(numbers("one"), ElementsAre(10, 20, 30, 40, 50));
  EXPECT_EQ(tell(Command::QueueCommandPart, "compute one"), 0);
  EXPECT_EQ(submit("= 'x'"), 98143);
  EXPECT_THAT(last(), HasSubstr("line 2, column 3"));
  run("help");
}

TEST_F(Commands, HaveHelp) {
  run("help");
  for (const CommandRow& row : commandTable()) EXPECT_THAT(last(), HasSubstr("\n  " + std::string(row.name) + " "));
  run("help Compute");
  EXPECT_THAT(last(), HasSubstr("compute NAME = EXPRESSION [where CONDITION]\n  Computes a variable"));
  run("help functions");
  for (const FunctionRow& row : expressionFunctions()) EXPECT_THAT(last(), HasSubstr(std::string(row.syntax)));
  run("help sqrt");
  EXPECT_THAT(last(), HasSubstr("sqrt(X)\n  The square root"));
  for (const CommandRow& row : commandTable()) {
    run("help " + std::string(row.name));
    EXPECT_THAT(last(), HasSubstr(std::string(row.syntax))) << row.name;
  }
  for (const FunctionRow& row : expressionFunctions()) {
    run("help " + std::string(row.name));
    EXPECT_THAT(last(), HasSubstr(std::string(row.syntax))) << "a command may have the same name";
  }
  refuse(ErrorCode::kSyntaxCommandUnknown, "help lits", "There is no help for \"lits\". Did you mean list?");
  refuse(ErrorCode::kSyntaxNotValid, "help list list", "Expected the end of the command");
}

TEST_F(Commands, StandInTheTableOnceWithAllTheirTexts) {
  for (const CommandRow& row : commandTable()) {
    EXPECT_EQ(findCommand(row.name), &row) << "the only one of its name";
    EXPECT_EQ(row.syntax.substr(0, row.name.size()), row.name);
    EXPECT_THAT(row.help, EndsWith("."));
  }
  for (const FunctionRow& row : expressionFunctions()) {
    EXPECT_EQ(findFunction(row.name), &row);
    EXPECT_EQ(row.syntax.substr(0, row.name.size() + 1), std::string(row.name) + "(");
    EXPECT_THAT(row.help, EndsWith("."));
    EXPECT_TRUE(row.numbers != nullptr || row.texts != nullptr) << row.name;
  }
}

TEST_F(Commands, AreAllInTheDocument) {
  std::ifstream file(KOVA_SOURCE_DIR "/docs/commands.md");
  const std::string document{std::istreambuf_iterator<char>(file), {}};
  for (const CommandRow& row : commandTable()) {
    EXPECT_THAT(document, HasSubstr("`" + std::string(row.name) + "`")) << "docs/commands.md lacks a command";
    EXPECT_THAT(document, HasSubstr("\n    " + std::string(row.syntax) + "\n")) << "docs/commands.md lacks its syntax";
  }
  for (const FunctionRow& row : expressionFunctions()) {
    EXPECT_THAT(document, HasSubstr("| `" + std::string(row.syntax) + "` | " + std::string(row.help) + " |"))
        << "docs/commands.md lacks a function";
  }
}

TEST_F(Commands, ShowAndChangeSettings) {
  run("set output width 100; set output language \"German\"; show output width");
  EXPECT_EQ(last(), "output width: 100\n\n");
  EXPECT_EQ(state_.session.outputLanguage, "German");
  run("show");
  EXPECT_THAT(last(), HasSubstr("Output Language"));
  refuse(ErrorCode::kNoSuchSetting, "show output colour", "There is no setting \"output colour\". Submit show;");
  refuse(ErrorCode::kNoSuchSetting, "set output colour 1", "column 12: There is no such setting that can be set.");
  refuse(ErrorCode::kOutputNumberOutOfRange, "set output width 19", "Give a whole number of 20 to 1000.");
  refuse(ErrorCode::kOutputNumberOutOfRange, "set output width -100", "column 18");
  refuse(ErrorCode::kLanguageNotValid, "set output language ''", "column 21");
}

TEST_F(Commands, RefuseBlocksThatNobodyRuns) {
  refuse(ErrorCode::kSyntaxNotCarriedOut, "begin PYTHON\nx\nend PYTHON",
         "Error 98005 in line 1, column 1: This engine runs no blocks in PYTHON, nor in any other language.");
  refuse(ErrorCode::kSyntaxNotValid, "begin", "A block does not begin so. Write begin LANGUAGE on a line of its own");
  refuse(ErrorCode::kSyntaxNotValid, "begin R; x", "A block does not begin so.");
}

TEST_F(Commands, GiveBlocksTheirLines) {
  std::string language;
  Texts lines;
  state_.runBlock = [&](const std::string& name, const std::vector<std::string>& block) {
    language = name;
    lines = block;
    EXPECT_EQ(ask(Command::GetNestDepth).FirstLong(), 1);
    return block.empty() ? 5 : 0;
  };
  run("compute one = 7;\nbegin PYTHON;\n  print(1;\n\nend python;\ncompute two = 8");
  EXPECT_EQ(language, "PYTHON");
  EXPECT_THAT(lines, ElementsAre("  print(1;", ""));
  EXPECT_EQ(numbers("two").front(), 8);
  EXPECT_EQ(submit("help;\nbegin R\nend R\ncompute two = 9"), 5) << "the block's own code";
  EXPECT_THAT(last(), HasSubstr("line 2, column 1: The block in R ended with the code 5. See what it has put out."));
  EXPECT_EQ(numbers("two").front(), 8) << "nothing behind it is carried out";
  EXPECT_EQ(ask(Command::GetNestDepth).FirstLong(), 0);
}

TEST_F(Commands, BearABlockThatThrows) {
  state_.runBlock = [](const std::string&, const std::vector<std::string>&) -> int { throw std::bad_alloc(); };
  EXPECT_EQ(submit("begin R\nend R"), 98006);
  EXPECT_EQ(ask(Command::GetNestDepth).FirstLong(), 0);
}

TEST_F(Commands, StopBlocksThatSubmitThemselves) {
  int deepest = 0;
  state_.runBlock = [&](const std::string&, const std::vector<std::string>&) {
    deepest = std::max(deepest, state_.nestDepth);
    return submit("begin R\nend R");
  };
  EXPECT_EQ(submit("begin R\nend R"), 98144);
  EXPECT_EQ(deepest, 32);
  EXPECT_EQ(state_.nestDepth, 0);
}

int submitTo(Engine* engine, const std::string& text, int conversation) {
  CleXDSmb request;
  CleXDSmb reply;
  request.SetCommandAction(Command::Submit);
  request.SetString(text);
  engine->perform(request, reply, conversation);
  return reply.GetErrorCode();
}

int askOf(Engine* engine, Command command, int conversation) {
  CleXDSmb request;
  CleXDSmb reply;
  request.SetCommandAction(command);
  engine->perform(request, reply, conversation);
  EXPECT_EQ(reply.GetErrorCode(), 0);
  return reply.FirstLong();
}

// As a runtime does it: the block's calls come on another thread while Submit waits for the block.
TEST(EngineWithBlocks, ServesTheBlockWhileSubmitWaits) {
  Engine engine;
  engine.open(*mainDataSet());
  engine.onBlock([&engine](const std::string& language, const std::vector<std::string>& lines) {
    const int level = std::stoi(lines.front());
    int code = -1;
    std::thread([&] {
      EXPECT_EQ(askOf(&engine, Command::GetNestDepth, level), level);
      EXPECT_EQ(askOf(&engine, Command::GetVariableCount, level), 3 + level);
      code = submitTo(&engine, "compute v" + std::to_string(level) + " = 1", level);
      const std::string deeper = "begin " + language + "\n" + std::to_string(level + 1) + "\nend " + language;
      if (code == 0 && level < 3) code = submitTo(&engine, deeper, level);
      engine.leave(level);
    }).join();
    return code;
  });
  EXPECT_EQ(submitTo(&engine, "begin R\n1\nend R\ncompute last = v3", 0), 0);
  EXPECT_EQ(askOf(&engine, Command::GetVariableCount, 0), 8);
  engine.onBlock({});
  EXPECT_EQ(submitTo(&engine, "begin R\n1\nend R", 0), 98005);
}

// The conversation that submits has a data step of its own, before and behind the block.
TEST(EngineWithBlocks, KeepsTheConversation) {
  Engine engine;
  engine.open(*mainDataSet());
  engine.onBlock([&engine](const std::string&, const std::vector<std::string>&) {
    EXPECT_EQ(submitTo(&engine, "compute one = 1", 1), 0);
    return 0;
  });
  CleXDSmb request;
  CleXDSmb reply;
  request.SetCommandAction(Command::StartDataStep);
  engine.perform(request, reply, 0);
  EXPECT_EQ(submitTo(&engine, "begin R\nend R\ncompute two = 1", 0), 0);
  request.SetCommandAction(Command::GetDatastepDatasets);
  engine.perform(request, reply, 0);
  EXPECT_THAT(textsOf(reply), ElementsAre("main")) << "what was computed behind the block is of the step";
}

}  // namespace
}  // namespace kova::engine
