#include "tool/commands/DictionaryListCommand.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "tool/dictionary/DictionaryLookup.h"
#include "tool/process/StandardStreams.h"
#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* listFooter =
    "A line for each attribute: code, name, type, flags and vendor, with - for no flags and for "
    "no\n"
    "vendor. Standard attributes come first, then the vendors by number.\n"
    "\n"
    "Examples: radius-packet dictionary list\n"
    "          radius-packet dictionary list --vendor Cisco\n"
    "          radius-packet dictionary list --json -d /etc/radius/dictionary\n"
    "\n"
    "Exit status: 0 all is listed; 1 there is no such vendor; 3 the dictionary does not load; 64 "
    "wrong\n"
    "usage; 74 standard output cannot be written.";

}  // namespace

DictionaryListCommand::DictionaryListCommand(CLI::App& dictionaryCommands)
    : Command(dictionaryCommands, "list", "Lists the attributes of a dictionary"),
      dictionary_(app()),
      vendorOption_(
          app().add_option("--vendor", vendor_, "List the attributes of this one alone")) {
  vendorOption_->type_name("NAME|ID");
  app().add_flag("--json", json_, "Print one JSON object per attribute and line");
  app().footer(listFooter);
}

ExitCode DictionaryListCommand::run() {
  DictionaryEntries entries = dictionary_.entries();
  if (vendorOption_->count() > 0) {
    const std::vector<VendorEntry> vendors = vendorsCalled(entries.vendors, vendor_);
    if (vendors.empty()) {
      complain(fmt::format(
          "the dictionary has no vendor {}{}", quotedWord(vendor_),
          didYouMean(fmt::format("{}", fmt::join(vendorsMeant(entries.vendors, vendor_), ", ")))));
      return ExitCode::notFound;
    }
    std::erase_if(entries.attributes, [&](const AttributeEntry& attribute) {
      return std::ranges::none_of(vendors, [&](const VendorEntry& vendor) {
        return attribute.code.vendorId == vendor.vendorId;
      });
    });
  }
  if (!json_) {
    writeOutput(tableOf(entries.attributes));
    return ExitCode::success;
  }
  for (const AttributeEntry& attribute : entries.attributes) {
    writeOutput(jsonOf(attribute));
  }
  return ExitCode::success;
}

}  // namespace RadiusPacketTool
