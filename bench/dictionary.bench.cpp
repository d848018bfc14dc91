#include <filesystem>

#include <benchmark/benchmark.h>

#include "bench/Benchmarks.h"
#include "bench/Peer.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace Bench {
namespace {

constexpr const char* peerDictionary = "/usr/share/freeradius/dictionary";

Dictionary load(const char* path) {
  return RadiusPacketParser::radiusDictionaryParserFactory(path)->dictionary();
}

void loadOurs(benchmark::State& state, const char* path) {
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(load(path));
  }
}

void loadPeer(benchmark::State& state, const Peer& peer) {
  for ([[maybe_unused]] auto _ : state) {
    if (!peer.loadDictionary()) {
      state.SkipWithError("refused");
    }
  }
}

}  // namespace

Dictionary ownDictionary() {
  return load(OWN_DICTIONARY);
}

void registerDictionaryLoad() {
  const auto unit = benchmark::kMillisecond;
  benchmark::RegisterBenchmark("load/ours/own-set", loadOurs, OWN_DICTIONARY)->Unit(unit);
  if (std::filesystem::exists(peerDictionary)) {
    benchmark::RegisterBenchmark("load/ours/peer-set", loadOurs, peerDictionary)->Unit(unit);
  }
  if (const Peer* peer = Peer::get()) {
    benchmark::RegisterBenchmark("load/peer/peer-set", loadPeer, *peer)->Unit(unit);
  }
}

}  // namespace Bench
