// A runner: takes one runtime host through one run of a list of lines: pre action, execution, post action. This one
// runs the lines that it is given; KovaDX_P gets them from another process, CmdKovaDX from other threads of this one.
//
// The registry (XManager) owns the runners that it is given; others are their maker's. Host, options and lines belong
// to others and must outlive the runner's use of them. One thread drives a runner; isStopped, getReturnValue and the
// getters may be called beside it. Results are 0, a code of this library, or the host's code passed through unchanged.
#ifndef KOVADX_HOST_DRIVEX_H
#define KOVADX_HOST_DRIVEX_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "export.h"
#include "host/StatisticsX.h"
#include "platform/PlugInThreadHot.h"

class XConfigOptions;

namespace kova {

constexpr int kRunnerNotStarted = 99116;
constexpr int kPythonSetUpFailed = 999988;

}  // namespace kova

class KOVADX_API DriveX {
 public:
  // The thread of a runner that was started with startX: does one runX.
  class KOVADX_API DriveXThread : public PlugInThreadHot {
   public:
    explicit DriveXThread(DriveX* runner);
    // Waits for the thread's end.
    ~DriveXThread() override;

    void awaitEnd() { joinThread(); }

   protected:
    unsigned int Run() override;

   private:
    DriveX* runner_;
  };

  // A runner of the language `name`, with index 0 and no lines.
  DriveX(const std::string& name, StatisticsX* host, XConfigOptions* options);
  DriveX(const DriveX&) = delete;
  DriveX& operator=(const DriveX&) = delete;
  // Ends the runner's thread, when there is one.
  virtual ~DriveX();

  // Starts the runtime with the configured arguments, or those that the language has without any, unless the host is
  // initialised. The host's code.
  virtual int initializeX();

  // One run on the calling thread, after initializeX when the host is not initialised. Its code.
  virtual int invokeX();

 protected:
  // The run itself: the pre action; when that gave 0 the lines and the post action. The code of the lines, or that of
  // the pre action. Deliberate: a 1 from the pre action of the language "PYTHON" becomes 999988, and what the post
  // action gives changes nothing.
  virtual int runX();

  // Hands the lines, each with a line feed behind it, to the host as one text.
  virtual int ExecuteXLines(std::vector<std::string>& lines);

  // Wakes the runner's thread where it waits for somebody who has not come. This one's never does.
  virtual void releaseThread();

 public:
  // One runX on a thread of the runner's own. 99116 when that can not be started, or the last one still runs.
  int startX();

  // False from startX until the run has ended.
  bool isStopped() const { return !running_; }

  // Waits, without limit, until the run on the runner's thread has ended; returns at once without one.
  void awaitEnd();

  // Wakes the runner's thread where it waits for somebody who has not come; does nothing without one.
  void release();

  // Releases the runner's thread and waits for its end; returns at once without one. Destructors of classes with a runX
  // of their own call it, since the thread must not find that gone.
  void endThread();

  // What the last run on the runner's thread gave; 0 before startX.
  unsigned int getReturnValue() const;

  const std::string& XName() const { return name_; }

  // Which set of its pipe suite the runner uses; XManager sets it.
  int getIndex() const { return index_; }
  void setIndex(int index) { index_ = index; }

  // The lines of the next runs; they stay the caller's. Without any a run has none.
  void setSyntax(std::vector<std::string>& lines) { syntax_ = &lines; }

 protected:
  // The lines go before the runner does.
  void forgetSyntax() { syntax_ = nullptr; }

  void setRunning(bool running) { running_ = running; }
  StatisticsX* host() const { return host_; }

 private:
  StatisticsX* host_;
  XConfigOptions* options_;
  std::string name_;
  int index_ = 0;
  std::vector<std::string>* syntax_ = nullptr;
  std::unique_ptr<DriveXThread> thread_;
  std::atomic<bool> running_{false};
};

#endif
