#pragma once

#include <string>

#include "tool/PacketReport.h"

namespace RadiusPacketTool {

/// A packet for programs: one JSON object on one line, valid UTF-8 whatever the packet holds. Text
/// values are escaped as in the text form, without the quotes; bytes are `0x` and their digits.
std::string jsonOf(const PacketReport& report);

}  // namespace RadiusPacketTool
