#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "Verda/Types.h"

#include "tool/checks/AttributePlaces.h"
#include "tool/checks/PacketDigests.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// What the checks of a packet look at. Its header is in order. Views the packet and what is known
/// of it.
struct CheckedPacket {
  ByteView bytes;                          ///< up to the Length
  std::vector<AttributePlace> attributes;  ///< those in front of the first that is none
  const PacketContext& context;
  /// What the library says of the packet when its digests are left out of account.
  const PacketReport& structure;

  Verda::U8 code() const { return *context.header.code; }
  /// Whether all bytes are attributes.
  bool isWhole() const { return end() == bytes.size(); }
  /// Where the attributes end.
  std::size_t end() const {
    return attributes.empty() ? RadiusPacketParser::PacketConstants::headerLength()
                              : attributes.back().offset + attributes.back().length;
  }
  /// What is to be said of a packet that is not whole.
  std::string endText() const {
    return fmt::format("what stands at offset {} is no attribute", end());
  }
};

}  // namespace RadiusPacketTool
