#include "RadiusPacketParser/RadiusPktParser.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <string_view>

#include "Verda/Assert.h"
#include "Verda/InPlace.h"
#include "Verda/Trace.h"
#include "ZoCrypto/Cleanse.h"
#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.detail.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPktParserBase {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusAttributeType;
using RadiusPacketParser::VsaConstants;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;

TYL_ENTITY_TYPE(PktInfoParser)
TYL_ENTITY_TYPE(RadiusPktParser)

namespace {

using ByteView = std::span<const U8>;

constexpr std::string_view parserClass = "RadiusPktParser";
constexpr std::string_view walkFunction = "doProcessPkt";

/// Traces a fault in the name of `doProcessPkt`.
#define TRACE_FAULT(...) \
  VERDA_TRACE_AS(codecTrace, Verda::traceErrors, parserClass, walkFunction, __VA_ARGS__)

/// Fills `hdr` from the packet's header, or says what is wrong with it; what `getHeader` does,
/// wherever the header lives.
ErrorMsg readHeader(const Ptr<Zonet::Pkt>& pkt, RadiusHdr& hdr) {
  static constexpr std::string_view function = "getHeader";
  VERDA_TRACE_AS(codecTrace, Verda::traceEntries, parserClass, function, "entry");
  if (!pkt) {
    VERDA_TRACE_AS(codecTrace, Verda::traceErrors, parserClass, function,
                   "Null pointer passed instead of packet");
    return ErrorMsg::invalidPktPtr;
  }
  switch (detail::readHeader(std::as_const(*pkt).span(), hdr)) {
    case detail::HeaderFault::none:
      return ErrorMsg::success;
    case detail::HeaderFault::tooShort:
      VERDA_TRACE_AS(codecTrace, Verda::traceErrors, parserClass, function,
                     "Packet has invalid length: {}", pkt->bytes());
      break;
    case detail::HeaderFault::lengthOutOfRange:
      VERDA_TRACE_AS(codecTrace, Verda::traceErrors, parserClass, function,
                     "Invalid packet header length: {}", hdr.length());
      break;
    case detail::HeaderFault::cut:
      VERDA_TRACE_AS(codecTrace, Verda::traceErrors, parserClass, function,
                     "Packet's Length: {} and header length: {} mismatch", pkt->bytes(),
                     hdr.length());
      break;
  }
  return ErrorMsg::invalidPktLength;
}

// ---- Decoding one value ----

ErrorMsg invalidValueLength(const Attribute& key, std::string_view typeName, std::size_t length) {
  TRACE_FAULT("Attribute: {}, VendorId: {}, VendorAttrId: {}, Data Type: {}, Invalid length: {}",
              key.attrId, key.vendorId, key.vendorAttrId, typeName, length);
  return ErrorMsg::invalidAttrLength;
}

/// Makes `value` a `Text` of these bytes. One value after another of the same kind, fragments of an
/// EAP message say, goes into the same storage.
template <typename Text>
void setText(ByteView bytes, AttrValue& value) {
  if (Text* present = std::get_if<Text>(&value)) {
    present->assign(bytes);
  } else {
    value.emplace<Text>(bytes);
  }
}

ErrorMsg decodeString(bool isTagged, ByteView bytes, AttrValue& value) {
  if (!isTagged) {
    setText<String>(bytes, value);
    return ErrorMsg::success;
  }
  if (bytes.empty()) {
    TRACE_FAULT("Invalid attribute length: {}, tag byte missing",
                AttributeConstants::valueOffset());
    return ErrorMsg::tagByteMissing;
  }
  value.emplace<TaggedStr>(TaggedStr{.str = String(bytes), .tag = 0}).handleTaggedStr();
  return ErrorMsg::success;
}

/// An integer or a date; only an integer is ever tagged.
ErrorMsg decodeNumber(const Attribute& key, std::string_view typeName, bool isTagged,
                      ByteView bytes, AttrValue& value) {
  U32 number = 0;
  if (bytes.size() != AttributeConstants::intLength() || !Zonet::WireReader(bytes).read(number)) {
    return invalidValueLength(key, typeName, bytes.size());
  }
  if (isTagged) {
    value.emplace<TaggedInt>(TaggedInt{.value = number, .tag = 0}).handleTaggedInt();
  } else {
    value.emplace<unsigned int>(number);
  }
  return ErrorMsg::success;
}

/// The eight bytes as the host keeps them in memory, on purpose: the number is not converted from
/// network order.
ErrorMsg decodeInteger64(const Attribute& key, ByteView bytes, AttrValue& value) {
  unsigned long number = 0;
  static_assert(sizeof(number) == 8);
  if (bytes.size() != sizeof(number)) {
    return invalidValueLength(key, "Integer64", bytes.size());
  }
  std::memcpy(&number, bytes.data(), sizeof(number));
  value.emplace<unsigned long>(number);
  return ErrorMsg::success;
}

ErrorMsg decodeIp4(const Attribute& key, ByteView bytes, AttrValue& value) {
  if (bytes.size() != AttributeConstants::ipv4Length()) {
    return invalidValueLength(key, "Ipaddr", bytes.size());
  }
  value.emplace<Zonet::IpGenPrefix>(
      Zonet::IpGenAddr(bytes.first<AttributeConstants::ipv4Length()>()));
  return ErrorMsg::success;
}

using Ip6Bytes = std::array<U8, AttributeConstants::ipv6Length()>;

void setIp6(const Ip6Bytes& address, AttrValue& value) {
  value.emplace<Zonet::IpGenPrefix>(Zonet::IpGenAddr(Zonet::Ip6Addr(address)));
}

ErrorMsg decodeIp6(const Attribute& key, ByteView bytes, AttrValue& value) {
  Ip6Bytes address;
  if (bytes.size() != address.size()) {
    return invalidValueLength(key, "Ipv6addr", bytes.size());
  }
  std::ranges::copy(bytes, address.begin());
  setIp6(address, value);
  return ErrorMsg::success;
}

/// The prefix length is checked but not carried into the value, on purpose.
ErrorMsg decodeIp6Prefix(const Attribute& key, ByteView bytes, AttrValue& value) {
  if (bytes.size() < AttributeConstants::minIpv6PrefixAttrLength() ||
      bytes.size() > AttributeConstants::maxIpv6PrefixAttrLength()) {
    return invalidValueLength(key, "Ipv6Prefix", bytes.size());
  }
  const U8 prefixLength = bytes[ipv6PrefixLengthOffset];
  if (prefixLength > AttributeConstants::maxPrefixLength()) {
    TRACE_FAULT(
        "Attribute: {}, VendorId: {}, VendorAttrId: {}, Data Type: Ipv6Prefix, Invalid prefix "
        "length: {}",
        key.attrId, key.vendorId, key.vendorAttrId, prefixLength);
    return ErrorMsg::invalidAttrLength;
  }
  Ip6Bytes address{};
  std::ranges::copy(bytes.subspan(AttributeConstants::minIpv6PrefixAttrLength()), address.begin());
  setIp6(address, value);
  return ErrorMsg::success;
}

/// An interface identifier becomes the low half of an IPv6 address.
ErrorMsg decodeInterfaceId(const Attribute& key, ByteView bytes, AttrValue& value) {
  if (bytes.size() != AttributeConstants::ipv6InterfaceLength()) {
    return invalidValueLength(key, "Ifid", bytes.size());
  }
  Ip6Bytes address{};
  std::ranges::copy_backward(bytes, address.end());
  setIp6(address, value);
  return ErrorMsg::success;
}

ErrorMsg decodeValue(const Attribute& key, const AttrInfo& attrInfo, ByteView bytes,
                     AttrValue& value) {
  switch (attrInfo.attributeType) {
    case RadiusAttributeType::string:
      return decodeString(attrInfo.isTagged, bytes, value);
    case RadiusAttributeType::octets:
      setText<Bytes>(bytes, value);
      return ErrorMsg::success;
    case RadiusAttributeType::ipaddr:
      return decodeIp4(key, bytes, value);
    case RadiusAttributeType::date:
      return decodeNumber(key, "Date", false, bytes, value);
    case RadiusAttributeType::integer:
      return decodeNumber(key, "Integer", attrInfo.isTagged, bytes, value);
    case RadiusAttributeType::ipv6addr:
      return decodeIp6(key, bytes, value);
    case RadiusAttributeType::ipv6prefix:
      return decodeIp6Prefix(key, bytes, value);
    case RadiusAttributeType::ifid:
      return decodeInterfaceId(key, bytes, value);
    case RadiusAttributeType::integer64:
      return decodeInteger64(key, bytes, value);
    case RadiusAttributeType::unknown:
      break;
  }
  TRACE_FAULT("Unknown attribute type, storing it as bytes");
  setText<Bytes>(bytes, value);
  return ErrorMsg::success;
}

// ---- The walk ----

/// One pass over the attributes of one packet whose header and authenticator are in order.
class PacketWalk {
 public:
  PacketWalk(RadiusPktParser& parser, const Ptr<Zonet::Pkt>& pkt, const Ptr<RadiusHdr>& hdr,
             const String& secret, const Bytes& reqAuth, const Ptr<PktInfoParser>& sink)
      : parser_(parser), pkt_(pkt), hdr_(hdr), secret_(secret), reqAuth_(reqAuth), sink_(sink) {}

