#include "tool/commands/DictionaryShowCommand.h"

#include <vector>

#include <fmt/format.h>

#include "tool/dictionary/DictionaryLookup.h"
#include "tool/process/StandardStreams.h"
#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* showFooter =
    "WORD is the name of an attribute or a vendor, in any case when there is none as it is; a "
    "code,\n"
    "such as 1, Attr-1, 26.9.1 or 26.Cisco.1; or a vendor's number. What is both an attribute's "
    "code\n"
    "and a vendor's number shows both.\n"
    "\n"
    "Examples: radius-packet dictionary show Tunnel-Password\n"
    "          radius-packet dictionary show 26.311.16\n"
    "          radius-packet dictionary show -d /etc/radius/dictionary 9\n"
    "\n"
    "Exit status: 0 something is found; 1 nothing is; 3 the dictionary does not load; 64 wrong "
    "usage;\n"
    "74 standard output cannot be written.";

std::string listed(const DictionaryMatches& matches, bool json) {
  std::vector<std::string> texts;
  for (const AttributeEntry& attribute : matches.attributes) {
    texts.push_back(json ? jsonOf(attribute) : textOf(attribute));
  }
  for (const VendorEntry& vendor : matches.vendors) {
    texts.push_back(json ? jsonOf(vendor) : textOf(vendor));
  }
  return fmt::format("{}", fmt::join(texts, json ? "" : "\n"));
}

}  // namespace

DictionaryShowCommand::DictionaryShowCommand(CLI::App& dictionaryCommands)
    : Command(dictionaryCommands, "show", "Looks up an attribute or a vendor"), dictionary_(app()) {
  app().add_option("WORD", word_, "Name, code or number to look up")->type_name("")->required();
  app().add_flag("--json", json_, "Print one JSON object per line");
  app().footer(showFooter);
}

ExitCode DictionaryShowCommand::run() {
  const DictionaryEntries entries = dictionary_.entries();
  const DictionaryMatches matches = lookUp(entries, word_);
  if (matches.empty()) {
    complain(
        fmt::format("the dictionary has no {}{}", quotedWord(word_),
                    didYouMean(fmt::format("{}", fmt::join(namesMeant(entries, word_), ", ")))));
    return ExitCode::notFound;
  }
  writeOutput(listed(matches, json_));
  return ExitCode::success;
}

}  // namespace RadiusPacketTool
