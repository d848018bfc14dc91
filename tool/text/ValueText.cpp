#include "tool/text/ValueText.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "Verda/Escape.h"
#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/text/AttributeEnumeration.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeType;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::ipv6PrefixLengthOffset;
using RadiusPktParserBase::TaggedInt;
using RadiusPktParserBase::TaggedStr;
using Verda::U32;
using Verda::U64;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;

std::string_view textView(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// ---- Numbers ----

std::string_view enumeratorName(const Attribute& key, U32 number) {
  if (const Tyl::EnumerationTable* table = enumerationOf(key)) {
    const auto found = std::ranges::find(table->enumerators, number, &Tyl::Enumerator::number);
    if (found != table->enumerators.end()) {
      return found->name;
    }
  }
  return {};
}

ReadableValue readableNumber(const Attribute& key, const AttrInfo& info, U32 number) {
  ReadableValue result;
  if (info.isTagged) {
    const TaggedInt separated = separateTag(TaggedInt{.value = number, .tag = 0});
    result.tag = separated.tag;
    number = separated.value;
  }
  result.value = ShownNumber{number, std::string(enumeratorName(key, number))};
  return result;
}

/// The library hands the eight bytes over in host memory order; they mean what they say in the
/// order of the wire.
ReadableValue readableNumber64(U64 inMemoryOrder) {
  std::array<U8, sizeof(U64)> bytes;
  std::memcpy(bytes.data(), &inMemoryOrder, bytes.size());
  U64 number = 0;
  static_cast<void>(Zonet::WireReader(bytes).read(number));
  return {.tag = std::nullopt, .value = ShownPlain{fmt::format("{}", number)}};
}

// ---- Addresses ----

/// Four groups of four digits, as interface identifiers are usually written.
std::string interfaceIdText(ByteView address) {
  const std::string digits = hexText(address.last(AttributeConstants::ipv6InterfaceLength()));
  constexpr std::size_t groupDigits = std::size_t{2} * AttributeConstants::ipv6WordLength();
  std::string text = digits.substr(0, groupDigits);
  for (std::size_t at = groupDigits; at < digits.size(); at += groupDigits) {
    text += ':';
    text += digits.substr(at, groupDigits);
  }
  return text;
}

std::string addressText(const AttrInfo& info, const Zonet::IpGenPrefix& prefix, ByteView wire) {
  const Zonet::IpGenAddr& address = prefix.address();
  switch (info.attributeType) {
    case RadiusAttributeType::ifid:
      return interfaceIdText(address.bytes());
    case RadiusAttributeType::ipv6prefix:
      // The User-Password method hides the prefix length, and the hook's value does not carry it.
      if (info.encryptionType != RadiusPktParserBase::userPasswordMethod &&
          wire.size() > ipv6PrefixLengthOffset) {
        return fmt::format("{}/{}", address.text(), wire[ipv6PrefixLengthOffset]);
      }
      [[fallthrough]];
    default:
      return std::string(address.text().view());
  }
}

// ---- Text and bytes ----

bool isText(const AttrInfo& info) {
  return info.attributeType == RadiusAttributeType::string;
}

ByteView withoutPadding(ByteView bytes) {
  while (!bytes.empty() && bytes.back() == 0) {
    bytes = bytes.first(bytes.size() - 1);
  }
  return bytes;
}

ShownBytes shownAsBytes(ByteView bytes) {
  return {{bytes.begin(), bytes.end()}};
}

ShownValue shownBytes(const AttrInfo& info, ByteView bytes) {
  if (isText(info)) {
    return ShownText{Verda::escaped(textView(bytes), "\"\\")};
  }
  return shownAsBytes(bytes);
}

/// @param bytes  salt, length byte, content and padding; as much as there is
ShownValue shownSalted(const AttrInfo& info, ByteView bytes) {
  const ByteView revealed =
      bytes.subspan(std::min<std::size_t>(AttributeConstants::saltLength(), bytes.size()));
  if (revealed.empty() || revealed.front() > revealed.size() - 1) {
    // Where a reader expects text, the prefix says that this is none.
    return isText(info) ? ShownValue(ShownPlain{prefixedHex(revealed)}) : shownAsBytes(revealed);
  }
  return shownBytes(info, revealed.subspan(1, revealed.front()));
}

ReadableValue readableBytes(const AttrInfo& info, ByteView bytes) {
  ReadableValue result;
  if (info.isTagged && !bytes.empty()) {
    result.tag = bytes.front();
    bytes = bytes.subspan(1);
  }
  switch (info.encryptionType) {
    case RadiusPktParserBase::userPasswordMethod:
      // Only text is known not to end with zeros of its own.
      result.value = shownBytes(info, isText(info) ? withoutPadding(bytes) : bytes);
      break;
    case RadiusPktParserBase::saltedMethod:
      result.value = shownSalted(info, bytes);
      break;
    default:
      result.value = shownBytes(info, bytes);
  }
  return result;
}

/// Turns each alternative of the hook's value into what is shown.
struct ValueReader {
  const Attribute& key;
  const AttrInfo& info;
  ByteView wire;

  ReadableValue operator()(const Verda::String& text) const {
    return readableBytes(info, text.bytes());
  }
  ReadableValue operator()(const TaggedStr& text) const {
    return readableBytes(info, text.str.bytes());
  }
  ReadableValue operator()(const Verda::Bytes& bytes) const {
    return readableBytes(info, bytes.span());
  }
  ReadableValue operator()(unsigned int number) const { return readableNumber(key, info, number); }
  ReadableValue operator()(const TaggedInt& number) const {
    return readableNumber(key, info, number.value);
  }
  ReadableValue operator()(unsigned long number) const { return readableNumber64(number); }
  ReadableValue operator()(const Zonet::IpGenPrefix& prefix) const {
    return {.tag = std::nullopt, .value = ShownPlain{addressText(info, prefix, wire)}};
  }
};

}  // namespace

ReadableValue readableValue(const Attribute& key, const AttrInfo& info,
                            const RadiusPktParserBase::AttrValue& value, ByteView wire) {
  return std::visit(ValueReader{key, info, wire}, value);
}

}  // namespace RadiusPacketTool
