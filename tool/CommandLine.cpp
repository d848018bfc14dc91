#include "tool/CommandLine.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "tool/commands/BuildCommand.h"
#include "tool/commands/DecodeCommand.h"
#include "tool/commands/DictionaryCheckCommand.h"
#include "tool/commands/DictionaryListCommand.h"
#include "tool/commands/DictionaryShowCommand.h"
#include "tool/commands/EditCommand.h"
#include "tool/commands/ExplainCommand.h"
#include "tool/commands/InspectCommand.h"
#include "tool/commands/VerifyCommand.h"
#include "tool/input/InputFile.h"
#include "tool/process/StandardStreams.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* usageHint = "radius-packet --help and radius-packet COMMAND --help tell more";

constexpr std::string_view secretOption = "--secret";
constexpr std::string_view emptySecret = "--secret=";

/// Whether an argument is `--option=`, which the parser would not tell from `--option`.
bool hasEmptyValue(std::string_view argument) {
  return argument.starts_with("--") && argument.find('=') + 1 == argument.size();
}

/// Whether the parser would take the name of a file for something else: a list of two, the end of a
/// command, or, behind `--`, which it knows only in front of all names, an option.
bool isMistakenName(std::string_view argument, bool optionsEnded) {
  const bool isList = argument.starts_with('[') && argument.ends_with(']');
  const bool isOption = argument.starts_with('-') && argument != standardInputName;
  return isList || argument == "++" || (optionsEnded && isOption);
}

/// The arguments as the parser wants them, last one first. `--secret=` becomes the option and an
/// empty value, for the parser would take the next argument as the value. Mistaken names become
/// those of the same file in the folder `.`.
std::vector<std::string> parserArguments(std::span<const char* const> arguments) {
  std::vector<std::string> result;
  bool optionsEnded = false;
  bool secretFollows = false;
  for (const std::string_view argument : arguments) {
    const bool isSecret = std::exchange(secretFollows, false);
    if (!isSecret && !optionsEnded && argument == "--") {
      optionsEnded = true;
    } else if (isSecret) {
      result.emplace_back(argument);
    } else if (!optionsEnded && argument == emptySecret) {
      result.emplace_back(secretOption);
      result.emplace_back();
    } else if (!optionsEnded && hasEmptyValue(argument)) {
      throw CLI::ArgumentMismatch("no option but --secret takes an empty value behind =");
    } else if (isMistakenName(argument, optionsEnded)) {
      result.emplace_back("./").append(argument);
    } else {
      secretFollows = !optionsEnded && argument == secretOption;
      result.emplace_back(argument);
    }
  }
  std::ranges::reverse(result);
  return result;
}

/// What is wrong with the arguments. The parser's own text is used only where it is known to repeat
/// no argument: behind a mistyped option, any argument may be a secret.
std::string_view usageFault(const CLI::ParseError& error) {
  switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::ArgumentMismatch:
    case CLI::ExitCodes::ExcludesError:
    case CLI::ExitCodes::RequiredError:
    case CLI::ExitCodes::ValidationError:
      return error.what();
    case CLI::ExitCodes::ExtrasError:
      return "there is an option or argument that was not expected";
    default:
      return "an option has a value that it does not take";
  }
}

/// Help and version are no errors: they go to standard output.
ExitCode endOfParsing(const CLI::App& program, const CLI::ParseError& end) {
  if (end.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
    complain(usageFault(end));
    complain(usageHint);
    return ExitCode::usage;
  }
  if (dynamic_cast<const CLI::CallForHelp*>(&end) != nullptr) {
    writeOutput(program.help());
  } else {
    writeOutput(std::string(end.what()) + '\n');
  }
  return ExitCode::success;
}

constexpr const char* dictionaryFooter =
    R"(Examples:
  radius-packet dictionary check acme/dictionary      all that is wrong with it
  radius-packet dictionary show Framed-IP-Address     one attribute, by its name or number
  radius-packet dictionary list --vendor Microsoft    all of a vendor)";

/// All commands, in the order in which the program's help has them.
std::vector<std::unique_ptr<Command>> newCommands(CLI::App& program) {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<DecodeCommand>(program));
  commands.push_back(std::make_unique<InspectCommand>(program));
  commands.push_back(std::make_unique<ExplainCommand>(program));
  commands.push_back(std::make_unique<VerifyCommand>(program));
  commands.push_back(std::make_unique<BuildCommand>(program));
  commands.push_back(std::make_unique<EditCommand>(program));
  CLI::App& dictionary =
      addCommandGroup(program, "dictionary", "Looks into dictionaries", dictionaryFooter);
  commands.push_back(std::make_unique<DictionaryCheckCommand>(dictionary));
  commands.push_back(std::make_unique<DictionaryShowCommand>(dictionary));
  commands.push_back(std::make_unique<DictionaryListCommand>(dictionary));
  return commands;
}

constexpr const char* programFooter =
    R"(Examples:
  radius-packet decode -s secret.txt request.hex answer.hex     what an exchange says
  radius-packet explain --secrets clients.txt radius.pcapng     why packets of a capture are refused
  radius-packet inspect packet.bin                              every field, without a secret
  radius-packet verify -s secret.txt radius.pcap                check by check
  radius-packet dictionary show User-Name                       an attribute of the dictionary

radius-packet COMMAND --help tells the options and more examples.)";

ExitCode run(std::span<const char* const> arguments) {
  CLI::App program(
      "Says what RADIUS packets hold and why they are refused, and builds and edits them.",
      "radius-packet");
  program.set_version_flag("--version", "radius-packet " PROGRAM_VERSION);
  program.footer(programFooter);
  program.require_subcommand(1);
  program.failure_message(CLI::FailureMessage::simple);
  const std::vector<std::unique_ptr<Command>> commands = newCommands(program);
  try {
    program.parse(parserArguments(arguments));
  } catch (const CLI::ParseError& end) {
    return endOfParsing(program, end);
  }
  const auto asked = std::ranges::find_if(
      commands, [](const std::unique_ptr<Command>& command) { return command->isAskedFor(); });
  return (*asked)->run();
}

}  // namespace

ExitCode runCommandLine(std::span<const char* const> arguments) {
  try {
    const ExitCode exitCode = run(arguments);
    flushOutput();
    return exitCode;
  } catch (const ToolError& error) {
    complain(error.what());
    return error.exitCode();
  } catch (const std::exception& error) {
    complain(error.what());
    return ExitCode::internal;
  }
}

}  // namespace RadiusPacketTool
