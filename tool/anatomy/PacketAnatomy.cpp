#include "tool/anatomy/PacketAnatomy.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>

#include <fmt/format.h>

#include "Zonet/Pkt.h"
#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/anatomy/AttributeFields.h"
#include "tool/anatomy/Faults.h"
#include "tool/anatomy/FieldList.h"
#include "tool/anatomy/Resynchronisation.h"
#include "tool/decoding/PacketHeader.h"
#include "tool/process/FaultTrace.h"
#include "tool/text/AttributeName.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using RadiusPacketParser::RadiusDict;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttributeCursor;
using RadiusPktParserBase::ErrorMsg;
using Verda::Bytes;
using Verda::Ptr;
using Verda::U16;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

std::string namedCode(U8 code) {
  return fmt::format("{} ({})", stringValue(static_cast<RadiusCode::RadiusCodeEnum>(code)).view(),
                     code);
}

/// Whether the library knows what a Message-Authenticator covers in packets of that code; it is
/// asked for its verdict on one.
bool supportsMessageAuthenticator(U8 code) {
  std::array<U8, PacketConstants::headerLength() + AttributeConstants::valueOffset() +
                     AttributeConstants::msgAuthLength()>
      bytes{};
  const Ptr<Zonet::Pkt> packet = Zonet::pktFactory(ByteView(bytes));
  const auto header = RadiusPktParserBase::radiusHdrFactory();
  header->codeIs(code);
  header->lengthIs(static_cast<U16>(bytes.size()));
  const auto zeros = ByteView(bytes).first(PacketConstants::authLength());
  return RadiusPktParserBase::validateMessageAuthenticator(
             packet, header, Verda::String(),
             RadiusPktParserBase::isRequest(code) ? Bytes() : Bytes(zeros),
             packet->data() + PacketConstants::headerLength()) != ErrorMsg::unsupportedPktType;
}

/// Knows which attributes must stand one behind the other, as the parser does.
class FragmentOrder {
 public:
  /// Notes an attribute, and says whether its kind has ended before.
  bool hasEnded(const AttributeFields& attribute) {
    const bool ended = ended_.contains(attribute.key);
    if (previousIsConcat_ && attribute.key != previous_) {
      ended_.insert(previous_);
    }
    previous_ = attribute.key;
    previousIsConcat_ = attribute.info.isConcat;
    return ended;
  }

 private:
  std::set<Attribute> ended_;
  Attribute previous_;
  bool previousIsConcat_ = false;
};

/// Takes one packet apart.
class PacketDissection {
 public:
  PacketDissection(ByteView packet, const AttributeProbe& probe)
      : fields_(packet), probe_(probe), header_(headerOf(packet)) {}

  Anatomy run() {
    addHeader();
    if (fields_.bytes().size() < PacketConstants::headerLength()) {
      return fields_.anatomyDel();
    }
    const std::size_t end = extent();
    addAttributes(fields_.bytes().first(end));
    addWhatIsBehind(end);
    if (firstEapMessage_.has_value() && !lacksBytes_ &&
        !fields_.anatomy().messageAuthenticator.has_value()) {
      fields_.refuse(*firstEapMessage_, missingMessageAuthenticatorFault());
    }
    return fields_.anatomyDel();
  }

 private:
  // ---- The header ----

  void addHeader() {
    const std::size_t size = fields_.bytes().size();
    if (header_.code.has_value()) {
      addPart(PacketConstants::codeOffset(), sizeof(U8), "Code", namedCode(*header_.code));
    }
    if (header_.id.has_value()) {
      addPart(PacketConstants::idOffset(), sizeof(U8), "Identifier",
              fmt::format("{}", *header_.id));
    }
    if (header_.length.has_value()) {
      addLength(*header_.length);
    } else if (size > PacketConstants::lengthOffset()) {
      addPart(PacketConstants::lengthOffset(), sizeof(U8), "Length", "cut");
    }
    addAuthenticator();
    if (size < PacketConstants::headerLength()) {
      fields_.refuse(
          addPart(size, PacketConstants::headerLength() - size, "Missing", "the rest of a header"),
          headerCutFault(size));
    }
  }

  void addLength(U16 length) {
    const std::size_t size = fields_.bytes().size();
    const std::size_t field = addPart(PacketConstants::lengthOffset(), sizeof(length), "Length",
                                      fmt::format("{}", length));
    const std::optional<FieldFault> fault = lengthFieldFault(length, size);
    if (size >= PacketConstants::headerLength() && fault.has_value()) {
      fields_.refuse(field, *fault);
    }
  }

  void addAuthenticator() {
    const std::size_t size = fields_.bytes().size();
    if (size <= PacketConstants::authenticatorOffset()) {
      return;
    }
    const std::size_t length = std::min<std::size_t>(size - PacketConstants::authenticatorOffset(),
                                                     PacketConstants::authLength());
    const bool isWhole = length == PacketConstants::authLength();
    const std::string meaning = !isWhole                                ? "cut"
                                : hasRandomAuthenticator(*header_.code) ? "random"
                                                                        : "MD5 with the secret";
    const std::size_t field =
        addPart(PacketConstants::authenticatorOffset(), length, "Authenticator", meaning);
    if (isWhole) {
      fields_.authenticatorIs(field);
    }
  }

  std::size_t addPart(std::size_t offset, std::size_t length, const std::string& name,
                      const std::string& meaning) {
    return fields_.add(FieldList::packet, offset, length, name, meaning);
  }

