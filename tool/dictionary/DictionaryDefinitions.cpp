#include "tool/dictionary/DictionaryDefinitions.h"

#include <utility>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusAttributeId;
using Verda::U32;

namespace {

std::string shown(const DictionaryPlace& place) {
  return fmt::format("{}:{}", place.file, place.line);
}

/// Takes a name away that was `key`'s, and may be another's by now.
template <typename Uses, typename Key>
void forget(Uses& uses, const std::string& name, const Key& key) {
  const auto use = uses.find(name);
  if (use != uses.end() && use->second.key == key) {
    uses.erase(use);
  }
}

}  // namespace

std::string textOf(const AttributeCode& code) {
  return code.vendorId.has_value()
             ? fmt::format("{}.{}.{}", static_cast<unsigned>(RadiusAttributeId::VENDOR_SPECIFIC),
                           *code.vendorId, code.type)
             : fmt::format("{}", code.type);
}

std::string DictionaryDefinitions::add(const AttributeCode& code,
                                       const AttributeDefinition& attribute) {
  const auto [entry, isNewCode] = attributes_.try_emplace(code, attribute);
  const AttributeDefinition earlier = std::exchange(entry->second, attribute);
  forget(attributeNames_, earlier.name, code);
  const auto [use, isNewName] = attributeNames_.try_emplace(
      attribute.name, NameUse<AttributeCode>{.key = code, .place = attribute.place});
  const NameUse<AttributeCode> earlierUse =
      std::exchange(use->second, {.key = code, .place = attribute.place});
  if (!isNewCode && (earlier.name != attribute.name || earlier.type != attribute.type)) {
    return fmt::format("code {} was {} of type {} at {}: this line replaces it", textOf(code),
                       quotedWord(earlier.name), stringValue(earlier.type), shown(earlier.place));
  }
  if (!isNewName) {
    return fmt::format("the name {} is that of code {} at {} too", quotedWord(attribute.name),
                       textOf(earlierUse.key), shown(earlierUse.place));
  }
  return "";
}

std::string DictionaryDefinitions::add(U32 vendorId, const VendorDefinition& vendor) {
  const auto [entry, isNewId] = vendors_.try_emplace(vendorId, vendor);
  const VendorDefinition earlier = std::exchange(entry->second, vendor);
  forget(vendorNames_, earlier.name, vendorId);
  const auto [use, isNewName] =
      vendorNames_.try_emplace(vendor.name, NameUse<U32>{.key = vendorId, .place = vendor.place});
  const NameUse<U32> earlierUse =
      std::exchange(use->second, {.key = vendorId, .place = vendor.place});
  if (!isNewId && earlier.name != vendor.name) {
    return fmt::format("vendor {} was {} at {}: this line renames it", vendorId,
                       quotedWord(earlier.name), shown(earlier.place));
  }
  if (!isNewName) {
    return fmt::format("the name {} is that of vendor {} at {} too", quotedWord(vendor.name),
                       earlierUse.key, shown(earlierUse.place));
  }
  return "";
}

const DictionaryPlace* DictionaryDefinitions::placeOf(const AttributeCode& code) const {
  const auto found = attributes_.find(code);
  return found == attributes_.end() ? nullptr : &found->second.place;
}

const DictionaryPlace* DictionaryDefinitions::placeOf(U32 vendorId) const {
  const auto found = vendors_.find(vendorId);
  return found == vendors_.end() ? nullptr : &found->second.place;
}

}  // namespace RadiusPacketTool
