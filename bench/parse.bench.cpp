#include <span>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/Allocations.h"
#include "bench/BenchPackets.h"
#include "bench/Benchmarks.h"
#include "bench/Floor.h"
#include "bench/KeepingParser.h"
#include "bench/Peer.h"

namespace Bench {
namespace {

using RadiusPktParserBase::ErrorMsg;

/// Verifies and decodes on `parser`, with a new sink for each packet.
template <typename MakeSink>
void parse(benchmark::State& state, const BenchPacket& packet,
           RadiusPktParserBase::RadiusPktParser& parser, MakeSink makeSink) {
  const auto pkt = Zonet::pktFactory(std::span(packet.bytes));
  const Verda::String sharedSecret(secret);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    const Verda::Ptr<RadiusPktParserBase::PktInfoParser> sink = makeSink();
    if (parser.doProcessPkt(pkt, sharedSecret, packet.reqAuth, sink) != ErrorMsg::success) {
      state.SkipWithError("refused");
    }
    benchmark::ClobberMemory();
  }
}

/// The agent keeps all values.
void parseOurs(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary) {
  const Verda::Ptr<KeepingParser> parser(new KeepingParser(dictionary));
  std::vector<KeepingSink::Kept> kept;
  parse(state, packet, *parser, [&kept] { return Verda::Ptr<KeepingSink>(new KeepingSink(kept)); });
}

/// The agent keeps none of the values that it is handed.
void parseOursUnkept(benchmark::State& state, const BenchPacket& packet,
                     const Dictionary& dictionary) {
  const auto parser = RadiusPktParserBase::radiusPktParserFactory(dictionary);
  parse(state, packet, *parser, [] { return RadiusPktParserBase::pktInfoParserFactory(); });
}

void parseFloor(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary) {
  const Floor floor(packet, dictionary);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    floor.run();
  }
}

void parsePeer(benchmark::State& state, const BenchPacket& packet, const Peer& peer) {
  const Peer::Packet peerPacket(peer, packet);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(peerPacket.decode());
  }
}

}  // namespace

void registerParse(const Dictionary& dictionary) {
  for (const BenchPacket& packet : benchPackets()) {
    benchmark::RegisterBenchmark(("parse/ours/" + packet.name).c_str(), parseOurs, packet,
                                 dictionary);
    benchmark::RegisterBenchmark(("parse/ours-unkept/" + packet.name).c_str(), parseOursUnkept,
                                 packet, dictionary);
    benchmark::RegisterBenchmark(("parse/floor/" + packet.name).c_str(), parseFloor, packet,
                                 dictionary);
    if (const Peer* peer = Peer::get()) {
      benchmark::RegisterBenchmark(("parse/peer/" + packet.name).c_str(), parsePeer, packet, *peer);
    }
  }
}

}  // namespace Bench
