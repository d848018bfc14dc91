#pragma once

#include <span>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "Verda/Types.h"

#include "tool/making/MadePacket.h"

namespace RadiusPacketTool {

/// `--binary`, and the packets that a command makes.
class PacketOutput {
 public:
  /// Adds the option to `command`, which must outlive the object.
  explicit PacketOutput(CLI::App& command);

  /// Writes packets to standard output, and to standard error what is to be told of them: as hex
  /// text, one a line with a blank line between; or one packet as it is. Throws `ToolError` when
  /// there are more packets than a binary output can hold, and as `writeOutput`.
  void write(std::span<const MadePacket> packets) const;

 private:
  bool binary_ = false;
};

}  // namespace RadiusPacketTool
