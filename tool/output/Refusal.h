#pragma once

#include <optional>

#include "RadiusPacketParser/RadiusPktTypes.h"
#include "tool/decoding/PacketReport.h"
#include "tool/input/InputPacket.h"

namespace RadiusPacketTool {

/// Says on standard error that a packet is refused, and why, when it is; and, where that may be the
/// cause, why its source was not read as hex.
void complainIfRefused(const InputPacket& packet, const PacketReport& report);

/// Says on standard error why a source was not read as hex, when what came of it is no packet at
/// all: it may have been meant as hex.
/// @param error  why the packet is refused
void complainIfTakenAsBinary(const InputPacket& packet,
                             std::optional<RadiusPktParserBase::ErrorMsg> error);

/// Says the warnings of a packet on standard error.
void complainOfWarnings(const PacketReport& report);

}  // namespace RadiusPacketTool
