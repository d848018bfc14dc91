#include "tool/anatomy/Faults.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusAttributeType;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::ErrorMsg;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

constexpr std::string_view headerSection = "RFC 2865 section 3";
constexpr std::string_view attributeSection = "RFC 2865 section 5";
constexpr std::string_view passwordSection = "RFC 2865 section 5.2";
constexpr std::string_view vendorSection = "RFC 2865 section 5.26";
constexpr std::string_view tagSection = "RFC 2868 section 3";
constexpr std::string_view eapMessageSection = "RFC 3579 section 3.1";
constexpr std::string_view messageAuthenticatorSection = "RFC 3579 section 3.2";
constexpr std::string_view attributeTableSection = "RFC 3579 section 3.3";
constexpr std::string_view concatSection = "RFC 8044 section 3.6";
constexpr std::string_view prefixSection = "RFC 8044 section 3.10";

constexpr std::size_t minVendorLength = VsaConstants::vendorAttrValueOffset();

FieldFault makeFault(ErrorMsg error, const std::string& found, const std::string& expected,
                     std::string_view section) {
  return {.error = error, .found = found, .expected = expected, .section = std::string(section)};
}

std::string counted(std::size_t number, std::string_view thing) {
  return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}

// ---- The values of a data type ----

struct TypeRule {
  RadiusAttributeType::RadiusAttributeTypeEnum type;
  std::size_t least;
  std::size_t most;
  std::string_view section;
};

constexpr std::size_t integer64Length = 8;

constexpr auto typeRules = std::to_array<TypeRule>({
    {RadiusAttributeType::integer, AttributeConstants::intLength(), AttributeConstants::intLength(),
     "RFC 8044 section 3.1"},
    {RadiusAttributeType::date, AttributeConstants::dateLength(), AttributeConstants::dateLength(),
     "RFC 8044 section 3.3"},
    {RadiusAttributeType::ifid, AttributeConstants::ipv6InterfaceLength(),
     AttributeConstants::ipv6InterfaceLength(), "RFC 8044 section 3.7"},
    {RadiusAttributeType::ipaddr, AttributeConstants::ipv4Length(),
     AttributeConstants::ipv4Length(), "RFC 8044 section 3.8"},
    {RadiusAttributeType::ipv6addr, AttributeConstants::ipv6Length(),
     AttributeConstants::ipv6Length(), "RFC 8044 section 3.9"},
    {RadiusAttributeType::ipv6prefix, AttributeConstants::minIpv6PrefixAttrLength(),
     AttributeConstants::maxIpv6PrefixAttrLength(), prefixSection},
    {RadiusAttributeType::integer64, integer64Length, integer64Length, "RFC 8044 section 3.12"},
});

std::string lengthFound(std::string_view field, std::size_t valueLength) {
  return fmt::format("{} {}: {}", field, valueLength + AttributeConstants::valueOffset(),
                     valueLength == 0 ? "no value" : counted(valueLength, "value byte"));
}

FieldFault valueLengthFault(const ProbedAttribute& probed, std::string_view field,
                            std::size_t valueLength) {
  const auto rule = std::ranges::find(typeRules, probed.info.attributeType, &TypeRule::type);
  const std::string found = lengthFound(field, valueLength);
  const std::string type(stringValue(probed.info.attributeType).view());
  if (rule == typeRules.end()) {
    return makeFault(probed.error, found, fmt::format("another length for {}", type),
                     attributeSection);
  }
  constexpr std::size_t front = AttributeConstants::valueOffset();
  const std::string expected =
      rule->least == rule->most
          ? fmt::format("{} {}: {} has {}", field, rule->least + front, type,
                        counted(rule->least, "value byte"))
          : fmt::format("{} {} to {}: {} has {} to {} value bytes", field, rule->least + front,
                        rule->most + front, type, rule->least, rule->most);
  return makeFault(probed.error, found, expected, rule->section);
}

// ---- The rules on single attributes, told by what the parser says of them ----

FieldFault vendorRoomFault(ErrorMsg error, std::size_t length) {
  return makeFault(
      error, fmt::format("Length {}", length),
      fmt::format("at least {}, for Vendor-Id, Vendor-Type and Vendor-Length", minVendorLength),
      vendorSection);
}

FieldFault vendorLengthFault(ErrorMsg error, ByteView attribute) {
  const std::size_t room = attribute.size() - VsaConstants::vendorTypeOffset();
  return makeFault(
      error, fmt::format("Vendor-Length {}", attribute[VsaConstants::vendorAttrLengthOffset()]),
      fmt::format("Vendor-Length {}: one sub-attribute fills the attribute", room), vendorSection);
}

FieldFault messageAuthenticatorLengthFault(ErrorMsg error, std::size_t length) {
  constexpr std::size_t valueLength = AttributeConstants::msgAuthLength();
  return makeFault(error, lengthFound("Length", length - AttributeConstants::valueOffset()),
                   fmt::format("Length {}: an HMAC-MD5 has {} bytes",
                               valueLength + AttributeConstants::valueOffset(), valueLength),
                   messageAuthenticatorSection);
}

FieldFault passwordLengthFault(ErrorMsg error, std::size_t length) {
  constexpr std::size_t front = AttributeConstants::valueOffset();
  return makeFault(
      error, lengthFound("Length", length - front),
      fmt::format("Length {} to {}: {} to {} value bytes in whole blocks of {}",
                  AttributeConstants::minPasswdSize() + front,
                  AttributeConstants::maxPasswdSize() + front, AttributeConstants::minPasswdSize(),
                  AttributeConstants::maxPasswdSize(), AttributeConstants::passwdWordSize()),
      passwordSection);
}

