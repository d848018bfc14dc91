#pragma once

#include <string>

#include "tool/PacketReport.h"

namespace RadiusPacketTool {

/// A packet for people: a header line, then one `Name = value` line per attribute. Whatever the
/// packet holds, nothing in it can drive a terminal.
std::string textOf(const PacketReport& report);

}  // namespace RadiusPacketTool
