// The engine's side of one pair of API pipes, for tests of the client: it takes requests on a thread of its own, with
// pipe ends of its own, and answers each as the test tells.
//
// The test owns it. The request pipe exists once the constructor has returned. The thread ends with the client's end
// of the conversation, with an answer that closes, or in the destructor.
#ifndef KOVADX_TESTS_KIT_SCRIPTED_ENGINE_H
#define KOVADX_TESTS_KIT_SCRIPTED_ENGINE_H

#include <cstdint>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "message/CleXDSmb.h"
#include "transport/KovaPipe.h"

namespace kova::kit {

using Bytes = std::vector<char>;

// The bytes of a message as it would be sent.
inline Bytes imageOf(CleXDSmb& message) {
  int length = 0;
  message.ContructSendData();
  const char* const data = message.GetSendBuf(length);
  return Bytes(data, data + length);
}

class ScriptedEngine {
 public:
  struct Answer {
    Bytes bytes;               // Written as they are.
    bool closesAfter = false;  // Both pipes are closed then, as by an engine that dies.
  };
  using Script = std::function<Answer(const Bytes& request)>;

  // `base` is all of the pipes' names but "xdapi" and "xdapiresult".
  ScriptedEngine(const std::string& base, Script script)
      : requests_(base + "xdapi"), replies_(base + "xdapiresult"), script_(std::move(script)) {
    created_ = requests_.CreatePipe();
    if (created_ == 0) thread_ = std::thread([this] { serve(); });
  }
  ScriptedEngine(const ScriptedEngine&) = delete;
  ScriptedEngine& operator=(const ScriptedEngine&) = delete;

  ~ScriptedEngine() {
    if (!thread_.joinable()) return;
    // Releases the thread when no client has come; otherwise nothing comes of it.
    KovaPipe visitor(requests_.GetPipeName());
    visitor.OpenPipeToUnBlockWrite();
    visitor.ClosePipe();
    thread_.join();
  }

  // Opens the client's reply pipe, which must be there, and writes a first message that answers nothing; before any
  // request. 0, or why it could not be.
  int greet(const Bytes& message) {
    const int opened = replies_.KOVACreateFile();
    unsigned long written = 0;
    return opened != 0 ? opened : replies_.WriteData(message.data(), static_cast<int>(message.size()), &written);
  }

  // After a greeting: waits until the client has closed its reply pipe.
  void awaitDismissal() {
    char byte = 0;
    unsigned long count = 0;
    replies_.ReadData(1, &byte, count);
  }

  // Waits until the conversation has ended.
  void awaitEnd() {
    if (thread_.joinable()) thread_.join();
  }

  // What creating the request pipe gave; with another result than 0 nothing is served.
  int created() const { return created_; }

  // The requests so far, as they came.
  std::vector<Bytes> received() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return received_;
  }

 private:
  void serve() {
    requests_.ConnectPipe();
    Bytes request;
    while (readRequest(request) && answer(request)) {
    }
    requests_.ClosePipe();
    replies_.ClosePipe();
  }

  bool readRequest(Bytes& request) {
    request.clear();
    std::int32_t total = 4;
    while (static_cast<std::int32_t>(request.size()) < total) {
      char area[kPipeChunk];
      unsigned long count = 0;
      if (requests_.ReadData(kPipeChunk, area, count) != 0 || count == 0) return false;
      request.insert(request.end(), area, area + count);
      std::memcpy(&total, request.data(), sizeof total);
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    received_.push_back(request);
    return true;
  }

  bool answer(const Bytes& request) {
    Answer answer = script_(request);
    if (!replies_.HasPipe() && replies_.KOVACreateFile() != 0) return false;
    if (!answer.bytes.empty()) {
      unsigned long written = 0;
      replies_.WriteData(answer.bytes.data(), static_cast<int>(answer.bytes.size()), &written);
    }
    return !answer.closesAfter;
  }

  KovaPipe requests_;
  KovaPipe replies_;
  Script script_;
  int created_ = 0;
  mutable std::mutex mutex_;
  std::vector<Bytes> received_;
  std::thread thread_;
};

}  // namespace kova::kit

#endif
