#include "tool/dictionary/DictionaryEntries.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/dictionary/DictionarySchema.h"
#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusDict;
using RadiusPacketParser::RadiusNode;

namespace {

std::optional<DictionaryPlace> copied(const DictionaryPlace* place) {
  return place == nullptr ? std::nullopt : std::optional(*place);
}

AttributeEntry entryOf(const AttributeCode& code, const RadiusNode& node,
                       const std::string& vendorName, const DictionaryDefinitions& definitions) {
  return {.code = code,
          .name = Verda::escaped(node.attributeName().view()),
          .type = node.attributeType(),
          .hasTag = node.hasTag(),
          .concat = node.concat(),
          .encrypt = node.attributeEncryptionType(),
          .vendorName = vendorName,
          .place = copied(definitions.placeOf(code))};
}

std::string placeText(const std::optional<DictionaryPlace>& place) {
  return place.has_value()
             ? fmt::format("    defined: {}:{}\n", Verda::escaped(place->file), place->line)
             : std::string();
}

void addPlace(Json& json, const std::optional<DictionaryPlace>& place) {
  json["file"] = place.has_value() ? Json(Verda::escaped(place->file)) : Json();
  json["line"] = place.has_value() ? Json(place->line) : Json();
}

/// A word for a column that must not be empty.
std::string orDash(const std::string& text) {
  return text.empty() ? "-" : text;
}

}  // namespace

DictionaryEntries entriesOf(const RadiusDict& dictionary,
                            const DictionaryDefinitions& definitions) {
  DictionaryEntries entries;
  for (const auto& [type, node] : dictionary.radiusAttribute()) {
    entries.attributes.push_back(
        entryOf({.vendorId = std::nullopt, .type = type}, *node, "", definitions));
  }
  for (const auto& [vendorId, vendor] : dictionary.vendorAttribute()) {
    const std::string name = Verda::escaped(vendor->vendorName().view());
    entries.vendors.push_back({.vendorId = vendorId,
                               .name = name,
                               .attributes = vendor->vendorNodeDict().size(),
                               .place = copied(definitions.placeOf(vendorId))});
    for (const auto& [type, node] : vendor->vendorNodeDict()) {
      entries.attributes.push_back(
          entryOf({.vendorId = vendorId, .type = type}, *node, name, definitions));
    }
  }
  std::ranges::sort(entries.attributes, {}, &AttributeEntry::code);
  std::ranges::sort(entries.vendors, {}, &VendorEntry::vendorId);
  return entries;
}

std::string flagsText(const AttributeEntry& attribute) {
  std::vector<std::string> flags;
  if (attribute.hasTag) {
    flags.emplace_back("has_tag");
  }
  if (attribute.concat) {
    flags.emplace_back("concat");
  }
  if (attribute.encrypt != 0) {
    flags.push_back(fmt::format("encrypt={}", attribute.encrypt));
  }
  return fmt::format("{}", fmt::join(flags, ","));
}

std::string textOf(const AttributeEntry& attribute) {
  std::string text = fmt::format("{}\n    code: {}\n    type: {}\n    flags: {}\n", attribute.name,
                                 textOf(attribute.code), stringValue(attribute.type),
                                 orDash(flagsText(attribute)));
  if (attribute.code.vendorId.has_value()) {
    text += fmt::format("    vendor: {} ({})\n", attribute.vendorName, *attribute.code.vendorId);
  }
  return text + placeText(attribute.place);
}

std::string textOf(const VendorEntry& vendor) {
  return fmt::format("vendor {}\n    number: {}\n    attributes: {}\n{}", vendor.name,
                     vendor.vendorId, vendor.attributes, placeText(vendor.place));
}

std::string jsonOf(const AttributeEntry& attribute) {
  const bool isVendors = attribute.code.vendorId.has_value();
  Json json;
  json["schema"] = dictionarySchema;
  json["kind"] = "attribute";
  json["attrId"] = isVendors ? static_cast<int>(RadiusAttributeId::VENDOR_SPECIFIC)
                             : static_cast<int>(attribute.code.type);
  json["vendorId"] = attribute.code.vendorId.value_or(0);
  json["vendorAttrId"] = isVendors ? attribute.code.type : 0;
  json["name"] = attribute.name;
  json["type"] = stringValue(attribute.type).view();
  json["hasTag"] = attribute.hasTag;
  json["concat"] = attribute.concat;
  json["encrypt"] = attribute.encrypt;
  json["vendor"] = isVendors ? Json(attribute.vendorName) : Json();
  addPlace(json, attribute.place);
  return jsonLine(json);
}

std::string jsonOf(const VendorEntry& vendor) {
  Json json;
  json["schema"] = dictionarySchema;
  json["kind"] = "vendor";
  json["vendorId"] = vendor.vendorId;
  json["name"] = vendor.name;
  json["attributes"] = vendor.attributes;
  addPlace(json, vendor.place);
  return jsonLine(json);
}

std::string tableOf(const std::vector<AttributeEntry>& attributes) {
  constexpr std::size_t widestName = 40;  // a longer one moves its own line alone
  constexpr std::size_t typeWidth = 10;
  constexpr std::size_t flagsWidth = 17;
  std::size_t codeWidth = 0;
  std::size_t nameWidth = 0;
  for (const AttributeEntry& attribute : attributes) {
    codeWidth = std::max(codeWidth, textOf(attribute.code).size());
    nameWidth = std::max(nameWidth, std::min(attribute.name.size(), widestName));
  }
  std::string table;
  for (const AttributeEntry& attribute : attributes) {
    table += fmt::format("{:{}}  {:{}}  {:{}}  {:{}}  {}\n", textOf(attribute.code), codeWidth,
                         attribute.name, nameWidth, stringValue(attribute.type).view(), typeWidth,
                         orDash(flagsText(attribute)), flagsWidth, orDash(attribute.vendorName));
  }
  return table;
}

}  // namespace RadiusPacketTool
