#include "RadiusPacketParser/RadiusPacketParser.h"

#include <concepts>
#include <string_view>
#include <type_traits>
#include <utility>

#include "Tyl/RecordText.h"
#include "Verda/Assert.h"
#include "Verda/Hash.h"
#include "Verda/Trace.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.detail.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketParser {

namespace Shared = RadiusPktParserBase::detail;

using detail::AttributeWalk;
using detail::ByteView;
using detail::legacyTrace;
using detail::parserClass;
using detail::TrustedPacket;
using RadiusPktParserBase::AttributeCursor;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U64;
using Verda::U8;

TYL_ENTITY_TYPE(RadiusHdr)
TYL_ENTITY_TYPE(AttrInfo)
TYL_ENTITY_TYPE(RadiusPacketParserBase)
TYL_ENTITY_TYPE(RadiusPacketParser)
TYL_ENTITY_TYPE(RadiusPacketNew)

Verda::TraceFacility detail::legacyTrace("RadiusPacketParser::RadiusPacketParser");

namespace {

/// The records' fields, the same list for writing and for reading.
template <typename Record, typename AttributeOrConst>
void eachField(Record& record, AttributeOrConst& attribute) requires
    std::same_as<std::remove_const_t<AttributeOrConst>, Attribute> {
  record.field("attrId", attribute.attrId);
  record.field("vendorAttrId", attribute.vendorAttrId);
  record.field("vendorId", attribute.vendorId);
}

template <typename Record, typename VsaOrConst>
void eachField(Record& record, VsaOrConst& vsa) requires
    std::same_as<std::remove_const_t<VsaOrConst>, VsaValueType> {
  record.field("vendorId", vsa.vendorId);
  record.field("code", vsa.code);
  record.field("value", vsa.value);
}

template <typename Value>
String textOf(const Value& value) {
  Tyl::RecordWriter record;
  eachField(record, value);
  return record.text();
}

template <typename Value>
void readText(const String& text, Value& value) {
  Tyl::RecordReader record(text.view());
  eachField(record, value);
  record.end();
}

/// The basic check of a packet: says what is wrong, or an empty text, and what it met on the way.
class SanityCheck {
 public:
  /// `hasMessageAuthenticator` is what an earlier check found.
  SanityCheck(TrustedPacket packet, const RadiusDict& dictionary, bool hasMessageAuthenticator)
      : packet_(packet),
        dictionary_(dictionary),
        hasMessageAuthenticator_(hasMessageAuthenticator) {}

  std::string_view run() {
    AttributeCursor cursor(packet_.bytes().subspan(PacketConstants::headerLength()));
    while (true) {
      switch (cursor.next()) {
        case AttributeCursor::Step::attribute:
          if (const std::string_view fault = faultOf(cursor.bytes()); !fault.empty()) {
            return fault;
          }
          break;
        case AttributeCursor::Step::loneByte:
          return "Received packet with attribute having invalid length";
        case AttributeCursor::Step::badLength:
          return "Received packet with invalid attribute length";
        case AttributeCursor::Step::end:
          return hasEapMessage_ && !hasMessageAuthenticator_
                     ? "Packet has eap message but doesn't have message authenticator"
                     : std::string_view();
      }
    }
  }

  bool hasMessageAuthenticator() const { return hasMessageAuthenticator_; }

 private:
  std::string_view faultOf(ByteView attribute) {
    const U8 type = attribute[AttributeConstants::typeOffset()];
    switch (type) {
      case RadiusAttributeId::VENDOR_SPECIFIC:
        return faultOfVendor(attribute);
      case RadiusAttributeId::MESSAGE_AUTHENTICATOR:
        if (attribute.size() != lengthWith(AttributeConstants::msgAuthLength())) {
          return "Received packet with invalid msgAuth Length";
        }
        hasMessageAuthenticator_ = true;
        break;
      case RadiusAttributeId::USER_PASSWORD:
        if (!Shared::isPasswordLength(attribute.size() - AttributeConstants::valueOffset())) {
          return "Received password with invalid length";
        }
        break;
      case RadiusAttributeId::EAP_MESSAGE:
        hasEapMessage_ = true;
        break;
      default:
        break;
    }
    return faultOfLength(Attribute(type, 0, 0), attribute.size());
  }

