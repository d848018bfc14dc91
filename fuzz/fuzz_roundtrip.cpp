// What we build, we decode to the same values. Asked for is only what a packet can express; what it
// cannot is listed where it is left out.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <variant>
#include <vector>

#include "fuzz/FuzzInput.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace {

using namespace RadiusPacketParser;
using namespace RadiusPktParserBase;
using Verda::Bytes;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;
using ByteView = std::span<const U8>;

using Decoded = std::vector<std::pair<Attribute, AttrValue>>;

class KeepingParser final : public RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;
  void doProcessAttribute(const Attribute& attr, const AttrValue& attrValue, AttrInfo /*attrInfo*/,
                          const Verda::Ptr<PktInfoParser>& /*sink*/) override {
    if (attr.attrId != RadiusAttributeId::MESSAGE_AUTHENTICATOR) {
      decoded_.emplace_back(attr, attrValue);
    }
  }
  Decoded take() { return std::exchange(decoded_, {}); }

 private:
  Decoded decoded_;
};

void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

/// A value to build, what the decoder is to hand over for it, and the bytes it takes.
struct Case {
  AttrValue value;
  std::vector<AttrValue> decoded;
  std::size_t length = 0;
};

/// The longest value whose outer Length byte holds it.
std::size_t maxValueLength(bool isVendor) {
  return isVendor
             ? std::size_t{AttributeConstants::maxLength()} - VsaConstants::vendorAttrValueOffset()
             : std::size_t{AttributeConstants::maxLength()} - AttributeConstants::valueOffset();
}

std::size_t headLength(bool isVendor) {
  return isVendor ? VsaConstants::vendorAttrValueOffset() : AttributeConstants::valueOffset();
}

Case stringCase(Fuzz::Choices& choices, bool isTagged, bool isVendor) {
  const std::size_t most = maxValueLength(isVendor) - (isTagged ? 1 : 0);
  const ByteView text = choices.bytes(std::min<std::size_t>(choices.byte(), most));
  if (!isTagged) {
    return {String(text), {String(text)}, headLength(isVendor) + text.size()};
  }
  std::vector<U8> delivered{choices.byte()};
  const U8 tag = delivered.front();
  delivered.insert(delivered.end(), text.begin(), text.end());
  return {TaggedStr{.str = String(text), .tag = tag},
          {TaggedStr{.str = String(ByteView(delivered)), .tag = 0}},
          headLength(isVendor) + delivered.size()};
}

/// A long value becomes fragments. Not expressed: an empty one, and one that is hidden (only the
/// last fragment would be).
std::optional<Case> concatCase(Fuzz::Choices& choices, bool isHidden) {
  const std::size_t most = maxValueLength(false);
  const std::vector<U8> content(1 + choices.number() % (isHidden ? most : 3 * most),
                                choices.byte());
  Case one{Bytes(ByteView(content)), {}, 0};
  for (ByteView rest(content); !rest.empty();) {
    const ByteView piece = rest.first(std::min(rest.size(), most));
    one.decoded.emplace_back(Bytes(piece));
    one.length += headLength(false) + piece.size();
    rest = rest.subspan(piece.size());
  }
  return one;
}

Case octetsCase(Fuzz::Choices& choices, bool isVendor) {
  const ByteView octets =
      choices.bytes(std::min<std::size_t>(choices.byte(), maxValueLength(isVendor)));
  return {Bytes(octets), {Bytes(octets)}, headLength(isVendor) + octets.size()};
}

Case numberCase(Fuzz::Choices& choices, bool isTagged, bool isVendor) {
  const U32 number = U32{choices.number()} << 16U | choices.number();
  const std::size_t length = headLength(isVendor) + AttributeConstants::intLength();
  if (!isTagged) {
    return {number, {number}, length};
  }
  const TaggedInt tagged{.value = number & 0xFFFFFFU, .tag = choices.byte()};
  return {tagged, {TaggedInt{.value = U32{tagged.tag} << 24U | tagged.value, .tag = 0}}, length};
}

/// The decoder keeps the address, of an interface identifier its half, and no prefix length.
Case addressCase(Fuzz::Choices& choices, RadiusAttributeType::RadiusAttributeTypeEnum type) {
  std::array<U8, AttributeConstants::ipv6Length()> address{};
  std::ranges::copy(choices.bytes(address.size()), address.begin());
  if (type == RadiusAttributeType::ipaddr) {
    const Zonet::IpGenPrefix ip4(Zonet::IpGenAddr(ByteView(address).first<4>()));
    return {ip4, {ip4}, 6};
  }
  if (type == RadiusAttributeType::ifid) {
    std::fill_n(address.begin(), AttributeConstants::ipv6InterfaceLength(), U8{0});
  }
  const Zonet::Ip6Addr ip6(address);
  const std::size_t length = type == RadiusAttributeType::ifid         ? 10
                             : type == RadiusAttributeType::ipv6prefix ? 20
                                                                       : 18;
  return {Zonet::IpGenPrefix(ip6, static_cast<U8>(choices.below(129))),
          {Zonet::IpGenPrefix(ip6)},
          length};
}

