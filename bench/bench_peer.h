// What the benchmarks of the exchange share: a second process in the engine's part, two raw pipes to it, and a fair
// comparison of two ways to do the same.
//
// The second process is the same program with arguments. It serves the raw pair and the message pipes, which are named
// as this process's client calls name them, on a thread each; a thread that waits blocked costs nothing.
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
};

// The instance name that client calls are given, and what all pipe names begin with.
constexpr const char* kInstanceName = "BENCH";
inline std::string pipePrefix() {
  char pid[16];
  std::snprintf(pid, sizeof pid, "%04x", os::CurrentProcessId());
  return std::string("\\\\.\\pipe\\") + pid + kInstanceName + "0";
}

// This process's side: makes the raw pair and starts the other process, which has its request pipe ready by then.
class Peer {
 public:
  Peer() {
    const std::string prefix = pipePrefix();
    os::CreateMessagePipe((prefix + "rawrequests").c_str(), kPipeChunk, &raw.out);
    os::CreateMessagePipe((prefix + "rawreplies").c_str(), kPipeChunk, &raw.in);
    os::ProcessStart start;
    start.program = os::ProgramPath();
    start.arguments = {kPeerArgument, prefix};
    start.endsWithParent = true;
    if (os::Process::Start(start, &process_) != os::kSuccess) {
      std::fputs("the second process can not be started\n", stderr);
      std::exit(1);
    }
    os::AcceptPeer(raw.out);
    os::AcceptPeer(raw.in);
  }

  ~Peer() {
    int code = 0;
    process_.Terminate();
    process_.Wait(os::kWaitForever, &code);
    os::ClosePipeHandle(raw.out);
    os::ClosePipeHandle(raw.in);
  }

  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  RawPair raw;

 private:
  os::Process process_;
};

// The other process's side: serves the raw pair on a second thread, and answers requests until the client has gone.
template <typename RawServer, typename Answer>
int runPeer(const std::string& prefix, RawServer serveRaw, Answer answer) {
  KovaPipe requests(prefix + "xdapi");
  KovaPipe replies(prefix + "xdapiresult");
  if (requests.CreatePipe() != 0) return 1;
  RawPair raw;
  os::OpenPipe((prefix + "rawrequests").c_str(), os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &raw.in);
  os::OpenPipe((prefix + "rawreplies").c_str(), os::PipeAccess::ReadWrite, os::WhenTaken::Wait, &raw.out);
  std::thread rawThread([&] { serveRaw(raw); });
  requests.ConnectPipe();
  for (;;) {
    CleXDSmb request;
    int status = 0;
    ReceiveMessage(&requests, request, &status);
    if (status != 0) break;
    CleXDSmb reply;
    answer(request, reply);
    if (SendData(&replies, reply, false) != 0) break;
  }
  rawThread.join();
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

// How long the work takes, in microseconds.
template <typename Work>
double timeOf(const Work& work) {
  const std::uint64_t start = os::TickUs();
  work();
  return static_cast<double>(os::TickUs() - start);
}

// Takes the times of the two ways, which they measure themselves, in turn and in the other order every other pair, so
// that what the machine does meanwhile meets both.
inline Comparison compareTimes(const std::function<double()>& floor, const std::function<double()>& ours,
                               int pairs = 15) {
  std::vector<double> floors;
  std::vector<double> our;
  std::vector<double> ratios;
  floor();
  ours();
  for (int pair = 0; pair < pairs; ++pair) {
    const bool floorFirst = pair % 2 == 0;
    if (floorFirst) floors.push_back(floor());
    our.push_back(ours());
    if (!floorFirst) floors.push_back(floor());
    ratios.push_back(our.back() / floors.back());
  }
  return {median(floors), median(our), median(ratios)};
}

// The same for two ways of which all counts.
inline Comparison compare(const std::function<void()>& floor, const std::function<void()>& ours, int pairs = 15) {
  return compareTimes([&] { return timeOf(floor); }, [&] { return timeOf(ours); }, pairs);
}

}  // namespace kova::bench

#endif
