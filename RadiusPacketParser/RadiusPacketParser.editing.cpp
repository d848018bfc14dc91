#include "RadiusPacketParser/RadiusPacketParser.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Verda/Assert.h"
#include "Verda/Trace.h"
#include "ZoCrypto/Cleanse.h"
#include "Zonet/AddressTextError.h"
#include "Zonet/Ip6Addr.h"
#include "Zonet/IpGenAddr.h"
#include "Zonet/IpGenPrefix.h"
#include "Zonet/WireWriter.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.detail.h"

namespace RadiusPacketParser {

namespace Shared = RadiusPktParserBase::detail;

using detail::AttributeWalk;
using detail::ByteView;
using detail::legacyTrace;
using detail::parserClass;
using detail::TrustedPacket;
using Shared::maxValueLength;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;

namespace {

constexpr const char* addOperation = "addAttribute";

constexpr std::string_view tooLongPacket =
    "len <= PacketConstants::maxLength() && \" Length of the packet less than or equal to 4KB \"";

/// A packet in the making, in a buffer with twice the room of the largest one. Its length counts
/// on behind the buffer, where nothing is written: a packet that long is refused in the end.
class EditedPacket {
 public:
  EditedPacket() : buffer_(Zonet::pktBufferFactory(U32{2} * PacketConstants::maxLength())) {}

  /// Appends bytes as they are.
  void append(ByteView bytes) {
    write(bytes);
    pass(bytes.size());
  }

  /// Writes bytes so far behind the end, and no farther than the buffer goes; the end stays where
  /// it is.
  void write(ByteView bytes, std::size_t behind = 0) {
    const std::span<U8> buffer(buffer_->data(), buffer_->bytes());
    const std::span<U8> room = buffer.subspan(std::min(length_ + behind, buffer.size()));
    std::ranges::copy(bytes.first(std::min(bytes.size(), room.size())), room.begin());
  }

  /// The end, with room for any attribute behind it.
  U8* place() {
    return length_ + overflow_.size() <= buffer_->bytes() ? buffer_->data() + length_
                                                          : overflow_.data();
  }

  /// Moves the end behind what was written.
  void pass(std::size_t bytes) { length_ += bytes; }

  /// Moves the end behind the attribute that was written.
  void passAttribute() { pass(place()[AttributeConstants::lengthOffset()]); }

  bool isTooLong(std::size_t more = 0) const {
    return length_ + more > PacketConstants::maxLength();
  }

  U8* header() { return buffer_->data(); }

  /// The packet, of at most 4096 bytes.
  Ptr<Zonet::Pkt> finish() {
    Shared::writeLength(static_cast<U16>(length_), header());
    buffer_->tailCut(static_cast<U32>(buffer_->bytes() - length_));
    return Zonet::pktFactory(buffer_);
  }

 private:
  Ptr<Zonet::PktBuffer> buffer_;
  std::size_t length_ = PacketConstants::headerLength();
  // What would stand behind the buffer.
  std::array<U8, VsaConstants::vendorAttrValueOffset() + AttributeConstants::maxLength()>
      overflow_{};
};

void assertNotTooLong(const EditedPacket& packet) {
  VERDA_ASSERT_TEXT(!packet.isTooLong(), tooLongPacket);
}

// ---- Texts ----

/// The groups of a text between separators, one at a time.
class TextGroups {
 public:
  TextGroups(std::string_view text, char separator) : rest_(text), separator_(separator) {}

  /// The next group as `std::stoi` reads it, in the low bits. Throws what that throws, also when
  /// there is no group.
  int next(int base) {
    const std::size_t end = std::min(rest_.find(separator_), rest_.size());
    const int number = std::stoi(std::string(rest_.substr(0, end)), nullptr, base);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return number;
  }

