#pragma once

#include "tool/anatomy/AttributeProbe.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// What the hidden values of a packet are revealed with: nothing when that is not known, or when a
/// check says that what came of it would not be what was hidden.
Revealing revealingOf(const PacketReport& report, const PacketContext& context);

}  // namespace RadiusPacketTool
