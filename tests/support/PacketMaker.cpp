#include "tests/support/PacketMaker.h"

#include <algorithm>
#include <stdexcept>

namespace TestSupport {

using Verda::U32;
using Verda::U8;

namespace {

constexpr std::size_t authenticatorAt = 4;
constexpr std::size_t authenticatorLength = 16;
constexpr std::size_t headerLength = 20;
constexpr U8 messageAuthenticator = 80;
constexpr U8 vendorSpecific = 26;

U8 byteOf(std::size_t number) {
  if (number > 255) {
    throw std::length_error("more than one byte holds");
  }
  return static_cast<U8>(number);
}

void put(ByteVector& packet, std::size_t at, const ByteVector& bytes) {
  std::ranges::copy(bytes, packet.begin() + static_cast<std::ptrdiff_t>(at));
}

}  // namespace

ByteVector attributeBytes(U8 type, const ByteVector& value) {
  return joined({ByteVector{type, byteOf(value.size() + 2)}, value});
}

ByteVector vendorBytes(U32 vendorId, U8 vendorType, const ByteVector& value) {
  const ByteVector id{static_cast<U8>(vendorId >> 24U), static_cast<U8>(vendorId >> 16U),
                      static_cast<U8>(vendorId >> 8U), static_cast<U8>(vendorId)};
  return attributeBytes(vendorSpecific, joined({id, attributeBytes(vendorType, value)}));
}

PacketMaker& PacketMaker::secretIs(const std::string& secret) {
  secret_ = secret;
  return *this;
}

PacketMaker& PacketMaker::reqAuthIs(const ByteVector& reqAuth) {
  reqAuth_ = reqAuth;
  return *this;
}

PacketMaker& PacketMaker::ownAuthenticatorIs(const ByteVector& authenticator) {
  ownAuthenticator_ = authenticator;
  return *this;
}

PacketMaker& PacketMaker::add(U8 type, const ByteVector& value) {
  return addRaw(attributeBytes(type, value));
}

PacketMaker& PacketMaker::addVendor(U32 vendorId, U8 vendorType, const ByteVector& value) {
  return addRaw(vendorBytes(vendorId, vendorType, value));
}

PacketMaker& PacketMaker::addRaw(const ByteVector& bytes) {
  attributes_ = joined({attributes_, bytes});
  return *this;
}

PacketMaker& PacketMaker::addMessageAuthenticator(bool wrong) {
  messageAuthenticatorAt_ = headerLength + attributes_.size();
  messageAuthenticatorWrong_ = wrong;
  return add(messageAuthenticator, ByteVector(authenticatorLength));
}

ByteVector PacketMaker::make() const {
  const std::size_t length = headerLength + attributes_.size();
  ByteVector packet = joined({ByteVector{code_, 7, byteOf(length / 256), byteOf(length % 256)},
                              ByteVector(authenticatorLength), attributes_});
  sign(packet);
  return packet;
}

void PacketMaker::sign(ByteVector& packet) const {
  // A secret counts up to its first zero byte.
  const ByteVector secret = bytesOf(secret_.substr(0, secret_.find('\0')));
  ByteVector covered = isPlainRequest() ? ownAuthenticator_ : reqAuth_.value_or(reqAuthFor(code_));
  covered.resize(authenticatorLength);
  put(packet, authenticatorAt, covered);
  if (messageAuthenticatorAt_.has_value()) {
    ByteVector digest = hmacMd5(secret, packet);
    digest.back() ^= static_cast<U8>(messageAuthenticatorWrong_ ? 1 : 0);
    put(packet, *messageAuthenticatorAt_ + 2, digest);
  }
  if (!isPlainRequest()) {
    put(packet, authenticatorAt, md5(joined({packet, secret})));
  }
}

ByteVector reqAuthFor(U8 code) {
  constexpr U8 requests[] = {1, 4, 12, 40, 43};
  return std::ranges::find(requests, code) != std::end(requests) ? ByteVector() : testReqAuth;
}

}  // namespace TestSupport
