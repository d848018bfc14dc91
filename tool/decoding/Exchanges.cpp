#include "tool/decoding/Exchanges.h"

#include <string>

#include <fmt/format.h>

namespace RadiusPacketTool {
namespace {

/// The report of a packet that nobody can check.
PacketReport unchecked(const PacketContext& context, Missing missing, const std::string& reason) {
  PacketReport report;
  report.header = context.header;
  report.missing = missing;
  report.reason = reason;
  report.authenticatorCheck = Check::unchecked;
  return report;
}

std::string noSecretReason(const InputPacket& packet, const PacketHeader& header) {
  std::string reason = "no shared secret is known for its client";
  if (packet.datagram.has_value()) {
    reason += fmt::format(" {}", clientOf(*packet.datagram, header.code).text().view());
  }
  return reason;
}

PacketReport verdictOn(const Decoder& decoder, const InputPacket& packet,
                       const PacketContext& context) {
  if (packet.cutFrom.has_value()) {
    return unchecked(context, Missing::bytes,
                     fmt::format("the capture has only {} of its {} bytes", packet.bytes.size(),
                                 *packet.cutFrom));
  }
  if (context.secret == nullptr) {
    return unchecked(context, Missing::secret, noSecretReason(packet, context.header));
  }
  return decoder.decode(packet.bytes, *context.secret, context.request.bytes);
}

}  // namespace

Exchanges::Exchanges(const Secrets& secrets, const Verda::Bytes& given)
    : secrets_(secrets), requests_(given) {}

PacketContext Exchanges::next(const InputPacket& packet) {
  PacketContext context;
  context.header = headerOf(packet.bytes);
  context.request = requests_.of(context.header, packet.datagram);
  context.secret = secrets_.of(packet.datagram, context.header.code);
  context.retransmissionOf = requests_.take(packet.place, context.header, packet.datagram);
  return context;
}

PacketReport reportOf(const Decoder& decoder, const InputPacket& packet,
                      const PacketContext& context) {
  PacketReport report = verdictOn(decoder, packet, context);
  report.place = packet.place;
  report.datagram = packet.datagram;
  report.pairedWith = context.request.pairedWith;
  report.retransmissionOf = context.retransmissionOf;
  return report;
}

}  // namespace RadiusPacketTool
