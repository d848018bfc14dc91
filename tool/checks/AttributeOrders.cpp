#include "tool/checks/AttributeOrders.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U8;

namespace {

/// How many bytes of packets are made before it is enough.
constexpr std::size_t maxBytes = std::size_t{16} * 1024 * 1024;

/// So many attributes have 720 orders.
constexpr std::size_t mostPermuted = 6;

void appendBytes(std::vector<U8>& bytes, ByteView more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

/// "in the first place", as far as it goes without counting.
std::string placeName(std::size_t index, std::size_t count) {
  if (index == 0) {
    return "in the first place";
  }
  return index + 1 == count ? "in the last place" : fmt::format("in place {}", index + 1);
}

}  // namespace

AttributeOrders::AttributeOrders(ByteView packet)
    : packet_(packet),
      places_(attributePlaces(packet)),
      messageAuthenticatorAt_(messageAuthenticatorAt(packet)),
      movable_(places_.size()),
      permutation_(places_.size()),
      bytesLeft_(maxBytes) {
  std::iota(movable_.begin(), movable_.end(), std::size_t{0});
  std::iota(permutation_.begin(), permutation_.end(), std::size_t{0});
  std::stable_partition(movable_.begin(), movable_.end(), [&](std::size_t index) {
    return isWholeMessageAuthenticator(places_[index]);
  });
}

std::optional<AttributeOrder> AttributeOrders::next() {
  if (bytesLeft_ < packet_.size()) {
    return std::nullopt;
  }
  bytesLeft_ -= packet_.size();
  if (std::optional<AttributeOrder> sorted = nextSorted()) {
    return sorted;
  }
  if (const std::optional<Move> move = nextMove()) {
    return moved(*move);
  }
  if (const std::optional<Move> pair = nextExchange()) {
    return exchanged(*pair);
  }
  return nextPermutation();
}

std::optional<AttributeOrder> AttributeOrders::nextSorted() {
  std::vector<AttributePlace> order = places_;
  switch (sortedCount_++) {
    case 0:
      std::ranges::stable_sort(order, {}, &AttributePlace::type);
      return AttributeOrder{.packet = packetOf(order),
                            .description = "its attributes sorted by their type"};
    case 1:
      std::ranges::reverse(order);
      return AttributeOrder{.packet = packetOf(order),
                            .description = "its attributes in the reverse order"};
    default:
      return std::nullopt;
  }
}

/// Counts through all of them; one attribute's moves follow one another, those to the ends first.
std::optional<AttributeOrders::Move> AttributeOrders::nextMove() {
  const std::size_t count = places_.size();
  while (moveCount_ < count * count) {
    const std::size_t from = movable_[moveCount_ / count];
    const std::size_t to = (moveCount_ % count + count - 1) % count;
    ++moveCount_;
    if (from != to) {
      return Move{.from = from, .to = to};
    }
  }
  return std::nullopt;
}

/// Neighbours exchange their places by a move too.
std::optional<AttributeOrders::Move> AttributeOrders::nextExchange() {
  const std::size_t count = places_.size();
  while (exchangeCount_ < count * count) {
    const Move pair{.from = exchangeCount_ / count, .to = exchangeCount_ % count};
    ++exchangeCount_;
    if (pair.from + 1 < pair.to) {
      return pair;
    }
  }
  return std::nullopt;
}

AttributeOrder AttributeOrders::exchanged(const Move& pair) const {
  std::vector<AttributePlace> order = places_;
  std::swap(order[pair.from], order[pair.to]);
  return {.packet = packetOf(order),
          .description = fmt::format("the attributes at offsets {} and {} exchanged",
                                     places_[pair.from].offset, places_[pair.to].offset)};
}

std::optional<AttributeOrder> AttributeOrders::nextPermutation() {
  if (places_.size() > mostPermuted || !std::ranges::next_permutation(permutation_).found) {
    return std::nullopt;
  }
  std::vector<AttributePlace> order;
  std::string numbers;
  for (const std::size_t index : permutation_) {
    order.push_back(places_[index]);
    numbers += fmt::format("{}{}", numbers.empty() ? "" : ", ", index + 1);
  }
  return AttributeOrder{.packet = packetOf(order),
                        .description = fmt::format("its attributes in the order {}", numbers)};
}

/// Turns the bytes between the two places around: there may be many moves, and many attributes that
/// none of them concerns.
AttributeOrder AttributeOrders::moved(const Move& move) const {
  const AttributePlace& place = places_[move.from];
  const AttributePlace& target = places_[move.to];
  const bool isForward = move.from < move.to;
  const std::size_t begin = isForward ? place.offset : target.offset;
  const std::size_t end = isForward ? target.offset + target.length : place.offset + place.length;
  const std::size_t middle = isForward ? place.offset + place.length : place.offset;
  SignedBytes made{.bytes = {packet_.begin(), packet_.end()},
                   .messageAuthenticatorAt = messageAuthenticatorAt_};
  const auto at = [&](std::size_t offset) {
    return made.bytes.begin() + static_cast<std::ptrdiff_t>(offset);
  };
  std::rotate(at(begin), at(middle), at(end));
  if (made.messageAuthenticatorAt >= begin && made.messageAuthenticatorAt < end) {
    // What stood behind the middle stands before it now, and the other way round.
    *made.messageAuthenticatorAt = *made.messageAuthenticatorAt >= middle
                                       ? *made.messageAuthenticatorAt - (middle - begin)
                                       : *made.messageAuthenticatorAt + (end - middle);
  }
  return {.packet = std::move(made),
          .description = fmt::format("the attribute at offset {} (type {}) {}", place.offset,
                                     place.type, placeName(move.to, places_.size()))};
}

SignedBytes AttributeOrders::packetOf(const std::vector<AttributePlace>& order) const {
  SignedBytes made;
  made.bytes.reserve(packet_.size());
  appendBytes(made.bytes, packet_.first(PacketConstants::headerLength()));
  std::size_t end = PacketConstants::headerLength();
  for (const AttributePlace& place : order) {
    if (!made.messageAuthenticatorAt.has_value() && isWholeMessageAuthenticator(place)) {
      made.messageAuthenticatorAt = made.bytes.size();
    }
    appendBytes(made.bytes, packet_.subspan(place.offset, place.length));
    end += place.length;
  }
  // What is no attribute stays behind all others.
  appendBytes(made.bytes, packet_.subspan(end));
  return made;
}

}  // namespace RadiusPacketTool
