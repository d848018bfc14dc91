#pragma once

#include <optional>
#include <string_view>

#include "tool/input/HexInput.h"
#include "tool/input/PacketStart.h"

namespace RadiusPacketTool {

/// The packets of base64 text, of the usual letters or those for names in URLs, with white space
/// anywhere. The padding at the end of a packet may be missing; it ends the packet, and so does a
/// blank line. Throws `BadHex`.
PacketList parseBase64(std::string_view text);

/// The same for a text that may be none: nothing unless there is at least one packet and each
/// begins as a packet does and is as long as it says.
std::optional<PacketList> base64Of(std::string_view text);

}  // namespace RadiusPacketTool
