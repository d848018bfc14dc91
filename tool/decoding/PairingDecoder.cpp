#include "tool/decoding/PairingDecoder.h"

namespace RadiusPacketTool {

using Verda::Bytes;

PairingDecoder::PairingDecoder(const Decoder& decoder, const Bytes& given)
    : decoder_(decoder), requests_(given) {}

PacketReport PairingDecoder::decode(const PacketPlace& place, std::span<const Verda::U8> packet) {
  const PacketHeader header = headerOf(packet);
  const RequestAuthenticator request = requests_.of(header);
  PacketReport report = decoder_.decode(packet, request.bytes);
  report.place = place;
  report.pairedWith = request.pairedWith;
  requests_.take(place, header);
  return report;
}

}  // namespace RadiusPacketTool