  /// The length byte of the sub-attribute is not looked at, and nor is what may follow it; of a
  /// vendor that the dictionary lacks, nothing.
  std::string_view faultOfVendor(ByteView attribute) const {
    if (attribute.size() < VsaConstants::vendorAttrValueOffset()) {
      return "Received packet with VSA attribute having invalid length";
    }
    const U32 vendorId = Shared::vendorIdOf(attribute.data());
    const Attribute key(RadiusAttributeId::VENDOR_SPECIFIC,
                        attribute[VsaConstants::vendorTypeOffset()], vendorId);
    return faultOfLength(key, attribute.size() - VsaConstants::vendorTypeOffset());
  }

  std::string_view faultOfLength(const Attribute& key, std::size_t length) const {
    const RadiusNode* entry = detail::entryOf(dictionary_, key);
    if (entry == nullptr) {
      return {};
    }
    const auto unless = [length](std::size_t valueLength, std::string_view fault) {
      return length == lengthWith(valueLength) ? std::string_view() : fault;
    };
    switch (entry->attributeType()) {
      case RadiusAttributeType::ipaddr:
        return unless(AttributeConstants::ipv4Length(),
                      "Received packet with IPADDR attribute having invalid length");
      case RadiusAttributeType::date:
        return unless(AttributeConstants::dateLength(),
                      "Received packet with DATE attribute having invalid length");
      case RadiusAttributeType::integer:
        return unless(AttributeConstants::intLength(),
                      "Received packet with INT attribute having invalid length");
      case RadiusAttributeType::ipv6addr:
        return unless(AttributeConstants::ipv6Length(),
                      "Received packet with IPV6ADDR attribute having invalid length");
      case RadiusAttributeType::integer64:
        return unless(sizeof(U64), "Received packet with U64 attribute having invalid length");
      default:
        return {};
    }
  }

  static constexpr std::size_t lengthWith(std::size_t valueLength) {
    return AttributeConstants::valueOffset() + valueLength;
  }

  TrustedPacket packet_;
  const RadiusDict& dictionary_;
  bool hasMessageAuthenticator_;
  bool hasEapMessage_ = false;
};

}  // namespace

Attribute::Attribute(const String& text) {
  readText(text, *this);
}

U32 Attribute::hash(U32 seed) const {
  return Verda::hashMix(seed, (U64{attrId} << 40U) | (U64{vendorAttrId} << 32U) | vendorId);
}

String Attribute::text() const {
  return textOf(*this);
}

VsaValueType::VsaValueType(const String& text) {
  readText(text, *this);
}

U32 VsaValueType::hash(U32 seed) const {
  return Verda::hashOf(value, Verda::hashMix(seed, (U64{vendorId} << 8U) | code));
}

String VsaValueType::text() const {
  return textOf(*this);
}

std::ostream& operator<<(std::ostream& out, const Attribute& attribute) {
  return out << attribute.text();
}

std::ostream& operator<<(std::ostream& out, const VsaValueType& vsa) {
  return out << vsa.text();
}

void detail::traceZeroLength(const char* className, const char* function) {
  VERDA_TRACE_AS(legacyTrace, Verda::traceErrors, className, function,
                 "Attribute length zero, exiting");
}

ByteView detail::wholeAuthenticator(ByteView authenticator) {
  VERDA_ASSERT_TEXT(authenticator.size() >= PacketConstants::authLength(),
                    "bytesCopied == PacketConstants::authLength()");
  return authenticator.first(PacketConstants::authLength());
}

Ptr<RadiusHdr> RadiusPacketParserBase::headerIs() {
  header_ = radiusHdrFactory();
  return header_;
}

const RadiusHdr& RadiusPacketParserBase::knownHeader() const {
  VERDA_ASSERT(header());
  return *header_;
}

