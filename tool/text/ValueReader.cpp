#include "tool/text/ValueReader.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "Zonet/AddressTextError.h"
#include "Zonet/IpGenPrefix.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/text/AttributeEnumeration.h"
#include "tool/text/AttributeName.h"
#include "tool/text/DecimalText.h"
#include "tool/text/HexText.h"
#include "tool/text/QuotedText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusAttributeType;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::saltedMethod;
using RadiusPktParserBase::TaggedInt;
using RadiusPktParserBase::TaggedStr;
using Verda::Bytes;
using Verda::String;
using Verda::U32;
using Verda::U8;
using Zonet::IpGenAddr;
using Zonet::IpGenPrefix;

namespace {

using ByteView = std::span<const U8>;
using ByteVector = std::vector<U8>;

constexpr std::string_view hexFront = "0x";

bool isVendor(const NamedAttribute& attribute) {
  return attribute.key.attrId == RadiusAttributeId::VENDOR_SPECIFIC;
}

bool isString(const NamedAttribute& attribute) {
  return attribute.info.attributeType == RadiusAttributeType::string;
}

void append(ByteVector& to, ByteView bytes) {
  to.insert(to.end(), bytes.begin(), bytes.end());
}

U8 tagOf(const NamedAttribute& attribute) {
  if (!attribute.tag.has_value()) {
    throw BadAttribute("the attribute is tagged: its name is NAME:TAG");
  }
  return *attribute.tag;
}

/// Refuses a value that only the raw form of its attribute can have.
[[noreturn]] void refuseForRawForm(const NamedAttribute& attribute, std::string_view what) {
  throw BadAttribute(fmt::format("{}: {} = 0x... can", what, rawAttributeName(attribute.key)));
}

// ---- Text and bytes ----

/// How many bytes the value of an attribute may have.
std::size_t roomOf(const NamedAttribute& attribute) {
  return AttributeConstants::maxLength() - (isVendor(attribute)
                                                ? VsaConstants::vendorAttrValueOffset()
                                                : AttributeConstants::valueOffset());
}

/// Whether the encoder splits what is too long for one attribute.
bool isSplit(const NamedAttribute& attribute) {
  return attribute.info.isConcat && !isVendor(attribute) && !isString(attribute);
}

/// The encoder cuts a longer password, and gives an empty one no block to hide.
ByteVector passwordOf(ByteVector text) {
  constexpr std::size_t longest = AttributeConstants::maxPasswdSize();
  if (text.size() > longest) {
    throw BadAttribute(
        fmt::format("a password has at most {} bytes; these are {}", longest, text.size()));
  }
  if (text.empty()) {
    text.resize(AttributeConstants::minPasswdSize());
  }
  return text;
}

/// Salt, length byte, content and padding to whole blocks (RFC 2868 section 3.5).
ByteVector saltedOf(const NamedAttribute& attribute, ByteView content, SaltSource& salts) {
  constexpr std::size_t block = AttributeConstants::passwdWordSize();
  const std::size_t tagLength = attribute.info.isTagged ? 1 : 0;
  const std::size_t blocks =
      (roomOf(attribute) - tagLength - AttributeConstants::saltLength()) / block;
  const std::size_t longest = blocks * block - 1;
  if (content.size() > longest) {
    throw BadAttribute(fmt::format("at most {} bytes can be hidden with a salt; these are {}",
                                   longest, content.size()));
  }
  const Salt salt = salts.next();
  ByteVector value(salt.begin(), salt.end());
  value.push_back(static_cast<U8>(content.size()));
  append(value, content);
  const std::size_t hidden = value.size() - salt.size();
  value.resize(salt.size() + (hidden + block - 1) / block * block);
  return value;
}

/// What stands behind the salt as it is: the text form of a value whose length byte does not fit.
ByteVector saltedAsItIs(ByteView behindSalt, SaltSource& salts) {
  ByteVector value;
  append(value, salts.next());
  append(value, behindSalt);
  return value;
}

/// The value without its tag.
ByteVector contentOf(const NamedAttribute& attribute, std::string_view text, SaltSource& salts) {
  ByteVector bytes = bytesOfText(text);
  if (attribute.info.encryptionType == saltedMethod) {
    return isString(attribute) && text.starts_with(hexFront) ? saltedAsItIs(bytes, salts)
                                                             : saltedOf(attribute, bytes, salts);
  }
  const bool isPassword = attribute.key.attrId == RadiusAttributeId::USER_PASSWORD &&
                          isString(attribute) && !attribute.info.isTagged;
  return isPassword ? passwordOf(std::move(bytes)) : bytes;
}

void checkRoom(const NamedAttribute& attribute, std::size_t length) {
  if (length > roomOf(attribute) && !isSplit(attribute)) {
    throw BadAttribute(
        fmt::format("a value of {} bytes: there is room for {}", length, roomOf(attribute)));
  }
  if (length == 0 && isSplit(attribute)) {
    refuseForRawForm(attribute, "an attribute that may be split cannot be written empty");
  }
}

AttrValue stringOf(const NamedAttribute& attribute, std::string_view text, SaltSource& salts) {
  const ByteVector content = contentOf(attribute, text, salts);
  if (!attribute.info.isTagged) {
    checkRoom(attribute, content.size());
    return String(ByteView(content));
  }
  const U8 tag = tagOf(attribute);
  checkRoom(attribute, content.size() + 1);
  return TaggedStr{.str = String(ByteView(content)), .tag = tag};
}

/// The encoder of octets knows no tags: theirs is the first byte of the value. A value without any
/// bytes has none.
AttrValue octetsOf(const NamedAttribute& attribute, std::string_view text, SaltSource& salts) {
  ByteVector value;
  const bool isEmpty =
      attribute.info.isTagged && !attribute.tag.has_value() && bytesOfText(text).empty();
  if (!isEmpty) {
    if (attribute.info.isTagged) {
      value.push_back(tagOf(attribute));
    }
    append(value, contentOf(attribute, text, salts));
  }
  checkRoom(attribute, value.size());
  return Bytes(ByteView(value));
}

// ---- Numbers ----

/// The number of `START` or `START (1)`.
U32 namedNumber(const Attribute& key, std::string_view text) {
  const Tyl::EnumerationTable* table = enumerationOf(key);
  const std::string_view name = text.substr(0, text.find(' '));
  const Tyl::Enumerator* named = table == nullptr ? nullptr : Tyl::enumeratorFind(*table, name);
  if (named == nullptr) {
    throw BadAttribute(table == nullptr ? "the value is no number of 32 bits"
                                        : "the value is neither a number of 32 bits nor a name");
  }
  if (name != text && text != fmt::format("{} ({})", name, named->number)) {
    throw BadAttribute("name and number do not belong together");
  }
  return static_cast<U32>(named->number);
}

AttrValue numberOf(const NamedAttribute& attribute, std::string_view text) {
  if (attribute.info.attributeType == RadiusAttributeType::date && attribute.info.isTagged) {
    refuseForRawForm(attribute, "a tagged date cannot be written");
  }
  const std::optional<U32> number = decimalOf(text, std::numeric_limits<U32>::max());
  const U32 value = number.has_value() ? *number : namedNumber(attribute.key, text);
  if (!attribute.info.isTagged) {
    return value;
  }
  constexpr U32 greatestTagged = 0xFFFFFF;
  const U8 tag = tagOf(attribute);
  if (value > greatestTagged) {
    throw BadAttribute("a tagged number has at most 24 bits");
  }
  return TaggedInt{.value = value, .tag = tag};
}

// ---- Addresses ----

IpGenAddr addressOf(std::string_view text, Zonet::IpFamily family) {
  try {
    const IpGenAddr address{String(text)};
    if (address.family() == family) {
      return address;
    }
  } catch (const Zonet::AddressTextError&) {
    // What is no address is as wrong as one of the other family.
  }
  throw BadAttribute(family == Zonet::IpFamily::ip4 ? "the value is no IPv4 address"
                                                    : "the value is no IPv6 address");
}

IpGenPrefix prefixOf(std::string_view text) {
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos) {
    throw BadAttribute("the value is no IPv6 prefix: there is no / with the prefix length");
  }
  const IpGenAddr address = addressOf(text.substr(0, slash), Zonet::IpFamily::ip6);
  const auto length = decimalOf(text.substr(slash + 1), AttributeConstants::maxPrefixLength());
  if (!length.has_value()) {
    throw BadAttribute(fmt::format("the prefix length is no number from 0 to {}",
                                   AttributeConstants::maxPrefixLength()));
  }
  return {address, static_cast<U8>(*length)};
}

