// An empty block of syntax in a runtime that is a process of its own, the echo runtime in the program startx, against
// the messages alone that such a run takes, over a raw pair of the same kind of pipes to another process, in one run;
// and against the same messages to a process that has the threads which a run has: one that is started for it, and one
// on which the runtime lives.
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <thread>

#include "api/InitDxGlobal.h"
#include "bench_peer.h"
#include "config/process_values.h"
#include "engine/engine.h"
#include "engine/outer_runtime.h"
#include "tests/kit/scratch_folder.h"

namespace {

using kova::bench::Comparison;
using kova::bench::Peer;
using kova::bench::RawPair;
using kova::engine::OuterRuntime;

constexpr int kRuns = 200;
// Nine messages a run: the command that sets it up, its answer and the child's word that it is ready; the child's call
// that tells the engine of the end of the block, and the answer; the block and its result; the command that ends the
// run and its answer. So many replies come to each of four requests; whose requests they are makes no difference.
constexpr int kReplies[] = {2, 1, 1, 1};
constexpr int kOnThreads = -1;  // In place of the first request's number.
constexpr int kRequestBytes = 60;
constexpr int kReplyBytes = 56;

// Does a thing on a thread of its own, which is there already.
class Elsewhere {
 public:
  Elsewhere() : thread_([this] { work(); }) {}
  Elsewhere(const Elsewhere&) = delete;
  Elsewhere& operator=(const Elsewhere&) = delete;
  ~Elsewhere() {
    change(kEnded);
    thread_.join();
  }

  void visit() {
    change(kAsked);
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return state_ == kIdle; });
  }

 private:
  enum State { kIdle, kAsked, kEnded };

  void change(State state) {
    const std::lock_guard lock(mutex_);
    state_ = state;
    changed_.notify_all();
  }

  void work() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return state_ != kIdle; });
      if (state_ == kEnded) return;
      state_ = kIdle;
      changed_.notify_all();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  State state_ = kIdle;
  std::thread thread_;
};

// The same messages; the run's own thread takes two of the requests, one of them to the runtime's thread.
bool serveOnThreads(const RawPair& pair, Elsewhere& runtime) {
  char request[kRequestBytes];
  const char reply[kReplyBytes] = {};
  bool good = pair.send(reply, kReplyBytes);
  std::thread run([&] {
    good &= pair.send(reply, kReplyBytes) && pair.receive(request, kRequestBytes) > 0;
    runtime.visit();
    good &= pair.send(reply, kReplyBytes) && pair.receive(request, kRequestBytes) > 0;
    good &= pair.send(reply, kReplyBytes);
  });
  run.join();
  return good && pair.receive(request, kRequestBytes) > 0 && pair.send(reply, kReplyBytes);
}

void serveRaw(const RawPair& pair) {
  Elsewhere runtime;
  char request[kRequestBytes];
  const char reply[kReplyBytes] = {};
  while (pair.receive(request, kRequestBytes) > 0) {
    int replies = 0;
    std::memcpy(&replies, request, sizeof replies);
    if (replies == kOnThreads && !serveOnThreads(pair, runtime)) return;
    for (; replies > 0; --replies) {
      if (!pair.send(reply, kReplyBytes)) return;
    }
  }
}

bool rawRun(const RawPair& raw, bool isOnThreads) {
  bool good = true;
  char reply[kReplyBytes];
  for (const int& replies : kReplies) {
    char request[kRequestBytes] = {};
    const int told = isOnThreads && &replies == kReplies ? kOnThreads : replies;
    std::memcpy(request, &told, sizeof told);
    good &= raw.send(request, kRequestBytes);
    for (int i = 0; i < replies; ++i) good &= raw.receive(reply, kReplyBytes) == kReplyBytes;
  }
  return good;
}

// A home folder with what the child's program needs.
void fill(const kova::kit::ScratchFolder& home) {
  home.write("kovadxcfg.ini", "[SUPPORTED_LANG]\nX=ECHO\n[ECHO]\nLIB_NAME=kovaecho\n");
  for (const char* source : {KOVA_RUNTIME_DIR, KOVA_HOME_DIR}) {
    for (const auto& file : std::filesystem::directory_iterator(source)) {
      const std::string name = file.path().filename().string();
      const bool isNeeded = name.starts_with("kovaecho.") || name.starts_with("startx") || name == "kovadx.dll" ||
                            name.starts_with("libkovadx.so.");
      if (isNeeded) std::filesystem::copy_file(file, home.path(name));
    }
  }
}

void EmptyRun(benchmark::State& state, const RawPair& raw, OuterRuntime& runtime) {
  for (auto _ : state) {
    bool good = true;
    const auto floor = [&] {
      for (int i = 0; i < kRuns; ++i) good &= rawRun(raw, false);
    };
    const auto floorOnThreads = [&] {
      for (int i = 0; i < kRuns; ++i) good &= rawRun(raw, true);
    };
    const auto runs = [&] {
      for (int i = 0; i < kRuns; ++i) good &= runtime.run({}) == 0;
    };
    const Comparison figures = kova::bench::compare(floor, runs);
    const Comparison onThreads = kova::bench::compare(floorOnThreads, runs);
    if (!good) state.SkipWithError("a run failed");
    state.SetIterationTime(figures.oursUs / kRuns / 1e6);
    state.counters["raw_us"] = figures.floorUs / kRuns;
    state.counters["run_us"] = figures.oursUs / kRuns;
    state.counters["ratio"] = figures.ratio;
    state.counters["raw_on_threads_us"] = onThreads.floorUs / kRuns;
    state.counters["ratio_on_threads"] = onThreads.ratio;
  }
}

void compareRuns(const RawPair& raw, OuterRuntime& runtime) {
  benchmark::RegisterBenchmark("EmptyRun", [&](benchmark::State& state) { EmptyRun(state, raw, runtime); })
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
  benchmark::RunSpecifiedBenchmarks();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], kova::bench::kPeerArgument) == 0) {
    return kova::bench::runPeer(argv[2], serveRaw, [](CleXDSmb&, CleXDSmb&) {});
  }
  benchmark::Initialize(&argc, argv);
  const kova::kit::ScratchFolder home;
  fill(home);
  char pid[16];
  std::snprintf(pid, sizeof pid, "%04x", static_cast<unsigned>(kova::os::CurrentProcessId()));
  InitDxGlobal(home.path(), pid, "KOVAENGINE", home.path());
  SetAppMode(1);
  {
    const Peer peer;
    kova::engine::Engine engine;
    OuterRuntime runtime("ECHO", [&engine](const CleXDSmb& request, CleXDSmb& reply, int level) {
      engine.perform(request, reply, level);
    });
    if (runtime.start() == 0) compareRuns(peer.raw, runtime);
  }
  FinalizeDXGlobal();
  return 0;
}
