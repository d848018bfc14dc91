#include "tool/output/Refusal.h"

#include <fmt/format.h>

#include "tool/process/StandardStreams.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::ErrorMsg;

void complainIfTakenAsBinary(const InputPacket& packet, std::optional<ErrorMsg> error) {
  if (packet.whyBinary.has_value() && error == ErrorMsg::invalidPktLength) {
    complain(fmt::format("{} is taken as binary, for it is no hex text: line {}: {}",
                         packet.place.source, packet.whyBinary->line(), packet.whyBinary->what()));
  }
}

void complainIfRefused(const InputPacket& packet, const PacketReport& report) {
  if (isAccepted(report)) {
    return;
  }
  complain(fmt::format("{} refused: {}", placeText(report.place), faultText(report)));
  complainIfTakenAsBinary(packet, report.error);
}

void complainOfWarnings(const PacketReport& report) {
  for (const std::string& warning : report.warnings) {
    complain(fmt::format("{}: warning: {}", placeText(report.place), warning));
  }
}

}  // namespace RadiusPacketTool
