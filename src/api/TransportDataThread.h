// The thread that moves a file of data for TransportData: it copies the one file to the place of the other, and then
// removes the first one when that was asked for. It uses no pipe and none of the caller's memory.
//
// Owned by FileTransfers. Only the owner's thread starts and destroys it; its destructor waits for the copy's end.
#ifndef KOVADX_API_TRANSPORTDATATHREAD_H
#define KOVADX_API_TRANSPORTDATATHREAD_H

#include <string>

#include "platform/PlugInThreadHot.h"

class TransportDataThread : public PlugInThreadHot {
 public:
  TransportDataThread(const char* source, const char* target, bool removesSource);
  ~TransportDataThread() override { joinThread(); }

 private:
  // 0, or why the data could not be moved, which is traced. The source is removed only when the copy is whole; what a
  // full disk leaves of a copy is removed.
  unsigned int Run() override;

  const std::string source_;
  const std::string target_;
  const bool removesSource_;
};

#endif
