#include "tool/dictionary/DictionarySummary.h"

#include <algorithm>

#include <fmt/format.h>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusDict;

namespace {

std::vector<VendorSummary> vendorsOf(const RadiusDict& dictionary) {
  std::vector<VendorSummary> vendors;
  for (const auto& [vendorId, vendor] : dictionary.vendorAttribute()) {
    vendors.push_back({.vendorId = vendorId,
                       .name = std::string(vendor->vendorName().view()),
                       .attributes = vendor->vendorNodeDict().size()});
  }
  std::ranges::sort(vendors, {}, &VendorSummary::vendorId);
  return vendors;
}

}  // namespace

DictionarySummary summaryOf(const LoadedDictionary& loaded) {
  DictionarySummary summary;
  summary.path = loaded.loader->path().view();
  for (const Verda::String& file : loaded.loader->includedFiles()) {
    summary.includedFiles.emplace_back(file.view());
  }
  summary.standardAttributes = loaded.loader->dictionary()->radiusAttribute().size();
  summary.vendors = vendorsOf(*loaded.loader->dictionary());
  return summary;
}

std::string textOf(const DictionarySummary& summary) {
  std::string text =
      fmt::format("dictionary: {}\nincluded files: {}\nstandard attributes: {}\nvendors: {}\n",
                  Verda::escaped(summary.path), summary.includedFiles.size(),
                  summary.standardAttributes, summary.vendors.size());
  for (const VendorSummary& vendor : summary.vendors) {
    text += fmt::format("attributes of {} ({}): {}\n", Verda::escaped(vendor.name), vendor.vendorId,
                        vendor.attributes);
  }
  return text;
}

}  // namespace RadiusPacketTool
