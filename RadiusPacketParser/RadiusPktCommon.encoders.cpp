#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <variant>

#include "Verda/Trace.h"
#include "ZoCrypto/Cleanse.h"
#include "Zonet/WireWriter.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.detail.h"

namespace RadiusPktParserBase {

using detail::ByteView;
using detail::maxValueLength;
using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusAttributeType;
using RadiusPacketParser::RadiusDict;
using RadiusPacketParser::VsaConstants;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;
using Zonet::IpGenPrefix;

namespace {

/// The encoder in whose name a value is written.
enum class Encoder : U8 { text, octets, number, ipv4, ipv6, ipv6Prefix, ifid };

constexpr std::string_view nameOf(Encoder encoder) {
  constexpr std::array<std::string_view, 7> names{
      "addStrTypes",  "addOctetTypes",      "addIntegerDateTypes", "addIpv4Types",
      "addIpv6Types", "addIpv6PrefixTypes", "addIfidTypes",
  };
  return names[static_cast<std::size_t>(encoder)];
}

// ---- Writing one attribute ----

/// Where an attribute goes, in which form, and in whose name it is written. Small enough to travel
/// in two registers, and passed by value for that.
struct Target {
  Encoder encoder;
  U8 attrId;  ///< of the sub-attribute in vendor form
  bool isVsa;
  U16 curLen;
  U8* buf;
};

void traceEntry(Target target) {
  VERDA_TRACE_AS(codecTrace, Verda::traceEntries, "", nameOf(target.encoder), "entry");
}

bool fitsPacket(U16 curLen, std::size_t length) {
  return curLen + length <= PacketConstants::maxLength();
}

/// Writes Type and Length, and gives the place of the value behind them. What the outer attribute
/// of a vendor's starts with is left alone, but for its Length, which counts modulo 256, on
/// purpose: only the sub-attribute is held to the longest length.
std::span<U8> writeTypeAndLength(Target target, std::size_t valueLength) {
  U8* unit = target.buf;
  if (target.isVsa) {
    unit[AttributeConstants::lengthOffset()] =
        static_cast<U8>(valueLength + VsaConstants::vendorAttrValueOffset());
    unit += VsaConstants::vendorTypeOffset();
  }
  return detail::beginUnit(unit, target.attrId, valueLength);
}

/// Writes what stands in front of a value of that length, and gives the place of the value; or says
/// which limit the attribute exceeds.
ErrorMsg beginValue(Target target, std::size_t valueLength, std::span<U8>& value) {
  const std::size_t length = valueLength + AttributeConstants::valueOffset();
  if (length > AttributeConstants::maxLength()) {
    VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", nameOf(target.encoder),
                   "Attribute: {} with invalid length {}", target.attrId, length);
    return ErrorMsg::invalidAttrLength;
  }
  const std::size_t outerLength =
      length + (target.isVsa ? std::size_t{VsaConstants::vendorTypeOffset()} : 0);
  if (!fitsPacket(target.curLen, outerLength)) {
    VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", nameOf(target.encoder),
                   "Attribute: {} Length: {} addition exceeds max packet length {}", target.attrId,
                   outerLength, target.curLen);
    return ErrorMsg::maxPktLengthExceeded;
  }
  value = writeTypeAndLength(target, valueLength);
  return ErrorMsg::success;
}

ErrorMsg writeText(Target target, ByteView text, U8 tag, bool isTagged) {
  traceEntry(target);
  const std::size_t tagLength = isTagged ? 1 : 0;
  std::span<U8> value;
  const ErrorMsg fault = beginValue(target, text.size() + tagLength, value);
  if (fault == ErrorMsg::success) {
    std::fill_n(value.begin(), tagLength, tag);
    std::ranges::copy(text, value.subspan(tagLength).begin());
  }
  return fault;
}

ErrorMsg writeOctets(Target target, ByteView octets) {
  traceEntry(target);
  std::span<U8> value;
  const ErrorMsg fault = beginValue(target, octets.size(), value);
  if (fault == ErrorMsg::success) {
    std::ranges::copy(octets, value.begin());
  }
  return fault;
}

