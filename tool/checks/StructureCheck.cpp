#include "tool/checks/StructureCheck.h"

#include <algorithm>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::ErrorMsg;
using Verda::U16;
using Verda::U8;

namespace {

constexpr const char* headerRfc = "RFC 2865 section 3";
constexpr const char* attributesRfc = "RFC 2865 section 5";

/// A vendor that there is not: vendors' numbers have 24 bits (RFC 2865 section 5.26).
constexpr U8 nobodysVendorByte = 0xff;

/// Makes a Message-Authenticator another well-formed attribute of the same length, of nobody's
/// vendor.
void disguise(std::span<U8> attribute) {
  attribute[AttributeConstants::typeOffset()] = RadiusAttributeId::VENDOR_SPECIFIC;
  std::ranges::fill(
      attribute.subspan(VsaConstants::vendorIdOffset(), VsaConstants::vendorIdLength()),
      nobodysVendorByte);
  attribute[VsaConstants::vendorAttrLengthOffset()] =
      static_cast<U8>(attribute.size() - VsaConstants::vendorTypeOffset());
}

/// The authenticator under which the values of a packet are hidden.
ByteView hidingAuthenticator(ByteView packet, const PacketContext& context) {
  const bool isKnown = !RadiusPktParserBase::isRequest(packet[PacketConstants::codeOffset()]) &&
                       !context.request.bytes.empty();
  return isKnown ? context.request.bytes.span() : authenticatorOf(packet);
}

/// The packet as one that has no digests, an Access-Request without a Message-Authenticator, and
/// whose values are revealed as before.
std::vector<U8> withoutDigests(ByteView packet, const PacketContext& context) {
  std::vector<U8> bytes(packet.begin(), packet.end());
  if (bytes.size() < PacketConstants::headerLength()) {
    return bytes;
  }
  bytes[PacketConstants::codeOffset()] = RadiusCode::ACCESS_REQUEST;
  std::ranges::copy(hidingAuthenticator(packet, context),
                    bytes.begin() + PacketConstants::authenticatorOffset());
  const std::size_t end = std::clamp<std::size_t>(*context.header.length,
                                                  PacketConstants::headerLength(), packet.size());
  for (const AttributePlace& place : attributePlaces(packet.first(end))) {
    if (isWholeMessageAuthenticator(place)) {
      disguise(std::span(bytes).subspan(place.offset, place.length));
    }
  }
  return bytes;
}

std::string attributeCount(std::size_t count) {
  return count == 1 ? "1 attribute" : fmt::format("{} attributes", count);
}

/// Where the fault is: behind what was decoded.
BytePlace faultPlace(const CheckedPacket& packet) {
  const std::size_t index = packet.structure.attributes.size();
  if (index < packet.attributes.size()) {
    return {.offset = packet.attributes[index].offset, .length = packet.attributes[index].length};
  }
  return {.offset = packet.end(), .length = packet.bytes.size() - packet.end()};
}

}  // namespace

PacketReport structureReport(const Decoder& decoder, ByteView packet,
                             const PacketContext& context) {
  const Secret noSecret("");
  const Secret& secret = context.secret == nullptr ? noSecret : *context.secret;
  PacketReport report = decoder.decode(withoutDigests(packet, context), secret, {});
  // Its Message-Authenticator was left out.
  if (report.error == ErrorMsg::missingRequiredMsgAuth) {
    report.error = ErrorMsg::success;
    report.reason.reset();
  }
  return report;
}

bool hasGoodHeader(const PacketReport& structure) {
  return structure.error != ErrorMsg::invalidPktLength;
}

CheckResult headerFault(const PacketReport& structure, std::size_t size) {
  const BytePlace lengthField{.offset = PacketConstants::lengthOffset(), .length = sizeof(U16)};
  const BytePlace wholePacket{.offset = 0, .length = size};
  return {.check = structureCheck,
          .verdict = Verdict::fail,
          .reason = faultText(structure),
          .place = size < PacketConstants::headerLength() ? wholePacket : lengthField,
          .rfc = headerRfc};
}

CheckResult structureResult(const CheckedPacket& packet) {
  if (isAccepted(packet.structure)) {
    return {.check = structureCheck,
            .verdict = Verdict::pass,
            .reason = attributeCount(packet.attributes.size()),
            .place = std::nullopt,
            .rfc = attributesRfc};
  }
  return {.check = structureCheck,
          .verdict = Verdict::fail,
          .reason = faultText(packet.structure),
          .place = faultPlace(packet),
          .rfc = attributesRfc};
}

}  // namespace RadiusPacketTool
