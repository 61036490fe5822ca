// Cases through the case cursor of the shared library: one value of a batch against an empty library call and against
// raw memory, a million cases against the raw chunked copy of their bytes, cases written back, and how the cost of a
// case and the memory grow with their number.
#include <benchmark/benchmark.h>

#include <cstring>
#include <fstream>

#include "api/InitDxGlobal.h"
#include "api/kovadx.h"
#include "api/kovadx_ext.h"
#include "case_peer.h"

namespace {

using kova::bench::compare;
using kova::bench::compareTimes;
using kova::bench::Comparison;
using kova::bench::kBatchBytes;
using kova::bench::Peer;
using kova::bench::RawPair;
using kova::bench::timeOf;

constexpr int kMany = 1000000;
constexpr int kVariables = 20;
constexpr int kCaseBytes = kVariables * static_cast<int>(sizeof(double));

// A figure of /proc/self/status in MiB; 0 where the platform does not tell.
double statusMiB(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name + ":")) return std::stod(line.substr(name.size() + 1)) / 1024;
  }
  return 0;
}

bool openCursor(const char* mode, int variables, int missingKind, int cases) {
  const std::string data = kova::bench::dataText(variables, missingKind, cases);
  return Submit(data.c_str(), static_cast<int>(data.size())) == 0 && MakeCaseCursor(mode) == 0;
}

// ---- Three ways through the cases; each gives how many there were.

int walkCases() {
  int cases = 0;
  while (NextCase() == 0) ++cases;
  return cases;
}

int readValues() {
  int cases = 0;
  double value = 0;
  int isMissing = 0;
  for (; NextCase() == 0; ++cases) {
    for (int i = 0; i < kVariables; ++i) benchmark::DoNotOptimize(GetNumericValue(i, &value, &isMissing));
  }
  return cases;
}

int takeBlocks() {
  int cases = 0;
  const void* block = nullptr;
  int count = 0;
  for (int size = 0; KovaNextCaseBlock(&block, &count, &size) == 0; cases += count) benchmark::DoNotOptimize(block);
  return cases;
}

// ---- Growth. Runs first: the peak of the memory is that of the process so far.

void Growth(benchmark::State& state) {
  const int cases = static_cast<int>(state.range(0));
  static const double before = statusMiB("VmRSS");
  for (auto _ : state) {
    bool good = openCursor("r", kVariables, 0, cases);
    const double us = timeOf([&] { good &= walkCases() == cases; });
    if (!good) state.SkipWithError("a transfer failed");
    state.SetIterationTime(us / 1e6);
    state.counters["ns_per_case"] = 1e3 * us / cases;
    state.counters["peak_MiB"] = statusMiB("VmHWM") - before;
  }
}
BENCHMARK(Growth)->RangeMultiplier(10)->Range(10000, 10000000)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- One value.

// The batch that the cursor stands on, as raw memory, with the cursor on its first case.
struct ReadyBatch {
  explicit ReadyBatch(int variables, int missingKind) : columns(variables) {
    const int most = kBatchBytes / (8 * variables);
    good = openCursor("r", variables, missingKind, most) && NextCase() == 0;
    cases = most - 1;  // The first is there.
  }
  int columns;
  int cases = 0;
  bool good = false;
};

double timeOfValues(int variables, int missingKind) {
  const ReadyBatch batch(variables, missingKind);
  return timeOf([&] {
    double value = 0;
    int isMissing = 0;
    while (NextCase() == 0) {
      for (int i = 0; i < variables; ++i) {
        GetNumericValue(i, &value, &isMissing);
        benchmark::DoNotOptimize(value);
        benchmark::DoNotOptimize(isMissing);
      }
    }
  });
}

double timeOfEmptyCalls(int calls) {
  return timeOf([=] {
    for (int i = 0; i < calls; ++i) benchmark::DoNotOptimize(SaveFileInDS());
  });
}

double timeOfRawValues(int values) {
  const double* const numbers = kova::bench::caseBlock().data();
  return timeOf([=] {
    for (int i = 0; i < values; ++i) benchmark::DoNotOptimize(numbers[i]);
  });
}

void OneValue(benchmark::State& state) {
  constexpr int kColumns = 10;
  const int kind = static_cast<int>(state.range(0));
  const ReadyBatch batch(kColumns, kind);
  const int values = batch.cases * kColumns;
  for (auto _ : state) {
    if (!batch.good) state.SkipWithError("there is no batch");
    const auto ours = [&] { return timeOfValues(kColumns, kind); };
    const Comparison calls = compareTimes([&] { return timeOfEmptyCalls(values); }, ours);
    const Comparison raw = compareTimes([&] { return timeOfRawValues(values); }, ours);
    state.SetIterationTime(calls.oursUs / 1e6);
    state.counters["ns_per_value"] = 1e3 * calls.oursUs / values;
    state.counters["ns_empty_call"] = 1e3 * calls.floorUs / values;
    state.counters["ns_raw"] = 1e3 * raw.floorUs / values;
    state.counters["ratio_to_empty_call"] = calls.ratio;
  }
}
// The kind of missing values: none, three single ones, a range and one.
BENCHMARK(OneValue)->Arg(0)->Arg(3)->Arg(-3)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- A million cases.

