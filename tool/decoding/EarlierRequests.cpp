#include "tool/decoding/EarlierRequests.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::canAnswer;
using RadiusPktParserBase::isRequest;
using Verda::Bytes;
using Verda::U8;

namespace {

/// As many as there are Identifiers.
constexpr std::size_t maxRecent = 256;

}  // namespace

void EarlierRequests::take(const PacketPlace& place, const PacketHeader& header) {
  if (!header.authenticator.has_value() || !isRequest(*header.code)) {
    return;
  }
  const EarlierRequest request{.place = place,
                               .code = *header.code,
                               .authenticator = Bytes(std::span<const U8>(*header.authenticator))};
  std::vector<EarlierRequest>& sameId = requests_[*header.id];
  std::erase_if(sameId, [&](const EarlierRequest& r) { return r.code == *header.code; });
  sameId.push_back(request);
  recent_.push_back(request);
  if (recent_.size() > maxRecent) {
    recent_.pop_front();
  }
}

const EarlierRequest* EarlierRequests::answeredBy(const PacketHeader& response) const {
  if (!response.id.has_value()) {
    return nullptr;
  }
  const auto sameId = requests_.find(*response.id);
  if (sameId == requests_.end()) {
    return nullptr;
  }
  const std::vector<EarlierRequest>& requests = sameId->second;
  const auto nearest = std::find_if(
      requests.rbegin(), requests.rend(),
      [&](const EarlierRequest& request) { return canAnswer(*response.code, request.code); });
  return nearest == requests.rend() ? nullptr : &*nearest;
}

}  // namespace RadiusPacketTool
