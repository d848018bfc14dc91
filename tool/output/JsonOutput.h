#pragma once

#include <string>

#include "tool/decoding/PacketReport.h"
#include "tool/output/OutputOptions.h"

namespace RadiusPacketTool {

/// A packet for programs: one JSON object on one line, valid UTF-8 whatever the packet holds. Text
/// values are escaped as in the text form, without the quotes; bytes are bare hex digits. No reader
/// sees a line end within the object.
std::string jsonOf(const PacketReport& report, const OutputOptions& options = {});

}  // namespace RadiusPacketTool
