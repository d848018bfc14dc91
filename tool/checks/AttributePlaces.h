#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "Verda/Types.h"

#include "tool/checks/PacketDigests.h"

namespace RadiusPacketTool {

/// Where an attribute stands in a packet.
struct AttributePlace {
  Verda::U8 type = 0;
  std::size_t offset = 0;  ///< of its Type byte from the packet's first byte
  std::size_t length = 0;  ///< Type, Length and value together
};

/// The attributes of a packet of at least a header, up to the first that is none. They know nothing
/// of a dictionary: a vendor's is of type 26.
std::vector<AttributePlace> attributePlaces(ByteView packet);

/// Whether it is a Message-Authenticator of the right length.
bool isWholeMessageAuthenticator(const AttributePlace& place);

/// Where the first of them stands in a packet; nothing when there is none.
std::optional<std::size_t> messageAuthenticatorAt(ByteView packet);

}  // namespace RadiusPacketTool
