#include <cstdlib>
#include <iostream>
#include <span>
#include <string>

#include <benchmark/benchmark.h>

#include "ZoCrypto/Random.h"
#include "bench/Allocations.h"
#include "bench/BenchPackets.h"
#include "bench/Benchmarks.h"
#include "bench/BuildRequests.h"
#include "bench/Floor.h"
#include "bench/Peer.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace Bench {
namespace {

using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPktParserBase::attrWithValueFactory;
using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserBase::PktInfoBuilder;
using RadiusPktParserBase::PktReturn;
using RadiusPktParserBase::RadiusPktBuilder;
using RadiusPktParserBase::standardAttribute;
using Verda::Ptr;
using Verda::U8;

/// The header that the packet was built with.
Ptr<RadiusPktParserBase::RadiusHdr> headerOf(const BenchPacket& packet) {
  const std::span<const U8> authenticator =
      std::span<const U8>(packet.bytes)
          .subspan(PacketConstants::authenticatorOffset(), PacketConstants::authLength());
  Ptr<RadiusPktParserBase::RadiusHdr> hdr = RadiusPktParserBase::radiusHdrFactory();
  hdr->codeIs(packet.bytes[PacketConstants::codeOffset()]);
  hdr->idIs(packet.bytes[PacketConstants::idOffset()]);
  hdr->authenticatorIs(Verda::String(authenticator));
  return hdr;
}

/// 0 when nothing was built.
std::size_t lengthOf(const Ptr<PktReturn>& built) {
  return built->pkt() ? built->pkt()->bytes() : 0;
}

void check(benchmark::State& state, const Ptr<PktReturn>& built, std::size_t length) {
  if (length == 0 || lengthOf(built) != length) {
    state.SkipWithError("not built");
  }
}

/// The request is ready; what is made is the packet, and its header when `newHeader`.
void buildOurs(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary,
               bool newHeader) {
  const auto builder = RadiusPktParserBase::radiusPktBuilderFactory(dictionary);
  const Ptr<PktInfoBuilder> request = requestOf(packet, dictionary);
  const Verda::String sharedSecret(secret);
  auto hdr = headerOf(packet);
  // Not always the packet's own: an IPv6 prefix is written with all of its address, say.
  const std::size_t length =
      lengthOf(builder->createPktFromHdr(sharedSecret, packet.reqAuth, hdr, request));
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    if (newHeader) {
      hdr = builder->createRadiusHdr(hdr->code(), hdr->id())->hdr();
    }
    check(state, builder->createPktFromHdr(sharedSecret, packet.reqAuth, hdr, request), length);
  }
}

void buildFloor(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary,
                bool newHeader) {
  const Floor floor(packet, dictionary);
  const bool isRandom =
      newHeader && packet.bytes.front() == RadiusPacketParser::RadiusCode::ACCESS_REQUEST;
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    if (isRandom) {
      U8 authenticator[PacketConstants::authLength()];
      benchmark::DoNotOptimize(ZoCrypto::randomBytes(authenticator));
    }
    floor.run();
  }
}

void buildPeer(benchmark::State& state, const BenchPacket& packet, const Peer& peer) {
  Peer::Packet peerPacket(peer, packet);
  peerPacket.makeReady();
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(peerPacket.encode());
  }
}

/// What a proxy asks for: another Class, no Service-Type, and its Proxy-State.
Ptr<PktInfoBuilder> proxyRequest() {
  const auto bytes = [](U8 byte) {
    const std::vector<U8> content(16, byte);
    return Verda::Bytes(std::span<const U8>(content));
  };
  auto request = RadiusPktParserBase::pktInfoBuilderFactory();
  request->attributesToReplaceIs(standardAttribute(RadiusAttributeId::CLASS))
      ->attrValuePush(bytes('c'));
  request->attributesToRemoveIs(standardAttribute(RadiusAttributeId::SERVICE_TYPE));
  const auto proxyState = attrWithValueFactory(standardAttribute(RadiusAttributeId::PROXY_STATE));
  proxyState->attrValuePush(bytes('p'));
  request->attributesToAddIs(0)->attrWithValueIs(proxyState);
  return request;
}

void modifyOurs(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary) {
  const auto builder = RadiusPktParserBase::radiusPktBuilderFactory(dictionary);
  const auto pkt = Zonet::pktFactory(std::span(packet.bytes));
  const auto request = proxyRequest();
  const Verda::String sharedSecret(secret);
  const std::size_t length =
      lengthOf(builder->modifyPkt(pkt, sharedSecret, packet.reqAuth, request));
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    check(state, builder->modifyPkt(pkt, sharedSecret, packet.reqAuth, request), length);
  }
}

/// The digests over the packet that comes out; hidden values are copied as they are.
void modifyFloor(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary) {
  const auto builder = RadiusPktParserBase::radiusPktBuilderFactory(dictionary);
  const auto modified = builder->modifyPkt(Zonet::pktFactory(std::span(packet.bytes)), secret,
                                           packet.reqAuth, proxyRequest());
  BenchPacket result = packet;
  result.bytes.assign(modified->pkt()->span().begin(), modified->pkt()->span().end());
  const Floor floor(result, dictionary, Floor::Hidden::copied);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    floor.run();
  }
}

}  // namespace

void registerBuild(const Dictionary& dictionary) {
  const auto named = [](const char* what, const BenchPacket& packet) { return what + packet.name; };
  using benchmark::RegisterBenchmark;
  for (const BenchPacket& packet : benchPackets()) {
    RegisterBenchmark(named("build/ours/", packet).c_str(), buildOurs, packet, dictionary, false);
    RegisterBenchmark(named("build/floor/", packet).c_str(), buildFloor, packet, dictionary, false);
    if (const Peer* peer = Peer::get()) {
      RegisterBenchmark(named("build/peer/", packet).c_str(), buildPeer, packet, *peer);
    }
    RegisterBenchmark(named("build-with-header/ours/", packet).c_str(), buildOurs, packet,
                      dictionary, true);
    RegisterBenchmark(named("build-with-header/floor/", packet).c_str(), buildFloor, packet,
                      dictionary, true);
    if (packet.name == "p2" || packet.name == "p3") {
      RegisterBenchmark(named("modify/ours/", packet).c_str(), modifyOurs, packet, dictionary);
      RegisterBenchmark(named("modify/floor/", packet).c_str(), modifyFloor, packet, dictionary);
    }
  }
}

}  // namespace Bench