  ErrorMsg run() {
    AttributeCursor cursor(
        std::as_const(*pkt_).span().first(hdr_->length()).subspan(PacketConstants::headerLength()));
    while (true) {
      switch (cursor.next()) {
        case AttributeCursor::Step::attribute:
          if (const ErrorMsg fault = takeAttribute(cursor.bytes()); fault != ErrorMsg::success) {
            return fault;
          }
          break;
        case AttributeCursor::Step::end:
          return eapMessageSeen_ && !sink_->msgAuthPresent() ? ErrorMsg::missingRequiredMsgAuth
                                                             : ErrorMsg::success;
        case AttributeCursor::Step::loneByte:
          TRACE_FAULT("Invalid attribute: {} length: {}", cursor.type(), cursor.remaining());
          return ErrorMsg::invalidAttrLength;
        case AttributeCursor::Step::badLength:
          TRACE_FAULT("Invalid attribute: {} attrLength: {}, remainingPktLen: {}", cursor.type(),
                      cursor.length(), cursor.remaining());
          return ErrorMsg::invalidAttrLength;
      }
    }
  }

 private:
  /// Type, length and value of what the dictionary describes: an attribute, or the sub-attribute
  /// inside a Vendor-Specific one.
  struct Unit {
    Attribute key;
    AttrInfo info;
    ByteView bytes;
  };

