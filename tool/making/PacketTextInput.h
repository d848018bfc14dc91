#pragma once

#include <string>
#include <vector>

#include "tool/making/PacketText.h"

namespace RadiusPacketTool {

/// Reads the packets of a file in text form, or of standard input for the name `-`. Throws
/// `ToolError` when it cannot be read, is no such text, or when there is no packet at all.
std::vector<PacketText> readPacketTexts(const std::string& name);

}  // namespace RadiusPacketTool
