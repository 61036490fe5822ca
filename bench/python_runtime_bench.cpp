// The Python runtime, from the start of a process to its end with one empty block in between, against python3 -c pass;
// and an empty block, against Python's own exec of a compiled empty text.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_peer.h"
#include "platform/os/loader.h"

namespace {

using kova::bench::Comparison;

constexpr const char* kStartArgument = "--start-runtime";
constexpr int kBlocks = 1000;

struct Runtime {
  Runtime() {
    kova::os::LibraryHandle library = nullptr;
    std::string message;
    if (kova::os::LoadSharedLibrary(KOVA_RUNTIME_DIR "/kovapython", &library, &message) != 0) return;
    init = find<int (*)(int, char**)>(library, "init_embedded_x");
    execute = find<int (*)(char*)>(library, "execute_x");
    preAction = find<int (*)()>(library, "pre_action");
  }

  template <class Function>
  static Function find(kova::os::LibraryHandle library, const char* name) {
    void* address = nullptr;
    std::string message;
    kova::os::FindSymbol(library, name, &address, &message);
    return reinterpret_cast<Function>(address);
  }

  bool start() const { return init != nullptr && init(0, nullptr) == 0 && preAction() == 0; }
  bool run(std::string block) const { return execute(block.data()) == 0; }

  int (*init)(int, char**) = nullptr;
  int (*execute)(char*) = nullptr;
  int (*preAction)() = nullptr;
};

bool runProcess(const std::string& program, const std::vector<std::string>& arguments) {
  kova::os::ProcessStart start;
  start.program = program;
  start.arguments = arguments;
  kova::os::Process process;
  int code = -1;
  return kova::os::Process::Start(start, &process) == 0 && process.Wait(kova::os::kWaitForever, &code) == 0 &&
         code == 0;
}

void tell(benchmark::State& state, const Comparison& figures, int count, bool good) {
  if (!good) state.SkipWithError("a run failed");
  state.SetIterationTime(figures.oursUs / count / 1e6);
  state.counters["python_us"] = figures.floorUs / count;
  state.counters["runtime_us"] = figures.oursUs / count;
  state.counters["ratio"] = figures.ratio;
}

void Start(benchmark::State& state) {
  for (auto _ : state) {
    bool good = true;
    const auto python = [&] { good &= runProcess(KOVA_PYTHON_PROGRAM, {"-c", "pass"}); };
    const auto runtime = [&] { good &= runProcess(kova::os::ProgramPath(), {kStartArgument}); };
    tell(state, kova::bench::compare(python, runtime, 41), 1, good);
  }
}

void EmptyBlock(benchmark::State& state) {
  const Runtime runtime;
  bool good = runtime.start();
  const std::string blocks =
      "for _ in range(" + std::to_string(kBlocks) + "): exec(compile(b'', 'block', 'exec'), {})\n";
  for (auto _ : state) {
    const auto python = [&] { good &= runtime.run(blocks); };
    const auto own = [&] {
      for (int i = 0; i < kBlocks; ++i) good &= runtime.run("");
    };
    tell(state, kova::bench::compare(python, own), kBlocks, good);
  }
}

BENCHMARK(Start)->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(EmptyBlock)->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);

int startRuntime() {
  const Runtime runtime;
  return runtime.start() && runtime.run("") ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], kStartArgument) == 0) return startRuntime();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
