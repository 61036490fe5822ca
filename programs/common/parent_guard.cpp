#include "programs/common/parent_guard.h"

#include <cstdio>
#include <mutex>

#include "platform/os/process.h"

namespace kova::program {

void tellEnd(const std::string& why) {
  os::OutliveOutput();  // Whoever has read it may be what has ended.
  std::fprintf(stderr, "%s; this process ends with all that it has started\n", why.c_str());
  std::fflush(stderr);
}

void endWithChildren(const std::string& why) {
  static std::mutex telling;  // Never given back.
  telling.lock();
  tellEnd(why);
  os::EndWithChildren();
}

ParentGuard::ParentGuard(const std::string& why, void (*end)(const std::string& why)) {
  if (os::ProcessWatch::OpenParent(&parent_) != os::kSuccess) return;
  thread_ = std::thread([this, why, end] {
    if (parent_.Wait() == os::kSuccess) end(why);
  });
}

ParentGuard::~ParentGuard() {
  parent_.Cancel();
  if (thread_.joinable()) thread_.join();
}

}  // namespace kova::program
