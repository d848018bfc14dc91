#include <algorithm>
#include <array>
#include <vector>

#include <fmt/format.h>

#include "Zonet/WireWriter.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/checks/AttributeOrders.h"
#include "tool/checks/AttributePlaces.h"
#include "tool/checks/Hypothesis.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U16;
using Verda::U8;

namespace {

using Finding = std::optional<std::string>;

/// The packet with another Length.
SignedBytes withLength(SignedBytes packet, std::size_t length) {
  const std::span<U8> field =
      std::span(packet.bytes).subspan(PacketConstants::lengthOffset(), sizeof(U16));
  static_cast<void>(Zonet::WireWriter(field).write(static_cast<U16>(length)));
  return packet;
}

std::vector<U8> copyOf(ByteView bytes) {
  return {bytes.begin(), bytes.end()};
}

/// All bytes there are, whatever the Length.
SignedBytes wholeBuffer(const FailingPacket& packet) {
  return {.bytes = copyOf(packet.buffer()),
          .messageAuthenticatorAt = packet.packet().messageAuthenticatorAt};
}

std::size_t claimedLength(const FailingPacket& packet) {
  return *packet.context().header.length;
}

bool hasLayout(const FailingPacket& packet) {
  return packet.isInputKnown();
}

bool hasAnotherLength(const FailingPacket& packet) {
  return hasLayout(packet) && packet.buffer().size() != claimedLength(packet) &&
         packet.buffer().size() <= PacketConstants::maxLength();
}

Finding wrongLengthFinding(const FailingPacket& packet) {
  const std::size_t size = packet.buffer().size();
  if (!packet.comesRight(withLength(wholeBuffer(packet), size))) {
    return std::nullopt;
  }
  return fmt::format(
      "The packet was signed with a Length of {}, as many bytes as there are: the Length field, "
      "which says {}, was changed behind the signer.",
      size, claimedLength(packet));
}

Finding paddingFinding(const FailingPacket& packet) {
  if (!packet.comesRight(wholeBuffer(packet))) {
    return std::nullopt;
  }
  return fmt::format(
      "The packet was signed over all {} bytes there are: the {} that its Length says must be "
      "signed, without padding.",
      packet.buffer().size(), claimedLength(packet));
}

/// The signer computed before the Length was final.
Finding earlyLengthFinding(const FailingPacket& packet) {
  const std::size_t length = claimedLength(packet);
  std::vector<std::size_t> earlier{0, PacketConstants::headerLength()};
  if (packet.packet().messageAuthenticatorAt.has_value()) {
    earlier.push_back(length - messageAuthenticatorLength);
  }
  const auto found = std::ranges::find_if(earlier, [&](std::size_t early) {
    return early != length && packet.comesRight(withLength(packet.packet(), early));
  });
  if (found == earlier.end()) {
    return std::nullopt;
  }
  return fmt::format(
      "The packet was signed while its Length field said {}: it must be signed with its final "
      "Length, {}.",
      *found, length);
}

/// Where a signer's buffer may have ended instead of at the packet's end: near it, or at that of
/// the greatest packet. A Message-Authenticator is whole in each.
std::vector<std::size_t> otherEnds(const FailingPacket& packet) {
  constexpr std::size_t farthest = 64;
  const SignedBytes& made = packet.packet();
  const std::size_t length = made.bytes.size();
  const std::size_t least = made.messageAuthenticatorAt.has_value()
                                ? *made.messageAuthenticatorAt + messageAuthenticatorLength
                                : PacketConstants::headerLength();
  std::vector<std::size_t> ends;
  for (std::size_t distance = 1; distance <= farthest; ++distance) {
    if (length >= least + distance) {
      ends.push_back(length - distance);
    }
    if (length + distance < PacketConstants::maxLength()) {
      ends.push_back(length + distance);
    }
  }
  if (length < PacketConstants::maxLength()) {
    ends.push_back(PacketConstants::maxLength());
  }
  return ends;
}

Finding otherEndFinding(const FailingPacket& packet) {
  const std::size_t length = packet.packet().bytes.size();
  for (const std::size_t end : otherEnds(packet)) {
    SignedBytes covered = packet.packet();
    covered.bytes.resize(end);
    if (packet.comesRight(covered)) {
      return fmt::format(
          "The packet was signed over {} bytes{}: the {} that its Length says must be signed.", end,
          end > length ? ", zeros behind its end among them" : "", length);
    }
  }
  return std::nullopt;
}

Finding otherLengthsFinding(const FailingPacket& packet) {
  for (const auto finding : {paddingFinding, earlyLengthFinding, otherEndFinding}) {
    if (Finding found = finding(packet)) {
      return found;
    }
  }
  return std::nullopt;
}

bool hasOneToLeaveOut(const FailingPacket& packet) {
  return hasLayout(packet) && packet.packet().messageAuthenticatorAt.has_value();
}

/// The packet's bytes without its Message-Authenticator.
std::vector<U8> bytesWithoutIt(const FailingPacket& packet) {
  std::vector<U8> bytes = packet.packet().bytes;
  const auto at =
      bytes.begin() + static_cast<std::ptrdiff_t>(*packet.packet().messageAuthenticatorAt);
  bytes.erase(at, at + messageAuthenticatorLength);
  return bytes;
}

/// The signer computed a digest before there was the Message-Authenticator.
Finding withoutItFinding(const FailingPacket& packet) {
  const SignedBytes without{.bytes = bytesWithoutIt(packet),
                            .messageAuthenticatorAt = std::nullopt};
  const SigningInput& signing = packet.signing();
  for (const std::size_t length : {without.bytes.size(), claimedLength(packet)}) {
    const std::vector<U8> bytes = withLength(without, length).bytes;
    const bool isAuthenticator = packet.authenticatorIs(computedAuthenticator(
        bytes, authenticatorCover(packet.code(), signing.requestAuthenticator), signing.secret));
    const bool isMessageAuthenticator = packet.messageAuthenticatorIs(computedMessageAuthenticator(
        bytes, messageAuthenticatorCover(packet.packet().bytes, signing.requestAuthenticator),
        signing.secret));
    if (isAuthenticator && !packet.messageAuthenticatorFails()) {
      return "The authenticator was computed before the Message-Authenticator was added: it must "
             "be "
             "computed last, over all attributes.";
    }
    if (isMessageAuthenticator && !packet.authenticatorFails()) {
      return "The Message-Authenticator was computed over the packet without that attribute: it "
             "must be there, with 16 zero bytes, and count in the Length.";
    }
  }
  return std::nullopt;
}

bool hasAttributes(const FailingPacket& packet) {
  return hasLayout(packet) && packet.packet().bytes.size() > PacketConstants::headerLength();
}

/// The packet up to an attribute, and the Length that goes with it.
SignedBytes packetBefore(const FailingPacket& packet, const AttributePlace& place) {
  return withLength({.bytes = copyOf(ByteView(packet.packet().bytes).first(place.offset)),
                     .messageAuthenticatorAt = packet.packet().messageAuthenticatorAt},
                    place.offset);
}

Finding addedFinding(const FailingPacket& packet) {
  for (const AttributePlace& place : attributePlaces(packet.packet().bytes)) {
    const bool endsBeforeIt = packet.messageAuthenticatorFails() &&
                              place.offset <= *packet.packet().messageAuthenticatorAt;
    if (!endsBeforeIt && packet.comesRight(packetBefore(packet, place))) {
      return fmt::format(
          "The packet was signed as it is up to offset {}: the attributes from there on were added "
          "behind the signer, and who adds them must sign anew.",
          place.offset);
    }
  }
  return std::nullopt;
}

bool hasAnOrder(const FailingPacket& packet) {
  return hasLayout(packet) && attributePlaces(packet.packet().bytes).size() > 1;
}

Finding orderFinding(const FailingPacket& packet) {
  AttributeOrders orders(packet.packet().bytes);
  while (const std::optional<AttributeOrder> order = orders.next()) {
    if (packet.comesRight(order->packet)) {
      return fmt::format(
          "The packet was signed with {}: who puts attributes in another order must sign anew.",
          order->description);
    }
  }
  return std::nullopt;
}

}  // namespace

std::span<const Hypothesis> layoutHypotheses() {
  static constexpr auto hypotheses = std::to_array<Hypothesis>({
      {"a Length field that was changed", hasAnotherLength, wrongLengthFinding},
      {"digests over another length", hasLayout, otherLengthsFinding},
      {"digests without the Message-Authenticator", hasOneToLeaveOut, withoutItFinding},
      {"attributes added behind the signer", hasAttributes, addedFinding},
      {"attributes sorted, moved or exchanged", hasAnOrder, orderFinding},
  });
  return hypotheses;
}

}  // namespace RadiusPacketTool
