#include "tool/checks/FailingPacket.h"

#include <algorithm>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/checks/AttributePlaces.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U8;

namespace {

/// As much of a secret as counts.
ByteView bytesOf(const Secret* secret) {
  return secret == nullptr ? ByteView()
                           : secret->text().bytes().first(secret->text().viewToNul().size());
}

std::optional<PacketDigest> authenticatorFrom(ByteView packet, const SigningInput& signing) {
  const U8 code = packet[PacketConstants::codeOffset()];
  return computedAuthenticator(packet, authenticatorCover(code, signing.requestAuthenticator),
                               signing.secret);
}

/// That of a packet that has the attribute.
std::optional<PacketDigest> messageAuthenticatorFrom(const SignedBytes& packet,
                                                     const SigningInput& signing) {
  return computedMessageAuthenticator(
      packet.bytes, *packet.messageAuthenticatorAt,
      messageAuthenticatorCover(packet.bytes, signing.requestAuthenticator), signing.secret);
}

}  // namespace

std::optional<FailingPacket> FailingPacket::of(const InputPacket& packet,
                                               const PacketContext& context,
                                               std::span<const NamedSecret> secrets,
                                               const EarlierRequests& requests) {
  if (packet.bytes.size() < PacketConstants::headerLength() ||
      *context.header.length < PacketConstants::headerLength()) {
    return std::nullopt;
  }
  FailingPacket failing(packet, context, secrets, requests);
  const bool fails = failing.authenticatorFails_ || failing.messageAuthenticatorFails_;
  return fails ? std::optional(std::move(failing)) : std::nullopt;
}

FailingPacket::FailingPacket(const InputPacket& packet, const PacketContext& context,
                             std::span<const NamedSecret> secrets, const EarlierRequests& requests)
    : context_(context), secrets_(secrets), requests_(requests), buffer_(packet.bytes) {
  const ByteView bytes =
      buffer_.first(std::min<std::size_t>(buffer_.size(), *context.header.length));
  packet_ = {.bytes = {bytes.begin(), bytes.end()},
             .messageAuthenticatorAt = messageAuthenticatorAt(bytes)};
  signing_.secret = bytesOf(context.secret);
  if (isResponse()) {
    signing_.requestAuthenticator = context.request.bytes.span();
  }
  const bool isUnknown = context.secret == nullptr;
  authenticatorFails_ = !hasRandomAuthenticator(code()) &&
                        (isUnknown || !authenticatorIs(authenticatorFrom(bytes, signing_)));
  messageAuthenticatorFails_ =
      packet_.messageAuthenticatorAt.has_value() && knowsMessageAuthenticatorOf(code()) &&
      (isUnknown || !messageAuthenticatorIs(messageAuthenticatorFrom(packet_, signing_)));
}

U8 FailingPacket::code() const {
  return *context_.header.code;
}

bool FailingPacket::isResponse() const {
  return !RadiusPktParserBase::isRequest(code());
}

bool FailingPacket::comesRight(const SignedBytes& bytes, const SigningInput& signing) const {
  if (authenticatorFails_ && !authenticatorIs(authenticatorFrom(bytes.bytes, signing))) {
    return false;
  }
  return !messageAuthenticatorFails_ ||
         messageAuthenticatorIs(messageAuthenticatorFrom(bytes, signing));
}

bool FailingPacket::authenticatorIs(const std::optional<PacketDigest>& computed) const {
  return sameDigest(computed, authenticatorOf(packet_.bytes));
}

bool FailingPacket::messageAuthenticatorIs(const std::optional<PacketDigest>& computed) const {
  return sameDigest(computed,
                    messageAuthenticatorIn(packet_.bytes, *packet_.messageAuthenticatorAt));
}

}  // namespace RadiusPacketTool
