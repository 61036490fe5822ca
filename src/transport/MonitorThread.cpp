#include "transport/MonitorThread.h"

#include <cstring>

#include "platform/os/error.h"
#include "transport/KovaPipe.h"
#include "transport/monitor_relay.h"
#include "transport/stale_pipe.h"

using namespace kova;

namespace {

constexpr int kOpenAttempts = 20;
constexpr unsigned int kOpenPauseMs = 100;
constexpr unsigned int kWordPauseMs = 1000;
constexpr unsigned int kGoodbyeMs = 500;

}  // namespace

MonitorThread::MonitorThread(const std::string& pipeName, int role)
    : pipe_(std::make_unique<KovaPipe>(pipeName)), name_(pipeName), peerAlive_(role == kWriter), role_(role) {
  if (role_ != kReader) return;
  pipe_->CreatePipe();
  pipe_->DisconnectPipe();
}

MonitorThread::~MonitorThread() {
  stop();
  joinThread();
  pipe_->ClosePipe();
  if (role_ != kReader) removeStalePipe(name_);
}

void MonitorThread::stop() {
  stopRequested_ = true;
  stop_.Signal();
  // A thread that has yet to begin will see the request before it waits. Nothing is cancelled then: what it has just
  // opened must take its goodbye.
  if (finished_) return;
  if (role_ != kReader) leftPipe_.WaitForSignal(kGoodbyeMs);
  // Releases a reader, and a writer whose pipe is full because nobody reads.
  pipe_->CancelWait();
}

unsigned int MonitorThread::Run() {
  leftPipe_.Unsignal();  // Before the thread counts as begun: who stops it waits for this.
  finished_ = false;
  if (role_ == kReader) {
    readWords();
  } else {
    writeWords();
  }
  leftPipe_.Signal();
  if (!normalEnd_ && callback_ != nullptr) callback_(this);
  finished_ = true;
  return 0;
}

// A stop does not keep the first attempt from being made: a reader that is there shall have its goodbye.
bool MonitorThread::openPipe() {
  for (int attempt = 1;; ++attempt) {
    if (pipe_->TryCreateFile() == 0) return true;
    if (attempt == kOpenAttempts || stopRequested_) return false;
    stop_.WaitForSignal(kOpenPauseMs);
  }
}

void MonitorThread::writeWords() {
  if (!openPipe()) {
    peerAlive_ = false;
    return;
  }
  for (;;) {
    const bool isLast = stopRequested_;
    const std::int32_t word = isLast ? kWordGoodbye : kWordAlive;
    if (pipe_->WriteData(&word, sizeof word, nullptr) != 0) {
      if (!stopRequested_) noteVanished();
      return;
    }
    if (isLast) return;
    stop_.WaitForSignal(kWordPauseMs);
  }
}

void MonitorThread::readWords() {
  // Whatever this gives: the first read tells the same.
  if (!stopRequested_) pipe_->ConnectPipe();
  bool isRest = false;
  while (!stopRequested_) {
    char area[kPipeChunk];
    unsigned long count = 0;
    const int result = pipe_->ReadData(kPipeChunk, area, count);
    const bool isCut = result == static_cast<int>(os::kMoreData);
    if (result != 0 && !isCut) {
      if (!stopRequested_) noteVanished();
      return;
    }
    std::int32_t word = 0;
    const bool isWord = !isRest && count >= sizeof word;
    isRest = isCut;
    if (isWord) std::memcpy(&word, area, sizeof word);
    if (isWord && !takeWord(word)) return;
  }
}

// False when it was the last one. Words that are not known say nothing.
bool MonitorThread::takeWord(std::int32_t word) {
  if (word != kWordAlive && word != kWordGoodbye) return true;
  peerAlive_ = word == kWordAlive;
  tellOnlooker(name_, word);
  return word == kWordAlive;
}

void MonitorThread::noteVanished() {
  normalEnd_ = false;
  peerAlive_ = false;
  if (role_ == kReader) tellOnlooker(name_, kWordVanished);
}
