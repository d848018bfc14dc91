#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tool/checks/AttributePlaces.h"
#include "tool/checks/FailingPacket.h"

namespace RadiusPacketTool {

/// A packet with its attributes sorted, moved or exchanged.
struct AttributeOrder {
  SignedBytes packet;
  std::string description;  ///< of the order, behind "with"
};

/// The orders that the attributes of a packet may have had: sorted by type, reversed, with one
/// attribute at another place, the Message-Authenticator before all others, and with two exchanged;
/// of a packet of few attributes all orders. There is an end to them
/// before they have gone through too many bytes, so that a long packet of short attributes takes no
/// longer than others.
class AttributeOrders {
 public:
  /// `packet` must outlive the object.
  explicit AttributeOrders(ByteView packet);

  /// The next order, or nothing at the end.
  std::optional<AttributeOrder> next();

 private:
  /// One attribute taken out and put in again.
  struct Move {
    std::size_t from = 0;
    std::size_t to = 0;
  };

  std::optional<AttributeOrder> nextSorted();
  std::optional<Move> nextMove();
  std::optional<Move> nextExchange();
  std::optional<AttributeOrder> nextPermutation();
  AttributeOrder exchanged(const Move& pair) const;
  AttributeOrder moved(const Move& move) const;
  SignedBytes packetOf(const std::vector<AttributePlace>& order) const;

  ByteView packet_;
  std::vector<AttributePlace> places_;
  std::optional<std::size_t> messageAuthenticatorAt_;
  std::vector<std::size_t> movable_;  ///< indices of places, in the order in which they are moved
  std::size_t sortedCount_ = 0;
  std::size_t moveCount_ = 0;
  std::size_t exchangeCount_ = 0;
  std::vector<std::size_t> permutation_;  ///< of indices of places; the last one that was given
  std::size_t bytesLeft_;
};

}  // namespace RadiusPacketTool
