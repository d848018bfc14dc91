#include "tool/decoding/RequestAuthenticators.h"

namespace RadiusPacketTool {

RequestAuthenticator RequestAuthenticators::of(const PacketHeader& header) const {
  const EarlierRequest* request = given_.empty() ? requests_.answeredBy(header) : nullptr;
  if (request == nullptr) {
    return {.bytes = given_, .pairedWith = std::nullopt};
  }
  return {.bytes = request->authenticator, .pairedWith = request->place};
}

}  // namespace RadiusPacketTool
