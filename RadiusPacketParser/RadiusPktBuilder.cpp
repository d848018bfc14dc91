#include "RadiusPacketParser/RadiusPktBuilder.h"

#include <array>
#include <span>
#include <string_view>

#include "Verda/Trace.h"
#include "ZoCrypto/Random.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.detail.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPktParserBase {

using RadiusPacketParser::PacketConstants;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U8;

TYL_ENTITY_TYPE(PktInfoBuilder)
TYL_ENTITY_TYPE(RadiusPktBuilder)

namespace {

constexpr std::string_view builderClass = "RadiusPktBuilder";

}  // namespace

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): an operation of the builder
Ptr<RadiusHdrReturn> RadiusPktBuilder::createRadiusHdr(U8 code, U8 id) const {
  VERDA_TRACE(codecTrace, Verda::traceEntries, builderClass, "entry");
  std::array<U8, PacketConstants::authLength()> authenticator{};
  if (detail::hasRandomAuthenticator(code) && !ZoCrypto::randomBytes(authenticator)) {
    return invalidHdr(ErrorMsg::pktAuthGenerationFailed);
  }
  Ptr<RadiusHdr> hdr = radiusHdrFactory();
  hdr->codeIs(code);
  hdr->idIs(id);
  hdr->lengthIs(PacketConstants::headerLength());
  hdr->authenticatorIs(String(std::span<const U8>(authenticator)));
  return radiusHdrReturnFactory(hdr);
}

Ptr<PktReturn> RadiusPktBuilder::createPktFromHdr(const String& secret, const Bytes& reqAuth,
                                                  const Ptr<RadiusHdr>& hdr,
                                                  const Ptr<PktInfoBuilder>& pktInfoBuilder) const {
  VERDA_TRACE(codecTrace, Verda::traceEntries, builderClass, "entry");
  return buildPkt(nullptr, secret, reqAuth, hdr, pktInfoBuilder, dictionary());
}

Ptr<PktReturn> RadiusPktBuilder::modifyPkt(const Ptr<Zonet::Pkt>& pkt, const String& secret,
                                           const Bytes& reqAuth,
                                           const Ptr<PktInfoBuilder>& pktInfoBuilder) const {
  VERDA_TRACE(codecTrace, Verda::traceEntries, builderClass, "entry");
  return buildPkt(pkt, secret, reqAuth, nullptr, pktInfoBuilder, dictionary());
}

}  // namespace RadiusPktParserBase
