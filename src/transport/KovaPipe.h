// One end of one named message pipe, used in one direction by convention: the side that listens creates the pipe and
// waits for its peer, the other side opens it by name.
//
// An object owns the handle it holds and closes it when it is destroyed. One thread at a time uses it; CancelWait and
// DeclarePeerGone alone may be called on any thread, at any time of the object's life. Every wait blocks without limit
// unless ChangeToUnBlockMode was called.
//
// Results are 0 for success, one of the codes below, or a Windows error number passed through unchanged. Every failure
// writes one trace record, the pipe's name followed by the operation's label, with the error number.
#ifndef KOVADX_TRANSPORT_KOVAPIPE_H
#define KOVADX_TRANSPORT_KOVAPIPE_H

#include <mutex>
#include <string>

#include "export.h"

namespace kova {

constexpr int kPipeEmptyRead = 99103;    // A read gave no bytes where a message was expected.
constexpr int kPipeFailed = 99104;       // A pipe operation failed.
constexpr int kPipeWithoutName = 99106;  // A pipe without a name can not be created.

// The largest pipe message that is written, and the size of the pipes' buffers.
constexpr int kPipeChunk = 8192;

}  // namespace kova

class KOVADX_API KovaPipe {
 public:
  KovaPipe();
  explicit KovaPipe(std::string name);
  KovaPipe(const KovaPipe&) = delete;
  KovaPipe& operator=(const KovaPipe&) = delete;

  // Closes the pipe, then deletes a plain file that bears the pipe's literal name, if there is one.
  ~KovaPipe();

  // Server side: makes the pipe, of 8192-byte buffers. From then on it takes in one client, even before ConnectPipe.
  // 99106 without a name; 99104 when it can not be made.
  int CreatePipe();

  // Server side: waits for a client. 0 also when it was called before. A client that came before the call gives 535:
  // the connection is good, but the write-connected flag stays clear. Otherwise the error number.
  int ConnectPipe();

  // Server side: drops the client; the pipe can be connected again. 0 also when ConnectPipe was never called; 99104
  // when it fails.
  int DisconnectPipe();

  // Closes the handle and clears the flags; traced with 0. Always 0; nothing happens without a handle.
  int ClosePipe();

  // Client side: waits until a server end is free, without limit while all are busy, and opens it for reading and
  // writing. 99104 when there is no such pipe or it can not be opened.
  int KOVACreateFile();

  // As KOVACreateFile, but 231 at once, without a trace, while all server ends are taken: for callers that must be able
  // to end the wait.
  int TryCreateFile();

  // Client side, reading only: waits up to 100 times 100 ms for the pipe to come into being. 99104 when it never came
  // or can not be opened, the error number when the wait fails for another reason.
  int KOVACreateFileR();

  // Connects to the pipe of this name without waiting, to release a server that is blocked in ConnectPipe. Always 0,
  // and the write-connected flag is set, whatever came of it. Replaces the handle without closing the earlier one: use
  // an object of its own for it.
  int OpenPipeToWrite();
  int OpenPipeToUnBlockWrite();

  // Do nothing; always 0.
  int OpenPipeToRead();
  int OpenPipeToUnBlockRead();

  // Reads return whole messages from now on; 99104 when it fails.
  int ChangeReadMode();

  // Reads without data fail with 232 from now on instead of waiting; 99104 when it fails.
  int ChangeToUnBlockMode();

  // Reads one message of at most `size` bytes; the count is always stored. 234 when only a part of the message fitted;
  // the rest is read next. A message of no bytes gives 0 and a count of 0. Otherwise the error number: 6 without a
  // handle, 109 when the peer has closed, 536 when no client has come yet.
  //
  // A message that comes soon is taken without blocking: the wait first offers the processor to others for the time
  // that kova::YieldLimitUs tells.
  int ReadData(int size, void* buffer, unsigned long& read);

  // Writes `length` bytes as messages of 8192 bytes, the last one of what remains; one message of no bytes for 0.
  // *written (may be null) gets the size of the last message written. 99104 when a write fails or length is negative.
  int WriteData(const void* data, int length, unsigned long* written);

  // Waits until the peer has read everything, where the platform can. Always 0.
  int FlushPipe();

  // Wakes the thread that is blocked in an operation on the handle; that operation fails with 995, and so does every
  // later one that would have to wait, until the pipe is closed. Nothing without a handle.
  void CancelWait();

  // Tells that the peer's process has ended: ConnectPipe takes a client that came before that, ReadData what was
  // written before that, and both give 109 then instead of waiting. Holds until the pipe is disconnected or closed.
  // Nothing without a handle.
  void DeclarePeerGone();

  // The pipe's full name, "\\.\pipe\...". The pointer lives until the name is set anew or the object ends.
  std::string GetPipeName() const { return name_; }
  const char* GetPipeName(int& length) const;
  void SetPipeName(std::string name);

  // True when a handle is held.
  bool HasPipe() const;

  // True after a successful CreatePipe.
  bool IsPipeCreated() const { return created_; }

  // True after a successful ConnectPipe, and after OpenPipeToWrite and OpenPipeToUnBlockWrite.
  bool IsWritePipeConnected() const { return writeConnected_; }

 private:
  void TraceFailure(const char* label, unsigned int error) const noexcept;
  void Hold(void* handle);
  unsigned int CreateFileWaiting(unsigned int timeoutMs);

  // Null when there is none; all bits set (the platform's invalid handle) after an open that failed.
  void* handle_ = nullptr;
  std::string name_;
  bool writeConnected_ = false;
  bool connectTried_ = false;
  bool created_ = false;
  // Held where the handle changes or another thread uses it: what that thread uses is then not closed meanwhile.
  std::mutex handleGuard_;
};

#endif
