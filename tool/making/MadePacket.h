#pragma once

#include <string>
#include <vector>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// A packet, and what its caller is to be told of it.
struct MadePacket {
  std::vector<Verda::U8> bytes;
  std::vector<std::string> warnings;
};

}  // namespace RadiusPacketTool
