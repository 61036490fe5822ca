// The Python runtime of this process: whether it is started, and on which thread a block runs.
//
// The first block runs on a thread of the runtime's own, which is Python's main thread for as long as the process
// lives. While that thread is busy, or when the caller has the interpreter's lock, a block runs on the calling thread:
// a nested block comes while the outer one waits in a call of the engine, so the thread of the outer one is not to be
// had. In a process whose interpreter somebody else has started, every block runs on the calling thread.
//
// One object for the process, never destroyed. One call at a time, but that execute may be called while another execute
// waits in a call of the engine.
#ifndef KOVADX_RUNTIMES_PYTHON_RUNTIME_H
#define KOVADX_RUNTIMES_PYTHON_RUNTIME_H

#include <atomic>
#include <string>
#include <vector>

#include "runtimes/python/interpreter.h"
#include "runtimes/python/worker_thread.h"

namespace kova::python {

class Runtime {
 public:
  static Runtime& get();

  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  // Makes Python ready, and begins with an empty namespace unless it is started already. When Python can not be set up,
  // a line on the error output tells why, and isReady stays false.
  void start(const std::vector<std::string>& arguments);

  // Begins in a process whose Python is somebody else's, unless that was done: a program that drives an engine has its
  // own, and nobody starts the runtime there.
  void joinHost();

  bool isReady() const { return ready_; }

  // Runs a block: 0, 1 after an exception, or what it gave to sys.exit; 99115 when the runtime is not ready.
  int execute(const char* syntax);

  // Waits for the threads of the blocks and clears the namespace; the interpreter stays. 170 while a block runs.
  int stop();

 private:
  Runtime() = default;
  std::string setUp();
  int onPython(const std::function<int()>& work);

  WorkerThread worker_;
  Session session_;
  bool ownsPython_ = false;
  std::atomic<bool> ready_{false};
  std::atomic<int> running_{0};  // The blocks that run, each inside the one before.
};

}  // namespace kova::python

#endif
