// An empty block of syntax through the in-process host against the same calls of the runtime library itself: the block
// alone, and a whole run with its pre and post action. For the echo runtime, which does next to nothing, and the Python
// runtime where the build has made it.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>

#include "bench_peer.h"
#include "config/XConfigOptions.h"
#include "config/process_values.h"
#include "host/DriveX.h"
#include "host/InpStatisticsX.h"
#include "platform/os/file.h"
#include "platform/os/loader.h"

namespace {

using kova::bench::Comparison;

constexpr int kEchoBlocks = 100000;
constexpr int kPythonBlocks = 1000;

// The library's own entry points, beside the host that has loaded it.
class Runtime {
 public:
  explicit Runtime(const std::string& name) : options_(name) {
    options_.PutOption("LIB_NAME", name);
    host = std::make_unique<InpStatisticsX>(&options_, true);
    runner = std::make_unique<DriveX>(name, host.get(), &options_);
    const bool isLoaded = kova::os::LoadSharedLibrary(KOVA_RUNTIME_DIR "/" + name, &library_, &message_) == 0;
    isReady = isLoaded && runner->initializeX() == 0 && find("execute_x", &execute) && find("pre_action", &pre) &&
              find("post_action", &post);
  }
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;
  ~Runtime() {
    host.reset();
    if (library_ != nullptr) kova::os::UnloadLibrary(library_);
  }

  bool isReady = false;
  std::unique_ptr<InpStatisticsX> host;
  std::unique_ptr<DriveX> runner;
  int (*execute)(char*) = nullptr;
  int (*pre)() = nullptr;
  int (*post)() = nullptr;

 private:
  template <class Function>
  bool find(const char* name, Function* out) {
    void* address = nullptr;
    if (kova::os::FindSymbol(library_, name, &address, &message_) != 0) return false;
    *out = reinterpret_cast<Function>(address);
    return true;
  }

  XConfigOptions options_;
  kova::os::LibraryHandle library_ = nullptr;
  std::string message_;
};

void report(benchmark::State& state, int count, const Comparison& figures) {
  state.SetIterationTime(figures.oursUs / 1e6);
  state.counters["own_us"] = figures.floorUs / count;
  state.counters["host_us"] = figures.oursUs / count;
  state.counters["ratio"] = figures.ratio;
}

template <class Work>
std::function<void()> times(int count, Work work) {
  return [count, work] {
    for (int i = 0; i < count; ++i) benchmark::DoNotOptimize(work());
  };
}

void EmptyBlock(benchmark::State& state, const std::string& name, int count) {
  Runtime runtime(name);
  for (auto _ : state) {
    if (!runtime.isReady) return state.SkipWithError("the runtime can not be started");
    char syntax[1] = "";
    const auto own = times(count, [&] { return runtime.execute(syntax); });
    const auto hosted = times(count, [&] { return runtime.host->execute_x(syntax); });
    report(state, count, kova::bench::compare(own, hosted));
  }
}

void EmptyRun(benchmark::State& state, const std::string& name, int count) {
  Runtime runtime(name);
  for (auto _ : state) {
    if (!runtime.isReady) return state.SkipWithError("the runtime can not be started");
    char syntax[1] = "";
    const auto own = times(count, [&] { return runtime.pre() + runtime.execute(syntax) + runtime.post(); });
    const auto hosted = times(count, [&] { return runtime.runner->invokeX(); });
    report(state, count, kova::bench::compare(own, hosted));
  }
}

using Bench = void (*)(benchmark::State&, const std::string&, int);

void add(const char* label, Bench bench, const std::string& name, int count) {
  benchmark::RegisterBenchmark((label + name).c_str(), bench, name, count)
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

void addBoth(const std::string& name, int count) {
  add("EmptyBlock/", EmptyBlock, name, count);
  add("EmptyRun/", EmptyRun, name, count);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  SetKOVAHOME(KOVA_RUNTIME_DIR);
  addBoth("kovaecho", kEchoBlocks);
  if (kova::os::FileExists(KOVA_RUNTIME_DIR "/kovapython.so")) addBoth("kovapython", kPythonBlocks);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
