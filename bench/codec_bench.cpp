// How fast a message becomes bytes and bytes become a message, each beside its floor: one memcpy of as many bytes.
//
// Three messages stand for the traffic: a small request, a list of 1,000 strings, a block of 100,000 doubles. "Fresh"
// builds or reads a new message object each time, as a call does; "Kept" uses one object again and again, as a program
// that streams data does. Compare figures of one run only, best with
//   codec_bench --benchmark_repetitions=15 --benchmark_enable_random_interleaving --benchmark_report_aggregates_only
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "message/CleXDSmb.h"

namespace {

constexpr int kStrings = 1000;
constexpr int kDoubles = 100000;

void fillSmall(CleXDSmb& message) {
  message.SetCommandAction(kova::Command::SetVarNMissingValuesInDS);
  message.SetString("employees");
  message.SetLong(3);
  message.SetLong(1);
  message.SetDouble(-9.0);
}

void fillStrings(CleXDSmb& message) {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> made;
    for (int i = 0; i < kStrings; ++i) made.push_back("variable_" + std::to_string(1000 + i));
    return made;
  }();
  for (const std::string& name : names) message.SetString(name);
}

void fillDoubles(CleXDSmb& message) {
  for (int i = 0; i < kDoubles; ++i) message.SetDouble(0.5 * i);
}

using Fill = void (*)(CleXDSmb&);

std::vector<char> imageOf(Fill fill) {
  CleXDSmb message;
  fill(message);
  message.ContructSendData();
  int length = 0;
  const char* const bytes = message.GetSendBuf(length);
  return {bytes, bytes + length};
}

void countBytes(benchmark::State& state, std::size_t length) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(length));
}

void copyFloor(benchmark::State& state, Fill fill) {
  const std::vector<char> image = imageOf(fill);
  std::vector<char> target(image.size());
  for (auto iteration : state) {
    std::memcpy(target.data(), image.data(), image.size());
    benchmark::DoNotOptimize(target.data());
    benchmark::ClobberMemory();
  }
  countBytes(state, image.size());
}

void encodeFresh(benchmark::State& state, Fill fill) {
  for (auto iteration : state) {
    CleXDSmb message;
    fill(message);
    benchmark::DoNotOptimize(message.ContructSendData());
  }
  countBytes(state, imageOf(fill).size());
}

void encodeKept(benchmark::State& state, Fill fill) {
  CleXDSmb message;
  fill(message);
  for (auto iteration : state) benchmark::DoNotOptimize(message.ContructSendData());
  countBytes(state, imageOf(fill).size());
}

void decodeFresh(benchmark::State& state, Fill fill) {
  std::vector<char> image = imageOf(fill);
  for (auto iteration : state) {
    CleXDSmb message;
    benchmark::DoNotOptimize(message.ParseBuf(image.data()));
  }
  countBytes(state, image.size());
}

void decodeKept(benchmark::State& state, Fill fill) {
  std::vector<char> image = imageOf(fill);
  CleXDSmb message;
  for (auto iteration : state) {
    message.CleanUpAllData();
    benchmark::DoNotOptimize(message.ParseBuf(image.data()));
  }
  countBytes(state, image.size());
}

BENCHMARK_CAPTURE(copyFloor, Small, fillSmall);
BENCHMARK_CAPTURE(encodeFresh, Small, fillSmall);
BENCHMARK_CAPTURE(decodeFresh, Small, fillSmall);
BENCHMARK_CAPTURE(copyFloor, Strings, fillStrings);
BENCHMARK_CAPTURE(encodeFresh, Strings, fillStrings);
BENCHMARK_CAPTURE(encodeKept, Strings, fillStrings);
BENCHMARK_CAPTURE(decodeFresh, Strings, fillStrings);
BENCHMARK_CAPTURE(decodeKept, Strings, fillStrings);
BENCHMARK_CAPTURE(copyFloor, Doubles, fillDoubles);
BENCHMARK_CAPTURE(encodeKept, Doubles, fillDoubles);
BENCHMARK_CAPTURE(decodeFresh, Doubles, fillDoubles);
BENCHMARK_CAPTURE(decodeKept, Doubles, fillDoubles);

}  // namespace

BENCHMARK_MAIN();
