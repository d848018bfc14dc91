#pragma once

#include <optional>

#include "Verda/Bytes.h"

#include "tool/decoding/Decoder.h"
#include "tool/decoding/PacketHeader.h"
#include "tool/decoding/PacketReport.h"
#include "tool/decoding/RequestAuthenticators.h"
#include "tool/input/InputPacket.h"
#include "tool/input/Secret.h"
#include "tool/input/Secrets.h"

namespace RadiusPacketTool {

/// What the rest of the input says of a packet.
struct PacketContext {
  PacketHeader header;
  RequestAuthenticator request;                 ///< that which the packet answers
  std::optional<PacketPlace> retransmissionOf;  ///< the packet that it repeats
  const Secret* secret = nullptr;               ///< null when there is none for its client
};

/// Finds out of packets, in their order, what is needed to judge them: the request that each
/// answers, and the secret of its client.
class Exchanges {
 public:
  /// `secrets` must outlive the object.
  /// @param given  the Request Authenticator for all responses, 16 bytes; when it is empty, each is
  ///               paired with a request in front of it
  Exchanges(const Secrets& secrets, const Verda::Bytes& given);

  /// What is known of the next packet.
  PacketContext next(const InputPacket& packet);

  /// The requests among the packets so far.
  const EarlierRequests& requests() const { return requests_.requests(); }

  /// What became of the requests so far.
  const ExchangeCounts& counts() const { return requests_.counts(); }

 private:
  const Secrets& secrets_;
  RequestAuthenticators requests_;
};

/// Decodes a packet with what is known of it; one without a secret, or that its capture cut short,
/// gets no verdict, and the report says why.
PacketReport reportOf(const Decoder& decoder, const InputPacket& packet,
                      const PacketContext& context);

}  // namespace RadiusPacketTool
