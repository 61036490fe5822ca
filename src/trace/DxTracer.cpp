#include "trace/DxTracer.h"

#include <atomic>
#include <cstdio>
#include <ctime>
#include <exception>
#include <mutex>
#include <set>

#include "platform/PlugInCriticalSection.h"
#include "platform/os/clock.h"
#include "platform/os/file.h"

namespace {

constexpr const char* kBanner =
    "****************************************TRACE BEGIN****************************************\n";

// The date and time of the classic locale ("%x %X "), whatever locale the host program has set.
std::string timeStamp() {
  const std::tm now = kova::os::LocalTime();
  char text[32];
  return std::string(text, std::strftime(text, sizeof text, "%m/%d/%y %H:%M:%S ", &now));
}

// A copy of the name for the life of the process: a record under way may still read the name before it. There are as
// many as the process has languages.
const std::string* lasting(const std::string& name) {
  static std::mutex lock;
  static auto* const names = new std::set<std::string>;
  const std::lock_guard<std::mutex> guard(lock);
  return &*names->insert(name).first;
}

std::atomic<DxTracer*> installedTracer{nullptr};

}  // namespace

// The open file, and the lock that keeps each record in one piece.
class DxTracer::Stream {
 public:
  explicit Stream(std::FILE* file) : file_(file) {}
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() { std::fclose(file_); }

  void writeLine(const std::string& line) {
    const PlugInCriticalSection::Lock guard(&lock_);
    std::fwrite(line.data(), 1, line.size(), file_);
    std::fflush(file_);
  }

  // The time is taken inside the lock: records stand in the order of their times.
  void writeRecord(const std::string& name, const std::string& message) {
    const PlugInCriticalSection::Lock guard(&lock_);
    writeLine(timeStamp() + name + ">>" + message + '\n');
  }

 private:
  PlugInCriticalSection lock_;
  std::FILE* file_;
};

DxTracer::DxTracer() : name_(lasting("")) {}

DxTracer::DxTracer(const DxTracer& other) : name_(other.name_.load()), stream_(other.stream_) {}

DxTracer& DxTracer::operator=(const DxTracer& other) {
  name_ = other.name_.load();
  stream_ = other.stream_;
  return *this;
}

DxTracer::~DxTracer() = default;

void DxTracer::open(const std::string& path) {
  if (path.empty()) return;
  stream_.reset();
  std::FILE* const file = kova::os::OpenFile(path, "w", nullptr);
  if (file == nullptr) return;
  stream_ = std::make_shared<Stream>(file);
  stream_->writeLine(kBanner);
}

void DxTracer::write(const std::string& message) {
  if (!stream_) return;
  try {
    stream_->writeRecord(getXName(), message);
  } catch (const std::exception&) {
    // A record that there is no memory for is lost like one that there is no disk for.
    return;
  }
}

const std::string& DxTracer::getXName() const { return *name_; }

void DxTracer::setXName(const std::string& name) { name_ = lasting(name); }

DxTracer* GetDxTracer() { return installedTracer.load(std::memory_order_acquire); }

void SetDxTracer(DxTracer* tracer) { installedTracer.store(tracer, std::memory_order_release); }

// Nothing is put together for a trace that nobody writes.
void DxTrace(std::string_view message) {
  DxTracer* const tracer = GetDxTracer();
  if (tracer == nullptr || !tracer->isOpen()) return;
  tracer->write(std::string(message));
}

void DxTraceError(std::string_view message, int code) {
  DxTracer* const tracer = GetDxTracer();
  if (tracer == nullptr || !tracer->isOpen()) return;
  tracer->write(std::string(message) + " error code : " + std::to_string(code) + '.');
}
