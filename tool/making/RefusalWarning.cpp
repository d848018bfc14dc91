#include "tool/making/RefusalWarning.h"

#include <fmt/format.h>

#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

std::optional<std::string> refusalWarning(const PacketDecoder& decoder,
                                          std::span<const Verda::U8> packet, const Secret& secret,
                                          const Verda::Bytes& reqAuth, const std::string& origin) {
  const PacketReport report = decoder.decode(packet, secret, reqAuth);
  if (isAccepted(report)) {
    return std::nullopt;
  }
  return fmt::format("{}: warning: the packet is built, but decode refuses it: {}", origin,
                     faultText(report));
}

}  // namespace RadiusPacketTool
