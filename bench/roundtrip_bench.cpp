// The call GetVariableCount against a raw ping-pong of the same bytes over the same kind of pipes, in one run. The
// floor always blocks; the call is timed with a blocking and with the bounded yielding wait, on both sides, idle and
// with 100 us of work in the other process.
//
// Both processes on one core: taskset -c 0 roundtrip_bench.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstring>

#include "api/InitDxGlobal.h"
#include "api/kovadx.h"
#include "bench_peer.h"
#include "transport/yielding_wait.h"

namespace {

using kova::bench::Comparison;
using kova::bench::Peer;
using kova::bench::RawPair;

// A request without items, a reply with one integer.
constexpr int kRequestBytes = 52;
constexpr int kReplyBytes = 56;
constexpr int kVariables = 8;
constexpr int kCalls = 1000;

// What a raw request begins with: how the other process is to serve the raw pair and the calls from then on.
struct Manner {
  std::uint32_t workUs = 0;
  std::uint32_t yieldUs = 0;
};

std::atomic<std::uint32_t> workUsOfCalls = 0;

void work(std::uint32_t microseconds) {
  const std::uint64_t start = kova::os::TickUs();
  while (kova::os::TickUs() - start < microseconds) {
  }
}

void serveRaw(const RawPair& pair) {
  char request[kRequestBytes];
  const char reply[kReplyBytes] = {};
  while (pair.receive(request, kRequestBytes) > 0) {
    Manner manner;
    std::memcpy(&manner, request, sizeof manner);
    kova::SetYieldLimitUs(manner.yieldUs);
    workUsOfCalls = manner.workUs;
    work(manner.workUs);
    if (!pair.send(reply, kReplyBytes)) return;
  }
}

void answer(CleXDSmb&, CleXDSmb& reply) {
  work(workUsOfCalls);
  reply.SetLong(kVariables);
}

bool pingPong(const RawPair& raw, const Manner& manner) {
  char request[kRequestBytes] = {};
  char reply[kReplyBytes];
  std::memcpy(request, &manner, sizeof manner);
  return raw.send(request, kRequestBytes) && raw.receive(reply, kReplyBytes) == kReplyBytes;
}

bool call() {
  int errorCode = 0;
  return GetVariableCount(&errorCode) == kVariables && errorCode == 0;
}

Comparison compareCalls(const RawPair& raw, const Manner& manner, bool* good) {
  kova::SetYieldLimitUs(manner.yieldUs);
  const auto floor = [&] {
    for (int i = 0; i < kCalls; ++i) *good &= pingPong(raw, manner);
  };
  const auto calls = [&] {
    for (int i = 0; i < kCalls; ++i) *good &= call();
  };
  return kova::bench::compare(floor, calls);
}

// Arguments: the yield limit and the work of the other side, in microseconds.
void VariableCount(benchmark::State& state, const RawPair& raw) {
  const Manner manner{static_cast<std::uint32_t>(state.range(1)), static_cast<std::uint32_t>(state.range(0))};
  for (auto _ : state) {
    bool good = true;
    const Comparison figures = compareCalls(raw, manner, &good);
    if (!good) state.SkipWithError("a call failed");
    state.SetIterationTime(figures.oursUs / kCalls / 1e6);
    state.counters["raw_us"] = figures.floorUs / kCalls;
    state.counters["call_us"] = figures.oursUs / kCalls;
    state.counters["ratio"] = figures.ratio;
  }
}

void registerBenchmarks(const RawPair& raw) {
  benchmark::RegisterBenchmark("GetVariableCount", VariableCount, raw)
      ->ArgNames({"yield_us", "work_us"})
      ->Args({0, 0})
      ->Args({20, 0})
      ->Args({0, 100})
      ->Args({20, 100})
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], kova::bench::kPeerArgument) == 0) {
    return kova::bench::runPeer(argv[2], serveRaw, answer);
  }
  benchmark::Initialize(&argc, argv);
  const Peer peer;
  SetXNameAndSHome(kova::bench::kInstanceName, "");
  SetKovaRunning(true);
  registerBenchmarks(peer.raw);
  benchmark::RunSpecifiedBenchmarks();
  FinalizeDXGlobal();
  return 0;
}
