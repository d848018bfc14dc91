#include "tool/anatomy/AttributeProbe.h"

#include <algorithm>
#include <array>
#include <utility>

#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/text/AttributeName.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using RadiusPacketParser::RadiusDict;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::ErrorMsg;
using Verda::Bytes;
using Verda::Ptr;
using Verda::U32;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

bool isVendor(ByteView attribute) {
  return attribute[AttributeConstants::typeOffset()] == RadiusAttributeId::VENDOR_SPECIFIC &&
         attribute.size() >= VsaConstants::vendorAttrValueOffset();
}

Attribute keyOf(ByteView attribute) {
  if (!isVendor(attribute)) {
    return RadiusPktParserBase::standardAttribute(attribute[AttributeConstants::typeOffset()]);
  }
  U32 vendorId = 0;
  static_cast<void>(
      Zonet::WireReader(attribute.subspan(VsaConstants::vendorIdOffset())).read(vendorId));
  return RadiusPktParserBase::vendorAttribute(vendorId,
                                              attribute[VsaConstants::vendorTypeOffset()]);
}

/// An Access-Request of that one attribute: its authenticator is random, so that any will do, and
/// hidden values in it are hidden under it.
std::vector<U8> requestAround(ByteView attribute, ByteView authenticator) {
  std::vector<U8> packet(PacketConstants::headerLength());
  packet[PacketConstants::codeOffset()] = RadiusCode::ACCESS_REQUEST;
  std::ranges::copy(authenticator.first(
                        std::min<std::size_t>(authenticator.size(), PacketConstants::authLength())),
                    packet.begin() + PacketConstants::authenticatorOffset());
  packet.insert(packet.end(), attribute.begin(), attribute.end());
  constexpr unsigned byteBits = 8;
  packet[PacketConstants::lengthOffset()] = static_cast<U8>(packet.size() >> byteBits);
  packet[PacketConstants::lengthOffset() + 1] = static_cast<U8>(packet.size());
  return packet;
}

/// The attribute with zeros hidden in the place of its value. Behind its tag nothing of it counts
/// then but the length.
std::vector<U8> withHiddenZeros(ByteView attribute, const AttrInfo& info, const Secret& secret) {
  std::vector<U8> result(attribute.begin(), attribute.end());
  const std::size_t valueOffset = isVendor(attribute) ? VsaConstants::vendorAttrValueOffset()
                                                      : AttributeConstants::valueOffset();
  const auto value = std::span(result).subspan(valueOffset);
  std::ranges::fill(value.subspan(std::min<std::size_t>(info.isTagged ? 1 : 0, value.size())),
                    U8{});
  constexpr std::array<U8, PacketConstants::authLength()> noAuthenticator{};
  static_cast<void>(RadiusPktParserBase::encryptHelper(
      value.data(), static_cast<U32>(value.size()), secret.text(), Bytes(ByteView(noAuthenticator)),
      info.encryptionType, info.isTagged, true));
  return result;
}

/// What is no fault of the one attribute: that the packet around it is not signed.
bool isOfThePacket(ErrorMsg error) {
  return error == ErrorMsg::missingRequiredMsgAuth || error == ErrorMsg::invalidMsgAuth;
}

}  // namespace

AttributeProbe::AttributeProbe(const Ptr<const RadiusDict>& dictionary, const Revealing& revealing)
    : dictionary_(dictionary), revealing_(revealing), decoder_(dictionary) {}

ProbedAttribute AttributeProbe::look(ByteView attribute) const {
  ProbedAttribute probed;
  probed.key = keyOf(attribute);
  probed.info = RadiusPktParserBase::getAttrInfo(probed.key, dictionary_);
  probed.name = attributeName(probed.key, *dictionary_);
  const bool staysHidden = RadiusPktParserBase::isHidden(probed.info) && !reveals();
  PacketReport report = staysHidden ? decoded(withHiddenZeros(attribute, probed.info, noSecret_))
                                    : decoded(attribute);
  const ErrorMsg error = report.error.value_or(ErrorMsg::success);
  probed.error = isOfThePacket(error) ? ErrorMsg::success : error;
  probed.reason = report.reason.value_or(std::string());
  if (!report.attributes.empty()) {
    probed.decoded = std::move(report.attributes.front());
  }
  return probed;
}

PacketReport AttributeProbe::decoded(ByteView attribute) const {
  return decoder_.decode(requestAround(attribute, revealing_.authenticator.span()),
                         reveals() ? *revealing_.secret : noSecret_, Bytes());
}

}  // namespace RadiusPacketTool
