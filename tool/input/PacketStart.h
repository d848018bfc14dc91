#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

/// The packets that a text holds.
using PacketList = std::vector<std::vector<Verda::U8>>;

/// What the Length field of a packet says, when it is one that a packet may have; nothing for bytes
/// that do not begin as a packet does.
inline std::optional<std::size_t> plausibleLength(std::span<const Verda::U8> bytes) {
  using RadiusPacketParser::PacketConstants;
  constexpr std::size_t bitsPerByte = 8;
  const std::size_t offset = PacketConstants::lengthOffset();
  if (bytes.size() < offset + 2) {
    return std::nullopt;
  }
  const std::size_t length =
      (static_cast<std::size_t>(bytes[offset]) << bitsPerByte) | bytes[offset + 1];
  const bool isPossible =
      length >= PacketConstants::headerLength() && length <= PacketConstants::maxLength();
  return isPossible ? std::optional(length) : std::nullopt;
}

/// Whether bytes begin with a whole packet, as its Length field says.
inline bool beginsWithPacket(std::span<const Verda::U8> bytes) {
  const std::optional<std::size_t> length = plausibleLength(bytes);
  return length.has_value() && *length <= bytes.size();
}

/// Adds a byte to a packet. Behind as many as the greatest packet has, all is padding.
inline void addByte(std::vector<Verda::U8>& packet, Verda::U8 byte) {
  if (packet.size() < RadiusPacketParser::PacketConstants::maxLength()) {
    packet.push_back(byte);
  }
}

}  // namespace RadiusPacketTool
