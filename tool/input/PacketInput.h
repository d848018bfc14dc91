#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tool/input/InputFormat.h"
#include "tool/input/PacketSource.h"
#include "tool/input/PeekedFile.h"

namespace RadiusPacketTool {

/// What is said when there is none.
inline constexpr const char* noPackets = "no packets in the input";

/// A file of packets: what was read of it, or a capture that is still to be read.
struct OpenedSource {
  PacketSource source;
  std::unique_ptr<PeekedFile> capture;  ///< null of what is no capture
};

/// Whether packets of these files come from standard input.
bool readsStandardInput(const std::vector<std::string>& files);

/// Opens all files, standard input when there are none, and reads those that are no captures. All
/// of these are read before anything is returned, so bad input in any of them gives no output.
/// Throws `ToolError` when a file cannot be read, holds bad hex, or when there is neither a packet
/// nor a capture.
std::vector<OpenedSource> openSources(const std::vector<std::string>& files, InputFormat format);

}  // namespace RadiusPacketTool
