#include "tool/DecodeCommand.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/HexInput.h"
#include "tool/InputFormat.h"
#include "tool/JsonOutput.h"
#include "tool/PacketDecoder.h"
#include "tool/PacketInput.h"
#include "tool/PairingDecoder.h"
#include "tool/StandardStreams.h"
#include "tool/TextOutput.h"
#include "tool/ToolError.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using RadiusPktParserBase::ErrorMsg;

namespace {

constexpr const char* footer =
    "Hex text: any spacing, `:` and `0x` accepted, `#` begins a comment, a blank line separates\n"
    "packets. Binary: one packet per FILE. With -f auto, a FILE of nothing but hex text is hex, "
    "any\n"
    "other is binary. Without FILE, and for the FILE `-`, standard input is read.\n"
    "\n"
    "Requests (codes 1, 4, 12, 40, 43) are decoded without a Request Authenticator, even if one "
    "is\n"
    "given. Every other packet needs that of the request which it answers: the one of -a, else "
    "that\n"
    "of the nearest request in front of it that has its Identifier and that its code can answer.\n"
    "\n"
    "With --json, text values are escaped as in the text form (\\n, \\xNN, \\\", \\\\) and bytes "
    "are "
    "hex\n"
    "digits without 0x; `hex` is the value as on the wire, still hidden.\n"
    "\n"
    "Exit status: 0 all packets are good; 1 a check of authenticity failed or could not be made; 2 "
    "a\n"
    "packet is refused for another fault; 3 the dictionary does not load; 64 wrong usage; 66\n"
    "unreadable input; 74 standard output cannot be written.";

/// The format of that name, or null.
const InputFormat* formatFind(std::string_view name) {
  const auto found =
      std::ranges::find(inputFormats, name, &decltype(inputFormats)::value_type::first);
  return found == inputFormats.end() ? nullptr : &found->second;
}

/// What is wrong with a format's name, without the name: it may be a secret that went astray.
std::string formatFault(const std::string& name) {
  return formatFind(name) != nullptr ? "" : "the formats are auto, hex and binary";
}

/// Says why a source was not read as hex, when what came of it is no packet at all: it may have
/// been meant as hex.
void explainBinary(const PacketSource& source, const PacketReport& report) {
  if (source.whyBinary.has_value() && report.error == ErrorMsg::invalidPktLength) {
    complain(fmt::format("{} is taken as binary, for it is no hex text: line {}: {}", source.name,
                         source.whyBinary->line(), source.whyBinary->what()));
  }
}

/// Prints reports one behind the other, and says on standard error which packets are refused.
class ReportPrinter {
 public:
  ReportPrinter(bool json, const OutputOptions& options) : json_(json), options_(options) {}

  void print(const PacketReport& report) {
    if (json_) {
      writeOutput(jsonOf(report, options_));
    } else {
      if (!isFirst_) {
        writeOutput("\n");
      }
      writeOutput(textOf(report, options_));
    }
    isFirst_ = false;
    if (!isAccepted(report)) {
      complain(fmt::format("{} refused: {}", placeText(report.place), faultText(report)));
    }
    exitCode_ = std::max(exitCode_, exitCodeOf(report));
  }

  ExitCode exitCode() const { return exitCode_; }

 private:
  bool json_;
  OutputOptions options_;
  bool isFirst_ = true;
  ExitCode exitCode_ = ExitCode::success;
};

}  // namespace

DecodeCommand::DecodeCommand(CLI::App& program)
    : Command(program, "decode", "Decodes received packets and prints what they hold"),
      secret_(app()) {
  app()
      .add_option("-d", dictionaryPath_, "Top file of the dictionary; our own set by default")
      ->type_name("TOPFILE");
  requestAuthenticatorOption_ =
      app()
          .add_option("-a", requestAuthenticatorText_,
                      "Authenticator of the request that the packets answer: 16 bytes")
          ->type_name("HEX");
  app()
      .add_option("-f", format_, "Format of the input; auto by default")
      ->type_name("FORMAT")
      ->check(formatFault, "{auto,hex,binary}");
  app().add_flag("--json", json_, "Print one JSON object per packet and line");
  app().add_flag("--status-server", outputOptions_.statusServer,
                 "Add the verdict of the Status-Server rules on packets of code 12");
  app().add_option("FILE", files_, "Files to read")->type_name("");
  app().footer(footer);
}

ExitCode DecodeCommand::run() {
  const Verda::Bytes given = givenAuthenticator();
  checkStandardInput();
  const Secret secret = secret_.secret();
  const LoadedDictionary loaded = loadDictionary(dictionaryPath_);
  const std::vector<PacketSource> sources = readPackets(files_, *formatFind(format_));
  const PacketDecoder decoder(loaded.loader->dictionary(), secret);
  PairingDecoder pairing(decoder, given);
  ReportPrinter printer(json_, outputOptions_);
  for (const PacketSource& source : sources) {
    for (std::size_t at = 0; at < source.packets.size(); ++at) {
      const PacketReport report =
          pairing.decode({.source = source.name, .index = at + 1}, source.packets[at]);
      printer.print(report);
      explainBinary(source, report);
    }
  }
  return printer.exitCode();
}

/// Throws `ToolError` when both the secret and packets would come from standard input.
void DecodeCommand::checkStandardInput() const {
  if (secret_.readsStandardInput() && readsStandardInput(files_)) {
    throw ToolError(ExitCode::usage,
                    "standard input (-) cannot give both the secret and the packets");
  }
}

/// Empty when none is given. Throws `ToolError` for anything but one authenticator in hex.
Verda::Bytes DecodeCommand::givenAuthenticator() const {
  if (requestAuthenticatorOption_->count() == 0) {
    return {};
  }
  try {
    const auto parsed = parseHex(requestAuthenticatorText_);
    if (parsed.size() == 1 && parsed.front().size() == PacketConstants::authLength()) {
      return {std::span<const Verda::U8>(parsed.front())};
    }
  } catch (const BadHex&) {
    // What is no hex is as wrong as hex of another length.
  }
  throw ToolError(ExitCode::usage,
                  fmt::format("-a takes {} bytes in hex: the Request Authenticator",
                              PacketConstants::authLength()));
}

}  // namespace RadiusPacketTool
