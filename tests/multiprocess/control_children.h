// What the tests of the control channel and the monitors share: a line on which a test and a child tell each other how
// far they are, and time.
#ifndef KOVADX_TESTS_MULTIPROCESS_CONTROL_CHILDREN_H
#define KOVADX_TESTS_MULTIPROCESS_CONTROL_CHILDREN_H

#include <chrono>
#include <cstdlib>
#include <string>

#include "tests/kit/kit.h"
#include "transport/KovaPipe.h"

namespace kova {

// How often a test repeats itself: what the environment variable says, else its own number.
inline int roundsOf(const char* variable, int usual) {
  const char* const text = std::getenv(variable);
  return text == nullptr || *text == '\0' ? usual : std::atoi(text);
}

// One end of a pipe that carries short texts both ways.
class Line {
 public:
  // The test's end, made before the child is started.
  Line() : pipe_(kit::scratchName()) { pipe_.CreatePipe(); }
  // The child's.
  explicit Line(const std::string& name) : pipe_(name) { pipe_.KOVACreateFile(); }

  std::string name() const { return pipe_.GetPipeName(); }
  // Both wait for the other end first.
  void say(const std::string& text) {
    if (pipe_.IsPipeCreated()) pipe_.ConnectPipe();
    pipe_.WriteData(text.data(), static_cast<int>(text.size()), nullptr);
  }

  // The other end's next text; empty when the other end has gone.
  std::string hear() {
    if (pipe_.IsPipeCreated()) pipe_.ConnectPipe();
    char area[256];
    unsigned long count = 0;
    return pipe_.ReadData(sizeof area, area, count) == 0 ? std::string(area, count) : std::string();
  }

  // Tells how far this side is, and goes no further. Whoever started it ends it there.
  void stopHere() {
    say("here");
    hear();
  }

 private:
  KovaPipe pipe_;
};

class Stopwatch {
 public:
  double seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count(); }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

inline bool isConnected(int result) { return result == 0 || result == 535; }

}  // namespace kova

#endif