  ErrorMsg takeAttribute(ByteView attribute) {
    Unit unit;
    const bool isVendor =
        attribute[AttributeConstants::typeOffset()] == RadiusAttributeId::VENDOR_SPECIFIC;
    ErrorMsg fault = isVendor ? openVendor(attribute, unit) : openStandard(attribute, unit);
    if (fault == ErrorMsg::success) {
      fault = checkConsecutive(unit.key);
    }
    if (fault == ErrorMsg::success) {
      fault = revealAndDecode(unit);
    }
    if (fault != ErrorMsg::success) {
      return fault;
    }
    previousKey_ = unit.key;
    previousIsConcat_ = unit.info.isConcat;
    parser_.doProcessAttribute(unit.key, value_, unit.info, sink_);
    return ErrorMsg::success;
  }

  ErrorMsg openVendor(ByteView attribute, Unit& unit) {
    if (attribute.size() < VsaConstants::vendorAttrValueOffset()) {
      TRACE_FAULT("Invalid Vsa length: {}", attribute.size());
      return ErrorMsg::invalidAttrLength;
    }
    Zonet::WireReader reader(attribute.subspan(VsaConstants::vendorIdOffset()));
    U32 vendorId = 0;
    U8 vendorType = 0;
    U8 vendorLength = 0;
    // All three lie before the value, which was just seen to fit.
    static_cast<void>(reader.read(vendorId) && reader.read(vendorType) &&
                      reader.read(vendorLength));
    unit.key = vendorAttribute(vendorId, vendorType);
    detail::getAttrInfo(unit.key, parser_.dictionary(), unit.info);
    const U32 expected = U32{vendorLength} + VsaConstants::vendorTypeOffset();
    if (attribute.size() != expected) {
      TRACE_FAULT("Attribute length: {} and Vendor attribute length: {} differ", attribute.size(),
                  expected);
      return ErrorMsg::invalidAttrLength;
    }
    unit.bytes = attribute.subspan(VsaConstants::vendorTypeOffset());
    return ErrorMsg::success;
  }

  ErrorMsg openStandard(ByteView attribute, Unit& unit) {
    const U8 type = attribute[AttributeConstants::typeOffset()];
    unit.key = standardAttribute(type);
    detail::getAttrInfo(unit.key, parser_.dictionary(), unit.info);
    unit.bytes = attribute;
    switch (type) {
      case RadiusAttributeId::MESSAGE_AUTHENTICATOR:
        return checkMessageAuthenticator(attribute);
      case RadiusAttributeId::USER_PASSWORD:
        return checkUserPassword(attribute.size());
      case RadiusAttributeId::EAP_MESSAGE:
        eapMessageSeen_ = true;
        return ErrorMsg::success;
      default:
        return ErrorMsg::success;
    }
  }

