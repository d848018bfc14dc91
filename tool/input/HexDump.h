#pragma once

#include <string_view>

#include "tool/input/HexInput.h"
#include "tool/input/PacketStart.h"

namespace RadiusPacketTool {

/// Whether a text is a hex dump: the first line that begins with an offset is one of offset 0, and
/// whole. Of a text that could be plain hex, offsets are more than digits only when a `:` or two
/// blanks stand behind the first one, or when the second one goes on where the first line ends.
bool isHexDump(std::string_view text, bool isHexText);

/// The packets of a hex dump as `xxd`, `hexdump -C`, `tcpdump -x` and `-X`, `od -A x -t x1` and
/// Wireshark write it. A line has
/// - an offset of 4 to 16 hex digits, `0x` in front and `:` behind it or not;
/// - at most 32 bytes: in groups when the offset has a `:`, else one by one, with two blanks behind
/// the
///   eighth or not;
/// - the same as text, behind at least two blanks, or nothing. It is held against the bytes, and
/// never
///   read as such.
///
/// Each offset goes on where the line before ends; offset 0 begins a packet. `*` stands for as many
/// lines like the one before as there is room for; an offset by itself ends a packet. Other lines,
/// such as titles, have no bytes. Throws `BadHex` for a line that begins as one of the dump and is
/// none, and for the headers of a frame in front of a packet.
PacketList parseHexDump(std::string_view text);

}  // namespace RadiusPacketTool
