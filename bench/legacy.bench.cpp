#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/Allocations.h"
#include "bench/BenchPackets.h"
#include "bench/Benchmarks.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace Bench {
namespace {

using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::AttributeCursor;
using RadiusPktParserBase::ErrorMsg;
using Verda::Ptr;
using Verda::U8;

constexpr std::size_t kindsToRead = 10;

/// The first kinds of attributes that a packet holds, none twice.
std::vector<RadiusPktParserBase::Attribute> firstKinds(const BenchPacket& packet) {
  std::vector<RadiusPktParserBase::Attribute> kinds;
  AttributeCursor cursor(std::span(packet.bytes).subspan(PacketConstants::headerLength()));
  while (kinds.size() < kindsToRead && cursor.next() == AttributeCursor::Step::attribute) {
    auto kind = RadiusPktParserBase::standardAttribute(cursor.type());
    if (cursor.type() == RadiusAttributeId::VENDOR_SPECIFIC) {
      Verda::U32 vendorId = 0;
      for (const U8 byte :
           cursor.bytes().subspan(VsaConstants::vendorIdOffset(), VsaConstants::vendorIdLength())) {
        vendorId = vendorId << 8U | byte;
      }
      kind = RadiusPktParserBase::vendorAttribute(vendorId,
                                                  cursor.bytes()[VsaConstants::vendorTypeOffset()]);
    }
    if (std::ranges::find(kinds, kind) == kinds.end()) {
      kinds.push_back(kind);
    }
  }
  return kinds;
}

/// Checks the packet and both its authenticators, and reads ten kinds of attributes.
void readLegacy(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary) {
  const auto pkt = Zonet::pktFactory(std::span(packet.bytes));
  const std::vector<RadiusPktParserBase::Attribute> kinds = firstKinds(packet);
  const Verda::String sharedSecret(secret);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    const auto object = RadiusPacketParser::radiusPacketParserFactory(dictionary, pkt);
    for (const auto& kind : kinds) {
      object->getValueOfAttributesListIs({kind.attrId, kind.vendorAttrId, kind.vendorId});
    }
    object->getValuesOfAttributesFromAttributeList();
    if (object->badPkt() || !object->validateAuthenticator(sharedSecret, packet.reqAuth) ||
        !object->validateMessageAuthenticator(sharedSecret, packet.reqAuth)) {
      state.SkipWithError("refused");
    }
  }
}

/// Keeps the values of some kinds of attributes.
class SomeKindsParser : public RadiusPktParserBase::RadiusPktParser {
 public:
  SomeKindsParser(const Dictionary& dictionary,
                  const std::vector<RadiusPktParserBase::Attribute>& kinds)
      : RadiusPktParser(dictionary), kinds_(kinds) {}

  void doProcessAttribute(const RadiusPktParserBase::Attribute& attr,
                          const RadiusPktParserBase::AttrValue& attrValue,
                          RadiusPktParserBase::AttrInfo /*attrInfo*/,
                          const Ptr<RadiusPktParserBase::PktInfoParser>& /*sink*/) override {
    if (std::ranges::find(kinds_, attr) != kinds_.end()) {
      kept_.push_back(attrValue);
    }
  }

  void forget() { kept_.clear(); }

 private:
  const std::vector<RadiusPktParserBase::Attribute>& kinds_;
  std::vector<RadiusPktParserBase::AttrValue> kept_;
};

/// The same, and hidden values are revealed.
void readNewer(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary) {
  const auto pkt = Zonet::pktFactory(std::span(packet.bytes));
  const std::vector<RadiusPktParserBase::Attribute> kinds = firstKinds(packet);
  const Verda::Ptr<SomeKindsParser> parser(new SomeKindsParser(dictionary, kinds));
  const Verda::String sharedSecret(secret);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    parser->forget();
    if (parser->doProcessPkt(pkt, sharedSecret, packet.reqAuth,
                             RadiusPktParserBase::pktInfoParserFactory()) != ErrorMsg::success) {
      state.SkipWithError("refused");
    }
  }
}

constexpr const char* proxyState = "pppppppppppppppp";

/// Takes Service-Type out, puts a Proxy-State in, and signs.
void editLegacy(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary) {
  const auto pkt = Zonet::pktFactory(std::span(packet.bytes));
  const Verda::String sharedSecret(secret);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    const auto object = RadiusPacketParser::radiusPacketParserFactory(dictionary, pkt);
    object->attributesToRemoveIs({RadiusAttributeId::SERVICE_TYPE, 0, 0});
    const auto removed =
        RadiusPacketParser::radiusPacketParserFactory(dictionary, object->removeAttribute());
    removed->attributesToAddIs(RadiusAttributeId::PROXY_STATE, proxyState);
    const auto result =
        RadiusPacketParser::radiusPacketParserFactory(dictionary, removed->addAttribute());
    if (result->badPkt()) {
      state.SkipWithError("refused");
    }
    if (result->msgAuthPresent()) {
      result->setMessageAuthenticator(sharedSecret, packet.reqAuth);
    }
    if (!packet.reqAuth.empty()) {
      result->setResponseAuthenticator(sharedSecret, packet.reqAuth);
    } else if (result->header()->code() != RadiusPacketParser::RadiusCode::ACCESS_REQUEST) {
      result->setRequestAuthenticator(sharedSecret);
    }
  }
}

void editNewer(benchmark::State& state, const BenchPacket& packet, const Dictionary& dictionary) {
  const auto builder = RadiusPktParserBase::radiusPktBuilderFactory(dictionary);
  const auto pkt = Zonet::pktFactory(std::span(packet.bytes));
  const Verda::String sharedSecret(secret);
  const auto key = RadiusPktParserBase::standardAttribute(RadiusAttributeId::PROXY_STATE);
  const CountAllocations count(state);
  for ([[maybe_unused]] auto _ : state) {
    const auto request = RadiusPktParserBase::pktInfoBuilderFactory();
    request->attributesToRemoveIs(
        RadiusPktParserBase::standardAttribute(RadiusAttributeId::SERVICE_TYPE));
    const auto added = RadiusPktParserBase::attrWithValueFactory(key);
    added->attrValuePush(Verda::Bytes(Verda::String(proxyState).bytes()));
    request->attributesToAddIs(0)->attrWithValueIs(added);
    if (!builder->modifyPkt(pkt, sharedSecret, packet.reqAuth, request)->pkt()) {
      state.SkipWithError("refused");
    }
  }
}

}  // namespace

void registerLegacy(const Dictionary& dictionary) {
  using benchmark::RegisterBenchmark;
  for (const BenchPacket& packet : benchPackets()) {
    const auto named = [&packet](const char* what) { return what + packet.name; };
    RegisterBenchmark(named("read/legacy/").c_str(), readLegacy, packet, dictionary);
    RegisterBenchmark(named("read/newer/").c_str(), readNewer, packet, dictionary);
    if (packet.name == "p1" || packet.name == "p3") {
      RegisterBenchmark(named("edit/legacy/").c_str(), editLegacy, packet, dictionary);
      RegisterBenchmark(named("edit/newer/").c_str(), editNewer, packet, dictionary);
    }
  }
}

}  // namespace Bench