ErrorMsg writeNumber(Target target, U32 number, U8 tag, const AttrInfo& attrInfo) {
  traceEntry(target);
  std::span<U8> value;
  const ErrorMsg fault = beginValue(target, AttributeConstants::intLength(), value);
  if (fault != ErrorMsg::success) {
    return fault;
  }
  static_cast<void>(Zonet::WireWriter(value).write(number));
  if (attrInfo.isTagged && attrInfo.attributeType == RadiusAttributeType::integer) {
    value.front() = tag;
  }
  return ErrorMsg::success;
}

/// Writes the last `addressLength` bytes of an address of that family behind `front`; standard
/// form, and no message when there is no room.
ErrorMsg writeAddress(Target target, Zonet::IpFamily family, ByteView front,
                      const IpGenPrefix& prefix, std::size_t addressLength) {
  traceEntry(target);
  if (prefix.address().family() != family) {
    return ErrorMsg::invalidAttrDataType;
  }
  const std::size_t valueLength = front.size() + addressLength;
  if (!fitsPacket(target.curLen, AttributeConstants::valueOffset() + valueLength)) {
    return ErrorMsg::maxPktLengthExceeded;
  }
  const std::span<U8> value = writeTypeAndLength(target, valueLength);
  std::ranges::copy(front, value.begin());
  std::ranges::copy(prefix.address().bytes().last(addressLength),
                    value.subspan(front.size()).begin());
  return ErrorMsg::success;
}

// ---- Does the value go with the attribute? ----

/// How a value goes with what the dictionary says of its attribute.
enum class Match : U8 { exact, plainForTagged, taggedForPlain, otherKind };

template <typename Plain, typename Tagged>
Match matchOf(const AttrValue& value, bool isTagged) {
  if (std::holds_alternative<Plain>(value)) {
    return isTagged ? Match::plainForTagged : Match::exact;
  }
  if (std::holds_alternative<Tagged>(value)) {
    return isTagged ? Match::exact : Match::taggedForPlain;
  }
  return Match::otherKind;
}

Match matchOfString(const AttrValue& value, const AttrInfo& attrInfo) {
  return matchOf<String, TaggedStr>(value, attrInfo.isTagged);
}

Match matchOfNumber(const AttrValue& value, const AttrInfo& attrInfo) {
  return matchOf<unsigned int, TaggedInt>(value, attrInfo.isTagged);
}

/// Writes a value that matches a `string` attribute.
ErrorMsg writeMatchingString(Target target, const AttrValue& value) {
  if (const auto* tagged = std::get_if<TaggedStr>(&value)) {
    return writeText(target, tagged->str.bytes(), tagged->tag, true);
  }
  return writeText(target, std::get<String>(value).bytes(), 0, false);
}

/// Writes a value that matches an `integer` or `date` attribute.
ErrorMsg writeMatchingNumber(Target target, const AttrValue& value, const AttrInfo& attrInfo) {
  if (const auto* tagged = std::get_if<TaggedInt>(&value)) {
    return writeNumber(target, tagged->value, tagged->tag, attrInfo);
  }
  return writeNumber(target, std::get<unsigned int>(value), 0, attrInfo);
}

// ---- Standard attributes ----

#define TRACE_STANDARD(format, ...) \
  VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", "addAttribute", format, __VA_ARGS__)

ErrorMsg writePassword(Target target, ByteView text) {
  detail::PaddedPassword padded;
  const ZoCrypto::CleanseOnExit clean(padded);
  return writeText(target, detail::padPassword(text, padded), 0, false);
}

/// The messages are worded the wrong way round, and kept so.
ErrorMsg addString(Target target, const AttrValue& value, const AttrInfo& attrInfo) {
  switch (matchOfString(value, attrInfo)) {
    case Match::exact:
      if (target.attrId == RadiusAttributeId::USER_PASSWORD && !attrInfo.isTagged) {
        return writePassword(target, std::get<String>(value).bytes());
      }
      return writeMatchingString(target, value);
    case Match::plainForTagged:
      TRACE_STANDARD("AttrId: {} Expected string type, found tagged string", target.attrId);
      break;
    case Match::taggedForPlain:
      TRACE_STANDARD("AttrId: {} Expected tagged string type,found just string", target.attrId);
      break;
    case Match::otherKind:
      TRACE_STANDARD("AttrId: {} Expected string type, invalid data type passed", target.attrId);
      break;
  }
  return ErrorMsg::invalidAttrDataType;
}

