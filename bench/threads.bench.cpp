#include <benchmark/benchmark.h>

#include "bench/BenchPackets.h"
#include "bench/Benchmarks.h"
#include "bench/KeepingParser.h"

namespace Bench {
namespace {

/// Every thread has a packet and a sink of its own; the parser is one.
void parseOnOneParser(benchmark::State& state, const BenchPacket& packet,
                      const Verda::Ptr<KeepingParser>& parser) {
  const auto pkt = Zonet::pktFactory(std::span(packet.bytes));
  const Verda::String sharedSecret(secret);
  std::vector<KeepingSink::Kept> kept;
  for ([[maybe_unused]] auto _ : state) {
    const Verda::Ptr<RadiusPktParserBase::PktInfoParser> sink(new KeepingSink(kept));
    if (parser->doProcessPkt(pkt, sharedSecret, packet.reqAuth, sink) !=
        RadiusPktParserBase::ErrorMsg::success) {
      state.SkipWithError("refused");
    }
  }
  state.SetItemsProcessed(state.iterations());
}

}  // namespace

void registerThreads(const Dictionary& dictionary) {
  const Verda::Ptr<KeepingParser> parser(new KeepingParser(dictionary));
  for (const BenchPacket& packet : benchPackets()) {
    benchmark::RegisterBenchmark(("threads/ours/" + packet.name).c_str(), parseOnOneParser, packet,
                                 parser)
        ->Threads(1)
        ->Threads(2)
        ->UseRealTime();
  }
}

}  // namespace Bench
