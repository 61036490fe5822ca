#include "platform/posix/child_posix.h"

#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "platform/posix/error_posix.h"

namespace kova::os {
namespace {

constexpr int kSignalBase = 128;

// Children that were let go while they ran: looked after now and then, so that their ends do not pile up.
class Abandoned {
 public:
  void add(std::unique_ptr<Child> child) {
    const std::lock_guard<std::mutex> hold(mutex_);
    children_.push_back(std::move(child));
  }
  void collectEnded() {
    const std::lock_guard<std::mutex> hold(mutex_);
    int ignored = 0;
    std::erase_if(children_,
                  [&](const std::unique_ptr<Child>& child) { return child->collect(&ignored) != kWaitTimeout; });
  }

 private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<Child>> children_;
};

Abandoned& abandoned() {
  static Abandoned* const theAbandoned = new Abandoned;
  return *theAbandoned;
}

}  // namespace

Error Child::look(int* exitCode) const {
  siginfo_t info = {};
  const int options = WEXITED | WNOHANG | WNOWAIT;
  if (waitid(P_PIDFD, static_cast<id_t>(descriptor()), &info, options) != 0) return lastError();
  if (info.si_pid == 0) return kWaitTimeout;
  *exitCode = info.si_code == CLD_EXITED ? info.si_status : kSignalBase + info.si_status;
  return kSuccess;
}

Error Child::collect(int* exitCode) {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (!ended_) {
    const Error error = look(&exitCode_);
    if (error != kSuccess) return error;
    if (leadsGroup_) kill(-id_, SIGKILL);
    siginfo_t taken = {};
    waitid(P_PIDFD, static_cast<id_t>(descriptor()), &taken, WEXITED | WNOHANG);
    ended_ = true;
  }
  *exitCode = exitCode_;
  return kSuccess;
}

Error Child::signal(int number) const {
  // By number, because the C library's header for it can not be used from C++ everywhere.
  return syscall(SYS_pidfd_send_signal, descriptor(), number, nullptr, 0) == 0 ? kSuccess : lastError();
}

Error Child::terminate() {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (ended_) return kSuccess;
  int ignored = 0;
  const Error error = look(&ignored);
  // It may have been collected behind our back; then the group's number may be anybody's.
  const bool isThere = error == kSuccess || error == kWaitTimeout;
  if (leadsGroup_ && isThere) kill(-id_, SIGKILL);
  const Error killed = signal(SIGKILL);
  // No such process: it has ended and was waited for.
  return killed == errorOfErrno(ESRCH) ? kSuccess : killed;
}

void abandonChild(std::unique_ptr<Child> child) { abandoned().add(std::move(child)); }

void collectAbandoned() { abandoned().collectEnded(); }

Descriptor openProcess(pid_t id) { return Descriptor(static_cast<int>(syscall(SYS_pidfd_open, id, 0))); }

}  // namespace kova::os
