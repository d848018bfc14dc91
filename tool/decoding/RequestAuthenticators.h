#pragma once

#include <optional>

#include "Verda/Bytes.h"

#include "tool/capture/Datagram.h"
#include "tool/decoding/EarlierRequests.h"
#include "tool/decoding/PacketHeader.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// What is said of a response when none is known.
inline constexpr const char* noRequestAuthenticator =
    "no Request Authenticator: give that of the request which this packet answers with -a HEX";

/// The authenticator of the request that a response answers, and where it comes from.
struct RequestAuthenticator {
  Verda::Bytes bytes;                     ///< empty when none is known
  std::optional<PacketPlace> pairedWith;  ///< the request, when it was found among the packets
};

/// Knows the Request Authenticator of each response of a run: the one that is given for all of
/// them, else that of the request in front which the response answers.
class RequestAuthenticators {
 public:
  /// @param given  16 bytes; empty when the responses are to be paired with requests
  explicit RequestAuthenticators(const Verda::Bytes& given) : given_(given) {}

  /// That of a packet of this header; the given one even for a request, which does without.
  /// @param datagram  what carried the packet, if that is known
  RequestAuthenticator of(const PacketHeader& header,
                          const std::optional<Datagram>& datagram = std::nullopt) const;

  /// Notes a packet, which the responses behind it may answer. Returns the packet that it repeats.
  std::optional<PacketPlace> take(const PacketPlace& place, const PacketHeader& header,
                                  const std::optional<Datagram>& datagram = std::nullopt) {
    return requests_.take(place, header, datagram);
  }

  /// What became of the requests so far.
  const ExchangeCounts& counts() const { return requests_.counts(); }

  const EarlierRequests& requests() const { return requests_; }

 private:
  Verda::Bytes given_;
  EarlierRequests requests_;
};

}  // namespace RadiusPacketTool
