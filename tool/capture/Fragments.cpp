#include "tool/capture/Fragments.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Zonet/WireWriter.h"

namespace RadiusPacketTool {

using std::chrono::nanoseconds;
using Verda::U32;
using Verda::U8;

namespace {

constexpr std::size_t greatestPayload = 65535;
constexpr std::size_t offsetUnit = 8;

/// What it takes to hold a datagram, and a piece of one, beside the bytes.
constexpr std::size_t datagramWeight = 512;
constexpr std::size_t pieceWeight = 128;

using Pieces = std::map<U32, std::vector<U8>>;

bool isThere(const Pieces& pieces, U32 offset, std::span<const U8> bytes) {
  const auto found = pieces.find(offset);
  return found != pieces.end() && std::ranges::equal(found->second, bytes);
}

bool overlaps(const Pieces& pieces, U32 offset, std::size_t size) {
  const auto behind = pieces.lower_bound(offset);
  if (behind != pieces.end() && behind->first < offset + size) {
    return true;
  }
  if (behind == pieces.begin()) {
    return false;
  }
  const auto& [frontOffset, front] = *std::prev(behind);
  return frontOffset + front.size() > offset;
}

/// Where a piece's end contradicts what is known of the datagram's.
bool contradicts(const std::optional<std::size_t>& length, const Pieces& pieces, std::size_t end,
                 bool isLast) {
  if (length.has_value()) {
    return isLast ? end != *length : end > *length;
  }
  return isLast && !pieces.empty() && pieces.rbegin()->first + pieces.rbegin()->second.size() > end;
}

}  // namespace

std::optional<WholePayload> Fragments::take(const IpPacket& packet, nanoseconds time) {
  forgetOld(time);
  const auto [id, offset, isLast] = *packet.fragment;
  const std::size_t size = packet.payload.size();
  Place place = placeOf(packet, time);
  if (place->isSpoiled || isThere(place->pieces, offset, packet.payload)) {
    return std::nullopt;
  }
  if (place->isWhole) {  // its identification is used again
    forget(place);
    place = placeOf(packet, time);
  }
  Datagram& datagram = *place;
  const std::size_t end = offset + size;
  if (size == 0 || end > greatestPayload || (!isLast && size % offsetUnit != 0) ||
      overlaps(datagram.pieces, offset, size) ||
      contradicts(datagram.length, datagram.pieces, end, isLast)) {
    spoil(datagram);
    return std::nullopt;
  }
  if (isLast) {
    datagram.length = end;
  }
  if (offset == 0) {
    datagram.protocol = packet.protocol;
  }
  held_ -= weightOf(datagram);
  datagram.pieces.emplace(offset, std::vector<U8>(packet.payload.begin(), packet.payload.end()));
  datagram.received += size;
  ++datagram.frames;
  held_ += weightOf(datagram);
  if (datagram.received != datagram.length) {
    makeRoom();
    return std::nullopt;
  }
  return finish(place);
}

/// Gives the payload, and keeps the pieces: another one may come once more.
WholePayload Fragments::finish(Place place) {
  WholePayload whole{.protocol = place->protocol, .bytes = {}, .frames = place->frames};
  for (const auto& [offset, bytes] : place->pieces) {
    whole.bytes.insert(whole.bytes.end(), bytes.begin(), bytes.end());
  }
  place->isWhole = true;
  whole_.splice(whole_.end(), datagrams_, place);
  makeRoom();
  return whole;
}

std::size_t Fragments::incomplete() const {
  const auto lacking = std::ranges::count(datagrams_, false, &Datagram::isSpoiled);
  return dropped_ + static_cast<std::size_t>(lacking);
}

/// Of IPv6 the protocol does not count: it stands in the first fragment.
Fragments::Key Fragments::keyOf(const IpPacket& packet) {
  Key key{};
  Zonet::WireWriter writer(key);
  const bool isIp6 = packet.from.isIp6();
  writer.write(packet.fragment->id);
  writer.write(isIp6 ? U8{1} : U8{0});
  writer.write(isIp6 ? U8{0} : packet.protocol);
  writer.write(packet.from.bytes());
  writer.write(packet.to.bytes());
  return key;
}

std::size_t Fragments::weightOf(const Datagram& datagram) {
  return datagramWeight + datagram.pieces.size() * pieceWeight + datagram.received;
}

Fragments::Place Fragments::placeOf(const IpPacket& packet, nanoseconds time) {
  const Key key = keyOf(packet);
  if (const auto known = places_.find(key); known != places_.end()) {
    return known->second;
  }
  datagrams_.emplace_back();
  const Place place = std::prev(datagrams_.end());
  place->key = key;
  place->since = time;
  places_.emplace(key, place);
  held_ += weightOf(*place);
  makeRoom();
  return place;
}

void Fragments::spoil(Datagram& datagram) {
  held_ -= weightOf(datagram);
  datagram.pieces.clear();
  datagram.received = 0;
  datagram.isSpoiled = true;
  held_ += weightOf(datagram);
  ++dropped_;
}

void Fragments::forget(Place place) {
  held_ -= weightOf(*place);
  places_.erase(place->key);
  (place->isWhole ? whole_ : datagrams_).erase(place);
}

void Fragments::forgetOld(nanoseconds now) {
  while (!whole_.empty() && now - whole_.front().since > longestWait) {
    forget(whole_.begin());
  }
  while (!datagrams_.empty() && now - datagrams_.front().since > longestWait) {
    dropped_ += datagrams_.front().isSpoiled ? 0 : 1;
    forget(datagrams_.begin());
  }
}

void Fragments::makeRoom() {
  while (held_ > mostHeld && !whole_.empty()) {
    forget(whole_.begin());
  }
  while (held_ > mostHeld && datagrams_.size() > 1) {
    dropped_ += datagrams_.front().isSpoiled ? 0 : 1;
    forget(datagrams_.begin());
  }
}

}  // namespace RadiusPacketTool
