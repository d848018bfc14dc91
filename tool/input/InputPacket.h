#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "tool/capture/Datagram.h"
#include "tool/input/HexInput.h"

namespace RadiusPacketTool {

/// Which packet of the input it is.
struct PacketPlace {
  std::string source;     ///< the file's name, `-` for standard input
  std::size_t index = 0;  ///< from 1 within the source

  bool operator==(const PacketPlace&) const = default;
};

/// Which packet it is, in words: "packet 2 of file.hex".
std::string placeText(const PacketPlace& place);

/// A packet as the input gives it.
struct InputPacket {
  PacketPlace place;
  std::vector<Verda::U8> bytes;
  std::optional<Datagram> datagram;  ///< of a packet from a capture
  std::optional<BadHex> whyBinary;   ///< of a source that nobody called binary: why it is not hex
  /// Of a packet that a capture cut short: how many bytes it had.
  std::optional<std::size_t> cutFrom = std::nullopt;
};

}  // namespace RadiusPacketTool
