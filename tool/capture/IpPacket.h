#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "Verda/Types.h"
#include "Zonet/IpGenAddr.h"

#include "tool/capture/ReadStep.h"

namespace RadiusPacketTool {

/// The payload protocol that RADIUS stands on.
inline constexpr Verda::U8 udpProtocol = 17;

/// Which part of a datagram a fragment is.
struct FragmentPlace {
  Verda::U32 id = 0;      ///< the datagram's between its two addresses
  Verda::U32 offset = 0;  ///< in bytes
  bool isLast = false;
};

/// An IPv4 or IPv6 packet, read up to its payload.
struct IpPacket {
  Zonet::IpGenAddr from;
  Zonet::IpGenAddr to;
  Verda::U8 protocol = 0;                 ///< of the payload
  std::span<const Verda::U8> payload;     ///< as much of it as the frame has, without its padding
  std::size_t missing = 0;                ///< how many bytes of the payload the frame lacks
  std::optional<FragmentPlace> fragment;  ///< of one that is no whole datagram
};

/// Reads a packet of either version up to its payload: IPv4 with options, IPv6 with extension
/// headers. `bytes` must outlive `packet`.
ReadStep readIpPacket(std::span<const Verda::U8> bytes, IpPacket& packet);

/// Reads on over extension headers of IPv6, of which a payload that was put together may have more.
ReadStep skipExtensionHeaders(IpPacket& packet);

}  // namespace RadiusPacketTool
