#pragma once

#include <optional>
#include <string>

#include "tests/support/Digests.h"

namespace TestSupport {

/// The secret of packets that name no other.
inline const std::string testSecret = "a shared secret of the tests";

/// The Request Authenticator of responses that name no other.
inline const ByteVector testReqAuth = countingBytes(16, 0xa0);

/// Type, Length and value.
ByteVector attributeBytes(Verda::U8 type, const ByteVector& value);

/// A Vendor-Specific attribute of one sub-attribute.
ByteVector vendorBytes(Verda::U32 vendorId, Verda::U8 vendorType, const ByteVector& value);

/// Makes packets of any code and content, and signs them as their code asks for, with digests of
/// its own.
class PacketMaker {
 public:
  explicit PacketMaker(Verda::U8 code) : code_(code) {}

  PacketMaker& secretIs(const std::string& secret);
  /// The authenticator of the request that a response answers; empty: the packet is signed as if
  /// that were zeros.
  PacketMaker& reqAuthIs(const ByteVector& reqAuth);
  /// What stands in the authenticator of a packet that is not signed there (codes 1 and 12).
  PacketMaker& ownAuthenticatorIs(const ByteVector& authenticator);

  PacketMaker& add(Verda::U8 type, const ByteVector& value);
  PacketMaker& addVendor(Verda::U32 vendorId, Verda::U8 vendorType, const ByteVector& value);
  /// Bytes of attributes, framed or not.
  PacketMaker& addRaw(const ByteVector& bytes);
  /// A Message-Authenticator, the right one unless `wrong`.
  PacketMaker& addMessageAuthenticator(bool wrong = false);

  /// Where the last Message-Authenticator stands in the packet.
  std::size_t messageAuthenticatorOffset() const { return messageAuthenticatorAt_.value(); }

  ByteVector make() const;

 private:
  bool isPlainRequest() const { return code_ == 1 || code_ == 12; }
  void sign(ByteVector& packet) const;

  Verda::U8 code_;
  std::string secret_ = testSecret;
  std::optional<ByteVector> reqAuth_;
  ByteVector ownAuthenticator_ = countingBytes(16, 0x30);
  ByteVector attributes_;
  std::optional<std::size_t> messageAuthenticatorAt_;
  bool messageAuthenticatorWrong_ = false;
};

/// The Request Authenticator that a caller gives for a packet of that code: none for requests.
ByteVector reqAuthFor(Verda::U8 code);

}  // namespace TestSupport