ErrorMsg addNumber(Target target, const AttrValue& value, const AttrInfo& attrInfo) {
  switch (matchOfNumber(value, attrInfo)) {
    case Match::exact:
      return writeMatchingNumber(target, value, attrInfo);
    case Match::plainForTagged:
    case Match::taggedForPlain:
      TRACE_STANDARD("AttrId: {} Expected int type, found tagged int", target.attrId);
      break;
    case Match::otherKind:
      TRACE_STANDARD("AttrId: {} Expected int type, invalid data type passed", target.attrId);
      break;
  }
  return ErrorMsg::invalidAttrDataType;
}

/// Writes octets, of which there are some, as attributes of at most the longest value each.
/// `position` and `length` are left at the last of them; at the first when one does not fit.
ErrorMsg addFragments(U8 attrId, ByteView octets, U8*& position, U16& length) {
  U8* at = position;
  U16 lengthAt = length;
  while (true) {
    const ByteView piece = octets.first(std::min(octets.size(), maxValueLength));
    const ErrorMsg fault = writeOctets({Encoder::octets, attrId, false, lengthAt, at}, piece);
    if (fault != ErrorMsg::success) {
      return fault;
    }
    octets = octets.subspan(piece.size());
    if (octets.empty()) {
      break;
    }
    const std::size_t written = piece.size() + AttributeConstants::valueOffset();
    at += written;
    lengthAt = static_cast<U16>(lengthAt + written);
  }
  position = at;
  length = lengthAt;
  return ErrorMsg::success;
}

ErrorMsg addOctets(U8 attrId, const AttrValue& value, const AttrInfo& attrInfo, U8*& position,
                   U16& length) {
  const auto* octets = std::get_if<Bytes>(&value);
  if (octets == nullptr) {
    TRACE_STANDARD("AttrId: {} Expected bytes type, invalid data type passed", attrId);
    return ErrorMsg::invalidAttrDataType;
  }
  return attrInfo.isConcat
             ? addFragments(attrId, octets->span(), position, length)
             : writeOctets({Encoder::octets, attrId, false, length, position}, octets->span());
}

using AddressEncoder = ErrorMsg(U8* buf, U8 attrId, const IpGenPrefix& prefix, U16 curLen);

ErrorMsg addAddress(AddressEncoder encode, U8 attrId, const AttrValue& value, U8* position,
                    U16 length) {
  const auto* prefix = std::get_if<IpGenPrefix>(&value);
  const ErrorMsg fault =
      prefix == nullptr ? ErrorMsg::invalidAttrDataType : encode(position, attrId, *prefix, length);
  if (fault == ErrorMsg::invalidAttrDataType) {
    TRACE_STANDARD("AttrId: {} Expected ipGenPrefix type, invalid data type passed", attrId);
  }
  return fault;
}

// ---- Vendor attributes ----

#define TRACE_VENDOR(format, attribute)                                                      \
  VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", "addVsa", format, (attribute).vendorId, \
                 (attribute).vendorAttrId)

/// The messages are worded the wrong way round, and kept so.
ErrorMsg addVendorString(Target target, const Attribute& attribute, const AttrValue& value,
                         const AttrInfo& attrInfo) {
  switch (matchOfString(value, attrInfo)) {
    case Match::exact:
      return writeMatchingString(target, value);
    case Match::plainForTagged:
      TRACE_VENDOR("VendorId: {} vendorAttrId: {} Expected string type, found tagged string type",
                   attribute);
      break;
    case Match::taggedForPlain:
      TRACE_VENDOR("VendorId: {} vendorAttrId: {} Expected tagged string type, found string type",
                   attribute);
      break;
    case Match::otherKind:
      TRACE_VENDOR("VendorId: {} vendorAttrId: {} Expected string type, invalid data type passed",
                   attribute);
      break;
  }
  return ErrorMsg::invalidVendorAttrDataType;
}

ErrorMsg addVendorOctets(Target target, const Attribute& attribute, const AttrValue& value) {
  if (const auto* octets = std::get_if<Bytes>(&value)) {
    return writeOctets(target, octets->span());
  }
  TRACE_VENDOR("VendorId: {} vendorAttrId: {} Expected byte type, invalid data type passed",
               attribute);
  return ErrorMsg::invalidVendorAttrDataType;
}

