#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tool/input/InputFormat.h"
#include "tool/input/InputPacket.h"
#include "tool/input/PacketSource.h"

namespace RadiusPacketTool {

/// The packets of all files of a command, one behind the other.
class PacketStream {
 public:
  /// Opens the files, standard input when there are none. Files of hex and binary packets are read
  /// whole before the first packet is given, so that bad input in any of them gives no output.
  /// Throws as `readPackets`.
  PacketStream(const std::vector<std::string>& files, InputFormat format);

  /// The next packet, or nothing at the end.
  std::optional<InputPacket> next();

 private:
  std::vector<PacketSource> sources_;
  std::size_t source_ = 0;
  std::size_t packet_ = 0;
};

}  // namespace RadiusPacketTool
