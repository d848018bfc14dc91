#include "tool/options/PacketOutput.h"

#include <string_view>

#include <fmt/format.h>

#include "tool/process/StandardStreams.h"
#include "tool/process/ToolError.h"
#include "tool/text/HexText.h"

namespace RadiusPacketTool {
namespace {

std::string_view textView(const std::vector<Verda::U8>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

PacketOutput::PacketOutput(CLI::App& command) {
  command.add_flag("--binary", binary_, "Write the one packet as it is, not as hex text");
}

void PacketOutput::write(std::span<const MadePacket> packets) const {
  if (binary_ && packets.size() > 1) {
    throw ToolError(ExitCode::usage,
                    fmt::format("--binary writes one packet, and there are {}", packets.size()));
  }
  std::string_view separator;
  for (const MadePacket& packet : packets) {
    for (const std::string& warning : packet.warnings) {
      complain(warning);
    }
    writeOutput(separator);
    if (binary_) {
      writeOutput(textView(packet.bytes));
    } else {
      writeOutput(hexText(packet.bytes) + '\n');
    }
    separator = "\n";
  }
}

}  // namespace RadiusPacketTool
