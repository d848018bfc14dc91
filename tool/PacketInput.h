#pragma once

#include <string>
#include <vector>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// The packets of one source.
struct PacketSource {
  std::string name;  ///< the file's name, `-` for standard input
  std::vector<std::vector<Verda::U8>> packets;
};

/// Whether packets of these files come from standard input.
bool readsStandardInput(const std::vector<std::string>& files);

/// Reads the packets of all files, of standard input when there are none. All is read before
/// anything is returned, so bad input anywhere gives no output. Throws `ToolError` when a file
/// cannot be read, is no hex, or when there is no packet at all.
std::vector<PacketSource> readPackets(const std::vector<std::string>& files);

}  // namespace RadiusPacketTool
