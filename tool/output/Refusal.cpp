#include "tool/output/Refusal.h"

#include <fmt/format.h>

#include "tool/process/StandardStreams.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::ErrorMsg;

namespace {

/// When what came of a source is no packet at all, it may have been meant as hex.
void explainBinary(const InputPacket& packet, const PacketReport& report) {
  if (packet.whyBinary.has_value() && report.error == ErrorMsg::invalidPktLength) {
    complain(fmt::format("{} is taken as binary, for it is no hex text: line {}: {}",
                         packet.place.source, packet.whyBinary->line(), packet.whyBinary->what()));
  }
}

}  // namespace

void complainIfRefused(const InputPacket& packet, const PacketReport& report) {
  if (isAccepted(report)) {
    return;
  }
  complain(fmt::format("{} refused: {}", placeText(report.place), faultText(report)));
  explainBinary(packet, report);
}

void complainOfWarnings(const PacketReport& report) {
  for (const std::string& warning : report.warnings) {
    complain(fmt::format("{}: warning: {}", placeText(report.place), warning));
  }
}

}  // namespace RadiusPacketTool
