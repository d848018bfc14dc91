#include "tool/decoding/Exchanges.h"

namespace RadiusPacketTool {
namespace {

/// The report of a packet that nobody can check.
PacketReport reportWithoutSecret(const PacketContext& context) {
  PacketReport report;
  report.header = context.header;
  report.reason = "no shared secret is known for its client";
  return report;
}

}  // namespace

Exchanges::Exchanges(const Secrets& secrets, const Verda::Bytes& given)
    : secrets_(secrets), requests_(given) {}

PacketContext Exchanges::next(const InputPacket& packet) {
  PacketContext context;
  context.header = headerOf(packet.bytes);
  context.request = requests_.of(context.header);
  context.secret = secrets_.of(packet.datagram, context.header.code);
  requests_.take(packet.place, context.header);
  return context;
}

PacketReport reportOf(const Decoder& decoder, const InputPacket& packet,
                      const PacketContext& context) {
  PacketReport report = context.secret == nullptr
                            ? reportWithoutSecret(context)
                            : decoder.decode(packet.bytes, *context.secret, context.request.bytes);
  report.place = packet.place;
  report.datagram = packet.datagram;
  report.pairedWith = context.request.pairedWith;
  return report;
}

}  // namespace RadiusPacketTool
