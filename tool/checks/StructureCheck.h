#pragma once

#include "tool/checks/CheckResult.h"
#include "tool/checks/CheckedPacket.h"
#include "tool/decoding/Decoder.h"

namespace RadiusPacketTool {

/// The name of the check of a packet's structure.
inline constexpr const char* structureCheck = "structure";

/// What the library says of a packet when nobody asks who signed it: its header, and the form of
/// its attributes and their values. Those that are hidden are revealed as in the packet itself, as
/// far as secret and request are known.
PacketReport structureReport(const Decoder& decoder, ByteView packet, const PacketContext& context);

/// Whether the header is in order, so that the packet can be looked into.
bool hasGoodHeader(const PacketReport& structure);

/// The result for a packet of `size` bytes whose header is not in order.
CheckResult headerFault(const PacketReport& structure, std::size_t size);

/// The result for any other packet.
CheckResult structureResult(const CheckedPacket& packet);

}  // namespace RadiusPacketTool
