#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/dictionary/DictionaryEntries.h"

namespace RadiusPacketTool {

/// What a word may stand for in a dictionary.
struct DictionaryMatches {
  std::vector<AttributeEntry> attributes;
  std::vector<VendorEntry> vendors;

  bool empty() const { return attributes.empty() && vendors.empty(); }
};

/// Looks up a name of attributes or vendors, as it is or, when there is none, in any case; an
/// attribute's code `N`, `Attr-N`, `26.VENDOR.TYPE` or `Attr-26.VENDOR.TYPE`, with the vendor's
/// number or name; or a vendor's number. A number may be both.
DictionaryMatches lookUp(const DictionaryEntries& entries, std::string_view word);

/// The vendor of that name, as it is or in any case, or number; nothing when there is none.
std::vector<VendorEntry> vendorsCalled(const std::vector<VendorEntry>& vendors,
                                       std::string_view word);

/// The names that a word without a match may stand for: mistyped ones, then those that it is a part
/// of. A few at most.
std::vector<std::string> namesMeant(const DictionaryEntries& entries, std::string_view word);
std::vector<std::string> vendorsMeant(const std::vector<VendorEntry>& vendors,
                                      std::string_view word);

}  // namespace RadiusPacketTool
