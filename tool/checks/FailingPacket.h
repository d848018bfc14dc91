#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "Verda/Types.h"

#include "tool/checks/Diagnosis.h"
#include "tool/checks/PacketDigests.h"
#include "tool/decoding/Exchanges.h"
#include "tool/input/InputPacket.h"

namespace RadiusPacketTool {

/// A packet as its signer may have had it: its bytes, and where its Message-Authenticator stands.
struct SignedBytes {
  std::vector<Verda::U8> bytes;
  std::optional<std::size_t> messageAuthenticatorAt;
};

/// What the digests of a packet were computed with, as far as it is known.
struct SigningInput {
  ByteView secret;
  ByteView requestAuthenticator;  ///< empty for requests, and when it is not known
};

/// A packet whose authenticator, Message-Authenticator or both fail, with all that is known of it.
/// Views what it is made of, which must outlive it.
class FailingPacket {
 public:
  /// Nothing when both digests are right, as far as the packet has them, and of a packet whose
  /// bytes are none.
  static std::optional<FailingPacket> of(const InputPacket& packet, const PacketContext& context,
                                         std::span<const NamedSecret> secrets,
                                         const EarlierRequests& requests);

  /// The packet up to what its Length says, or as much of that as there is.
  const SignedBytes& packet() const { return packet_; }
  /// All bytes there are, padding too.
  ByteView buffer() const { return buffer_; }
  Verda::U8 code() const;
  bool isResponse() const;
  /// Whether the Request Authenticator is known, if it is a response.
  bool hasRequestAuthenticator() const {
    return !isResponse() || !signing_.requestAuthenticator.empty();
  }
  bool hasSecret() const { return context_.secret != nullptr; }
  /// Whether all is known that goes into the digests.
  bool isInputKnown() const { return hasSecret() && hasRequestAuthenticator(); }

  bool authenticatorFails() const { return authenticatorFails_; }
  bool messageAuthenticatorFails() const { return messageAuthenticatorFails_; }

  const PacketContext& context() const { return context_; }
  const SigningInput& signing() const { return signing_; }
  std::span<const NamedSecret> secrets() const { return secrets_; }
  const EarlierRequests& requests() const { return requests_; }

  /// Whether all that fails comes out right when the signer had these bytes and this input.
  bool comesRight(const SignedBytes& bytes, const SigningInput& signing) const;
  bool comesRight(const SignedBytes& bytes) const { return comesRight(bytes, signing_); }
  bool comesRight(const SigningInput& signing) const { return comesRight(packet_, signing); }

  /// Whether the packet's authenticator is that digest.
  bool authenticatorIs(const std::optional<PacketDigest>& computed) const;
  /// Whether its Message-Authenticator, which it has, is that digest.
  bool messageAuthenticatorIs(const std::optional<PacketDigest>& computed) const;

 private:
  FailingPacket(const InputPacket& packet, const PacketContext& context,
                std::span<const NamedSecret> secrets, const EarlierRequests& requests);

  const PacketContext& context_;
  std::span<const NamedSecret> secrets_;
  const EarlierRequests& requests_;
  ByteView buffer_;
  SignedBytes packet_;
  SigningInput signing_;
  bool authenticatorFails_ = false;
  bool messageAuthenticatorFails_ = false;
};

}  // namespace RadiusPacketTool
