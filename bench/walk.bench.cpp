#include <algorithm>
#include <span>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/Allocations.h"
#include "bench/BenchPackets.h"
#include "bench/Benchmarks.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace Bench {
namespace {

using RadiusPacketParser::PacketConstants;
using RadiusPktParserBase::AttributeCursor;
using RadiusPktParserBase::ErrorMsg;

/// The accounting packet under the code of an Access-Request, which has no authenticator to check:
/// no attribute of it needs a digest.
std::vector<Verda::U8> packetWithoutDigests() {
  const auto accounting = std::ranges::find(benchPackets(), "p3", &BenchPacket::name);
  std::vector<Verda::U8> bytes = accounting->bytes;
  bytes[PacketConstants::codeOffset()] = RadiusPacketParser::RadiusCode::ACCESS_REQUEST;
  return bytes;
}

std::size_t attributeCount(std::span<const Verda::U8> packet) {
  AttributeCursor cursor(packet.subspan(PacketConstants::headerLength()));
  std::size_t count = 0;
  while (cursor.next() == AttributeCursor::Step::attribute) {
    ++count;
  }
  return count;
}

/// Decodes every value and hands it to a hook that does nothing.
void walk(benchmark::State& state, const Dictionary& dictionary) {
  const std::vector<Verda::U8> bytes = packetWithoutDigests();
  const auto parser = RadiusPktParserBase::radiusPktParserFactory(dictionary);
  const auto pkt = Zonet::pktFactory(std::span(bytes));
  const auto sink = RadiusPktParserBase::pktInfoParserFactory();
  const Verda::String sharedSecret(secret);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    if (parser->doProcessPkt(pkt, sharedSecret, {}, sink) != ErrorMsg::success) {
      state.SkipWithError("refused");
    }
  }
  state.counters["attributes"] = static_cast<double>(attributeCount(bytes));
}

}  // namespace

void registerWalk(const Dictionary& dictionary) {
  benchmark::RegisterBenchmark("walk/ours/p3", walk, dictionary);
}

}  // namespace Bench
