#pragma once

#include "tool/decoding/PacketReport.h"
#include "tool/input/InputPacket.h"

namespace RadiusPacketTool {

/// Says on standard error that a packet is refused, and why, when it is; and, where that may be the
/// cause, why its source was not read as hex.
void complainIfRefused(const InputPacket& packet, const PacketReport& report);

/// Says the warnings of a packet on standard error.
void complainOfWarnings(const PacketReport& report);

}  // namespace RadiusPacketTool
