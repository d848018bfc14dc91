#include "tool/commands/InspectCommand.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "tool/anatomy/Inspection.h"
#include "tool/commands/PacketRun.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/output/OutputOptions.h"
#include "tool/output/Refusal.h"
#include "tool/process/StandardStreams.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* inspectFooter =
    "Every field of a packet: offset, length, name, bytes and meaning. A field with a fault has ! "
    "in\n"
    "front, and below it stands what was found and what was expected. What follows a fault is "
    "shown\n"
    "as far as it can be told apart; what cannot is Undissected.\n"
    "\n"
    "No secret is needed. With one, the packet is decoded too: what its checks say is added, and\n"
    "hidden values are revealed unless a check fails.\n"
    "\n"
    "Examples:\n"
    "  radius-packet inspect packet.bin              the fields of a packet\n"
    "  radius-packet inspect -s secret.txt x.hex     and what its checks say\n"
    "  echo 0107001400... | radius-packet inspect    a packet from a log\n"
    "  radius-packet inspect --json x.hex | jq -r '.fields[] | select(.fault) | .path'\n"
    "\n"
    "Exit status: with a secret that of decode. Without one 0 the structure is good; 1 there is "
    "an\n"
    "EAP-Message without a Message-Authenticator, or a second Message-Authenticator; 2 another\n"
    "fault; 3 the dictionary does not load; 64 wrong usage; 66 unreadable input; 74 standard "
    "output\n"
    "cannot be written.";

}  // namespace

InspectCommand::InspectCommand(CLI::App& program)
    : Command(program, "inspect", "Takes packets apart, field by field, past faults too"),
      packets_(app(), SecretNeed::optional),
      redact_(app()) {
  app().add_flag("--json", json_, "Print one JSON object per packet and line");
  app().footer(inspectFooter);
}

ExitCode InspectCommand::run() {
  const OutputOptions options{.redact = redact_.redacts()};
  OpenedInput input(packets_);
  const PacketDecoder decoder(input.dictionary());
  const bool hasSecrets = !input.secrets().all().empty();
  ExitCode exitCode = ExitCode::success;
  bool isFirst = true;
  const auto inspect = [&](const InputPacket& packet, const PacketContext& context, auto&) {
    Inspection inspection = inspected(packet, context, input.dictionary(), decoder);
    if (context.secret == nullptr && hasSecrets) {  // those of other clients
      inspection.report = reportOf(decoder, packet, context);
    }
    if (json_) {
      writeOutput(jsonOf(inspection, options));
    } else {
      writeOutput((std::exchange(isFirst, false) ? "" : "\n") + textOf(inspection, options));
    }
    const Field* faulty = inspection.anatomy.firstFaulty();
    complainIfTakenAsBinary(packet,
                            faulty == nullptr ? std::nullopt : std::optional(faulty->fault->error));
    exitCode = std::max(exitCode, exitCodeOf(inspection));
    return verdictOf(inspection);
  };
  visitPackets(input, json_, inspect);
  return exitCode;
}

}  // namespace RadiusPacketTool
