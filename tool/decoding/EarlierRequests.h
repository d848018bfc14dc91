#pragma once

#include <deque>
#include <map>
#include <vector>

#include "Verda/Bytes.h"
#include "Verda/Types.h"

#include "tool/decoding/PacketHeader.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// A request, as far as its answer needs it.
struct EarlierRequest {
  PacketPlace place;
  Verda::U8 code = 0;
  Verda::Bytes authenticator;
};

/// The requests among the packets so far, to find out which of them a response answers.
class EarlierRequests {
 public:
  /// Notes a packet that is a request. Its header alone counts: whatever else is wrong with it, or
  /// missing from its copy, it is what the response answers.
  void take(const PacketPlace& place, const PacketHeader& header);

  /// The nearest request with the response's Identifier that its code can answer, or null; valid
  /// until the next packet is taken.
  const EarlierRequest* answeredBy(const PacketHeader& response) const;

  /// The latest requests of all, those too that no response can answer any more; the last one is
  /// the nearest. Valid until the next packet is taken.
  const std::deque<EarlierRequest>& recent() const { return recent_; }

 private:
  /// By Identifier, the latest of each code in the order of the packets.
  std::map<Verda::U8, std::vector<EarlierRequest>> requests_;
  std::deque<EarlierRequest> recent_;
};

}  // namespace RadiusPacketTool
