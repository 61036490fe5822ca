// A thread that carries out what other threads hand to it, one piece of work after the other, and is never ended: it
// goes with the process. Any thread may hand work over. An object lives as long as the process does.
#ifndef KOVADX_RUNTIMES_PYTHON_WORKER_THREAD_H
#define KOVADX_RUNTIMES_PYTHON_WORKER_THREAD_H

#include <condition_variable>
#include <functional>
#include <mutex>

namespace kova::python {

class WorkerThread {
 public:
  using Work = std::function<void()>;

  WorkerThread() = default;
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;

  // Starts the thread, once. Throws std::system_error when the system has no thread left.
  void start();

  // Has the thread carry the work out, which must not throw, and waits for its end. False, with nothing done, when the
  // thread is busy, also when it is the thread itself that asks.
  bool tryRun(const Work& work);

 private:
  void serve();

  std::mutex mutex_;  // Guards what follows.
  std::condition_variable workCame_;
  std::condition_variable workEnded_;
  const Work* work_ = nullptr;  // What is to be done; null when that has ended.
  bool busy_ = false;
  bool started_ = false;
};

}  // namespace kova::python

#endif
