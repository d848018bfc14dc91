#include "tool/commands/PacketRun.h"

#include <optional>

#include "tool/output/RunSummary.h"
#include "tool/process/StandardStreams.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

void printSummary(const OpenedInput& input, const RunSummary& summary,
                  const ExchangeCounts& exchanges, bool json) {
  const std::optional<CaptureCounts> frames = input.packets().captureCounts();
  if (!frames.has_value()) {
    return;
  }
  if (json) {
    writeOutput(summary.json(exchanges, *frames));
  } else {
    writeOutput(summary.packets() == 0 ? "" : "\n");
    writeOutput(summary.text(exchanges, *frames));
  }
}

}  // namespace

void visitPackets(OpenedInput& input, bool json, const PacketVisit& visit) {
  Exchanges exchanges(input.secrets(), input.givenAuthenticator());
  RunSummary summary;
  try {
    while (const std::optional<InputPacket> packet = input.packets().next()) {
      summary.take(visit(*packet, exchanges.next(*packet), exchanges));
    }
  } catch (const ToolError&) {
    printSummary(input, summary, exchanges.counts(), json);
    throw;
  }
  printSummary(input, summary, exchanges.counts(), json);
}

}  // namespace RadiusPacketTool
