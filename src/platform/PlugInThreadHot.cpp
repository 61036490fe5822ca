#include "platform/PlugInThreadHot.h"

#include <exception>
#include <future>
#include <memory>
#include <vector>

#include "platform/os/thread.h"

using namespace kova;

namespace {

constexpr std::uint32_t kNoLimit = 0xFFFFFFFF;
constexpr std::uint32_t kStopWaitMs = 3000;

// What a new thread is given: its object, and the gate that Start opens when it is done with that object.
struct Launch {
  PlugInThreadHot* thread;
  std::future<void> gate;
};

// The result of the work, 8 when it throws. The address checker does not watch this function: it takes the rethrow on a
// half unwound stack for a fault.
template <class Work>
__attribute__((no_sanitize("address"))) unsigned int resultOf(const Work& work) {
  try {
    return work();
  } catch (...) {
    // A thread that is ended by force unwinds too, but without an exception of the language, and must go on unwinding.
    if (std::current_exception() == nullptr) throw;
    return os::kNotEnoughMemory;
  }
}

bool hasWaited(os::Error error) { return error == os::kSuccess || error == os::kWaitTimeout; }

}  // namespace

PlugInThreadHot::PlugInThreadHot() = default;

PlugInThreadHot::~PlugInThreadHot() {
  autoDelete_ = false;
  if (hasThread_ && hasWaited(os::WaitThread(thread_, kStopWaitMs, nullptr))) SetHasThread(false);
  closeThread();
}

bool PlugInThreadHot::Start(unsigned long long (*)(unsigned long long)) {
  std::promise<void> gate;
  {
    const PlugInCriticalSection::Lock guard(&lock_);
    if (hasThread_) return false;
    closeThread();
    auto launch = std::make_unique<Launch>(Launch{this, gate.get_future()});
    if (os::LaunchThread(&threadMain, launch.get(), &thread_) != os::kSuccess) {
      thread_ = nullptr;
      return false;
    }
    static_cast<void>(launch.release());  // The new thread's own.
    hasThread_ = true;
  }
  // From here on the object may be gone.
  gate.set_value();
  return true;
}

std::uint32_t PlugInThreadHot::threadMain(void* argument) {
  const std::unique_ptr<Launch> launch(static_cast<Launch*>(argument));
  launch->gate.wait();
  PlugInThreadHot* const thread = launch->thread;
  return resultOf([thread] { return thread->Entry(); });
}

unsigned int PlugInThreadHot::Entry() {
  const unsigned int result = resultOf([this] { return Run(); });
  const bool deletesItself = autoDelete_;
  returnValue_ = result;
  // Unless the object deletes itself, its owner may do so as soon as this is stored.
  hasThread_ = false;
  if (deletesItself) {
    // Without a handle the destructors do not wait for the thread that they run on.
    closeThread();
    delete this;
  }
  return result;
}

unsigned int PlugInThreadHot::Run() { return 0; }

bool PlugInThreadHot::Attach() {
  if (thread_ != nullptr) return false;
  thread_ = os::CurrentThreadHandle();
  hasThread_ = true;
  autoDelete_ = false;
  return true;
}

bool PlugInThreadHot::Suspend() { return thread_ != nullptr && os::PauseThread(thread_) == os::kSuccess; }

bool PlugInThreadHot::Resume() { return thread_ != nullptr && os::ContinueThread(thread_) == os::kSuccess; }

bool PlugInThreadHot::Terminate() {
  const PlugInCriticalSection::Lock guard(&lock_);
  if (!hasThread_ || os::KillThread(thread_) != os::kSuccess) return false;
  hasThread_ = false;
  return true;
}

bool PlugInThreadHot::WaitForStop() { return WaitForStop(kStopWaitMs); }

bool PlugInThreadHot::WaitForStop(unsigned int milliseconds) {
  if (!hasThread_) return true;
  if (hasWaited(os::WaitThread(thread_, milliseconds, nullptr))) SetHasThread(false);
  return !hasThread_;
}

bool PlugInThreadHot::WaitForMultipleThreads(PlugInThreadHot** threads, int count) {
  return WaitForMultipleThreads(threads, count, kNoLimit);
}

bool PlugInThreadHot::WaitForMultipleThreads(PlugInThreadHot** threads, int count, unsigned int milliseconds) {
  std::vector<os::ThreadHandle> handles;
  for (int i = 0; i < count; ++i) {
    if (threads[i]->hasThread_) handles.push_back(threads[i]->thread_);
  }
  if (handles.empty()) return false;
  return os::WaitThreads(handles.data(), static_cast<std::uint32_t>(handles.size()), milliseconds) == os::kSuccess;
}

bool PlugInThreadHot::HasThread() const { return hasThread_; }

bool PlugInThreadHot::IsAutoDelete() const { return autoDelete_; }

void PlugInThreadHot::SetAutoDelete(bool autoDelete) { autoDelete_ = autoDelete; }

unsigned int PlugInThreadHot::GetReturnValue() const { return returnValue_; }

void PlugInThreadHot::joinThread() {
  if (thread_ == nullptr || thread_ == os::CurrentThreadHandle()) return;
  os::WaitThread(thread_, kNoLimit, nullptr);
  SetHasThread(false);
}

void PlugInThreadHot::SetHasThread(bool hasThread) {
  const PlugInCriticalSection::Lock guard(&lock_);
  hasThread_ = hasThread;
}

void PlugInThreadHot::closeThread() {
  if (thread_ != nullptr) os::CloseThread(thread_);
  thread_ = nullptr;
}