  // ---- What is behind it ----

  /// Where the attributes end: where the Length says, unless that cannot be.
  std::size_t extent() const {
    const std::size_t size = fields_.bytes().size();
    return *header_.length < PacketConstants::headerLength()
               ? size
               : std::min<std::size_t>(size, *header_.length);
  }

  void addWhatIsBehind(std::size_t end) {
    const std::size_t size = fields_.bytes().size();
    if (end < size) {
      addPart(end, size - end, "Padding", "behind the Length: not looked at");
    }
    const std::size_t length = *header_.length;
    if (length > size && length <= PacketConstants::maxLength()) {
      addPart(size, length - size, "Missing", "bytes that the Length counts");
      lacksBytes_ = true;
    }
  }

  // ---- The attributes ----

  /// @param packet  up to where its attributes end
  void addAttributes(ByteView packet) {
    std::size_t offset = PacketConstants::headerLength();
    while (offset < packet.size()) {
      const ByteView rest = packet.subspan(offset);
      AttributeCursor cursor(rest);
      AttributePlace place{.number = ++count_, .offset = offset, .continues = false};
      switch (cursor.next()) {
        case AttributeCursor::Step::attribute:
          takeAttribute(place, cursor.bytes());
          offset += cursor.bytes().size();
          break;
        case AttributeCursor::Step::end:
          return;
        case AttributeCursor::Step::loneByte:
          takeLoneByte(place, rest);
          return;
        case AttributeCursor::Step::badLength:
          offset += takeBroken(place, rest);
          break;
      }
    }
  }

  void takeAttribute(AttributePlace& place, ByteView attribute) {
    const U8 type = attribute[AttributeConstants::typeOffset()];
    place.continues = type == RadiusAttributeId::EAP_MESSAGE && firstEapMessage_.has_value();
    const AttributeFields added = addAttributeFields(fields_, probe_, place, attribute);
    const bool isSecond = type == RadiusAttributeId::MESSAGE_AUTHENTICATOR &&
                          fields_.anatomy().messageAuthenticator.has_value();
    if (isSecond) {
      fields_.refuse(added.whole, secondMessageAuthenticatorFault());
    }
    if (!added.faults.empty() && added.faults.front().isFoundFirst) {
      fields_.refuse(added.faults.front().field, added.faults.front().fault);
    }
    noteType(type, added.whole);
    if (order_.hasEnded(added)) {
      fields_.refuse(added.whole, notConsecutiveFault(added.key, added.name));
    }
    for (const OwnFault& own : added.faults) {
      fields_.refuse(own.field, own.fault);
    }
  }

  /// Notes what the packet must have, or must not have twice.
  void noteType(U8 type, std::size_t whole) {
    if (type == RadiusAttributeId::EAP_MESSAGE && !firstEapMessage_.has_value()) {
      firstEapMessage_ = whole;
    }
    if (type != RadiusAttributeId::MESSAGE_AUTHENTICATOR) {
      return;
    }
    if (!fields_.anatomy().messageAuthenticator.has_value()) {
      const std::size_t value = lengthField(whole) + 1;
      fields_.messageAuthenticatorIs(value < fields_.anatomy().fields.size() ? value : whole);
    }
    if (!supportsMessageAuthenticator(*header_.code)) {
      fields_.refuse(whole, unsupportedCodeFault(*header_.code));
    }
  }

  void takeLoneByte(const AttributePlace& place, ByteView rest) {
    const std::size_t whole = addHead(place, rest.size(), rest);
    fields_.refuse(whole, loneByteFault());
    lacksBytes_ = true;
  }

  /// An attribute whose Length byte is wrong. Returns how many bytes it is taken for.
  std::size_t takeBroken(const AttributePlace& place, ByteView rest) {
    const std::optional<std::size_t> next = isCut() ? std::nullopt : nextAttribute(rest, probe_);
    const std::size_t length = next.value_or(rest.size());
    const std::size_t whole = addHead(place, length, rest);
    fields_.refuse(lengthField(whole),
                   attributeLengthFault(rest[AttributeConstants::lengthOffset()], rest.size()));
    if (length > AttributeConstants::valueOffset()) {
      fields_.add(whole, place.offset + AttributeConstants::valueOffset(),
                  length - AttributeConstants::valueOffset(), undissected);
    }
    lacksBytes_ = true;
    return length;
  }

  std::size_t addHead(const AttributePlace& place, std::size_t length, ByteView bytes) {
    const U8 type = bytes[AttributeConstants::typeOffset()];
    return addAttributeHead(
        fields_, place, length, bytes,
        attributeName(RadiusPktParserBase::standardAttribute(type), probe_.dictionary()), "");
  }

  /// Whether the packet ends where its Length says that there is more.
  bool isCut() const { return *header_.length > fields_.bytes().size(); }

  FieldList fields_;
  const AttributeProbe& probe_;
  PacketHeader header_;
  FragmentOrder order_;
  std::size_t count_ = 0;
  std::optional<std::size_t> firstEapMessage_;
  bool lacksBytes_ = false;  ///< there are, or were, bytes that may be attributes
};

}  // namespace

Anatomy anatomyOf(ByteView packet, const Ptr<const RadiusDict>& dictionary,
                  const Revealing& revealing) {
  const FaultTrace keepsTraceAway;
  const AttributeProbe probe(dictionary, revealing);
  return PacketDissection(packet, probe).run();
}

}  // namespace RadiusPacketTool