ErrorMsg addVendorNumber(Target target, const Attribute& attribute, const AttrValue& value,
                         const AttrInfo& attrInfo) {
  switch (matchOfNumber(value, attrInfo)) {
    case Match::exact:
      return writeMatchingNumber(target, value, attrInfo);
    case Match::plainForTagged:
    case Match::taggedForPlain:
      TRACE_VENDOR("VendorId: {} vendorAttrId: {} Expected int type, found tagged int type",
                   attribute);
      break;
    case Match::otherKind:
      TRACE_VENDOR("VendorId: {} vendorAttrId: {} Expected int type, invalid data type passed",
                   attribute);
      break;
  }
  return ErrorMsg::invalidVendorAttrDataType;
}

/// Writes the sub-attribute and the outer Length, by the data type.
ErrorMsg addSubAttribute(const AttrValue& value, const Attribute& attribute,
                         const AttrInfo& attrInfo, U8* buf, U16 length) {
  const auto target = [&](Encoder encoder) {
    return Target{encoder, attribute.vendorAttrId, true, length, buf};
  };
  switch (attrInfo.attributeType) {
    case RadiusAttributeType::unknown:
      TRACE_VENDOR("VendorId: {} VendorAttrId: {} Unknown data type", attribute);
      return ErrorMsg::unknownAttrDataType;
    case RadiusAttributeType::string:
      return addVendorString(target(Encoder::text), attribute, value, attrInfo);
    case RadiusAttributeType::octets:
      return addVendorOctets(target(Encoder::octets), attribute, value);
    case RadiusAttributeType::date:
    case RadiusAttributeType::integer:
      return addVendorNumber(target(Encoder::number), attribute, value, attrInfo);
    default:
      TRACE_VENDOR("Erroneous data type for vendorId: {} and vendorAttrId: {}", attribute);
      return ErrorMsg::invalidVendorAttrDataType;
  }
}

}  // namespace

ErrorMsg addStrTypes(U8* buf, U8 attrId, const String& str, U8 tag, AttrInfo attrInfo, bool isVsa,
                     U16 curLen) {
  return writeText({Encoder::text, attrId, isVsa, curLen, buf}, str.bytes(), tag,
                   attrInfo.isTagged);
}

ErrorMsg addOctetTypes(U8* buf, U8 attrId, const Bytes& bytes, bool isVsa, U16 curLen) {
  return writeOctets({Encoder::octets, attrId, isVsa, curLen, buf}, bytes.span());
}

ErrorMsg addIntegerDateTypes(U8* buf, U8 attrId, const U32& value, U8 tag, AttrInfo attrInfo,
                             bool isVsa, U16 curLen) {
  return writeNumber({Encoder::number, attrId, isVsa, curLen, buf}, value, tag, attrInfo);
}

ErrorMsg addIpv4Types(U8* buf, U8 attrId, const IpGenPrefix& prefix, U16 curLen) {
  return writeAddress({Encoder::ipv4, attrId, false, curLen, buf}, Zonet::IpFamily::ip4, {}, prefix,
                      AttributeConstants::ipv4Length());
}

ErrorMsg addIpv6Types(U8* buf, U8 attrId, const IpGenPrefix& prefix, U16 curLen) {
  return writeAddress({Encoder::ipv6, attrId, false, curLen, buf}, Zonet::IpFamily::ip6, {}, prefix,
                      AttributeConstants::ipv6Length());
}

ErrorMsg addIpv6PrefixTypes(U8* buf, U8 attrId, const IpGenPrefix& prefix, U16 curLen) {
  std::array<U8, AttributeConstants::minIpv6PrefixAttrLength()> front{};
  front[ipv6PrefixLengthOffset] = prefix.prefixLength();
  return writeAddress({Encoder::ipv6Prefix, attrId, false, curLen, buf}, Zonet::IpFamily::ip6,
                      front, prefix, AttributeConstants::ipv6Length());
}

ErrorMsg addIfidTypes(U8* buf, U8 attrId, const IpGenPrefix& prefix, U16 curLen) {
  return writeAddress({Encoder::ifid, attrId, false, curLen, buf}, Zonet::IpFamily::ip6, {}, prefix,
                      AttributeConstants::ipv6InterfaceLength());
}

