#include "runtimes/python/worker_thread.h"

#include <thread>

namespace kova::python {

void WorkerThread::start() {
  const std::lock_guard lock(mutex_);
  if (started_) return;
  std::thread(&WorkerThread::serve, this).detach();
  started_ = true;
}

bool WorkerThread::tryRun(const Work& work) {
  std::unique_lock lock(mutex_);
  if (busy_) return false;
  busy_ = true;
  work_ = &work;
  workCame_.notify_one();
  workEnded_.wait(lock, [this] { return work_ == nullptr; });
  busy_ = false;
  return true;
}

void WorkerThread::serve() {
  std::unique_lock lock(mutex_);
  for (;;) {
    workCame_.wait(lock, [this] { return work_ != nullptr; });
    lock.unlock();
    (*work_)();
    lock.lock();
    work_ = nullptr;
    workEnded_.notify_one();
  }
}

}  // namespace kova::python
