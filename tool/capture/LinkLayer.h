#pragma once

#include <span>

#include "Verda/Types.h"

#include "tool/capture/ReadStep.h"

namespace RadiusPacketTool {

/// Whether frames of that link type, a `DLT_` number of libpcap, can be read: Ethernet, Linux
/// cooked captures of both versions, raw IP and loopback.
bool isReadableLinkType(int linkType);

/// Finds the IP packet in a frame of a readable link type, behind VLAN tags too. `packet` is what
/// stands behind the link layer's headers, padding included.
ReadStep readLinkLayer(int linkType, std::span<const Verda::U8> frame,
                       std::span<const Verda::U8>& packet);

}  // namespace RadiusPacketTool
