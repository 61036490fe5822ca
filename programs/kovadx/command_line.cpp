#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iostream>

namespace kova::program {
namespace {

constexpr std::size_t kLongestName = 32;

constexpr const char* kExamples =
    "Examples:\n"
    "  kovadx run --data examples/penguins -- examples/penguins/describe\n"
    "  kovadx run --data examples/penguins -- python3 examples/penguins/describe.py\n"
    "  kovadx run --data examples/penguins --output report.html -- python3 examples/penguins/summary.py\n"
    "  kovadx run --data examples/penguins --save new/datapackage.json -- python3 clean.py\n"
    "  kovadx run --data examples/penguins --language PYTHON examples/penguins/summary.py\n"
    "  kovadx run --data examples/penguins --language PYTHON --process child examples/penguins/summary.py\n"
    "  kovadx run --data examples/penguins --language R examples/penguins/summary.R\n"
    "  kovadx run --data survey/datapackage.json --name PYTHON -- python3 report.py --year 2024\n"
    "  kovadx decode request.bin\n"
    "  kovadx explain 99104\n"
    "  kovadx monitor 1a2bPYTHON\n"
    "\n"
    "Exit code of run: the program's own, or 128 + the signal that ended it; 127 when the program was not found, 126 "
    "when it\n"
    "could not be run, 125 when kovadx itself failed. A script's own result is the exit code.";

// The instance name becomes a part of the pipes' names.
std::string checkName(const std::string& name) {
  const auto isPlain = [](unsigned char c) { return c < 0x80 && (std::isalnum(c) != 0 || c == '_'); };
  if (!name.empty() && name.size() <= kLongestName && std::all_of(name.begin(), name.end(), isPlain)) return "";
  return "expected 1 to 32 letters, digits and underscores, found \"" + name + "\"";
}

constexpr std::size_t kLongestSuiteName = 200;

std::string checkSuiteName(const std::string& name) {
  const bool isPlain =
      !name.empty() && name.size() <= kLongestSuiteName && name.find_first_of("\\/") == std::string::npos;
  return isPlain ? "" : "expected a process-id text and an instance name, as in 1a2bPYTHON, found \"" + name + "\"";
}

// An empty value is a variable of the caller's script that is not set.
std::string checkPath(const std::string& path) { return path.empty() ? "expected a path, found \"\"" : ""; }

// Without this end --data would take the path for a folder's.
std::string checkDescriptor(const std::string& path) {
  return path.ends_with(".json") ? "" : "expected a path that ends in .json, found \"" + path + "\"";
}

void toUpper(std::string* text) {
  std::transform(text->begin(), text->end(), text->begin(), [](unsigned char c) { return std::toupper(c); });
}

// Everything behind the first "--" of a run is the program and its arguments, untouched.
std::vector<std::string> takeProgram(std::vector<std::string>* arguments) {
  const auto mark = std::find(arguments->begin(), arguments->end(), "--");
  if (mark == arguments->end()) return {};
  std::vector<std::string> program(mark + 1, arguments->end());
  arguments->erase(mark, arguments->end());
  return program;
}

// Prints what was asked for, or what is wrong in one line.
int finish(const CLI::App& app, const CLI::ParseError& end) {
  if (end.get_exit_code() == 0) return app.exit(end);
  std::string message = end.what();
  std::replace(message.begin(), message.end(), '\n', ' ');
  printError(message + "; see kovadx --help");
  return kOwnFailure;
}

void addRun(CLI::App* app, RunOptions& options) {
  CLI::App* run =
      app->add_subcommand("run",
                          "Start an engine, run a program beside it, and end as the program ends:\n"
                          "kovadx run [--data DATAPACKAGE] [--save FILE.json] [--output REPORT.html] [--name NAME] "
                          "[--home DIR] -- PROGRAM ARGS...\n"
                          "or run a script in a runtime that the engine hosts, inside its own process or as a child:\n"
                          "kovadx run --language LANGUAGE [--process inside|child] [OPTIONS] SCRIPT");
  run->footer(kExamples);
  run->add_option("--data", options.data, "The Data Package to open: datapackage.json or its folder")->check(checkPath);
  run->add_option("--save", options.save,
                  "The descriptor of the Data Package that the active data set is written to when the program has "
                  "succeeded")
      ->check(checkPath)
      ->check(checkDescriptor);
  run->add_option("--name", options.name, "The instance name that the program serves (EXTERNAL)")->check(checkName);
  run->add_option("--language", options.language,
                  "The language of SCRIPT, which runs in the runtime that the home folder's configuration names")
      ->check(checkName)
      ->excludes("--name");
  run->add_option("--process", options.process,
                  "Where that runtime is: inside kovadx, or a child process of its own (R and JAVAEXTENSION are "
                  "children, the others inside)")
      ->check(CLI::IsMember({"inside", "child"}))
      ->needs("--language");
  run->add_option("SCRIPT", options.script, "The script, with --language")->check(checkPath);
  run->add_option("--home", options.home, "The home folder, which holds the library (the folder of kovadx)")
      ->check(checkPath);
  run->add_option("--output", options.output, "The HTML file that the report of all output is written to")
      ->check(checkPath);
}

CLI::App* addDecode(CLI::App* app, DecodeOptions& options) {
  CLI::App* decode = app->add_subcommand("decode", "Print the messages of a file as text: kovadx decode FILE");
  decode->add_option("FILE", options.path, "The bytes of one message or several")->required()->check(checkPath);
  return decode;
}

CLI::App* addExplain(CLI::App* app, ExplainOptions& options) {
  CLI::App* explain = app->add_subcommand("explain", "Tell what an error code means: kovadx explain [CODE]");
  explain->add_option("CODE", options.code, "The code; all of them when it is left out");
  return explain;
}

CLI::App* addMonitor(CLI::App* app, MonitorOptions& options) {
  CLI::App* monitor =
      app->add_subcommand("monitor", "Show the state of a pipe suite once a second: kovadx monitor [--count N] NAME");
  monitor->add_option("NAME", options.name, "What its pipe names begin with: process-id text and instance name")
      ->required()
      ->check(checkSuiteName);
  monitor->add_option("--count", options.count, "How many lines to print (until Ctrl-C)");
  return monitor;
}

// What is missing or too much beside the options; empty when all is there.
std::string problemOf(const RunOptions& options) {
  if (options.language.empty()) {
    if (!options.script.empty())
      return "The following argument was not expected: " + options.script + "; see kovadx --help";
    if (!options.program.empty()) return "";
    return "no program to run; name it behind \"--\", as in: kovadx run -- PROGRAM ARGS...";
  }
  if (!options.program.empty())
    return "--language runs a script and no program beside it; leave out what stands behind \"--\"";
  if (options.script.empty()) return "no script to run; name it, as in: kovadx run --language PYTHON SCRIPT";
  return "";
}

}  // namespace

std::optional<Command> parseCommandLine(std::vector<std::string> arguments, int* exitCode) {
  RunOptions run;
  DecodeOptions decode;
  ExplainOptions explain;
  MonitorOptions monitor;
  if (!arguments.empty() && arguments.front() == "run") run.program = takeProgram(&arguments);
  CLI::App app("Runs programs that talk to a statistics engine.", "kovadx");
  app.allow_windows_style_options(false);  // A path may begin with "/".
  app.set_version_flag("--version", std::string("kovadx ") + KOVADX_VERSION, "Print the version and end");
  app.footer(kExamples);
  app.require_subcommand(1);
  addRun(&app, run);
  const CLI::App* const toDecode = addDecode(&app, decode);
  const CLI::App* const toExplain = addExplain(&app, explain);
  const CLI::App* const toMonitor = addMonitor(&app, monitor);
  try {
    std::reverse(arguments.begin(), arguments.end());  // The parser takes them from the back.
    app.parse(arguments);
  } catch (const CLI::ParseError& end) {
    *exitCode = finish(app, end);
    return std::nullopt;
  }
  if (toDecode->parsed()) return decode;
  if (toExplain->parsed()) return explain;
  if (toMonitor->parsed()) return monitor;
  if (const std::string problem = problemOf(run); !problem.empty()) {
    printError(problem);
    *exitCode = kOwnFailure;
    return std::nullopt;
  }
  toUpper(&run.name);
  toUpper(&run.language);
  return run;
}

void printError(const std::string& message) {
  std::fprintf(stderr, "kovadx: %s\n", message.c_str());
  std::fflush(stderr);
}

}  // namespace kova::program
