#pragma once

#include <string>

#include "tool/PacketReport.h"

namespace RadiusPacketTool {

/// A packet for people: a header line, one `Name = value` line per attribute, and for a refused
/// packet a line that says why. Whatever the packet holds, nothing in it can drive a terminal.
std::string textOf(const PacketReport& report);

}  // namespace RadiusPacketTool