/// Nothing for what no packet expresses: types that the encoder refuses (unknown ones, `integer64`,
/// a vendor's address), a tagged date.
std::optional<Case> caseOf(Fuzz::Choices& choices, const AttrInfo& info, bool isVendor) {
  switch (info.attributeType) {
    case RadiusAttributeType::string:
      return stringCase(choices, info.isTagged, isVendor);
    case RadiusAttributeType::octets:
      return info.isConcat && !isVendor ? concatCase(choices, isHidden(info))
                                        : octetsCase(choices, isVendor);
    case RadiusAttributeType::integer:
      return numberCase(choices, info.isTagged, isVendor);
    case RadiusAttributeType::date:
      return info.isTagged ? std::nullopt : std::optional(numberCase(choices, false, isVendor));
    case RadiusAttributeType::ipaddr:
    case RadiusAttributeType::ipv6addr:
    case RadiusAttributeType::ipv6prefix:
    case RadiusAttributeType::ifid:
      return isVendor ? std::nullopt : std::optional(addressCase(choices, info.attributeType));
    default:
      return std::nullopt;
  }
}

/// Not expressed: User-Password of other lengths than whole blocks, EAP-Message without a
/// Message-Authenticator, a second Message-Authenticator, an attribute 26 that is none; and in the
/// requests whose authenticator is computed after hiding, hidden values.
bool isExpressible(const Attribute& key, const AttrInfo& info, U8 code) {
  const bool isSpecial =
      key.vendorId == 0 && (key.attrId == RadiusAttributeId::USER_PASSWORD ||
                            key.attrId == RadiusAttributeId::EAP_MESSAGE ||
                            key.attrId == RadiusAttributeId::VENDOR_SPECIFIC ||
                            key.attrId == RadiusAttributeId::MESSAGE_AUTHENTICATOR);
  const bool hidesInVain = isHidden(info) && isRequest(code) &&
                           code != RadiusCode::ACCESS_REQUEST && code != RadiusCode::STATUS_SERVER;
  return info.isInDict && !isSpecial && !hidesInVain;
}

}  // namespace

/// The secret, code and identifier, a choice of Request Authenticator, whether to ask for a
/// Message-Authenticator, then keys and values.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto dictionary = Fuzz::everyKindOfAttribute();
  static const auto builder = radiusPktBuilderFactory(dictionary);
  static const Verda::Ptr<KeepingParser> parser(new KeepingParser(dictionary));
  Fuzz::traceEverything();

  Fuzz::Choices choices(ByteView(data, size));
  const String secret = choices.secret();
  const U8 code = choices.code();
  const auto hdr = builder->createRadiusHdr(code, choices.byte())->hdr();
  const std::vector<U8> sixteen(PacketConstants::authLength(), choices.byte());
  const Bytes reqAuth = isRequest(code) ? Bytes() : Bytes(ByteView(sixteen));
  const auto request = pktInfoBuilderFactory();
  std::size_t length = PacketConstants::headerLength();
  U16 order = 0;
  // Codes that no Message-Authenticator is defined for are not refused when they are built.
  if (choices.below(2) == 1 && (isRequest(code) || canAnswer(code, RadiusCode::ACCESS_REQUEST))) {
    request->attributesToAddIs(order++)->attrWithValueIs(
        attrWithValueFactory(standardAttribute(RadiusAttributeId::MESSAGE_AUTHENTICATOR)));
    length += AttributeConstants::valueOffset() + AttributeConstants::msgAuthLength();
  }
  Decoded expected;
  std::set<Attribute> used;  // fragments of one attribute must follow each other
  while (!choices.atEnd()) {
    const Attribute key = choices.attribute();
    const AttrInfo info = getAttrInfo(key, dictionary);
    if (!isExpressible(key, info, code) || !used.insert(key).second) {
      continue;
    }
    const auto one = caseOf(choices, info, key.attrId == RadiusAttributeId::VENDOR_SPECIFIC);
    if (!one.has_value()) {
      continue;
    }
    const auto attribute = attrWithValueFactory(key);
    attribute->attrValuePush(one->value);
    request->attributesToAddIs(order++)->attrWithValueIs(attribute);
    length += one->length;
    for (const AttrValue& value : one->decoded) {
      expected.emplace_back(key, value);
    }
  }
  const auto built = builder->createPktFromHdr(secret, reqAuth, hdr, request);
  if (length > PacketConstants::maxLength()) {
    require(built->errorMsg() == ErrorMsg::maxPktLengthExceeded);
    return 0;
  }
  require(built->errorMsg() == ErrorMsg::success && built->pkt()->bytes() == length);
  parser->take();
  require(parser->doProcessPkt(built->pkt(), secret, reqAuth, pktInfoParserFactory()) ==
          ErrorMsg::success);
  require(parser->take() == expected);
  return 0;
}
