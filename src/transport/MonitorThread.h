// Tells one side of a connection whether the process at the other side is still there. One end writes a word a second
// into a pipe of its own, the other end reads the words and notices a goodbye or a broken pipe.
//
// A suite, or whoever made it, owns it. Start, stop, the questions and the destructor may be called on any thread but
// the monitor's own; on that one run the end callback, which may ask and stop, but not destroy.
#ifndef KOVADX_TRANSPORT_MONITORTHREAD_H
#define KOVADX_TRANSPORT_MONITORTHREAD_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "export.h"
#include "platform/PlugInSynchEvent.h"
#include "platform/PlugInThreadHot.h"

class KovaPipe;

class KOVADX_API MonitorThread : public PlugInThreadHot {
 public:
  using EndCallback = void (*)(MonitorThread*);

  static constexpr int kWriter = 0;
  static constexpr int kReader = 1;

  // A writer counts its peer as alive; a reader creates the pipe. Neither waits: that is the thread's work.
  MonitorThread(const std::string& pipeName, int role);

  // Stops, waits for the thread's real end, closes the pipe. Takes less than a second, whatever the peer does.
  ~MonitorThread() override;

  // What is called, on the monitor's thread, when the peer vanishes: the pipe breaks without a goodbye, and nobody has
  // asked this end to stop. Null for nothing. Set before Start.
  void setEndCallback(EndCallback callback) { callback_ = callback; }

  // Asks the thread to end, for good: a start later on ends at once. A writer says goodbye first and is given half a
  // second for it; a reader ends where it is.
  void stop();

  // False once the peer has vanished.
  bool isNormalEnd() const { return normalEnd_; }

  // A reader: the last word was the one that says so. A writer: it could open the pipe and the peer has not vanished.
  bool isPeerAlive() const { return peerAlive_; }

  // True before the thread runs, when it has done its work, and from stop on.
  bool isStopped() const { return stopRequested_ || finished_; }

 protected:
  unsigned int Run() override;

 private:
  bool openPipe();
  void writeWords();
  void readWords();
  bool takeWord(std::int32_t word);
  void noteVanished();

  std::unique_ptr<KovaPipe> pipe_;
  std::string name_;
  std::atomic<bool> normalEnd_{true};
  std::atomic<bool> peerAlive_;
  std::atomic<bool> finished_{true};
  int role_;
  EndCallback callback_ = nullptr;
  std::atomic<bool> stopRequested_{false};
  PlugInSynchEvent stop_{true, false, nullptr};
  PlugInSynchEvent leftPipe_{true, true, nullptr};  // Signalled while the thread does not use the pipe.
};

#endif
