// R's console, played by a scripted program: it prompts, reads a line, answers it, prompts again.
#ifndef KOVADX_TESTS_HOST_FAKE_R_H
#define KOVADX_TESTS_HOST_FAKE_R_H

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/os_fake/os_fake.h"

namespace kova {

class FakeR {
 public:
  // What is printed upon a statement, up to and with the prompt.
  using Answer = std::function<std::string(const std::string& statement)>;

  // Registers it under that path. It ends with `exitCode` upon "q()", at the end of its input, and upon a statement
  // whose answer ends with kLast, which is not printed.
  void provide(const std::string& path, Answer answer = nullptr, int exitCode = 0) {
    statements.clear();
    fake::registerProgram(path, [this, answer, exitCode](const os::ProcessStart&) {
      fake::writeOutput("> ");
      while (const auto line = fake::readInputLine()) {
        statements.push_back(*line);
        if (*line == "q()") break;
        std::string text = answer ? answer(*line) : "> ";
        const bool isLast = text.ends_with(kLast);
        if (isLast) text.pop_back();
        fake::writeOutput(text);
        if (isLast) break;
      }
      return exitCode;
    });
  }

  static constexpr char kLast = '\4';

  // What it has read; to be looked at when it waits at a prompt or has ended.
  std::vector<std::string> statements;
};

}  // namespace kova

#endif
