// The far side of the pipes that a host opens to a process of its own, step by step: what the program "startx" does,
// played by a scripted program.
//
// One thread uses it, mostly that of the program's body; its pipe ends are then that program's, and go with it.
#ifndef KOVADX_TESTS_HOST_FAKE_STARTX_H
#define KOVADX_TESTS_HOST_FAKE_STARTX_H

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "message/CleXDSmb.h"
#include "platform/os/named_pipe.h"
#include "transport/DXCmdDispatcher.h"
#include "transport/KovaPipe.h"
#include "transport/message_exchange.h"

namespace kova {

class FakeStartx {
 public:
  // What runs the syntax: its text, or "<none>" when the message has no text. The result is the run's.
  using Execute = std::function<int(const std::string& syntax)>;

  explicit FakeStartx(const std::string& language, Execute execute = nullptr)
      : base_("\\\\.\\pipe\\1a2b" + language),
        requests_(base_ + "_s"),
        answers_(base_ + "_c"),
        execute_(std::move(execute)) {
    requests_.CreatePipe();
  }

  // Waits until the engine listens.
  static void awaitEngine(const std::string& language) {
    const std::string name = "\\\\.\\pipe\\1a2b" + language + "_c";
    while (os::AwaitServer(name.c_str(), 0) != os::kSuccess) std::this_thread::yield();
  }

  void connect() {
    awaitEngine(base_.substr(std::string("\\\\.\\pipe\\1a2b").size()));
    answers_.KOVACreateFile();
    requests_.ConnectPipe();
  }

  // The key of the next command; 0 when none comes any more.
  int command() {
    CleXDSmb request;
    if (ReceiveData(&requests_, request, true) != 0) return 0;
    const std::vector<int> keys = request.GetLongData().GetData();
    return keys.size() == 1 ? keys.front() : 0;
  }

  void answer(int code = 0) {
    CleXDSmb reply;
    reply.SetErrorCode(code);
    SendData(&answers_, reply, false);
  }

  // A level's pipes; those of the first one stay for its next run.
  void raise() {
    if (++index_ < static_cast<int>(levels_.size())) return;
    levels_.push_back(std::make_unique<Level>(base_ + std::to_string(index_)));
    levels_.back()->syntax.CreatePipe();
  }
  void lower() {
    if (index_-- > 0) levels_.pop_back();
  }

  void tell(int code) {
    CleXDSmb message;
    message.SetErrorCode(code);
    SendData(&level().result, message, false);
  }

  std::string syntax() {
    KovaPipe& pipe = level().syntax;
    pipe.ConnectPipe();
    CleXDSmb message;
    ReceiveData(&pipe, message, true);
    const std::vector<std::string> texts = message.GetStringData().GetData();
    return texts.empty() ? "<none>" : texts.front();
  }

  // Carries out the next command, with the whole run of a set-up. Its key; 0 when none comes any more.
  int step() {
    const int key = command();
    if (key == 0) return 0;
    if (key == DXCmdDispatcher::kSetupDXRun) raise();
    answer();
    if (key == DXCmdDispatcher::kExitDxRun) lower();
    if (key != DXCmdDispatcher::kSetupDXRun) return key;
    tell(0);
    const std::string text = syntax();
    tell(execute_ ? execute_(text) : 0);
    return key;
  }

  // Carries out commands until one with that key is answered, or none comes any more.
  void serveUntil(int lastKey) {
    for (int key = step(); key != 0 && key != lastKey;) key = step();
  }

  // A whole life.
  int serve() {
    connect();
    serveUntil(DXCmdDispatcher::kStopDX);
    return 0;
  }

 private:
  struct Level {
    explicit Level(const std::string& base) : syntax(base + "syntax"), result(base + "syntaxresult") {}
    KovaPipe syntax;
    KovaPipe result;
  };
  Level& level() { return *levels_[static_cast<std::size_t>(index_)]; }

  std::string base_;
  KovaPipe requests_;
  KovaPipe answers_;
  Execute execute_;
  int index_ = -1;
  std::vector<std::unique_ptr<Level>> levels_;  // Entry i serves index i.
};

}  // namespace kova

#endif
