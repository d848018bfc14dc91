#include "tool/making/PacketTextInput.h"

#include <cstddef>
#include <string_view>

#include <fmt/format.h>

#include "Verda/Types.h"

#include "tool/input/InputFile.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using Verda::U8;

std::vector<PacketText> readPacketTexts(const std::string& name) {
  constexpr std::size_t pieceSize = 65536;
  std::vector<U8> buffer(pieceSize);
  PacketTextReader reader;
  const InputFile file(name);
  try {
    while (const std::size_t count = file.read(buffer)) {
      reader.take({reinterpret_cast<const char*>(buffer.data()), count});
    }
    std::vector<PacketText> packets = reader.finish();
    if (!packets.empty()) {
      return packets;
    }
  } catch (const BadText& fault) {
    throw ToolError(ExitCode::badData,
                    fmt::format("{}: line {}: {}", name, fault.line(), fault.what()));
  }
  throw ToolError(ExitCode::noInput, "no packets in the input");
}

}  // namespace RadiusPacketTool
