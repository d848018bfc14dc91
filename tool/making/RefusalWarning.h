#pragma once

#include <optional>
#include <span>
#include <string>

#include "Verda/Bytes.h"
#include "Verda/Types.h"

#include "tool/decoding/PacketDecoder.h"

namespace RadiusPacketTool {

/// The warning that a packet which was made does not decode, with the fault; nothing for one that
/// does. The library builds much that its own parser refuses.
/// @param reqAuth  as for `PacketDecoder::decode`
/// @param origin   what asks for the packet
std::optional<std::string> refusalWarning(const PacketDecoder& decoder,
                                          std::span<const Verda::U8> packet, const Secret& secret,
                                          const Verda::Bytes& reqAuth, const std::string& origin);

}  // namespace RadiusPacketTool
