#include "tool/dictionary/DictionarySummary.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;
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
  summary.warnings = loaded.warnings;
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
  return text + fmt::format("warnings: {}\n", summary.warnings);
}

std::string jsonOf(const DictionarySummary& summary) {
  Json json;
  json["dictionary"] = Verda::escaped(summary.path);
  Json& files = json["includedFiles"] = Json::array();
  for (const std::string& file : summary.includedFiles) {
    files.push_back(Verda::escaped(file));
  }
  json["standardAttributes"] = summary.standardAttributes;
  Json& vendors = json["vendors"] = Json::array();
  for (const VendorSummary& vendor : summary.vendors) {
    vendors.push_back({{"vendorId", vendor.vendorId},
                       {"name", Verda::escaped(vendor.name)},
                       {"attributes", vendor.attributes}});
  }
  json["warnings"] = summary.warnings;
  return jsonLine(json);
}

}  // namespace RadiusPacketTool
