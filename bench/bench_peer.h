// What the benchmarks of the exchange share: a second process, two raw pipes and two message pipes to it, and a fair
// comparison of two ways to do the same.
//
// The second process is the same program with arguments. It opens the four pipes that this one creates and serves the
// raw pair and the message pair on a thread each; a thread that waits blocked costs nothing.
#ifndef KOVADX_BENCH_BENCH_PEER_H
#define KOVADX_BENCH_BENCH_PEER_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "message/CleXDSmb.h"
#include "platform/os/clock.h"
#include "platform/os/file.h"
#include "platform/os/named_pipe.h"
#include "platform/os/process.h"
#include "transport/KovaPipe.h"
#include "transport/message_exchange.h"
#include "transport/yielding_wait.h"

namespace kova::bench {

constexpr const char* kPeerArgument = "--bench-peer";

// A raw pair: one pipe to write on, one to read from. Blocking, without anything above the seam.
struct RawPair {
  os::NativeHandle out = nullptr;
  os::NativeHandle in = nullptr;

  bool send(const void* data, int size) const {
    std::uint32_t written = 0;
    return os::WriteMessage(out, data, static_cast<std::uint32_t>(size), &written) == os::kSuccess;
  }
  // One pipe message; its size, or -1.
  int receive(void* data, int size) const {
    std::uint32_t read = 0;
    const os::Error error = os::ReadMessage(in, data, static_cast<std::uint32_t>(size), &read);
    return error == os::kSuccess ? static_cast<int>(read) : -1;
  }
  void close() const {
    os::ClosePipeHandle(out);
    os::ClosePipeHandle(in);
  }
};

inline std::string pipeName(const std::string& prefix, const char* pipe) { return prefix + pipe; }

// This process's side.
class Peer {
 public:
  explicit Peer(std::vector<std::string> arguments = {})
      : prefix_("\\\\.\\pipe\\kova_bench_" + std::to_string(os::CurrentProcessId())),
        requests(pipeName(prefix_, "requests")),
        replies(pipeName(prefix_, "replies")) {
    os::CreateMessagePipe(pipeName(prefix_, "rawrequests").c_str(), kPipeChunk, &raw.out);
    os::CreateMessagePipe(pipeName(prefix_, "rawreplies").c_str(), kPipeChunk, &raw.in);
    requests.CreatePipe();
    replies.CreatePipe();
    os::ProcessStart start;
    start.program = os::ProgramPath();
    start.arguments = {kPeerArgument, prefix_};
    start.arguments.insert(start.arguments.end(), arguments.begin(), arguments.end());
    start.endsWithParent = true;
    if (os::Process::Start(start, &process_) != os::kSuccess) {
      std::fputs("the second process can not be started\n", stderr);
      std::exit(1);
    }
    os::AcceptPeer(raw.out);
    os::AcceptPeer(raw.in);
    requests.ConnectPipe();
    replies.ConnectPipe();
  }

  // The other side ends when its pipes do.
  ~Peer() {
    raw.close();
    requests.ClosePipe();
    replies.ClosePipe();
    int code = 0;
    process_.Wait(os::kWaitForever, &code);
  }

  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  // One call through the message exchange; its transport status.
  int call(CleXDSmb& request, CleXDSmb& reply) {
    const int sent = SendData(&requests, request, true);
    int status = 0;
    if (sent == 0) ReceiveMessage(&replies, reply, &status);
    return sent != 0 ? sent : status;
  }

 private:
  std::string prefix_;
  os::Process process_;

 public:
  RawPair raw;
  KovaPipe requests;
  KovaPipe replies;
};

// The other process's side: connects, then serves the raw pair on a second thread.
template <typename RawServer, typename MessageServer>
int runPeer(const std::string& prefix, RawServer serveRaw, MessageServer serveMessages) {
  RawPair raw;
  os::OpenPipe(pipeName(prefix, "rawrequests").c_str(), os::PipeAccess::ReadWrite, &raw.in);
  os::OpenPipe(pipeName(prefix, "rawreplies").c_str(), os::PipeAccess::ReadWrite, &raw.out);
  KovaPipe requests(pipeName(prefix, "requests"));
  KovaPipe replies(pipeName(prefix, "replies"));
  if (requests.KOVACreateFile() != 0 || replies.KOVACreateFile() != 0) return 1;
  std::thread rawThread([&] { serveRaw(raw); });
  serveMessages(requests, replies);
  rawThread.join();
  raw.close();
  return 0;
}

// Minor page faults of this process so far; -1 where the platform does not tell.
inline std::int64_t minorFaults() {
  std::ifstream stat("/proc/self/stat");
  std::string text;
  if (!std::getline(stat, text)) return -1;
  std::size_t at = text.rfind(')');
  for (int field = 2; field < 10 && at != std::string::npos; ++field) at = text.find(' ', at + 1);
  return at == std::string::npos ? -1 : std::stoll(text.substr(at));
}

inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? 0.0 : values[values.size() / 2];
}

// Medians over the pairs, times in microseconds.
struct Comparison {
  double floorUs = 0;
  double oursUs = 0;
  double ratio = 0;
};

// Times the two ways in turn, in the other order every other pair, so that what the machine does meanwhile meets both.
inline Comparison compare(const std::function<void()>& floor, const std::function<void()>& ours, int pairs = 15) {
  const auto timed = [](const std::function<void()>& work) {
    const std::uint64_t start = os::TickUs();
    work();
    return static_cast<double>(os::TickUs() - start);
  };
  std::vector<double> floors;
  std::vector<double> our;
  std::vector<double> ratios;
  floor();
  ours();
  for (int pair = 0; pair < pairs; ++pair) {
    const bool floorFirst = pair % 2 == 0;
    if (floorFirst) floors.push_back(timed(floor));
    our.push_back(timed(ours));
    if (!floorFirst) floors.push_back(timed(floor));
    ratios.push_back(our.back() / floors.back());
  }
  return {median(floors), median(our), median(ratios)};
}

}  // namespace kova::bench

#endif
