#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "tool/checks/Hypothesis.h"

namespace RadiusPacketTool {
namespace {

using Finding = std::optional<std::string>;

/// Whether an authenticator other than zeros belongs in the place of the packet's own.
bool isCoveredByAnAuthenticator(const FailingPacket& packet) {
  return packet.hasSecret() && (packet.isResponse() || hasRandomAuthenticator(packet.code()));
}

bool isSignedOverZeros(const FailingPacket& packet) {
  const SigningInput& signing = packet.signing();
  if (packet.isResponse()) {
    return packet.comesRight({.secret = signing.secret, .requestAuthenticator = zeroAuthenticator});
  }
  return packet.messageAuthenticatorIs(
      computedMessageAuthenticator(packet.packet().bytes, *packet.packet().messageAuthenticatorAt,
                                   zeroAuthenticator, signing.secret));
}

Finding zerosFinding(const FailingPacket& packet) {
  if (!isSignedOverZeros(packet)) {
    return std::nullopt;
  }
  return packet.isResponse()
             ? "The signer put zeros in the place of the Request Authenticator: the authenticator "
               "of "
               "the request that it answers belongs there."
             : "The Message-Authenticator was computed with zeros in the place of the packet's "
               "authenticator: that belongs there as it stands.";
}

bool hasOtherRequests(const FailingPacket& packet) {
  return packet.hasSecret() && packet.isResponse() && !packet.requests().recent().empty();
}

/// What the answered request is other than.
std::string expectedRequest(const FailingPacket& packet) {
  const RequestAuthenticator& request = packet.context().request;
  if (request.pairedWith.has_value()) {
    return fmt::format("not {}, with which it is paired", placeText(*request.pairedWith));
  }
  return request.bytes.empty() ? "with which it is not paired"
                               : "not the request whose authenticator is given";
}

Finding otherRequestFinding(const FailingPacket& packet) {
  const auto& recent = packet.requests().recent();
  const auto answered =
      std::find_if(recent.rbegin(), recent.rend(), [&](const EarlierRequest& request) {
        return packet.comesRight({.secret = packet.signing().secret,
                                  .requestAuthenticator = request.authenticator.span()});
      });
  if (answered == recent.rend()) {
    return std::nullopt;
  }
  return fmt::format("The packet answers {}, {}: give that one's authenticator with -a.",
                     placeText(answered->place), expectedRequest(packet));
}

}  // namespace

std::span<const Hypothesis> requestHypotheses() {
  static constexpr auto hypotheses = std::to_array<Hypothesis>({
      {"zeros in the place of the Request Authenticator", isCoveredByAnAuthenticator, zerosFinding},
      {"the authenticator of another request", hasOtherRequests, otherRequestFinding},
  });
  return hypotheses;
}

}  // namespace RadiusPacketTool