void RadiusPacketParserBase::setHeader() {
  VERDA_ASSERT(pkt());
  Ptr<RadiusHdr> header = radiusHdrFactory();
  if (Shared::readHeader(std::as_const(*pkt()).span(), *header) == Shared::HeaderFault::tooShort) {
    VERDA_TRACE(legacyTrace, Verda::traceErrors, parserClass,
                "Received packet with invalid length");
    badPktIs(true);
    return;
  }
  header_ = std::move(header);
}

void RadiusPacketParserBase::doBasicPacketSanityCheck() {
  // Before anything else: a packet that is refused for this makes no storage grow.
  if (!Shared::isPacketLength(knownHeader().length())) {
    VERDA_TRACE(legacyTrace, Verda::traceErrors, parserClass,
                "Received packet with invalid header length");
    badPktIs(true);
    return;
  }
  SanityCheck check(TrustedPacket(pkt(), knownHeader().length()), *dictionary(), msgAuthPresent());
  const std::string_view fault = check.run();
  msgAuthPresentIs(check.hasMessageAuthenticator());
  if (!fault.empty()) {
    VERDA_TRACE(legacyTrace, Verda::traceErrors, parserClass, "{}", fault);
    badPktIs(true);
  }
}

bool RadiusPacketParserBase::validatePacketLength() const {
  const U16 length = knownHeader().length();
  if (Shared::isPacketLength(length)) {
    return true;
  }
  VERDA_TRACE(legacyTrace, Verda::traceErrors, parserClass,
              "Received RADIUS packet with invalid length{}", length);
  return false;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes it by value
bool RadiusPacketParserBase::validatePacketId(Ptr<RadiusHdr> reqHdr) const {
  VERDA_ASSERT(reqHdr);
  if (knownHeader().id() == reqHdr->id()) {
    return true;
  }
  VERDA_TRACE(legacyTrace, Verda::traceErrors, parserClass,
              "Received non-matching respPktId: {} and reqPktId: {}", knownHeader().id(),
              reqHdr->id());
  return false;
}

bool RadiusPacketParserBase::validateStatusServerPkt() {
  if (!msgAuthPresent()) {
    return false;
  }
  TrustedPacket packet(pkt(), knownHeader().length());
  for (AttributeWalk walk(packet); walk.atAttribute();) {
    if (Shared::isForbiddenInStatusServer(walk.type()) || !walk.advance()) {
      return false;
    }
  }
  return true;
}

RadiusAttributeType::RadiusAttributeTypeEnum RadiusPacketParserBase::getAttributeType(
    const Attribute& attribute) const {
  const RadiusNode* entry = detail::entryOf(*dictionary(), attribute);
  return entry == nullptr ? RadiusAttributeType::unknown : entry->attributeType();
}

RadiusPacketParser::RadiusPacketParser(const Ptr<const RadiusDict>& dictionary,
                                       const Ptr<Zonet::Pkt>& pkt)
    : RadiusPacketParserBase(dictionary, pkt) {
  handleInitialized();
}

void RadiusPacketParser::handleInitialized() {
  setHeader();
  if (!badPkt()) {
    doBasicPacketSanityCheck();
  }
}

Ptr<Zonet::Pkt> RadiusPacketNew::createPacket() const {
  VERDA_ASSERT(hdr());
  const ByteView authenticator = detail::wholeAuthenticator(hdr()->authenticator().bytes());
  Ptr<Zonet::Pkt> pkt = Zonet::pktFactory(U32{PacketConstants::headerLength()});
  U8* const bytes = pkt->data();
  bytes[PacketConstants::codeOffset()] = hdr()->code();
  bytes[PacketConstants::idOffset()] = hdr()->id();
  Shared::writeLength(PacketConstants::headerLength(), bytes);
  Shared::copyAuthenticator(authenticator, bytes + PacketConstants::authenticatorOffset());
  return pkt;
}

}  // namespace RadiusPacketParser