  ErrorMsg checkMessageAuthenticator(ByteView attribute) {
    if (sink_->msgAuthPresent()) {
      TRACE_FAULT("Message authenticator present more than once");
      return ErrorMsg::invalidMsgAuth;
    }
    if (attribute.size() !=
        std::size_t{AttributeConstants::valueOffset()} + AttributeConstants::msgAuthLength()) {
      TRACE_FAULT("Invalid length of message authenticator: {}", attribute.size());
      return ErrorMsg::invalidAttrLength;
    }
    const auto offset = attribute.data() - std::as_const(*pkt_).data();
    const ErrorMsg fault =
        validateMessageAuthenticator(pkt_, hdr_, secret_, reqAuth_, pkt_->data() + offset);
    if (fault == ErrorMsg::success) {
      sink_->msgAuthPresentIs(true);
    }
    return fault;
  }

  static ErrorMsg checkUserPassword(std::size_t length) {
    if (!detail::isPasswordLength(length - AttributeConstants::valueOffset())) {
      TRACE_FAULT("Received password with invalid length: {}", length);
      return ErrorMsg::invalidAttrLength;
    }
    return ErrorMsg::success;
  }

  /// All fragments of a concatenated attribute stand next to each other.
  ErrorMsg checkConsecutive(const Attribute& key) {
    if (ended_.concatAttrMapHas(key)) {
      TRACE_FAULT("Concat attribute: {} not consecutive", key.attrId);
      return ErrorMsg::concatAttrNotConsecutive;
    }
    if (previousIsConcat_ && key != previousKey_) {
      ended_.concatAttrMapIs(previousKey_);
    }
    return ErrorMsg::success;
  }

  ErrorMsg revealAndDecode(const Unit& unit) {
    return isHidden(unit.info) ? revealCopyAndDecode(unit) : decode(unit, nullptr, unit.bytes);
  }

  /// Works on a copy, so that a hidden value is revealed without touching the packet.
  [[gnu::noinline]] ErrorMsg revealCopyAndDecode(const Unit& unit) {
    std::array<U8, AttributeConstants::maxLength()> scratch;
    const std::span<U8> copy = std::span<U8>(scratch).first(unit.bytes.size());
    const ZoCrypto::CleanseOnExit clean(copy);
    std::ranges::copy(unit.bytes, copy.begin());
    return decode(unit, copy.data(), copy);
  }

  /// @param hidden  what is to be revealed; not touched unless the dictionary says hidden
  /// @param bytes   the type-length-value unit, which `hidden` may be a part of
  ErrorMsg decode(const Unit& unit, U8* hidden, ByteView bytes) {
    const ErrorMsg fault =
        detail::decryptAttribute(unit.key, hidden, secret_, reqAuth_, *hdr_, unit.info);
    return fault != ErrorMsg::success
               ? fault
               : decodeValue(unit.key, unit.info, bytes.subspan(AttributeConstants::valueOffset()),
                             value_);
  }

  RadiusPktParser& parser_;
  const Ptr<Zonet::Pkt>& pkt_;
  const Ptr<RadiusHdr>& hdr_;
  const String& secret_;
  const Bytes& reqAuth_;
  const Ptr<PktInfoParser>& sink_;

  AttrValue value_;
  ConcatAttr ended_;
  Attribute previousKey_;
  bool previousIsConcat_ = false;
  bool eapMessageSeen_ = false;
};

}  // namespace

void RadiusPktParser::doProcessAttribute(const Attribute& /*attr*/, const AttrValue& /*attrValue*/,
                                         AttrInfo /*attrInfo*/,
                                         const Ptr<PktInfoParser>& /*pktInfoParser*/) {}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): an operation of the parser
Ptr<RadiusHdrReturn> RadiusPktParser::getHeader(const Ptr<Zonet::Pkt>& pkt) const {
  Ptr<RadiusHdr> hdr = radiusHdrFactory();
  const ErrorMsg fault = readHeader(pkt, *hdr);
  return fault == ErrorMsg::success ? radiusHdrReturnFactory(hdr) : invalidHdr(fault);
}

ErrorMsg RadiusPktParser::doProcessPkt(const Ptr<Zonet::Pkt>& pkt, const String& secret,
                                       const Bytes& reqAuth,
                                       const Ptr<PktInfoParser>& pktInfoParser) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, parserClass, "entry");
  VERDA_ASSERT(pktInfoParser);
  Verda::InPlace<RadiusHdr> hdr;
  ErrorMsg fault = readHeader(pkt, *hdr);
  if (fault != ErrorMsg::success) {
    return fault;
  }
  fault = validateAuthenticator(pkt, hdr.ptr(), secret, reqAuth);
  if (fault != ErrorMsg::success) {
    TRACE_FAULT("Packet's authenticator field is invalid");
    return fault;
  }
  return PacketWalk(*this, pkt, hdr.ptr(), secret, reqAuth, pktInfoParser).run();
}

}  // namespace RadiusPktParserBase
