#pragma once

#include <optional>
#include <span>
#include <vector>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// The header fields of a packet; of one that is shorter than a header, those that are there.
struct PacketHeader {
  std::optional<Verda::U8> code;
  std::optional<Verda::U8> id;
  std::optional<Verda::U16> length;
  std::optional<std::vector<Verda::U8>> authenticator;
};

/// Whether the authenticator of a packet of that code is random, and no digest of the packet.
bool hasRandomAuthenticator(Verda::U8 code);

/// The fields as the bytes say; whether they are in order is the library's to judge.
PacketHeader headerOf(std::span<const Verda::U8> packet);

}  // namespace RadiusPacketTool
