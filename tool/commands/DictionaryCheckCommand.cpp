#include "tool/commands/DictionaryCheckCommand.h"

#include <string>

#include <fmt/format.h>

#include "tool/dictionary/DictionaryCheck.h"
#include "tool/process/StandardStreams.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* checkFooter =
    "Every problem is said on standard error, as compilers say theirs: FILE:LINE:COLUMN: error: "
    "or\n"
    "warning: and what was probably meant. An error is what the library ends on; with a warning, "
    "it\n"
    "loads the dictionary. The first error is the one that the library would meet first.\n"
    "\n"
    "A dictionary that does not load has no summary; with --json, its object has the problems "
    "alone.\n"
    "\n"
    "Example: radius-packet dictionary check /etc/radius/dictionary\n"
    "\n"
    "Exit status: 0 the dictionary loads; 3 it does not; 64 wrong usage; 74 standard output "
    "cannot\n"
    "be written.";

std::string counted(std::size_t number, const char* what) {
  return fmt::format("{} {}{}", number, what, number == 1 ? "" : "s");
}

}  // namespace

DictionaryCheckCommand::DictionaryCheckCommand(CLI::App& dictionaryCommands)
    : Command(dictionaryCommands, "check",
              "Says all that is wrong with a dictionary, and what it holds") {
  // Without a default: a script whose variable is empty would be told that our own set is good.
  app().add_option("TOPFILE", path_, "Top file of the dictionary")->type_name("")->required();
  app().add_flag("--json", json_, "Print one JSON object");
  app().footer(checkFooter);
}

ExitCode DictionaryCheckCommand::run() {
  if (path_.empty()) {
    throw ToolError(ExitCode::dictionary, "the dictionary does not load: its name is empty");
  }
  const DictionaryCheck check = checkDictionary(path_);
  for (const DictionaryProblem& problem : check.problems.all()) {
    writeErrors(textOf(problem));
  }
  if (json_) {
    writeOutput(jsonOf(check));
  }
  if (!check.summary.has_value()) {
    complain(fmt::format("the dictionary {} does not load: {}", path_,
                         counted(check.problems.count(Severity::error), "error")));
    return ExitCode::dictionary;
  }
  if (!json_) {
    writeOutput(textOf(*check.summary));
    writeOutput(fmt::format("warnings: {}\n", check.problems.count(Severity::warning)));
  }
  return ExitCode::success;
}

}  // namespace RadiusPacketTool
