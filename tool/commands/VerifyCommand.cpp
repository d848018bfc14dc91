#include "tool/commands/VerifyCommand.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "tool/checks/PacketVerifier.h"
#include "tool/commands/PacketRun.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/output/CheckOutput.h"
#include "tool/output/Refusal.h"
#include "tool/process/StandardStreams.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* verifyFooter =
    "Packets are read and paired as by `decode`. Each is put to these checks, and each check "
    "prints\n"
    "a line: pass, fail or cannot tell, with the reason and the section of the RFC.\n"
    "\n"
    "  structure                      header, attributes and the form of their values\n"
    "  authenticator                  that of the packet, the secret and the request\n"
    "  Message-Authenticator present  where an answer could be forged without (CVE-2024-3596), or\n"
    "                                 an RFC asks for one\n"
    "  Message-Authenticator first    in answers to an Access-Request\n"
    "  Message-Authenticator unique\n"
    "  Message-Authenticator valid    in accounting packets too, where decode does not look\n"
    "  salts unique, first bit of salts\n"
    "  attributes allowed, attributes required\n"
    "                                 by the tables of RFC 2865, 2866, 2868, 2869, 3162, 5176, "
    "5997\n"
    "\n"
    "Examples:\n"
    "  radius-packet verify -s secret.txt request.hex answer.hex\n"
    "  radius-packet verify -s secret.txt exchange.hex | grep ': fail'\n"
    "  radius-packet verify -s secret.txt --json exchange.hex | jq 'select(.verdict == \"fail\")'\n"
    "\n"
    "Exit status: that of decode, but 1 instead of 0 when a check fails that decode does not make.";

bool hasFailed(const std::vector<CheckResult>& results) {
  return std::ranges::any_of(
      results, [](const CheckResult& result) { return result.verdict == Verdict::fail; });
}

}  // namespace

VerifyCommand::VerifyCommand(CLI::App& program)
    : Command(program, "verify", "Puts packets to all checks and prints a line for each"),
      packets_(app()) {
  app().add_flag("--json", json_, "Print one JSON object per check and line");
  app().footer(verifyFooter);
}

ExitCode VerifyCommand::run() {
  OpenedInput input(packets_);
  const PacketDecoder decoder(input.dictionary());
  const PacketVerifier verifier(input.dictionary());
  ExitCode exitCode = ExitCode::success;
  bool isFirst = true;
  const auto verify = [&](const InputPacket& packet, const PacketContext& context, auto&) {
    PacketReport report = reportOf(decoder, packet, context);
    const std::vector<CheckResult> results = verifier.verify(packet, context);
    if (!json_ && !std::exchange(isFirst, false)) {
      writeOutput("\n");
    }
    writeOutput(json_ ? jsonOf(packet.place, results) : textOf(packet.place, results));
    complainIfRefused(packet, report);
    exitCode = std::max({exitCode, exitCodeOf(report),
                         hasFailed(results) ? ExitCode::checkFailed : ExitCode::success});
    return report;
  };
  visitPackets(input, json_, verify);
  return exitCode;
}

}  // namespace RadiusPacketTool
