// A pivot table of 10,000 cells, built through the client's calls in the reference engine, against as many raw round
// trips of a request of the same size over the same kind of pipes, in one run.
#include <benchmark/benchmark.h>

#include <cstring>

#include "api/InitDxGlobal.h"
#include "api/kovadx.h"
#include "bench_peer.h"
#include "engine/engine.h"

namespace {

using kova::bench::Comparison;
using kova::bench::Peer;
using kova::bench::RawPair;

constexpr int kSide = 100;  // Rows, and columns.
// A procedure and a table, two dimensions; a category a row; a category and a cell for each place.
constexpr int kCalls = 5 + kSide + 2 * kSide * kSide;
constexpr int kRequestBytes = 120;
constexpr int kReplyBytes = 52;

// The keys of the table and of its dimensions, as arguments.
#define BENCH_TABLE "Bench", "Table", "Cells", false
#define BENCH_ROWS BENCH_TABLE, "Row", 0, 0, false, false
#define BENCH_COLUMNS BENCH_TABLE, "Column", 1, 0, false, false

void serveRaw(const RawPair& pair) {
  char request[kRequestBytes];
  const char reply[kReplyBytes] = {};
  while (pair.receive(request, kRequestBytes) > 0) {
    if (!pair.send(reply, kReplyBytes)) return;
  }
}

void answer(CleXDSmb& request, CleXDSmb& reply) {
  static kova::engine::Engine engine;
  engine.perform(request, reply);
}

bool rawRoundTrips(const RawPair& raw) {
  const char request[kRequestBytes] = {};
  char reply[kReplyBytes];
  for (int i = 0; i < kCalls; ++i) {
    if (!raw.send(request, kRequestBytes) || raw.receive(reply, kReplyBytes) != kReplyBytes) return false;
  }
  return true;
}

bool buildRow(int row) {
  int failed = AddNumberCategory(BENCH_ROWS, row);
  for (int column = 0; column < kSide; ++column) {
    failed |= AddNumberCategory(BENCH_COLUMNS, column);
    failed |= SetNumberCell(BENCH_COLUMNS, row * column);
  }
  return failed == 0;
}

bool buildTable() {
  bool good = StartProcedure("Bench", nullptr) == 0 && StartPivotTable(BENCH_TABLE) == 0 &&
              AddDimension(BENCH_ROWS) == 0 && AddDimension(BENCH_COLUMNS) == 0;
  for (int row = 0; good && row < kSide; ++row) good = buildRow(row);
  return EndProcedure() == 0 && good;
}

void PivotTable10000Cells(benchmark::State& state, const RawPair& raw) {
  for (auto _ : state) {
    bool good = true;
    const Comparison figures = kova::bench::compare([&] { good &= rawRoundTrips(raw); }, [&] { good &= buildTable(); });
    if (!good) state.SkipWithError("a call failed");
    state.SetIterationTime(figures.oursUs / 1e6);
    state.counters["raw_us_per_call"] = figures.floorUs / kCalls;
    state.counters["us_per_call"] = figures.oursUs / kCalls;
    state.counters["ratio"] = figures.ratio;
  }
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
  benchmark::RegisterBenchmark("PivotTable10000Cells", PivotTable10000Cells, peer.raw)
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
  benchmark::RunSpecifiedBenchmarks();
  FinalizeDXGlobal();
  return 0;
}
