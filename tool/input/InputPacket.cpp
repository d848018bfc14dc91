#include "tool/input/InputPacket.h"

#include <fmt/format.h>

namespace RadiusPacketTool {

std::string placeText(const PacketPlace& place) {
  return fmt::format("packet {} of {}", place.index, place.source);
}

}  // namespace RadiusPacketTool
