#pragma once

#include <algorithm>
#include <endian.h>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"

namespace Example {

// [values]
/// A decoded value as text. A tag is still part of the value and is taken off here, as are salt,
/// length and padding of a salted value.
struct ValueText {
  const RadiusPktParserBase::AttrInfo& info;

  std::string operator()(const Verda::String& text) const { return textOf(text.bytes()); }
  std::string operator()(const RadiusPktParserBase::TaggedStr& delivered) const {
    const auto tagged = separateTag(delivered);
    return fmt::format("{} (tag {})", textOf(tagged.str.bytes()), tagged.tag);
  }
  std::string operator()(unsigned int number) const { return fmt::format("{}", number); }
  std::string operator()(const RadiusPktParserBase::TaggedInt& delivered) const {
    const auto tagged = separateTag(delivered);
    return fmt::format("{} (tag {})", tagged.value, tagged.tag);
  }
  std::string operator()(unsigned long asOnTheWire) const {
    return fmt::format("{}", be64toh(asOnTheWire));
  }
  std::string operator()(const Zonet::IpGenPrefix& prefix) const {
    return std::string(prefix.address().text().view());
  }
  std::string operator()(const Verda::Bytes& bytes) const {
    const auto shown = content(bytes.span());
    return shown ? fmt::format("0x{:02x}", fmt::join(*shown, "")) : malformed;
  }

 private:
  using ByteView = std::span<const Verda::U8>;
  static constexpr const char* malformed = "(malformed)";

  std::string textOf(ByteView bytes) const {
    const auto shown = content(bytes);
    if (!shown) {
      return malformed;
    }
    const std::string_view text(reinterpret_cast<const char*>(shown->data()), shown->size());
    return '"' + Verda::escaped(text, "\"\\") + '"';
  }

  /// Behind the salt of a salted value stand a length, that many bytes, and padding (RFC 2868
  /// section 3.5); nothing when there are less.
  std::optional<ByteView> content(ByteView bytes) const {
    using RadiusPacketParser::AttributeConstants;
    if (info.encryptionType != RadiusPktParserBase::saltedMethod) {
      return bytes;
    }
    bytes = bytes.subspan(std::min<std::size_t>(AttributeConstants::saltLength(), bytes.size()));
    if (bytes.empty() || bytes.front() > bytes.size() - 1) {
      return std::nullopt;
    }
    return bytes.subspan(1, bytes.front());
  }
};
// [/values]

/// The sink of one packet: its attributes as lines of text. They are for nobody's eyes before
/// `doProcessPkt` has said that the packet is good.
class AttributeLines : public RadiusPktParserBase::PktInfoParser {
 public:
  static Verda::Ptr<AttributeLines> make() { return Verda::Ptr(new AttributeLines); }

  std::vector<std::string> lines;
};

/// Describes every attribute of a packet, in packet order, to an `AttributeLines`.
class DescribingParser : public RadiusPktParserBase::RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;

  void doProcessAttribute(const RadiusPktParserBase::Attribute& attr,
                          const RadiusPktParserBase::AttrValue& value,
                          RadiusPktParserBase::AttrInfo info,
                          const Verda::Ptr<RadiusPktParserBase::PktInfoParser>& sink) override {
    Verda::staticPtrCast<AttributeLines>(sink)->lines.push_back(
        fmt::format("{} = {}", name(attr, info), std::visit(ValueText{info}, value)));
  }

 private:
  std::string name(const RadiusPktParserBase::Attribute& attr,
                   const RadiusPktParserBase::AttrInfo& info) const {
    const bool isVendor = attr.attrId == RadiusPacketParser::RadiusAttributeId::VENDOR_SPECIFIC;
    if (!info.isInDict) {
      return isVendor ? fmt::format("{}.{}.{}", attr.attrId, attr.vendorId, attr.vendorAttrId)
                      : fmt::format("{}", attr.attrId);
    }
    if (!isVendor) {
      return std::string(dictionary()->radiusAttribute(attr.attrId)->attributeName().view());
    }
    const auto vendor = dictionary()->vendorAttribute(attr.vendorId);
    return std::string(vendor->vendorNodeDict(attr.vendorAttrId)->attributeName().view());
  }
};

}  // namespace Example
