#include "tool/decoding/LegacyAttributes.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

#include <fmt/format.h>

#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/text/AttributeName.h"
#include "tool/text/DecimalText.h"
#include "tool/text/HexText.h"
#include "tool/text/ValueText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusAttributeType;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using Verda::Bytes;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;
using LegacyKey = RadiusPacketParser::Attribute;

/// An attribute as it is on the wire; of a vendor's the sub-attribute, which takes all the room
/// that there is.
struct WireAttribute {
  Attribute key;
  ByteView value;
  std::size_t length = 0;  ///< of the whole attribute
  /// A vendor's own Length byte, where it says anything else.
  std::optional<U8> otherLength;

  /// Whether the vendor's Length byte leads into what follows the attribute.
  bool reachesBehind() const {
    return otherLength > AttributeConstants::valueOffset() + value.size();
  }
};

/// @param attribute  a framed one; a vendor's has the head of its sub-attribute
WireAttribute wireAttributeOf(ByteView attribute) {
  const U8 type = attribute[AttributeConstants::typeOffset()];
  if (type != RadiusAttributeId::VENDOR_SPECIFIC) {
    return {.key = RadiusPktParserBase::standardAttribute(type),
            .value = attribute.subspan(AttributeConstants::valueOffset()),
            .length = attribute.size(),
            .otherLength = std::nullopt};
  }
  U32 vendorId = 0;
  static_cast<void>(
      Zonet::WireReader(attribute.subspan(AttributeConstants::valueOffset())).read(vendorId));
  const U8 ownLength = attribute[VsaConstants::vendorAttrLengthOffset()];
  const bool agrees = ownLength == attribute.size() - VsaConstants::vendorTypeOffset();
  return {.key = RadiusPktParserBase::vendorAttribute(vendorId,
                                                      attribute[VsaConstants::vendorTypeOffset()]),
          .value = attribute.subspan(VsaConstants::vendorAttrValueOffset()),
          .length = attribute.size(),
          .otherLength = agrees ? std::nullopt : std::optional(ownLength)};
}

/// Whether the legacy interface reads values of that type; to be asked for another's is an
/// assertion to it.
bool isReadable(RadiusAttributeType::RadiusAttributeTypeEnum type) {
  switch (type) {
    case RadiusAttributeType::string:
    case RadiusAttributeType::octets:
    case RadiusAttributeType::integer:
    case RadiusAttributeType::date:
    case RadiusAttributeType::ipaddr:
    case RadiusAttributeType::ipv6addr:
    case RadiusAttributeType::ifid:
    case RadiusAttributeType::ipv6prefix:
      return true;
    default:
      return false;
  }
}

LegacyKey legacyKey(const Attribute& key) {
  return {key.attrId, key.vendorAttrId, key.vendorId};
}

class AttributeReader {
 public:
  AttributeReader(RadiusPacketParser::RadiusPacketParser& object, PacketReport& report)
      : object_(object), report_(report) {}

  void read(ByteView content, const String& secret, const Bytes& reqAuth) {
    RadiusPktParserBase::AttributeCursor cursor(content);
    while (cursor.next() == RadiusPktParserBase::AttributeCursor::Step::attribute) {
      look(wireAttributeOf(cursor.bytes()));
    }
    if (isRevealed_) {
      object_.decryptPacket(secret, reqAuth);
    }
    object_.getValuesOfAttributesFromAttributeList();
    for (const auto& [wire, info] : attributes_) {
      report_.attributes.push_back(reported(wire, info));
      offset_ += wire.length;
    }
  }

 private:
  /// Asks for an attribute's value. One whose vendor's Length leads behind it must not be revealed:
  /// the Length bytes of what follows would be changed too.
  void look(const WireAttribute& wire) {
    const AttrInfo info = RadiusPktParserBase::getAttrInfo(wire.key, object_.dictionary());
    if (isReadable(info.attributeType)) {
      object_.getValueOfAttributesListIs(legacyKey(wire.key));
    }
    if (wire.otherLength.has_value()) {
      warn(wire,
           fmt::format("its vendor's Length byte says {}, where {} would be right",
                       *wire.otherLength, AttributeConstants::valueOffset() + wire.value.size()));
    }
    if (wire.reachesBehind() && isHidden(info)) {
      warn(wire, "it is hidden and reaches behind its end: nothing in the packet is revealed");
      isRevealed_ = false;
    }
    attributes_.emplace_back(wire, info);
  }

  ReportedAttribute reported(const WireAttribute& wire, const AttrInfo& info) {
    ReportedAttribute attribute{.key = wire.key,
                                .name = attributeName(wire.key, *object_.dictionary()),
                                .type = info.attributeType,
                                .tag = std::nullopt,
                                .value = ShownBytes{{wire.value.begin(), wire.value.end()}},
                                .isRevealed = isRevealed_ && isHidden(info),
                                .wire = {wire.value.begin(), wire.value.end()},
                                .offset = offset_,
                                .length = wire.length};
    if (!info.isInDict) {
      return attribute;
    }
    String text;
    const bool isRead = isReadable(info.attributeType);
    if (isRead) {
      const auto& found = **object_.attrInfo().find(legacyKey(wire.key));
      const U16 index = next_[wire.key]++;
      text = found.value(index).value_or(String());
      attribute.tag = found.tag(index);
    }
    const bool isEmpty = text.empty() && !attribute.tag.has_value();
    if (!isRead || (isEmpty && !wire.value.empty())) {
      warn(wire, "the legacy interface gives no value of it: its bytes are shown");
      attribute.value = ShownPlain{prefixedHex(wire.value)};
    } else {
      attribute.value = shown(wire, info, text, attribute.tag.has_value());
    }
    return attribute;
  }

  /// A text of the legacy interface, made as readable as the newer codec's values are.
  ShownValue shown(const WireAttribute& wire, AttrInfo info, const String& text,
                   bool isTagOff) const {
    if (isTagOff != info.isTagged || wire.otherLength.has_value() || !isRevealed_) {
      info.encryptionType = 0;  // where salt and padding stand is not known
    }
    info.isTagged = false;
    const auto readable = [&](const AttrValue& value) {
      return readableValue(wire.key, info, value, wire.value).value;
    };
    switch (info.attributeType) {
      case RadiusAttributeType::string:
        return readable(text);
      case RadiusAttributeType::octets:
        return readable(Bytes(text.bytes()));
      case RadiusAttributeType::integer:
      case RadiusAttributeType::date:
        return readable(decimalOf(text.view(), std::numeric_limits<U32>::max()).value_or(0));
      default:
        return text.empty() ? ShownValue(ShownBytes()) : ShownPlain{std::string(text.view())};
    }
  }

  void warn(const WireAttribute& wire, std::string_view text) {
    report_.warnings.push_back(
        fmt::format("{}: {}", attributeName(wire.key, *object_.dictionary()), text));
  }

  RadiusPacketParser::RadiusPacketParser& object_;
  PacketReport& report_;
  std::vector<std::pair<WireAttribute, AttrInfo>> attributes_;
  std::map<Attribute, U16> next_;  ///< the number of the value that comes next, by kind
  std::size_t offset_ = PacketConstants::headerLength();
  bool isRevealed_ = true;
};

}  // namespace

void readLegacyAttributes(RadiusPacketParser::RadiusPacketParser& object, ByteView content,
                          const String& secret, const Bytes& reqAuth, PacketReport& report) {
  AttributeReader(object, report).read(content, secret, reqAuth);
}

}  // namespace RadiusPacketTool