void detail::writeVendor(U32 vendorId, U8* attr) {
  attr[AttributeConstants::typeOffset()] = RadiusAttributeId::VENDOR_SPECIFIC;
  const std::span<U8> id(attr + VsaConstants::vendorIdOffset(), VsaConstants::vendorIdLength());
  static_cast<void>(Zonet::WireWriter(id).write(vendorId));
}

bool detail::isWrittenAsNothing(const AttrValue& value, const AttrInfo& attrInfo, bool isVsa) {
  switch (attrInfo.attributeType) {
    case RadiusAttributeType::date:
      return attrInfo.isTagged && std::holds_alternative<TaggedInt>(value);
    case RadiusAttributeType::octets: {
      const auto* octets = std::get_if<Bytes>(&value);
      return attrInfo.isConcat && !isVsa && octets != nullptr && octets->empty();
    }
    default:
      return false;
  }
}

ErrorMsg detail::addAttribute(const AttrValue& value, const Attribute& attribute,
                              const AttrInfo& attrInfo, U8*& position, U16& length) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  const U8 attrId = attribute.attrId;
  if (!attrInfo.isInDict) {
    TRACE_STANDARD("Unsupported attribute: {}", attrId);
    return attrInfo.errorMsg;
  }
  if (isWrittenAsNothing(value, attrInfo, false)) {
    return ErrorMsg::success;
  }
  switch (attrInfo.attributeType) {
    case RadiusAttributeType::unknown:
      TRACE_STANDARD("AttrId: {} Unknown data type", attrId);
      return ErrorMsg::unknownAttrDataType;
    case RadiusAttributeType::string:
      return addString({Encoder::text, attrId, false, length, position}, value, attrInfo);
    case RadiusAttributeType::octets:
      return addOctets(attrId, value, attrInfo, position, length);
    case RadiusAttributeType::ipaddr:
      return addAddress(addIpv4Types, attrId, value, position, length);
    case RadiusAttributeType::ipv6addr:
      return addAddress(addIpv6Types, attrId, value, position, length);
    case RadiusAttributeType::ipv6prefix:
      return addAddress(addIpv6PrefixTypes, attrId, value, position, length);
    case RadiusAttributeType::ifid:
      return addAddress(addIfidTypes, attrId, value, position, length);
    case RadiusAttributeType::date:
    case RadiusAttributeType::integer:
      return addNumber({Encoder::number, attrId, false, length, position}, value, attrInfo);
    default:
      TRACE_STANDARD("AttrId: {} Erroneous type encountered", attrId);
      return ErrorMsg::invalidAttrDataType;
  }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes it by value
ErrorMsg addAttribute(AttrValue value, Attribute attribute, AttrInfo attrInfo, U8** bufPtr,
                      U16& curLen, const Ptr<const RadiusDict>& /*dict*/) {
  return detail::addAttribute(value, attribute, attrInfo, *bufPtr, curLen);
}

ErrorMsg detail::addVsa(const AttrValue& value, const Attribute& attribute,
                        const AttrInfo& attrInfo, U8* buf, U16 length) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  if (!attrInfo.isInDict) {
    VERDA_TRACE(codecTrace, Verda::traceErrors, "",
                "Unsupported VSA: {}, vendor Id: {}, vendorAttrId: {}", attribute.attrId,
                attribute.vendorId, attribute.vendorAttrId);
    return attrInfo.errorMsg;
  }
  ErrorMsg fault = ErrorMsg::success;
  if (!isWrittenAsNothing(value, attrInfo, true)) {
    fault = addSubAttribute(value, attribute, attrInfo, buf, length);
  } else if (!fitsPacket(length, VsaConstants::vendorTypeOffset())) {
    fault = ErrorMsg::maxPktLengthExceeded;
  }
  if (fault == ErrorMsg::success) {
    detail::writeVendor(attribute.vendorId, buf);
  }
  return fault;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): likewise
ErrorMsg addVsa(AttrValue value, Attribute attribute, AttrInfo attrInfo, U8* buf, U16 curLen,
                const Ptr<const RadiusDict>& /*dict*/) {
  return detail::addVsa(value, attribute, attrInfo, buf, curLen);
}

}  // namespace RadiusPktParserBase
