#include <algorithm>
#include <array>
#include <vector>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/checks/Hypothesis.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using Verda::U8;

namespace {

using Finding = std::optional<std::string>;

bool hasMessageAuthenticator(const FailingPacket& packet) {
  return packet.packet().messageAuthenticatorAt.has_value();
}

/// Whether there are two digests, one of which covers the other.
bool hasBothDigests(const FailingPacket& packet) {
  return hasMessageAuthenticator(packet) && !hasRandomAuthenticator(packet.code()) &&
         packet.isInputKnown();
}

bool failsInMessageAuthenticatorAlone(const FailingPacket& packet) {
  return packet.messageAuthenticatorFails() && !packet.authenticatorFails() &&
         packet.isInputKnown();
}

/// The packet with a zeroed Message-Authenticator.
std::vector<U8> unsignedBytes(const FailingPacket& packet) {
  std::vector<U8> bytes = packet.packet().bytes;
  const auto value =
      bytes.begin() + static_cast<std::ptrdiff_t>(*packet.packet().messageAuthenticatorAt +
                                                  AttributeConstants::valueOffset());
  std::fill_n(value, AttributeConstants::msgAuthLength(), U8{0});
  return bytes;
}

std::optional<PacketDigest> messageAuthenticatorCovering(const FailingPacket& packet,
                                                         ByteView cover,
                                                         ByteView field = zeroAuthenticator) {
  return computedMessageAuthenticator(packet.packet().bytes,
                                      *packet.packet().messageAuthenticatorAt, cover,
                                      packet.signing().secret, field);
}

/// The signer computed the two digests in the wrong order: the authenticator while the
/// Message-Authenticator was still zero, the latter with that authenticator in place.
Finding orderOfDigestsFinding(const FailingPacket& packet) {
  const std::optional<PacketDigest> early = computedAuthenticator(
      unsignedBytes(packet),
      authenticatorCover(packet.code(), packet.signing().requestAuthenticator),
      packet.signing().secret);
  if (!early.has_value()) {
    return std::nullopt;
  }
  const bool authenticatorIsEarly = packet.authenticatorIs(early);
  const bool coversEarly =
      packet.messageAuthenticatorIs(messageAuthenticatorCovering(packet, *early));
  if (packet.messageAuthenticatorFails() && coversEarly &&
      authenticatorIsEarly == packet.authenticatorFails()) {
    return "The Message-Authenticator was computed with the packet's own authenticator in place, "
           "which was computed before it: it must be computed first, with the Request "
           "Authenticator "
           "there in a response and zeros in a request.";
  }
  if (!packet.messageAuthenticatorFails() && authenticatorIsEarly) {
    return "The authenticator was computed before the Message-Authenticator was filled in: it must "
           "be computed last.";
  }
  return std::nullopt;
}

/// What the field held while the Message-Authenticator was computed: that of an earlier round, for
/// a packet that was signed more than once, or the authenticator.
Finding notZeroedFinding(const FailingPacket& packet) {
  constexpr int maxRounds = 8;
  const ByteView cover =
      messageAuthenticatorCover(packet.packet().bytes, packet.signing().requestAuthenticator);
  if (packet.messageAuthenticatorIs(messageAuthenticatorCovering(packet, cover, cover))) {
    return "The Message-Authenticator was computed while its field held the Request Authenticator: "
           "the field must be zeroed first.";
  }
  std::optional<PacketDigest> field = messageAuthenticatorCovering(packet, cover);
  for (int round = 1; field.has_value() && round <= maxRounds; ++round) {
    field = messageAuthenticatorCovering(packet, cover, *field);
    if (packet.messageAuthenticatorIs(field)) {
      return "The Message-Authenticator was computed anew while its field held an earlier one: the "
             "field must be zeroed each time.";
    }
  }
  return std::nullopt;
}

}  // namespace

std::span<const Hypothesis> computationHypotheses() {
  static constexpr auto hypotheses = std::to_array<Hypothesis>({
      {"an authenticator computed before the Message-Authenticator", hasBothDigests,
       orderOfDigestsFinding},
      {"a Message-Authenticator computed without being zeroed", failsInMessageAuthenticatorAlone,
       notZeroedFinding},
  });
  return hypotheses;
}

}  // namespace RadiusPacketTool
