// The engine's part in the benchmarks of cases: it has as many cases of as many numeric variables as it is told, all of
// them out of one block of memory, so that no time but that of the transfer is measured.
#ifndef KOVADX_BENCH_CASE_PEER_H
#define KOVADX_BENCH_CASE_PEER_H

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "bench_peer.h"
#include "message/CursorDataSmb.h"

namespace kova::bench {

constexpr int kBatchBytes = CursorDataSmb::CACHE_SIZE;

// A block of a batch's size, of the numbers 0 to 999 again and again.
inline const std::vector<double>& caseBlock() {
  static const std::vector<double> block = [] {
    std::vector<double> numbers(kBatchBytes / sizeof(double));
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<double>(i % 1000);
    return numbers;
  }();
  return block;
}

class CasePeer {
 public:
  void answer(const CleXDSmb& request, CleXDSmb& reply) {
    switch (request.GetCommandAction()) {
      case Command::Submit:  // What the data are: variables, kind of missing values, cases.
        std::sscanf(request.FirstString(), "%d %d %d", &variables_, &missingKind_, &cases_);
        break;
      case Command::MakeCaseCursor:
        served_ = 0;
        break;
      case Command::GetVariableCountInProcDS:
        reply.SetLong(variables_);
        break;
      case Command::GetVariableTypeInProcDS:
        reply.SetLong(0);
        break;
      case Command::GetVarNMissingValues:
        reply.SetLong(missingKind_);
        for (const double value : {5.0, 7.0, 999.0}) reply.SetDouble(value);
        break;
      case Command::NextCaseBatch:
        answerBatch(request.Longs(), reply);
        break;
      case Command::GetRowCount:  // The page faults of this process.
        reply.SetLong(static_cast<int>(minorFaults()));
        break;
      default:
        break;
    }
  }

 private:
  void answerBatch(const LongData& asked, CleXDSmb& reply) {
    const int count = std::min(asked[0], cases_ - served_);
    served_ += count;
    reply.SetLong(count);
    reply.BorrowVoidData(caseBlock().data(), count * asked[1]);
    if (served_ == cases_) reply.SetErrorCode(23);
  }

  int variables_ = 1;
  int missingKind_ = 0;
  int cases_ = 0;
  int served_ = 0;
};

// Has the other process's engine take up such data.
inline std::string dataText(int variables, int missingKind, int cases) {
  char text[64];
  std::snprintf(text, sizeof text, "%d %d %d", variables, missingKind, cases);
  return text;
}

// The raw pair's part: sends as many bytes as an int tells, in 8192-byte messages; or takes in as many, when the number
// is negative, and then sends one byte.
inline void serveRawBytes(const RawPair& pair) {
  std::vector<char> area(kBatchBytes);
  const char* const block = reinterpret_cast<const char*>(caseBlock().data());
  int wanted = 0;
  while (pair.receive(&wanted, sizeof wanted) == sizeof wanted) {
    const int bytes = std::abs(wanted);
    for (int at = 0; at < bytes; at += kPipeChunk) {
      const int size = std::min(kPipeChunk, bytes - at);
      const int place = at % kBatchBytes;
      const bool good = wanted > 0 ? pair.send(block + place, size) : pair.receive(area.data() + place, size) == size;
      if (!good) return;
    }
    if (wanted < 0 && !pair.send("x", 1)) return;
  }
}

}  // namespace kova::bench

#endif
