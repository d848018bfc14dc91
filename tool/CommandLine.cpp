#include "tool/CommandLine.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "tool/DecodeCommand.h"
#include "tool/StandardStreams.h"
#include "tool/ToolError.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* usageHint = "radius-packet --help and radius-packet COMMAND --help tell more";

/// The arguments as the parser wants them, last one first. `--option=` becomes an option and an
/// empty value, for the parser would take the next argument as the value.
std::vector<std::string> parserArguments(std::span<const char* const> arguments) {
  std::vector<std::string> result;
  bool optionsEnded = false;
  for (const std::string_view argument : arguments) {
    optionsEnded = optionsEnded || argument == "--";
    const std::size_t nameLength = argument.find('=');
    if (!optionsEnded && argument.starts_with("--") && nameLength + 1 == argument.size()) {
      result.emplace_back(argument.substr(0, nameLength));
      result.emplace_back();
    } else {
      result.emplace_back(argument);
    }
  }
  std::ranges::reverse(result);
  return result;
}

/// Help and version are no errors: they go to standard output.
ExitCode endOfParsing(const CLI::App& program, const CLI::ParseError& end) {
  if (end.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
    complain(end.what());
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

ExitCode run(std::span<const char* const> arguments) {
  CLI::App program("Decodes RADIUS packets and says what is wrong with them.", "radius-packet");
  program.set_version_flag("--version", "radius-packet " PROGRAM_VERSION);
  program.require_subcommand(1);
  program.failure_message(CLI::FailureMessage::simple);
  DecodeCommand decode(program);
  const std::array<Command*, 1> commands{&decode};
  try {
    program.parse(parserArguments(arguments));
  } catch (const CLI::ParseError& end) {
    return endOfParsing(program, end);
  }
  const auto asked = std::ranges::find_if(commands, &Command::isAskedFor);
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
