#include "tool/dictionary/DictionaryLookup.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/text/DecimalText.h"
#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusAttributeId;
using Verda::U32;
using Verda::U8;

namespace {

constexpr std::string_view rawFront = "Attr-";

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return lower;
}

/// The entries of that name; when there is none, those of that name in any case.
template <typename Entry>
std::vector<Entry> called(const std::vector<Entry>& entries, std::string_view name) {
  std::vector<Entry> exact;
  std::vector<Entry> inAnyCase;
  const std::string lowerName = lowerCase(name);
  for (const Entry& entry : entries) {
    if (entry.name == name) {
      exact.push_back(entry);
    } else if (lowerCase(entry.name) == lowerName) {
      inAnyCase.push_back(entry);
    }
  }
  return exact.empty() ? inAnyCase : exact;
}

void addOfCode(const DictionaryEntries& entries, const AttributeCode& code,
               std::vector<AttributeEntry>& matches) {
  std::ranges::copy_if(entries.attributes, std::back_inserter(matches),
                       [&](const AttributeEntry& entry) { return entry.code == code; });
}

/// Adds the attributes of the code `N` or `26.VENDOR.TYPE`.
void addOfCode(const DictionaryEntries& entries, std::string_view numbers,
               std::vector<AttributeEntry>& matches) {
  const std::size_t firstDot = numbers.find('.');
  const std::size_t lastDot = numbers.rfind('.');
  const auto code = decimalOf(numbers.substr(0, firstDot), std::numeric_limits<U8>::max());
  if (!code.has_value()) {
    return;
  }
  if (firstDot == std::string_view::npos) {
    addOfCode(entries, {.vendorId = std::nullopt, .type = static_cast<U8>(*code)}, matches);
    return;
  }
  const auto type = decimalOf(numbers.substr(lastDot + 1), std::numeric_limits<U8>::max());
  if (*code != RadiusAttributeId::VENDOR_SPECIFIC || firstDot == lastDot || !type.has_value()) {
    return;
  }
  const std::string_view vendor = numbers.substr(firstDot + 1, lastDot - firstDot - 1);
  for (const VendorEntry& one : vendorsCalled(entries.vendors, vendor)) {
    addOfCode(entries, {.vendorId = one.vendorId, .type = static_cast<U8>(*type)}, matches);
  }
}

std::vector<std::string> meant(const std::vector<std::string>& names, std::string_view word) {
  constexpr std::size_t mostNames = 5;
  constexpr std::size_t shortestPart = 3;
  std::vector<std::string> likely = likelyMeant(word, names);
  const std::string part = lowerCase(word);
  for (const std::string& name : names) {
    const bool isPart =
        part.size() >= shortestPart && lowerCase(name).find(part) != std::string::npos;
    if (isPart && std::ranges::find(likely, name) == likely.end()) {
      likely.push_back(name);
    }
  }
  likely.resize(std::min(likely.size(), mostNames));
  return likely;
}

template <typename Entry>
void addNames(const std::vector<Entry>& entries, std::vector<std::string>& names) {
  std::set<std::string> known(names.begin(), names.end());
  for (const Entry& entry : entries) {
    if (known.insert(entry.name).second) {
      names.push_back(entry.name);
    }
  }
}

}  // namespace

DictionaryMatches lookUp(const DictionaryEntries& entries, std::string_view word) {
  DictionaryMatches matches{.attributes = called(entries.attributes, word),
                            .vendors = vendorsCalled(entries.vendors, word)};
  if (matches.attributes.empty()) {
    const bool isRaw = word.starts_with(rawFront);
    addOfCode(entries, isRaw ? word.substr(rawFront.size()) : word, matches.attributes);
  }
  return matches;
}

std::vector<VendorEntry> vendorsCalled(const std::vector<VendorEntry>& vendors,
                                       std::string_view word) {
  std::vector<VendorEntry> found = called(vendors, word);
  const auto number = decimalOf(word, std::numeric_limits<U32>::max());
  if (found.empty() && number.has_value()) {
    std::ranges::copy_if(vendors, std::back_inserter(found),
                         [&](const VendorEntry& vendor) { return vendor.vendorId == *number; });
  }
  return found;
}

std::vector<std::string> namesMeant(const DictionaryEntries& entries, std::string_view word) {
  std::vector<std::string> names;
  addNames(entries.attributes, names);
  addNames(entries.vendors, names);
  return meant(names, word);
}

std::vector<std::string> vendorsMeant(const std::vector<VendorEntry>& vendors,
                                      std::string_view word) {
  std::vector<std::string> names;
  addNames(vendors, names);
  return meant(names, word);
}

}  // namespace RadiusPacketTool
