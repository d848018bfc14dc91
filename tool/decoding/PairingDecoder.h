#pragma once

#include <span>

#include "Verda/Bytes.h"
#include "Verda/Types.h"

#include "tool/decoding/Decoder.h"
#include "tool/decoding/PacketReport.h"
#include "tool/decoding/RequestAuthenticators.h"

namespace RadiusPacketTool {

/// Decodes packets in their order, each response with the authenticator of the request that it
/// answers.
class PairingDecoder {
 public:
  /// `decoder` must outlive the object.
  /// @param given  the Request Authenticator for all responses, 16 bytes; when it is empty, each is
  ///               paired with a request in front of it
  PairingDecoder(const Decoder& decoder, const Verda::Bytes& given);

  /// Decodes the next packet, whatever its bytes.
  PacketReport decode(const PacketPlace& place, std::span<const Verda::U8> packet);

 private:
  const Decoder& decoder_;
  RequestAuthenticators requests_;
};

}  // namespace RadiusPacketTool
