#include "bench/BuildRequests.h"

#include <cstdlib>
#include <iostream>
#include <span>
#include <variant>
#include <vector>

#include "bench/KeepingParser.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace Bench {
namespace {

using RadiusPacketParser::RadiusAttributeId;
using RadiusPktParserBase::AttrValue;
using Verda::Bytes;

std::vector<KeepingSink::Kept> decode(const BenchPacket& packet, const Dictionary& dictionary) {
  std::vector<KeepingSink::Kept> kept;
  KeepingParser parser(dictionary);
  const Verda::Ptr<KeepingSink> sink(new KeepingSink(kept));
  const auto result =
      parser.doProcessPkt(Zonet::pktFactory(std::span(packet.bytes)), secret, packet.reqAuth, sink);
  if (result != RadiusPktParserBase::ErrorMsg::success) {
    std::cerr << packet.name << " does not decode\n";
    std::exit(EXIT_FAILURE);
  }
  return kept;
}

/// The value to build from the one that was decoded.
AttrValue valueToBuild(const AttrValue& decoded) {
  if (const auto* text = std::get_if<RadiusPktParserBase::TaggedStr>(&decoded)) {
    return separateTag(*text);
  }
  if (const auto* number = std::get_if<RadiusPktParserBase::TaggedInt>(&decoded)) {
    return separateTag(*number);
  }
  return decoded;
}

AttrValue joined(const AttrValue& first, const AttrValue& second) {
  std::vector<Verda::U8> bytes(std::get<Bytes>(first).begin(), std::get<Bytes>(first).end());
  bytes.insert(bytes.end(), std::get<Bytes>(second).begin(), std::get<Bytes>(second).end());
  return Bytes(std::span<const Verda::U8>(bytes));
}

}  // namespace

Verda::Ptr<RadiusPktParserBase::PktInfoBuilder> requestOf(const BenchPacket& packet,
                                                          const Dictionary& dictionary) {
  std::vector<KeepingSink::Kept> attributes;
  for (const auto& [key, value] : decode(packet, dictionary)) {
    if (!attributes.empty() && attributes.back().first == key &&
        getAttrInfo(key, dictionary).isConcat) {
      attributes.back().second = joined(attributes.back().second, value);
    } else {
      attributes.emplace_back(key, valueToBuild(value));
    }
  }
  auto request = RadiusPktParserBase::pktInfoBuilderFactory();
  Verda::U16 order = 0;
  for (const auto& [key, value] : attributes) {
    const auto attribute = RadiusPktParserBase::attrWithValueFactory(key);
    if (key.attrId != RadiusAttributeId::MESSAGE_AUTHENTICATOR) {
      attribute->attrValuePush(value);
    }
    request->attributesToAddIs(order++)->attrWithValueIs(attribute);
  }
  return request;
}

}  // namespace Bench