bool rawBytesIn(const RawPair& raw, int bytes) {
  static std::vector<char> area(kBatchBytes);
  if (!raw.send(&bytes, sizeof bytes)) return false;
  for (int at = 0; at < bytes; at += kova::kPipeChunk) {
    const int size = std::min(kova::kPipeChunk, bytes - at);
    if (raw.receive(area.data() + at % kBatchBytes, size) != size) return false;
  }
  return true;
}

// The page faults that a batch costs here and there, of ten more.
void reportFaults(benchmark::State& state, int (*read)()) {
  constexpr int kBatches = 10;
  openCursor("r", kVariables, 0, kBatches * (kBatchBytes / kCaseBytes));
  const std::int64_t own = kova::bench::minorFaults();
  const std::int64_t other = GetRowCount(nullptr);
  if (own < 0) return;
  read();
  state.counters["faults_per_batch"] = static_cast<double>(kova::bench::minorFaults() - own) / kBatches;
  state.counters["peer_faults_per_batch"] = static_cast<double>(GetRowCount(nullptr) - other) / kBatches;
}

// The speed of the cursor divided by that of the raw copy; above 1 it is faster.
void MillionCases(benchmark::State& state, const RawPair& raw, int (*read)()) {
  for (auto _ : state) {
    bool good = true;
    const auto ours = [&] { good &= openCursor("r", kVariables, 0, kMany) && read() == kMany; };
    const Comparison figures = compare([&] { good &= rawBytesIn(raw, kMany * kCaseBytes); }, ours);
    if (!good) state.SkipWithError("a transfer failed");
    state.SetIterationTime(figures.oursUs / 1e6);
    const double mib = static_cast<double>(kMany) * kCaseBytes / (1 << 20) * 1e6;
    state.counters["raw_MiB_per_s"] = mib / figures.floorUs;
    state.counters["cursor_MiB_per_s"] = mib / figures.oursUs;
    state.counters["speed_ratio"] = 1 / figures.ratio;
    reportFaults(state, read);
  }
}

// ---- Writing back.

bool rawBytesOut(const RawPair& raw) {
  const int announced = -kBatchBytes;
  const char* const block = reinterpret_cast<const char*>(kova::bench::caseBlock().data());
  char answer = 0;
  if (!raw.send(&announced, sizeof announced)) return false;
  for (int at = 0; at < kBatchBytes; at += kova::kPipeChunk) {
    if (!raw.send(block + at, std::min(kova::kPipeChunk, kBatchBytes - at))) return false;
  }
  return raw.receive(&answer, 1) == 1;
}

bool commitBlock() {
  const std::vector<int> types(kVariables, 0);
  return CommitManyCases("ds", kova::bench::caseBlock().data(), kBatchBytes, kBatchBytes / kCaseBytes, kVariables,
                         types.data()) == 0;
}

void WriteBack(benchmark::State& state, const RawPair& raw) {
  for (auto _ : state) {
    bool good = true;
    const Comparison figures = compare([&] { good &= rawBytesOut(raw); }, [&] { good &= commitBlock(); });
    if (!good) state.SkipWithError("a transfer failed");
    state.SetIterationTime(figures.oursUs / 1e6);
    state.counters["ns_per_case"] = 1e3 * figures.oursUs / (kBatchBytes / kCaseBytes);
    state.counters["speed_ratio"] = 1 / figures.ratio;
    const std::int64_t own = kova::bench::minorFaults();
    commitBlock();
    state.counters["faults"] = static_cast<double>(kova::bench::minorFaults() - own);
  }
}

template <typename... Arguments>
void once(const char* name, void (*run)(benchmark::State&, Arguments...), const Arguments&... arguments) {
  benchmark::RegisterBenchmark(name, [=](benchmark::State& state) { run(state, arguments...); })
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], kova::bench::kPeerArgument) == 0) {
    kova::bench::CasePeer peer;
    const auto answer = [&](const CleXDSmb& request, CleXDSmb& reply) { peer.answer(request, reply); };
    return kova::bench::runPeer(argv[2], kova::bench::serveRawBytes, answer);
  }
  benchmark::Initialize(&argc, argv);
  const Peer peer;
  SetXNameAndSHome(kova::bench::kInstanceName, "");
  SetKovaRunning(true);
  using Read = int (*)();
  once<const RawPair&, Read>("MillionCases/blocks", MillionCases, peer.raw, takeBlocks);
  once<const RawPair&, Read>("MillionCases/cases", MillionCases, peer.raw, walkCases);
  once<const RawPair&, Read>("MillionCases/values", MillionCases, peer.raw, readValues);
  once<const RawPair&>("WriteBack", WriteBack, peer.raw);
  benchmark::RunSpecifiedBenchmarks();
  FinalizeDXGlobal();
  return 0;
}
