#include "tool/text/AttributeName.h"

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusDict;
using RadiusPktParserBase::Attribute;

namespace {

std::string standardName(const Attribute& key, const RadiusDict& dictionary) {
  if (const auto entry = dictionary.radiusAttribute(key.attrId)) {
    return std::string(entry->attributeName().view());
  }
  return rawAttributeName(key);
}

std::string vendorName(const Attribute& key, const RadiusDict& dictionary) {
  if (const auto vendor = dictionary.vendorAttribute(key.vendorId)) {
    if (const auto entry = vendor->vendorNodeDict(key.vendorAttrId)) {
      return std::string(entry->attributeName().view());
    }
  }
  return rawAttributeName(key);
}

}  // namespace

std::string rawAttributeName(const Attribute& key) {
  return key.attrId == RadiusAttributeId::VENDOR_SPECIFIC
             ? fmt::format("Attr-{}.{}.{}", key.attrId, key.vendorId, key.vendorAttrId)
             : fmt::format("Attr-{}", key.attrId);
}

std::string attributeName(const Attribute& key, const RadiusDict& dictionary) {
  return key.attrId == RadiusAttributeId::VENDOR_SPECIFIC ? vendorName(key, dictionary)
                                                          : standardName(key, dictionary);
}

}  // namespace RadiusPacketTool
