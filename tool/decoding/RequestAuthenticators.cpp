#include "tool/decoding/RequestAuthenticators.h"

namespace RadiusPacketTool {

RequestAuthenticator RequestAuthenticators::of(const PacketHeader& header,
                                               const std::optional<Datagram>& datagram) const {
  const std::optional<EarlierRequest> request =
      given_.empty() ? requests_.answeredBy(header, datagram) : std::nullopt;
  if (!request.has_value()) {
    return {.bytes = given_, .pairedWith = std::nullopt};
  }
  return {.bytes = request->authenticator, .pairedWith = request->place};
}

}  // namespace RadiusPacketTool
