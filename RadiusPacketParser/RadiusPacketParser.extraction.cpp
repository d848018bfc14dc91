#include "RadiusPacketParser/RadiusPacketParser.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

#include <fmt/format.h>

#include "Verda/Assert.h"
#include "Verda/Trace.h"
#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.detail.h"

namespace RadiusPacketParser {

using detail::AttributeWalk;
using detail::ByteView;
using detail::legacyTrace;
using detail::parserClass;
using detail::TrustedPacket;
using RadiusPktParserBase::ipv6PrefixLengthOffset;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;

namespace {

constexpr std::size_t tagLength = 1;

/// The bytes in decimal with dots between them; the first is there even when `length` is 0.
String dottedText(const U8* first, std::size_t length) {
  std::string text = std::to_string(*first);
  for (const U8 byte : ByteView(first, std::max<std::size_t>(length, 1)).subspan(1)) {
    fmt::format_to(std::back_inserter(text), ".{}", byte);
  }
  return text;
}

/// Groups of two bytes in hexadecimal with colons between them; an odd byte is left out.
std::string groupsText(ByteView value) {
  std::string text;
  Zonet::WireReader reader(value);
  for (U16 group = 0; reader.read(group);) {
    fmt::format_to(std::back_inserter(text), "{}{:x}", text.empty() ? "" : ":", group);
  }
  return text;
}

/// Reserved byte and prefix length, then groups.
String prefixText(const U8* value, std::size_t length) {
  constexpr std::size_t front = AttributeConstants::minIpv6PrefixAttrLength();
  const ByteView address(value + front, std::max(length, front) - front);
  return groupsText(address) + fmt::format("/{}", value[ipv6PrefixLengthOffset]);
}

/// A value as the legacy interface gives it.
struct Reading {
  String text;
  bool isTagged = false;
  U8 tag = 0;
};

/// Text or number, which may be tagged. What decides is the standard attribute of that type and,
/// for the tag, the byte behind the Length: for a vendor's it is attribute 26 itself, and the
/// vendor's number.
template <typename Extract>
Reading readTaggable(AttributeWalk& walk, const RadiusDict& dictionary, Extract extract) {
  if (walk.valueLength() == 0) {
    return {};
  }
  Reading reading;
  U8* const attr = walk.attribute();
  if (const auto* found = dictionary.radiusAttribute().find(walk.type())) {
    reading.isTagged = (*found)->hasTag();
  }
  reading.tag = reading.isTagged ? attr[AttributeConstants::valueOffset()] : U8{0};
  reading.text = extract(attr, walk.valueLength(), walk.isVsa(), reading.isTagged);
  return reading;
}

Reading readValue(AttributeWalk& walk, const RadiusDict& dictionary,
                  RadiusAttributeType::RadiusAttributeTypeEnum type) {
  // A vendor's address is not read; a standard one as far as its text needs, however short it is.
  const auto address = [&walk](auto text) {
    constexpr std::size_t needed = AttributeConstants::valueOffset() + ipv6PrefixLengthOffset + 1;
    return walk.isVsa() ? Reading()
                        : Reading{.text = text(walk.attribute(needed) + detail::valueOffset(false),
                                               std::size_t{walk.valueLength()})};
  };
  switch (type) {
    case RadiusAttributeType::string:
    case RadiusAttributeType::octets:
      return readTaggable(walk, dictionary, extractStrOctetTypes);
    case RadiusAttributeType::integer:
    case RadiusAttributeType::date:
      return readTaggable(walk, dictionary, extractIntegerDateTypes);
    case RadiusAttributeType::ipaddr:
      return address(dottedText);
    case RadiusAttributeType::ipv6addr:
    case RadiusAttributeType::ifid:
      return address([](const U8* value, std::size_t length) {
        return String(groupsText(ByteView(value, length)));
      });
    case RadiusAttributeType::ipv6prefix:
      return address(prefixText);
    default:
      VERDA_TRACE_AS(legacyTrace, Verda::traceErrors, parserClass,
                     "getValuesOfAttributesFromAttributeList", "Not Supported");
      VERDA_ASSERT_TEXT(false, "false");
      return {};
  }
}

}  // namespace

String extractStrOctetTypes(U8* attr, U32 valueLen, bool isVsa, bool hasTag) {
  const std::size_t skipped = hasTag ? tagLength : 0;
  VERDA_ASSERT_TEXT(valueLen >= skipped, "distance >= 0");
  return String(ByteView(attr + detail::valueOffset(isVsa), valueLen).subspan(skipped));
}

String extractIntegerDateTypes(U8* attr, U32 valueLen, bool isVsa, bool hasTag) {
  std::array<U8, AttributeConstants::intLength()> number{};
  const std::size_t skipped = hasTag ? tagLength : 0;
  const std::size_t length = std::min<std::size_t>(valueLen, number.size());
  for (std::size_t at = skipped; at < length; ++at) {
    number[at] = attr[detail::valueOffset(isVsa) + at];
  }
  U32 value = 0;
  static_cast<void>(Zonet::WireReader(number).read(value));
  return std::to_string(value);
}

void RadiusPacketParserBase::getValuesOfAttributesFromAttributeList() {
  for (const Attribute& attribute : getValueOfAttributesList()) {
    attrInfoIs(attribute);
  }
  if (badPkt()) {
    return;
  }
  TrustedPacket packet(pkt(), knownHeader().length());
  for (AttributeWalk walk(packet); walk.atAttribute();) {
    if (getValueOfAttributesListHas(walk.key())) {
      const Reading reading = readValue(walk, *dictionary(), getAttributeType(walk.key()));
      AttrInfo& found = **attrInfo().find(walk.key());
      const auto index = static_cast<U16>(found.value().size());
      found.valueIs(index, reading.text);
      if (reading.isTagged) {
        found.tagIs(index, reading.tag);
      }
    }
    if (!walk.advance()) {
      detail::traceZeroLength(parserClass, __func__);
      return;
    }
  }
}

}  // namespace RadiusPacketParser
