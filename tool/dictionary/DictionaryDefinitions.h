#pragma once

#include <compare>
#include <cstddef>
#include <map>
#include <optional>
#include <string>

#include "Verda/Types.h"

#include "tool/dictionary/DictionaryGrammar.h"

namespace RadiusPacketTool {

/// A line of a dictionary's file.
struct DictionaryPlace {
  std::string file;
  std::size_t line = 0;

  bool operator==(const DictionaryPlace&) const = default;
};

/// The numbers of an attribute: standard ones in front of all vendors' ones, vendors by number.
struct AttributeCode {
  std::optional<Verda::U32> vendorId;
  Verda::U8 type = 0;

  auto operator<=>(const AttributeCode&) const = default;
};

/// "1", or "26.VENDOR.TYPE".
std::string textOf(const AttributeCode& code);

/// What a line says of an attribute.
struct AttributeDefinition {
  std::string name;
  DataType type = RadiusPacketParser::RadiusAttributeType::unknown;
  DictionaryPlace place;
};

/// What a line says of a vendor.
struct VendorDefinition {
  std::string name;
  DictionaryPlace place;
};

/// Where the lines of a dictionary define what. A later line takes the place of an earlier one, as
/// in the dictionary itself.
class DictionaryDefinitions {
 public:
  /// Each takes a definition, and says what it contradicts in the earlier ones; nothing for most.
  std::string add(const AttributeCode& code, const AttributeDefinition& attribute);
  std::string add(Verda::U32 vendorId, const VendorDefinition& vendor);

  /// The line that defines it, or null.
  const DictionaryPlace* placeOf(const AttributeCode& code) const;
  const DictionaryPlace* placeOf(Verda::U32 vendorId) const;

 private:
  template <typename Key>
  struct NameUse {
    Key key;
    DictionaryPlace place;
  };

  std::map<AttributeCode, AttributeDefinition> attributes_;
  std::map<Verda::U32, VendorDefinition> vendors_;
  std::map<std::string, NameUse<AttributeCode>> attributeNames_;
  std::map<std::string, NameUse<Verda::U32>> vendorNames_;
};

}  // namespace RadiusPacketTool
