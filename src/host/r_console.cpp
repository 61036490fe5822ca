#include "host/r_console.h"

#include <cstdint>
#include <utility>

#include "transport/KovaPipe.h"
#include "transport/watched_wait.h"

namespace kova {
namespace {

constexpr std::uint32_t kChunk = 4096;
constexpr std::string_view kPrompt = "> ";
constexpr std::string_view kContinuation = "+ ";
constexpr std::string_view kBrowser = "Browse[";
constexpr std::size_t kBrowserPrompt = 11;  // The length of the debugger's prompt with a level of one digit.
constexpr std::size_t kKeptOutput = 4096;

void keepEnd(std::string& text, std::size_t length) {
  if (text.size() > length) text.erase(0, text.size() - length);
}

}  // namespace

os::Error RConsole::open() {
  *this = RConsole();
  const os::Error error = os::BytePipeEnd::Create(&stdinRead_, &stdinWrite_);
  return error != os::kSuccess ? error : os::BytePipeEnd::Create(&stdoutRead_, &stdoutWrite_);
}

void RConsole::closeChildEnds() {
  stdinRead_ = {};
  stdoutWrite_ = {};
}

void RConsole::close() {
  stdinWrite_ = {};
  stdoutRead_ = {};
}

int RConsole::write(std::string_view text) {
  if (!isLost_) lastOutput_.clear();
  const os::Error error = stdinWrite_.Write(text.data(), static_cast<std::uint32_t>(text.size()));
  return error == os::kSuccess ? 0 : kPipeFailed;
}

int RConsole::awaitPrompt(PeerWatch* watch) {
  const WatchedWait wait(watch, &stdoutRead_);
  char chunk[kChunk];
  tail_.clear();
  do {
    std::uint32_t count = 0;
    isLost_ = stdoutRead_.Read(chunk, kChunk, &count) != os::kSuccess;
    if (isLost_) return kPipeFailed;
    tail_.append(chunk, count);
    keepEnd(tail_, kBrowserPrompt);
    lastOutput_.append(chunk, count);
    keepEnd(lastOutput_, kKeptOutput);
  } while (!notePrompt());
  return 0;
}

void RConsole::drain(PeerWatch* watch) {
  const WatchedWait wait(watch, &stdoutRead_);
  char chunk[kChunk];
  std::uint32_t count = 0;
  while (stdoutRead_.Read(chunk, kChunk, &count) == os::kSuccess) {
  }
}

// Deliberate: what a script prints can look like a prompt when a read ends with it.
bool RConsole::notePrompt() {
  if (tail_.ends_with(kContinuation)) {
    rContinuation_ = true;
    return true;
  }
  if (!tail_.ends_with(kPrompt)) return false;
  rInBrowser_ = tail_.size() == kBrowserPrompt && tail_.starts_with(kBrowser);
  rContinuation_ = false;
  return true;
}

}  // namespace kova
