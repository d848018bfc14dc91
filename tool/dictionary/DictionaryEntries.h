#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/dictionary/DictionaryDefinitions.h"

namespace RadiusPacketTool {

/// An attribute as it stands in a loaded dictionary.
struct AttributeEntry {
  AttributeCode code;
  std::string name;
  DataType type = RadiusPacketParser::RadiusAttributeType::unknown;
  bool hasTag = false;
  bool concat = false;
  Verda::U8 encrypt = 0;
  std::string vendorName;  ///< empty for a standard attribute
  std::optional<DictionaryPlace> place;
};

/// And a vendor.
struct VendorEntry {
  Verda::U32 vendorId = 0;
  std::string name;
  std::size_t attributes = 0;
  std::optional<DictionaryPlace> place;
};

/// All of a dictionary in order: standard attributes first, then those of each vendor by number.
/// Names are escaped, as they are printed and as a command line can give them.
struct DictionaryEntries {
  std::vector<AttributeEntry> attributes;
  std::vector<VendorEntry> vendors;
};

/// The entries of a dictionary, and the places that are known of them.
DictionaryEntries entriesOf(const RadiusPacketParser::RadiusDict& dictionary,
                            const DictionaryDefinitions& definitions);

/// The flags as a dictionary's line has them, empty without any.
std::string flagsText(const AttributeEntry& attribute);

/// An entry for people: its name, and a line for each thing to say.
std::string textOf(const AttributeEntry& attribute);
std::string textOf(const VendorEntry& vendor);

/// An entry for programs: one JSON object on one line.
std::string jsonOf(const AttributeEntry& attribute);
std::string jsonOf(const VendorEntry& vendor);

/// A line for each attribute, in columns.
std::string tableOf(const std::vector<AttributeEntry>& attributes);

}  // namespace RadiusPacketTool
