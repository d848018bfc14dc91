#pragma once

#include <functional>

#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketReport.h"
#include "tool/input/InputPacket.h"
#include "tool/options/PacketOptions.h"

namespace RadiusPacketTool {

/// What a command does with a packet; it returns what came of it.
using PacketVisit =
    std::function<PacketReport(const InputPacket&, const PacketContext&, const Exchanges&)>;

/// Hands the packets of a command's input to `visit`, in their order, and prints a summary behind
/// what it printed when captures were among the input. Throws as `PacketStream::next`, behind the
/// summary.
void visitPackets(OpenedInput& input, bool json, const PacketVisit& visit);

}  // namespace RadiusPacketTool
