// What can be seen of a pipe suite from outside, without taking part in it.
//
// Each pipe of a suite has room for its two ends alone, so none is ever opened here: whether it is there tells that the
// process which made it lives. The words of life are passed on by the monitors themselves, to pipes that are made here.
#ifndef KOVADX_PROGRAMS_KOVADX_SUITE_VIEW_H
#define KOVADX_PROGRAMS_KOVADX_SUITE_VIEW_H

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "platform/os/named_pipe.h"

namespace kova::program {

// Listens to what one monitor's reading end passes on. Owns its pipe and its thread.
class WordListener {
 public:
  struct Heard {
    std::int32_t word;
    std::uint64_t atMs;  // As os::TickMs tells.
  };

  WordListener() = default;
  WordListener(const WordListener&) = delete;
  WordListener& operator=(const WordListener&) = delete;
  ~WordListener();

  // Begins. 231 when somebody else listens already, else why the pipe could not be made.
  os::Error start(const std::string& monitorName);

  // The last word; nothing before the first.
  std::optional<Heard> lastHeard() const;

 private:
  void listen();
  void takeWord();

  os::NativeHandle pipe_ = nullptr;
  std::thread thread_;
  mutable std::mutex mutex_;
  std::optional<Heard> heard_;
};

// One suite, by the text that all its pipe names begin with. One thread uses it.
class SuiteView {
 public:
  explicit SuiteView(const std::string& suiteName);

  // Begins to listen to both monitors; as WordListener::start.
  os::Error start();

  // The present state as one line of text, without a line end: the side of the engine and that of the runtime, each
  // with those of its pipes that are there, and the last word in each direction.
  std::string state() const;

 private:
  std::string prefix_;
  WordListener toRuntime_;
  WordListener toEngine_;
};

}  // namespace kova::program

#endif