FieldFault prefixFault(const ProbedAttribute& probed, ByteView value) {
  const std::string found =
      RadiusPktParserBase::isHidden(probed.info)
          ? "a hidden prefix length of more"
          : fmt::format("a prefix of {} bits", value[RadiusPktParserBase::ipv6PrefixLengthOffset]);
  return makeFault(probed.error, found,
                   fmt::format("at most {} bits", AttributeConstants::maxPrefixLength()),
                   prefixSection);
}

}  // namespace

FieldFault headerCutFault(std::size_t size) {
  return makeFault(ErrorMsg::invalidPktLength, counted(size, "byte"),
                   fmt::format("at least {}: Code, Identifier, Length and Authenticator",
                               PacketConstants::headerLength()),
                   headerSection);
}

std::optional<FieldFault> lengthFieldFault(std::size_t length, std::size_t size) {
  if (length < PacketConstants::headerLength() || length > PacketConstants::maxLength()) {
    return makeFault(
        ErrorMsg::invalidPktLength, fmt::format("Length {}", length),
        fmt::format("{} to {}", PacketConstants::headerLength(), PacketConstants::maxLength()),
        headerSection);
  }
  if (length > size) {
    return makeFault(
        ErrorMsg::invalidPktLength, fmt::format("Length {}", length),
        fmt::format("at most {}, for there are no more bytes: the packet was cut", size),
        headerSection);
  }
  return std::nullopt;
}

FieldFault loneByteFault() {
  return makeFault(ErrorMsg::invalidAttrLength, "1 byte",
                   "an attribute of at least 2, or the end of the packet", attributeSection);
}

FieldFault attributeLengthFault(U8 length, std::size_t remaining) {
  const std::string found = fmt::format("Length {}", length);
  if (length < AttributeConstants::valueOffset()) {
    return makeFault(ErrorMsg::invalidAttrLength, found,
                     "at least 2: Type and Length count themselves", attributeSection);
  }
  return makeFault(ErrorMsg::invalidAttrLength, found,
                   fmt::format("at most {}: so many bytes are left", remaining), attributeSection);
}

PartFault partFault(const ProbedAttribute& probed, ByteView attribute) {
  const std::string_view reason = probed.reason;
  const std::size_t length = attribute.size();
  if (reason.starts_with("Invalid Vsa length")) {
    return {FaultyPart::length, true, vendorRoomFault(probed.error, length)};
  }
  if (reason.starts_with("Attribute length: ")) {
    return {FaultyPart::length, true, vendorLengthFault(probed.error, attribute)};
  }
  if (reason.starts_with("Invalid length of message authenticator")) {
    return {FaultyPart::length, true, messageAuthenticatorLengthFault(probed.error, length)};
  }
  if (reason.starts_with("Received password with invalid length")) {
    return {FaultyPart::length, true, passwordLengthFault(probed.error, length)};
  }
  const bool isVendor = probed.key.attrId == RadiusAttributeId::VENDOR_SPECIFIC;
  const ByteView value = attribute.subspan(isVendor ? VsaConstants::vendorAttrValueOffset()
                                                    : AttributeConstants::valueOffset());
  const std::string_view field = isVendor ? "Vendor-Length" : "Length";
  if (probed.error == ErrorMsg::tagByteMissing) {
    return {FaultyPart::length, false,
            makeFault(probed.error, lengthFound(field, value.size()),
                      fmt::format("at least {}: a tag stands in front of the value",
                                  AttributeConstants::valueOffset() + 1),
                      tagSection)};
  }
  if (reason.find("Invalid prefix length") != std::string_view::npos) {
    return {FaultyPart::prefixLength, false, prefixFault(probed, value)};
  }
  return {FaultyPart::length, false, valueLengthFault(probed, field, value.size())};
}

std::optional<std::size_t> fixedLength(RadiusAttributeType::RadiusAttributeTypeEnum type) {
  const auto rule = std::ranges::find(typeRules, type, &TypeRule::type);
  return rule == typeRules.end() || rule->least != rule->most
             ? std::nullopt
             : std::optional(rule->least + AttributeConstants::valueOffset());
}

FieldFault secondMessageAuthenticatorFault() {
  return makeFault(ErrorMsg::invalidMsgAuth, "a second Message-Authenticator", "at most one",
                   attributeTableSection);
}

FieldFault unsupportedCodeFault(U8 code) {
  return makeFault(ErrorMsg::unsupportedPktType,
                   fmt::format("a Message-Authenticator in a packet of code {}", code),
                   "none: what it covers is not defined for this code",
                   messageAuthenticatorSection);
}

FieldFault notConsecutiveFault(const RadiusPktParserBase::Attribute& key, const std::string& name) {
  const bool isEap = key.attrId == RadiusAttributeId::EAP_MESSAGE;
  return makeFault(ErrorMsg::concatAttrNotConsecutive,
                   fmt::format("a fragment of {} behind another attribute", name),
                   "all fragments of a value one behind the other",
                   isEap ? eapMessageSection : concatSection);
}

FieldFault missingMessageAuthenticatorFault() {
  return makeFault(ErrorMsg::missingRequiredMsgAuth, "an EAP-Message, but no Message-Authenticator",
                   "a Message-Authenticator in each packet that has an EAP-Message",
                   eapMessageSection);
}

}  // namespace RadiusPacketTool
