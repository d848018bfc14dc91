#pragma once

#include <optional>
#include <string_view>

#include "tool/input/HexInput.h"
#include "tool/input/PacketStart.h"

namespace RadiusPacketTool {

/// The packets of a text in C or a language like it:
/// - arrays in braces, of numbers from 0 to 255, `0x` in front of hex ones;
/// - when there is no array, strings in either quotes with the escapes of C, where `\x` takes two
///   digits, and the same escapes without quotes. Strings with nothing but white space, `\` at the
///   end of a line and comments between them are one packet; a blank line ends it.
///
/// Comments and lines from `#` on are passed over, and so is whatever stands between the literals.
/// Throws `BadHex`.
PacketList parseByteLiterals(std::string_view text);

/// The same for a text that may be none: nothing unless it has an array that begins with a hex
/// number, or holds `\x` and all its strings begin as packets do. Throws `BadHex` for a fault
/// behind the begin of such an array.
std::optional<PacketList> byteLiteralsOf(std::string_view text);

}  // namespace RadiusPacketTool
