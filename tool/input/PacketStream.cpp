#include "tool/input/PacketStream.h"

#include <utility>

#include "tool/input/PacketInput.h"

namespace RadiusPacketTool {

PacketStream::PacketStream(const std::vector<std::string>& files, InputFormat format)
    : sources_(readPackets(files, format)) {}

std::optional<InputPacket> PacketStream::next() {
  for (; source_ < sources_.size(); ++source_, packet_ = 0) {
    PacketSource& source = sources_[source_];
    if (packet_ < source.packets.size()) {
      std::vector<Verda::U8>& bytes = source.packets[packet_++];
      return InputPacket{.place = {.source = source.name, .index = packet_},
                         .bytes = std::move(bytes),
                         .datagram = std::nullopt,
                         .whyBinary = source.whyBinary};
    }
  }
  return std::nullopt;
}

}  // namespace RadiusPacketTool
