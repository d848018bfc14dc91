#include "tool/commands/DictionaryCheckCommand.h"

#include "tool/dictionary/DictionaryLoading.h"
#include "tool/dictionary/DictionarySummary.h"
#include "tool/process/StandardStreams.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* checkFooter =
    "The loader's warnings go to standard error and change nothing else; a dictionary that does\n"
    "not load prints nothing but its fault.\n"
    "\n"
    "Exit status: 0 the dictionary loads; 3 it does not; 64 wrong usage; 74 standard output "
    "cannot\n"
    "be written.";

}  // namespace

DictionaryCheckCommand::DictionaryCheckCommand(CLI::App& dictionaryCommands)
    : Command(dictionaryCommands, "check", "Loads a dictionary and prints what it holds") {
  // Without a default: a script whose variable is empty would be told that our own set is good.
  app().add_option("TOPFILE", path_, "Top file of the dictionary")->type_name("")->required();
  app().add_flag("--json", json_, "Print one JSON object");
  app().footer(checkFooter);
}

ExitCode DictionaryCheckCommand::run() {
  const DictionarySummary summary = summaryOf(loadDictionary(path_));
  writeOutput(json_ ? jsonOf(summary) : textOf(summary));
  return ExitCode::success;
}

}  // namespace RadiusPacketTool
