#pragma once

#include <cstddef>
#include <span>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// Whether bytes look like a frame that carries UDP: an IP header, behind an Ethernet header or
/// not. Good enough for a message about bytes that are no packet; it takes nothing apart.
inline bool beginsWithFrame(std::span<const Verda::U8> bytes) {
  constexpr std::size_t ethernetLength = 14;
  constexpr std::size_t etherTypeOffset = 12;
  constexpr unsigned ipv4EtherType = 0x0800;
  constexpr unsigned ipv6EtherType = 0x86dd;
  constexpr unsigned bitsPerByte = 8;
  constexpr std::size_t ipv4Length = 20;
  constexpr std::size_t ipv6Length = 40;
  constexpr std::size_t ipv4Protocol = 9;
  constexpr std::size_t ipv6Protocol = 6;
  constexpr unsigned versionShift = 4;
  constexpr unsigned udp = 17;
  const auto isIp = [](std::span<const Verda::U8> header) {
    const unsigned version = header.empty() ? 0 : header.front() >> versionShift;
    return (version == 4 && header.size() >= ipv4Length && header[ipv4Protocol] == udp) ||
           (version == 6 && header.size() >= ipv6Length && header[ipv6Protocol] == udp);
  };
  if (bytes.size() <= ethernetLength) {
    return false;
  }
  const unsigned etherType =
      (static_cast<unsigned>(bytes[etherTypeOffset]) << bitsPerByte) | bytes[etherTypeOffset + 1];
  const bool carriesIp = etherType == ipv4EtherType || etherType == ipv6EtherType;
  return isIp(bytes) || (carriesIp && isIp(bytes.subspan(ethernetLength)));
}

}  // namespace RadiusPacketTool
