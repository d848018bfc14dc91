#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "Verda/Bytes.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/capture/Datagram.h"
#include "tool/decoding/PacketHeader.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// A request, as far as its answer needs it.
struct EarlierRequest {
  PacketPlace place;
  Verda::U8 code = 0;
  Verda::Bytes authenticator;
};

/// How many requests there were, and what became of them.
struct ExchangeCounts {
  std::size_t requests = 0;         ///< without retransmissions
  std::size_t answered = 0;         ///< of the requests
  std::size_t retransmissions = 0;  ///< of requests and of responses

  bool operator==(const ExchangeCounts&) const = default;
};

/// The requests among the packets so far, to find out which of them a response answers, and which
/// packets are there once more. Where it is known between whom packets went, a response answers
/// what went the other way between the same addresses and ports; packets of which it is not known
/// are among themselves. A request takes the place of an earlier one of its code and Identifier
/// between the same two.
///
/// At most `mostKept` requests are kept: of more, the oldest is forgotten.
class EarlierRequests {
 public:
  static constexpr std::size_t mostKept = 65536;
  static constexpr std::size_t mostRecent = 256;  ///< as many as there are Identifiers

  /// Notes a packet, a request or a response. Its header alone counts: whatever else is wrong with
  /// a request, or missing from its copy, it is what the response answers. Returns the packet that
  /// it repeats: between the same two, with the same code, Identifier and authenticator, and, of a
  /// response, to the same request. Of packets that come from nowhere, none repeats another.
  std::optional<PacketPlace> take(const PacketPlace& place, const PacketHeader& header,
                                  const std::optional<Datagram>& datagram = std::nullopt);

  /// The nearest request with the response's Identifier that its code can answer.
  std::optional<EarlierRequest> answeredBy(
      const PacketHeader& response, const std::optional<Datagram>& datagram = std::nullopt) const;

  const ExchangeCounts& counts() const { return counts_; }

  /// The latest requests of all, those too that no response can answer any more; the last one is
  /// the nearest. Valid until the next packet is taken.
  const std::deque<EarlierRequest>& recent() const { return recent_; }

 private:
  /// Family, address and port.
  static constexpr std::size_t endpointLength = 1 + Zonet::Ip6Addr::length + 2;
  /// Who asks and who answers, the Identifier, and last the request's code.
  using Key = std::array<Verda::U8, 2 * endpointLength + 2>;
  using Authenticator = std::array<Verda::U8, RadiusPacketParser::PacketConstants::authLength()>;

  /// A place that many may share the source of.
  struct KeptPlace {
    const std::string* source = nullptr;
    std::size_t index = 0;
  };
  struct Answer {
    Authenticator authenticator{};
    KeptPlace place;
  };
  struct Request {
    Key key{};
    Authenticator authenticator{};
    KeptPlace first;
    KeptPlace nearest;
    std::size_t order = 0;
    std::optional<Answer> answer;
  };
  using Requests = std::list<Request>;

  static Key keyOf(const Endpoint* requester, const Endpoint* responder, Verda::U8 id,
                   Verda::U8 code);
  static Verda::U8 codeOf(const Key& key) { return key.back(); }
  static PacketPlace placeOf(const KeptPlace& place) { return {*place.source, place.index}; }

  std::optional<PacketPlace> takeRequest(const KeptPlace& place, const PacketHeader& header,
                                         const std::optional<Datagram>& datagram);
  std::optional<PacketPlace> takeResponse(const KeptPlace& place, const PacketHeader& header,
                                          const std::optional<Datagram>& datagram);
  std::optional<Requests::iterator> find(const PacketHeader& response,
                                         const std::optional<Datagram>& datagram) const;
  void keepRecent(const KeptPlace& place, const PacketHeader& header);
  void forget(Requests::iterator request);

  Requests requests_;  ///< the one that is forgotten next in front
  std::map<Key, Requests::iterator> byKey_;
  std::set<std::string> sources_;
  std::deque<EarlierRequest> recent_;
  std::size_t taken_ = 0;
  ExchangeCounts counts_;
};

}  // namespace RadiusPacketTool
