// The trace log: one line of text for each event, in a file of this process. DxTracer is the writer, DxTrace and
// DxTraceError are what the rest of the code calls. Tracing never fails its caller: what can not be written is lost,
// and no error is reported.
//
// A record is "<month>/<day>/<year> <hours>:<minutes>:<seconds> <name>>><message>". The file is complete up to its last
// record at any time, and other processes may read it meanwhile.
#ifndef KOVADX_TRACE_DXTRACER_H
#define KOVADX_TRACE_DXTRACER_H

#include <atomic>
#include <memory>
#include <string>
#include <string_view>

#include "export.h"

// A copy shares the file with its source; the last of them closes it. Any thread may write, and set the name: a nested
// run begins while another thread is in the outer one. Opening and copying come before other threads write.
class KOVADX_API DxTracer {
 public:
  // Silent, without a name.
  DxTracer();
  DxTracer(const DxTracer& other);
  DxTracer& operator=(const DxTracer& other);
  ~DxTracer();

  // Empties or makes the file and writes its first line. An empty path does nothing. A file that can not be opened
  // makes the tracer silent.
  void open(const std::string& path);

  // Writes one record.
  void write(const std::string& message);

  // The name at the head of each record. A reference stays valid when another name is set.
  const std::string& getXName() const;
  void setXName(const std::string& name);

  // True when there is a file to write to.
  bool isOpen() const { return stream_ != nullptr; }

 private:
  class Stream;

  std::atomic<const std::string*> name_;  // One of those that last as long as the process.
  std::shared_ptr<Stream> stream_;
};

// The tracer of this process; null at first. Setting stores the pointer and nothing else: its maker deletes it. Set
// before other threads trace.
KOVADX_API DxTracer* GetDxTracer();
KOVADX_API void SetDxTracer(DxTracer* tracer);

// Writes one record through the installed tracer: the message, or the message and " error code : <code>.". Without a
// tracer or without a file both return at once.
void DxTrace(std::string_view message);
void DxTraceError(std::string_view message, int code);

#endif
