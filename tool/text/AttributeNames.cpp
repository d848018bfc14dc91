#include "tool/text/AttributeNames.h"

#include <limits>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/process/FaultTrace.h"
#include "tool/text/DecimalText.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusAttributeType;
using RadiusPacketParser::RadiusDict;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::standardAttribute;
using RadiusPktParserBase::vendorAttribute;
using Verda::Ptr;
using Verda::U32;
using Verda::U8;

namespace {

constexpr std::string_view messageAuthenticatorName = "Message-Authenticator";
constexpr std::string_view rawFront = "Attr-";

std::optional<U8> byteOf(std::string_view digits) {
  const std::optional<U32> number = decimalOf(digits, std::numeric_limits<U8>::max());
  return number.has_value() ? std::optional(static_cast<U8>(*number)) : std::nullopt;
}

/// The vendor's attribute that `VENDOR.TYPE` stands for.
std::optional<Attribute> rawVendorKey(std::string_view numbers) {
  const std::size_t dot = numbers.find('.');
  if (dot == std::string_view::npos) {
    return std::nullopt;
  }
  const auto vendor = decimalOf(numbers.substr(0, dot), std::numeric_limits<U32>::max());
  const std::optional<U8> type = byteOf(numbers.substr(dot + 1));
  return vendor.has_value() && type.has_value() ? std::optional(vendorAttribute(*vendor, *type))
                                                : std::nullopt;
}

/// The attribute that a raw form stands for.
std::optional<Attribute> rawKey(std::string_view name) {
  if (!name.starts_with(rawFront)) {
    return std::nullopt;
  }
  const std::string_view numbers = name.substr(rawFront.size());
  const std::size_t dot = numbers.find('.');
  const std::optional<U8> type = byteOf(numbers.substr(0, dot));
  const bool isVendor = type == RadiusAttributeId::VENDOR_SPECIFIC;
  if (!type.has_value() || isVendor != (dot != std::string_view::npos)) {
    return std::nullopt;
  }
  return isVendor ? rawVendorKey(numbers.substr(dot + 1)) : standardAttribute(*type);
}

AttrInfo rawInfo() {
  AttrInfo info;
  info.isInDict = true;
  info.attributeType = RadiusAttributeType::octets;
  return info;
}

}  // namespace

bool isMessageAuthenticator(const Attribute& key) {
  return key == standardAttribute(RadiusAttributeId::MESSAGE_AUTHENTICATOR);
}

AttributeNames::AttributeNames(const Ptr<const RadiusDict>& dictionary) : dictionary_(dictionary) {
  const auto take = [this](const RadiusPacketParser::RadiusNode& entry, const Attribute& key) {
    const auto [place, isNew] =
        keys_.try_emplace(Verda::escaped(entry.attributeName().view()), key);
    if (!isNew) {
      place->second.reset();
    }
  };
  for (const auto& [type, entry] : dictionary_->radiusAttribute()) {
    take(*entry, standardAttribute(type));
  }
  for (const auto& [vendorId, vendor] : dictionary_->vendorAttribute()) {
    for (const auto& [type, entry] : vendor->vendorNodeDict()) {
      take(*entry, vendorAttribute(vendorId, type));
    }
  }
  keys_.try_emplace(std::string(messageAuthenticatorName),
                    standardAttribute(RadiusAttributeId::MESSAGE_AUTHENTICATOR));
}

NamedAttribute AttributeNames::find(std::string_view text) const {
  if (const std::optional<NamedAttribute> found = findUntagged(text)) {
    return *found;
  }
  const std::size_t colon = text.rfind(':');
  std::optional<NamedAttribute> found = findUntagged(text.substr(0, colon));
  if (!found.has_value()) {
    throw BadAttribute(text.starts_with(rawFront)
                           ? "the raw forms are Attr-N and Attr-26.VENDOR.TYPE"
                           : "the dictionary has no attribute of that name");
  }
  found->tag = byteOf(text.substr(colon + 1));
  if (!found->tag.has_value()) {
    throw BadAttribute("the tag behind the : is no number from 0 to 255");
  }
  return *found;
}

std::optional<NamedAttribute> AttributeNames::findUntagged(std::string_view name) const {
  NamedAttribute attribute;
  attribute.name = name;
  if (const auto found = keys_.find(name); found != keys_.end()) {
    if (!found->second.has_value()) {
      throw BadAttribute("the dictionary has several attributes of that name: use a raw form");
    }
    attribute.key = *found->second;
    attribute.info = infoOf(attribute.key);
    return attribute;
  }
  if (const std::optional<Attribute> key = rawKey(name)) {
    attribute.key = *key;
    attribute.info = rawInfo();
    attribute.isRaw = true;
    return attribute;
  }
  return std::nullopt;
}

AttrInfo AttributeNames::infoOf(const Attribute& key) const {
  const FaultTrace missesAreNoFaults;
  return RadiusPktParserBase::getAttrInfo(key, dictionary_);
}

}  // namespace RadiusPacketTool
