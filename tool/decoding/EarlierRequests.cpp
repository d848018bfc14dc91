#include "tool/decoding/EarlierRequests.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <span>

#include "Zonet/WireWriter.h"

#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPktParserBase::canAnswer;
using RadiusPktParserBase::isRequest;
using Verda::Bytes;
using Verda::U8;

namespace {

/// An endpoint in as many bytes as every other; all zeros of one that is not known.
void writeEndpoint(const Endpoint* endpoint, Zonet::WireWriter& writer) {
  std::array<U8, Zonet::Ip6Addr::length> address{};
  U8 family = 0;
  if (endpoint != nullptr) {
    constexpr U8 ip4 = 4;
    constexpr U8 ip6 = 6;
    endpoint->address.copyTo(address);
    family = endpoint->address.isIp6() ? ip6 : ip4;
  }
  writer.write(family);
  writer.write(address);
  writer.write(endpoint != nullptr ? endpoint->port : Verda::U16{0});
}

}  // namespace

std::optional<PacketPlace> EarlierRequests::take(const PacketPlace& place,
                                                 const PacketHeader& header,
                                                 const std::optional<Datagram>& datagram) {
  if (!header.authenticator.has_value()) {
    return std::nullopt;
  }
  const KeptPlace kept{.source = &*sources_.insert(place.source).first, .index = place.index};
  const std::optional<PacketPlace> repeated = isRequest(*header.code)
                                                  ? takeRequest(kept, header, datagram)
                                                  : takeResponse(kept, header, datagram);
  counts_.retransmissions += repeated.has_value() ? 1 : 0;
  return repeated;
}

std::optional<EarlierRequest> EarlierRequests::answeredBy(
    const PacketHeader& response, const std::optional<Datagram>& datagram) const {
  const auto found = find(response, datagram);
  if (!found.has_value()) {
    return std::nullopt;
  }
  const Request& request = **found;
  return EarlierRequest{.place = placeOf(request.nearest),
                        .code = codeOf(request.key),
                        .authenticator = Bytes(std::span<const U8>(request.authenticator))};
}

std::optional<PacketPlace> EarlierRequests::takeRequest(const KeptPlace& place,
                                                        const PacketHeader& header,
                                                        const std::optional<Datagram>& datagram) {
  const Key key = datagram.has_value()
                      ? keyOf(&datagram->from, &datagram->to, *header.id, *header.code)
                      : keyOf(nullptr, nullptr, *header.id, *header.code);
  Request request{
      .key = key, .first = place, .nearest = place, .order = ++taken_, .answer = std::nullopt};
  std::ranges::copy(*header.authenticator, request.authenticator.begin());
  const auto known = byKey_.find(key);
  bool isRepeated = false;
  if (known != byKey_.end()) {
    const Request& earlier = *known->second;
    isRepeated = datagram.has_value() && earlier.authenticator == request.authenticator;
    if (isRepeated) {
      request.first = earlier.first;
      request.answer = earlier.answer;
    }
    forget(known->second);
  } else if (requests_.size() == mostKept) {
    forget(requests_.begin());
  }
  requests_.push_back(request);
  byKey_.emplace(key, std::prev(requests_.end()));
  keepRecent(place, header);
  counts_.requests += isRepeated ? 0 : 1;
  return isRepeated ? std::optional(placeOf(request.first)) : std::nullopt;
}

void EarlierRequests::keepRecent(const KeptPlace& place, const PacketHeader& header) {
  recent_.push_back({.place = placeOf(place),
                     .code = *header.code,
                     .authenticator = Bytes(std::span<const U8>(*header.authenticator))});
  if (recent_.size() > mostRecent) {
    recent_.pop_front();
  }
}

std::optional<PacketPlace> EarlierRequests::takeResponse(const KeptPlace& place,
                                                         const PacketHeader& header,
                                                         const std::optional<Datagram>& datagram) {
  const auto found = find(header, datagram);
  if (!found.has_value()) {
    return std::nullopt;
  }
  std::optional<Answer>& known = (*found)->answer;
  counts_.answered += known.has_value() ? 0 : 1;
  Answer answer{.authenticator = {}, .place = place};
  std::ranges::copy(*header.authenticator, answer.authenticator.begin());
  if (datagram.has_value() && known.has_value() && known->authenticator == answer.authenticator) {
    return placeOf(known->place);
  }
  known = answer;
  return std::nullopt;
}

/// Requests that differ in nothing but their code are neighbours.
std::optional<EarlierRequests::Requests::iterator> EarlierRequests::find(
    const PacketHeader& response, const std::optional<Datagram>& datagram) const {
  if (!response.id.has_value()) {
    return std::nullopt;
  }
  const Endpoint* const requester = datagram.has_value() ? &datagram->to : nullptr;
  const Endpoint* const responder = datagram.has_value() ? &datagram->from : nullptr;
  constexpr U8 greatest = std::numeric_limits<U8>::max();
  const auto end = byKey_.upper_bound(keyOf(requester, responder, *response.id, greatest));
  std::optional<Requests::iterator> nearest;
  for (auto at = byKey_.lower_bound(keyOf(requester, responder, *response.id, 0)); at != end;
       ++at) {
    const auto& [key, request] = *at;
    if (canAnswer(*response.code, codeOf(key)) &&
        (!nearest.has_value() || (*nearest)->order < request->order)) {
      nearest = request;
    }
  }
  return nearest;
}

EarlierRequests::Key EarlierRequests::keyOf(const Endpoint* requester, const Endpoint* responder,
                                            U8 id, U8 code) {
  Key key{};
  Zonet::WireWriter writer(key);
  writeEndpoint(requester, writer);
  writeEndpoint(responder, writer);
  writer.write(id);
  writer.write(code);
  return key;
}

void EarlierRequests::forget(Requests::iterator request) {
  byKey_.erase(request->key);
  requests_.erase(request);
}

}  // namespace RadiusPacketTool
