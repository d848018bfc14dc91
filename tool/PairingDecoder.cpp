#include "tool/PairingDecoder.h"

namespace RadiusPacketTool {

using Verda::Bytes;

PairingDecoder::PairingDecoder(const PacketDecoder& decoder, const Bytes& given)
    : decoder_(decoder), given_(given) {}

PacketReport PairingDecoder::decode(const PacketPlace& place, std::span<const Verda::U8> packet) {
  const PacketHeader header = headerOf(packet);
  const EarlierRequest* request = given_.empty() ? requests_.answeredBy(header) : nullptr;
  PacketReport report =
      decoder_.decode(packet, request == nullptr ? given_ : request->authenticator);
  report.place = place;
  if (request != nullptr) {
    report.pairedWith = request->place;
  }
  requests_.take(place, header);
  return report;
}

}  // namespace RadiusPacketTool