 private:
  std::string_view rest_;
  char separator_;
};

/// So many numbers of type `Number`, cut to its width, in network order.
template <typename Number, std::size_t count>
std::array<U8, sizeof(Number) * count> bytesOfGroups(std::string_view text, char separator,
                                                     int base) {
  std::array<U8, sizeof(Number) * count> bytes{};
  Zonet::WireWriter writer(bytes);
  TextGroups groups(text, separator);
  for (std::size_t group = 0; group < count; ++group) {
    static_cast<void>(writer.write(static_cast<Number>(groups.next(base))));
  }
  return bytes;
}

/// An address of that family, or the exception that a text for another one raises.
Zonet::IpGenAddr addressOf(const String& text, Zonet::IpFamily family) {
  const Zonet::IpGenAddr address(text);
  if (address.family() != family) {
    throw Zonet::AddressTextError(
        family == Zonet::IpFamily::ip4 ? "an IPv4 address" : "an IPv6 address", text);
  }
  return address;
}

// ---- Writing one attribute ----

void writeUnit(U8* attr, U8 type, ByteView front, ByteView value) {
  const std::span<U8> place = Shared::beginUnit(attr, type, front.size() + value.size());
  std::ranges::copy(front, place.begin());
  std::ranges::copy(value, place.subspan(front.size()).begin());
}

void writePrefix(U8* attr, U8 code, const String& text) {
  const Zonet::IpGenPrefix prefix(text);
  const String address(text.view().substr(0, text.view().find('/')));
  std::array<U8, AttributeConstants::minIpv6PrefixAttrLength()> front{};
  front[RadiusPktParserBase::ipv6PrefixLengthOffset] = prefix.prefixLength();
  writeUnit(attr, code, front, addressOf(address, Zonet::IpFamily::ip6).bytes());
}

// ---- Adding ----

[[noreturn]] void failUnsupported(const char* operation, U8 code) {
  VERDA_TRACE_AS(legacyTrace, Verda::traceErrors, parserClass, operation, "Type Not Supported{}",
                 code);
  Verda::assertionFailed("false", __FILE__, __LINE__, operation);
}

[[noreturn]] void failUnsupportedVsa(const VsaValueType& vsa) {
  VERDA_TRACE_AS(legacyTrace, Verda::traceErrors, parserClass, addOperation,
                 "Type Not Supported for vendorId:{}, attrId:{}", vsa.vendorId, vsa.code);
  Verda::assertionFailed("false", __FILE__, __LINE__, addOperation);
}

/// Appends a text in as many attributes as it takes.
void addFragments(EditedPacket& packet, U8 code, ByteView text) {
  while (!text.empty()) {
    const ByteView piece = text.first(std::min(text.size(), maxValueLength));
    VERDA_ASSERT_TEXT(!packet.isTooLong(AttributeConstants::valueOffset() + piece.size()),
                      "len + lenToAdd <= PacketConstants::maxLength() && \" Len of the packet "
                      "should be <= 4KB \"");
    writeUnit(packet.place(), code, {}, piece);
    packet.passAttribute();
    text = text.subspan(piece.size());
  }
}

/// Appends a string or octets; false when that is an empty text of which no attribute is made.
bool addText(EditedPacket& packet, U8 code, const String& text, const RadiusDict& dictionary) {
  const RadiusNode* entry = detail::entryOf(dictionary, Attribute(code, 0, 0));
  if (entry->concat()) {
    addFragments(packet, code, text.bytes());
    return !text.empty();
  }
  if (code == RadiusAttributeId::USER_PASSWORD) {
    Shared::PaddedPassword padded;
    const ZoCrypto::CleanseOnExit clean(padded);
    writeUnit(packet.place(), code, {}, Shared::padPassword(text.bytes(), padded));
  } else {
    addStrOctetTypes(packet.place(), code, text, false);
  }
  packet.passAttribute();
  return true;
}

/// Appends one standard attribute; false when none was made.
bool addStandard(EditedPacket& packet, U8 code, const String& text, const RadiusDict& dictionary,
                 RadiusAttributeType::RadiusAttributeTypeEnum type) {
  U8* const attr = packet.place();
  switch (type) {
    case RadiusAttributeType::string:
    case RadiusAttributeType::octets:
      return addText(packet, code, text, dictionary);
    case RadiusAttributeType::integer:
    case RadiusAttributeType::date:
      addIntegerDateTypes(attr, code, text, false);
      break;
    case RadiusAttributeType::ipaddr:
      writeUnit(attr, code, {}, addressOf(text, Zonet::IpFamily::ip4).bytes());
      break;
    case RadiusAttributeType::ipv6addr:
      writeUnit(attr, code, {}, addressOf(text, Zonet::IpFamily::ip6).bytes());
      break;
    case RadiusAttributeType::ipv6prefix:
      writePrefix(attr, code, text);
      break;
    case RadiusAttributeType::ifid: {
      constexpr std::size_t groups =
          AttributeConstants::ipv6InterfaceLength() / AttributeConstants::ipv6WordLength();
      writeUnit(attr, code, {}, bytesOfGroups<U16, groups>(text, ':', 16));
      break;
    }
    default:
      failUnsupported(addOperation, code);
  }
  packet.passAttribute();
  return true;
}

/// Writes the sub-attribute and gives the length of the whole attribute.
std::size_t writeSubAttribute(U8* attr, const VsaValueType& vsa, const RadiusDict& dictionary) {
  const RadiusNode* entry = detail::entryOf(
      dictionary, Attribute(RadiusAttributeId::VENDOR_SPECIFIC, vsa.code, vsa.vendorId));
  switch (entry == nullptr ? RadiusAttributeType::unknown : entry->attributeType()) {
    case RadiusAttributeType::integer:
      addIntegerDateTypes(attr, vsa.code, vsa.value, true);
      return std::size_t{VsaConstants::vendorAttrValueOffset()} + AttributeConstants::intLength();
    case RadiusAttributeType::string:
    case RadiusAttributeType::octets:
      addStrOctetTypes(attr, vsa.code, vsa.value, true);
      return std::size_t{VsaConstants::vendorAttrValueOffset()} + vsa.value.size();
    default:
      failUnsupportedVsa(vsa);
  }
}

void addVendorAttribute(EditedPacket& packet, const VsaValueType& vsa,
                        const RadiusDict& dictionary) {
  if (vsa.value.size() > VsaConstants::vendorAttrMaxLength()) {
    VERDA_TRACE_AS(legacyTrace, Verda::traceErrors, parserClass, addOperation,
                   "Addition of vsa failed for code: {}, vendorId: {}, attrValue: {}", vsa.code,
                   vsa.vendorId, vsa.value);
    VERDA_ASSERT_TEXT(false,
                      "false && \" VsaConstants::vendorAttrMaxLength (249) \" \" Attribute Type ( "
                      "1 ), Attribute Length ( 1 ),  Vendor Id ( 4 ) \" \" So, VSA subAttrLength "
                      "should be less than or equal to \" \" AttributeConstants::maxLength ( 255 ) "
                      "- 6 \"");
  }
  U8* const attr = packet.place();
  const std::size_t length = writeSubAttribute(attr, vsa, dictionary);
  Shared::writeVendor(vsa.vendorId, attr);
  attr[AttributeConstants::lengthOffset()] = static_cast<U8>(length);
  VERDA_ASSERT_TEXT(
      attr[AttributeConstants::lengthOffset()] - attr[VsaConstants::vendorAttrLengthOffset()] ==
          VsaConstants::vendorTypeOffset(),
      "( *( ptr + AttributeConstants::lengthOffset() ) - *( ptr + "
      "VsaConstants::vendorAttrLengthOffset() ) == VsaConstants::vendorTypeOffset() "
      ") && \" Length of vendor specific attribute - length of sub-attribute = 6 \"");
  packet.pass(length);
  assertNotTooLong(packet);
}

// ---- Setting ----

/// Writes an attribute with the text that it is set to, in the encoding of its type.
void writeSet(EditedPacket& packet, U8 code, const String& text, const char* operation) {
  switch (code) {
    case RadiusAttributeId::USER_NAME:
    case RadiusAttributeId::USER_PASSWORD:
    case RadiusAttributeId::CALLED_STATION_ID:
    case RadiusAttributeId::CALLING_STATION_ID:
    case RadiusAttributeId::NAS_IDENTIFIER: {
      // The length counts in eight bits, on purpose; of a text beyond that the part behind the end
      // is written over by what follows.
      const std::array<U8, AttributeConstants::valueOffset()> head{
          code, static_cast<U8>(text.size() + AttributeConstants::valueOffset())};
      packet.write(head);
      packet.write(text.bytes(), head.size());
      packet.pass(head[AttributeConstants::lengthOffset()]);
      return;
    }
    case RadiusAttributeId::NAS_IP_ADDRESS:
      writeUnit(packet.place(), code, {},
                bytesOfGroups<U8, AttributeConstants::ipv4Length()>(text, '.', 10));
      break;
    case RadiusAttributeId::NAS_IPV6_ADDRESS:
      writeUnit(packet.place(), code, {}, Zonet::Ip6Addr(text).bytes());
      break;
    default:
      failUnsupported(operation, code);
  }
  packet.passAttribute();
}

void writeCodeAndId(const RadiusHdr& header, U8* pkt) {
  pkt[PacketConstants::codeOffset()] = header.code();
  pkt[PacketConstants::idOffset()] = header.id();
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes it by value
void addStrOctetTypes(U8* attr, U8 code, String text, bool isVsa) {
  if (text.size() > maxValueLength) {
    VERDA_TRACE(legacyTrace, Verda::traceErrors, "",
                "Attribute addition failed for attrId: {}, attrValue: {}", code, text);
    VERDA_ASSERT_TEXT(false,
                      "false && \" Attribute len should be <= Attribute Max Length ( 255 ) \"");
  }
  writeUnit(attr + detail::unitOffset(isVsa), code, {}, text.bytes());
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): likewise
void addIntegerDateTypes(U8* attr, U8 code, String text, bool isVsa) {
  const auto number = static_cast<U32>(std::strtoll(text.cStr(), nullptr, 0));
  std::array<U8, AttributeConstants::intLength()> value{};
  static_cast<void>(Zonet::WireWriter(value).write(number));
  writeUnit(attr + detail::unitOffset(isVsa), code, {}, value);
}

Ptr<Zonet::Pkt> RadiusPacketParserBase::addAttribute() {
  TrustedPacket old(pkt(), knownHeader().length());
  EditedPacket edited;
  std::ranges::copy(old.bytes().first(PacketConstants::headerLength()), edited.header());
  constexpr U8 msgAuth = RadiusAttributeId::MESSAGE_AUTHENTICATOR;
  const bool putsMsgAuth = msgAuthPresent() || attributesToAddHas(msgAuth);
  if (putsMsgAuth) {
    static constexpr std::array<U8, AttributeConstants::msgAuthLength()> zeros{};
    writeUnit(edited.place(), msgAuth, {}, zeros);
    edited.passAttribute();
  }
  for (AttributeWalk walk(old); walk.atAttribute();) {
    if (!putsMsgAuth || walk.type() != msgAuth) {
      edited.append(walk.bytes());
    }
    if (!walk.advance()) {
      break;
    }
  }
  for (const auto& [code, text] : attributesToAdd()) {
    if (code == msgAuth) {
      continue;
    }
    const auto type = getAttributeType(Attribute(code, 0, 0));
    if (!addStandard(edited, code, text, *dictionary(), type)) {
      VERDA_TRACE(legacyTrace, Verda::traceErrors, parserClass, "Attribute length zero, exiting{}",
                  code);
      break;
    }
    assertNotTooLong(edited);
  }
  for (const auto& [key, vsa] : vsaToAdd()) {
    addVendorAttribute(edited, vsa, *dictionary());
  }
  assertNotTooLong(edited);
  attributesToAddDel(msgAuth);  // last: a text that says no address leaves all as it was
  return edited.finish();
}

Ptr<Zonet::Pkt> RadiusPacketParserBase::setValuesOfAttributesFromAttributesToSet() {
  TrustedPacket old(pkt(), knownHeader().length());
  EditedPacket edited;
  for (AttributeWalk walk(old); walk.atAttribute();) {
    if (const String* text = attributesToSet().find(walk.type())) {
      writeSet(edited, walk.type(), *text, __func__);
    } else {
      edited.append(walk.bytes());
    }
    if (!walk.advance()) {
      detail::traceZeroLength(parserClass, __func__);
      break;
    }
  }
  VERDA_ASSERT_TEXT(!edited.isTooLong(), "l2 <= PacketConstants::maxLength()");
  writeCodeAndId(knownHeader(), edited.header());
  return edited.finish();
}

Ptr<Zonet::Pkt> RadiusPacketParserBase::removeAttribute() {
  TrustedPacket old(pkt(), knownHeader().length());
  EditedPacket edited;
  std::ranges::copy(old.bytes().first(PacketConstants::headerLength()), edited.header());
  writeCodeAndId(knownHeader(), edited.header());
  for (AttributeWalk walk(old); walk.atAttribute();) {
    if (!attributesToRemoveHas(walk.key())) {
      edited.append(walk.bytes());
    }
    if (!walk.advance()) {
      detail::traceZeroLength(parserClass, __func__);
      break;
    }
  }
  assertNotTooLong(edited);
  return edited.finish();
}

}  // namespace RadiusPacketParser
