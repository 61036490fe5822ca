// A reply with 20 MiB of void data, from the request to the parsed block, against the raw copy of as many bytes through
// the same kind of pipe in 8192-byte messages, in one run; and the minor page faults that each message costs in the
// steady state, on both sides.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_peer.h"

namespace {

using kova::bench::Comparison;
using kova::bench::Peer;
using kova::bench::RawPair;

constexpr int kBlock = 20 << 20;
constexpr int kChunk = kova::kPipeChunk;

// The request that asks for the page faults of the other process in place of a block.
constexpr int kTellFaults = 1;

void serveRaw(const RawPair& pair) {
  const std::vector<char> block(kBlock, 'b');
  char request[64];
  while (pair.receive(request, sizeof request) > 0) {
    for (int at = 0; at < kBlock; at += kChunk) {
      if (!pair.send(block.data() + at, kChunk)) return;
    }
  }
}

void answer(CleXDSmb& request, CleXDSmb& reply) {
  static const std::vector<char> block(kBlock, 'b');
  if (request.FirstLong() == kTellFaults) {
    reply.SetLong(static_cast<int>(kova::bench::minorFaults()));
  } else {
    reply.BorrowVoidData(block.data(), kBlock);
  }
}

// The client's ends of the message pipes.
struct Client {
  KovaPipe requests{kova::bench::pipePrefix() + "xdapi"};
  KovaPipe replies{kova::bench::pipePrefix() + "xdapiresult"};

  // One call; its transport status.
  int call(CleXDSmb& request, CleXDSmb& reply) {
    if (!replies.IsPipeCreated()) replies.CreatePipe();
    const int sent = SendData(&requests, request, false);
    if (sent != 0) return sent;
    replies.ConnectPipe();
    int status = 0;
    kova::ReceiveMessage(&replies, reply, &status);
    return status;
  }
};

bool rawTransfer(Peer& peer, std::vector<char>& area) {
  if (!peer.raw.send("x", 1)) return false;
  for (int at = 0; at < kBlock; at += kChunk) {
    if (peer.raw.receive(area.data() + at, kChunk) != kChunk) return false;
  }
  return true;
}

bool messageTransfer(Client& client) {
  CleXDSmb request;
  request.SetLong(0);
  CleXDSmb reply;
  if (client.call(request, reply) != 0) return false;
  int length = 0;
  const char* data = static_cast<const char*>(reply.GetVoidData(length));
  return length == kBlock && data[0] == 'b' && data[kBlock - 1] == 'b';
}

std::int64_t peerFaults(Client& client) {
  CleXDSmb request;
  request.SetLong(kTellFaults);
  CleXDSmb reply;
  return client.call(request, reply) == 0 ? reply.FirstLong() : -1;
}

void reportFaults(benchmark::State& state, Client& client) {
  constexpr int kMessages = 10;
  const std::int64_t own = kova::bench::minorFaults();
  const std::int64_t other = peerFaults(client);
  if (own < 0) return;
  for (int i = 0; i < kMessages; ++i) messageTransfer(client);
  state.counters["faults_per_message"] = static_cast<double>(kova::bench::minorFaults() - own) / kMessages;
  state.counters["peer_faults_per_message"] = static_cast<double>(peerFaults(client) - other) / kMessages;
}

// The speed of the message exchange divided by the raw one; above 1 it is faster.
void Block20MiB(benchmark::State& state) {
  Peer peer;
  Client client;
  std::vector<char> area(kBlock, 'x');
  for (auto _ : state) {
    bool good = true;
    const Comparison figures =
        kova::bench::compare([&] { good &= rawTransfer(peer, area); }, [&] { good &= messageTransfer(client); });
    if (!good) state.SkipWithError("a transfer failed");
    state.SetIterationTime(figures.oursUs / 1e6);
    const double mib = static_cast<double>(kBlock >> 20) * 1e6;
    state.counters["raw_MiB_per_s"] = mib / figures.floorUs;
    state.counters["message_MiB_per_s"] = mib / figures.oursUs;
    state.counters["speed_ratio"] = 1 / figures.ratio;
    reportFaults(state, client);
  }
}
BENCHMARK(Block20MiB)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2 && std::strcmp(argv[1], kova::bench::kPeerArgument) == 0) {
    return kova::bench::runPeer(argv[2], serveRaw, answer);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
