#include "api/TransportDataThread.h"

#include "platform/os/file.h"
#include "trace/DxTracer.h"

using namespace kova;

namespace {

os::Error copyOrNothing(const std::string& source, const std::string& target) {
  const os::Error error = os::CopyPlainFile(source, target);
  if (error == os::kDiskFull) os::DeletePlainFile(target);
  return error;
}

}  // namespace

TransportDataThread::TransportDataThread(const char* source, const char* target, bool removesSource)
    : source_(source ? source : ""), target_(target ? target : ""), removesSource_(removesSource) {}

unsigned int TransportDataThread::Run() {
  os::Error error = copyOrNothing(source_, target_);
  if (error == os::kSuccess && removesSource_) error = os::DeletePlainFile(source_);
  if (error != os::kSuccess) DxTraceError("TransportData " + source_ + " to " + target_, static_cast<int>(error));
  return error;
}
