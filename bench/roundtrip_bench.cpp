// One call of the size of GetVariableCount through SendData and ReceiveData, against a raw ping-pong of the same bytes
// over the same kind of pipes, in one run. The floor always blocks; the call is timed with a blocking and with the
// bounded yielding wait, on both sides, idle and with 100 us of work in the other process.
//
// Both processes on one core: taskset -c 0 roundtrip_bench.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_peer.h"

namespace {

using kova::bench::Comparison;
using kova::bench::Peer;
using kova::bench::RawPair;

constexpr int kRequestBytes = 56;
constexpr int kReplyBytes = 60;
constexpr int kCalls = 1000;

// What the second process is to do from now on, told by a call of its own.
constexpr int kSetUp = 1000000;

void work(std::uint32_t microseconds) {
  const std::uint64_t start = kova::os::TickUs();
  while (kova::os::TickUs() - start < microseconds) {
  }
}

void serveRaw(const RawPair& pair) {
  char request[kRequestBytes];
  const char reply[kReplyBytes] = {};
  while (pair.receive(request, kRequestBytes) > 0) {
    std::uint32_t workUs = 0;
    std::memcpy(&workUs, request, sizeof workUs);
    work(workUs);
    if (!pair.send(reply, kReplyBytes)) return;
  }
}

// A request of kSetUp + n sets the yield limit to n; any other long is the microseconds of work to do.
void serveMessages(KovaPipe& requests, KovaPipe& replies) {
  for (;;) {
    CleXDSmb request;
    int status = 0;
    kova::ReceiveMessage(&requests, request, &status);
    if (status != 0) return;
    const int value = request.FirstLong();
    if (value >= kSetUp) {
      kova::SetYieldLimitUs(static_cast<std::uint32_t>(value - kSetUp));
    } else {
      work(static_cast<std::uint32_t>(value));
    }
    CleXDSmb reply;
    reply.SetLong(8);
    reply.SetLong(value);
    if (SendData(&replies, reply, true) != 0) return;
  }
}

bool callOnce(Peer& peer, int value) {
  CleXDSmb request;
  request.SetCommandAction(CleXDSmb::CommandAction::GetVariableCount);
  request.SetLong(value);
  CleXDSmb reply;
  return peer.call(request, reply) == 0 && reply.FirstLong() == 8;
}

Comparison compareCalls(Peer& peer, std::uint32_t yieldUs, std::uint32_t workUs, bool* good) {
  *good = callOnce(peer, kSetUp + static_cast<int>(yieldUs));
  kova::SetYieldLimitUs(yieldUs);
  const auto floor = [&] {
    char request[kRequestBytes] = {};
    char reply[kReplyBytes];
    std::memcpy(request, &workUs, sizeof workUs);
    for (int i = 0; i < kCalls; ++i) {
      *good &= peer.raw.send(request, kRequestBytes) && peer.raw.receive(reply, kReplyBytes) == kReplyBytes;
    }
  };
  const auto calls = [&] {
    for (int i = 0; i < kCalls; ++i) *good &= callOnce(peer, static_cast<int>(workUs));
  };
  return kova::bench::compare(floor, calls);
}

// Arguments: the yield limit and the work of the other side, in microseconds.
void RoundTrip(benchmark::State& state) {
  Peer peer;
  for (auto _ : state) {
    bool good = false;
    const Comparison figures = compareCalls(peer, static_cast<std::uint32_t>(state.range(0)),
                                            static_cast<std::uint32_t>(state.range(1)), &good);
    if (!good) state.SkipWithError("a call failed");
    state.SetIterationTime(figures.oursUs / kCalls / 1e6);
    state.counters["raw_us"] = figures.floorUs / kCalls;
    state.counters["call_us"] = figures.oursUs / kCalls;
    state.counters["ratio"] = figures.ratio;
  }
}
BENCHMARK(RoundTrip)
    ->ArgNames({"yield_us", "work_us"})
    ->Args({0, 0})
    ->Args({20, 0})
    ->Args({0, 100})
    ->Args({20, 100})
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], kova::bench::kPeerArgument) == 0) {
    return kova::bench::runPeer(argv[2], serveRaw, serveMessages);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