/// Four groups of four digits become the low half of an address.
IpGenPrefix interfaceIdOf(std::string_view text) {
  constexpr std::size_t groupDigits = std::size_t{2} * AttributeConstants::ipv6WordLength();
  constexpr std::size_t textLength = AttributeConstants::ipv6InterfaceLength() /
                                         AttributeConstants::ipv6WordLength() * (groupDigits + 1) -
                                     1;
  bool isGrouped = text.size() == textLength;
  for (std::size_t at = groupDigits; isGrouped && at < textLength; at += groupDigits + 1) {
    isGrouped = text[at] == ':';
  }
  std::string digits(text);
  std::erase(digits, ':');
  const std::optional<ByteVector> bytes = bytesOfHex(digits);
  if (!isGrouped || !bytes.has_value() ||
      bytes->size() != AttributeConstants::ipv6InterfaceLength()) {
    throw BadAttribute("the value is no interface identifier: four groups of four hex digits");
  }
  std::array<U8, AttributeConstants::ipv6Length()> address{};
  std::ranges::copy_backward(*bytes, address.end());
  return {IpGenAddr(Zonet::Ip6Addr(address))};
}

AttrValue addressValueOf(const NamedAttribute& attribute, std::string_view text) {
  if (isVendor(attribute)) {
    refuseForRawForm(attribute, "a vendor's address cannot be written");
  }
  switch (attribute.info.attributeType) {
    case RadiusAttributeType::ipaddr:
      return IpGenPrefix(addressOf(text, Zonet::IpFamily::ip4));
    case RadiusAttributeType::ipv6addr:
      return IpGenPrefix(addressOf(text, Zonet::IpFamily::ip6));
    case RadiusAttributeType::ipv6prefix:
      return prefixOf(text);
    default:
      return interfaceIdOf(text);
  }
}

}  // namespace

