// The conversation with R's console: statements go to its input, and what it prints is read until it prompts for the
// next one.
//
// The host of R owns it; one thread uses it. The process itself is the host's.
#ifndef KOVADX_HOST_R_CONSOLE_H
#define KOVADX_HOST_R_CONSOLE_H

#include <string>
#include <string_view>

#include "platform/os/byte_pipe.h"
#include "platform/os/error.h"

namespace kova {

class PeerWatch;

class RConsole {
 public:
  // Makes the two pipes, in place of those that were there; the flags are clear then. The child's ends are held until
  // closeChildEnds.
  os::Error open();

  // What the child's standard streams become.
  const os::BytePipeEnd* childInput() const { return &stdinRead_; }
  const os::BytePipeEnd* childOutput() const { return &stdoutWrite_; }
  void closeChildEnds();

  // Closes this side's ends.
  void close();

  // Writes a text to R's input. 0; 99104.
  int write(std::string_view text);

  // Reads until R prompts, for a new statement or for the rest of one, and notes which prompt it was. 0; 99104 when R
  // has closed its output. With a watch it does not wait for processes that R has left behind.
  int awaitPrompt(PeerWatch* watch);

  // R has got its last statement. A statement that is still open, into which that went, ends R too.
  void endInput() { stdinWrite_ = {}; }

  // Reads what R still prints until it has ended.
  void drain(PeerWatch* watch);

  // Whether the last prompt was the debugger's, or asked for the rest of a statement. The latter stays set until the
  // next prompt for a new statement.
  bool isInBrowser() const { return rInBrowser_; }
  bool isInContinuation() const { return rContinuation_; }

  // The end of what R has printed since the last statement, for who has to tell how R has ended: statements that came
  // too late for it do not count.
  const std::string& lastOutput() const { return lastOutput_; }

 private:
  bool notePrompt();

  os::BytePipeEnd stdinRead_;
  os::BytePipeEnd stdinWrite_;
  os::BytePipeEnd stdoutRead_;
  os::BytePipeEnd stdoutWrite_;
  bool rInBrowser_ = false;
  bool rContinuation_ = false;
  bool isLost_ = false;  // R has closed its output.
  std::string tail_;     // Of what came since the last prompt: a prompt may come in two pieces.
  std::string lastOutput_;
};

}  // namespace kova

#endif
