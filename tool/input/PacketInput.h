#pragma once

#include <string>
#include <vector>

#include "tool/input/InputFormat.h"
#include "tool/input/PacketSource.h"

namespace RadiusPacketTool {

/// Whether packets of these files come from standard input.
bool readsStandardInput(const std::vector<std::string>& files);

/// Reads the packets of all files, of standard input when there are none. All is read before
/// anything is returned, so bad input anywhere gives no output. Throws `ToolError` when a file
/// cannot be read, holds bad hex, or when there is no packet at all.
std::vector<PacketSource> readPackets(const std::vector<std::string>& files, InputFormat format);

}  // namespace RadiusPacketTool