ByteVector bytesOfText(std::string_view text) {
  if (!text.starts_with(hexFront)) {
    return bytesOfQuoted(text);
  }
  std::optional<ByteVector> bytes = bytesOfHex(text.substr(hexFront.size()));
  if (!bytes.has_value()) {
    throw BadAttribute("behind 0x stands an even number of hex digits and nothing else");
  }
  return *std::move(bytes);
}

AttrValue valueOf(const NamedAttribute& attribute, std::string_view text, SaltSource& salts) {
  if (attribute.tag.has_value() && !attribute.info.isTagged) {
    throw BadAttribute("the attribute is not tagged");
  }
  switch (attribute.info.attributeType) {
    case RadiusAttributeType::string:
      return stringOf(attribute, text, salts);
    case RadiusAttributeType::octets:
      return octetsOf(attribute, text, salts);
    case RadiusAttributeType::integer:
    case RadiusAttributeType::date:
      return numberOf(attribute, text);
    case RadiusAttributeType::ipaddr:
    case RadiusAttributeType::ipv6addr:
    case RadiusAttributeType::ipv6prefix:
    case RadiusAttributeType::ifid:
      return addressValueOf(attribute, text);
    case RadiusAttributeType::integer64:
      refuseForRawForm(attribute, "a number of 64 bits cannot be written");
    case RadiusAttributeType::unknown:
      break;
  }
  refuseForRawForm(attribute, "an attribute of no known data type cannot be written");
}

}  // namespace RadiusPacketTool
