#include "tool/checks/PacketDigests.h"

#include <algorithm>
#include <vector>

#include "ZoCrypto/Cleanse.h"
#include "ZoCrypto/HmacMd5.h"
#include "ZoCrypto/MessageDigest.h"

#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusCode;
using Verda::U32;
using Verda::U8;

namespace {

/// Writes `bytes` over those of a packet from `offset` on.
void put(std::vector<U8>& packet, std::size_t offset, ByteView bytes) {
  std::ranges::copy(bytes, packet.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace

ByteView authenticatorOf(ByteView packet) {
  return packet.subspan(PacketConstants::authenticatorOffset(), PacketConstants::authLength());
}

ByteView authenticatorCover(U8 code, ByteView requestAuthenticator) {
  return RadiusPktParserBase::isRequest(code) ? ByteView(zeroAuthenticator) : requestAuthenticator;
}

ByteView messageAuthenticatorCover(ByteView packet, ByteView requestAuthenticator) {
  const U8 code = packet[PacketConstants::codeOffset()];
  return hasRandomAuthenticator(code) ? authenticatorOf(packet)
                                      : authenticatorCover(code, requestAuthenticator);
}

bool knowsMessageAuthenticatorOf(U8 code) {
  switch (code) {
    case RadiusCode::ACCESS_ACCEPT:
    case RadiusCode::ACCESS_REJECT:
    case RadiusCode::ACCESS_CHALLENGE:
    case RadiusCode::ACCOUNTING_RESPONSE:
    case RadiusCode::DISCONNECT_ACK:
    case RadiusCode::DISCONNECT_NAK:
    case RadiusCode::COA_ACK:
    case RadiusCode::COA_NAK:
      return true;
    default:
      return RadiusPktParserBase::isRequest(code);
  }
}

std::optional<PacketDigest> computedAuthenticator(ByteView packet, ByteView cover,
                                                  ByteView secret) {
  if (cover.size() != PacketConstants::authLength()) {
    return std::nullopt;
  }
  ZoCrypto::MdContext context;
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  for (const ByteView part : {packet.first(PacketConstants::authenticatorOffset()), cover,
                              packet.subspan(PacketConstants::headerLength()), secret}) {
    ZoCrypto::md_update(context, part.data(), part.size());
  }
  PacketDigest digest{};
  U32 length = 0;
  ZoCrypto::md_final(context, digest.data(), &length);
  // A failed digest has nothing to release.
  if (length != digest.size()) {
    return std::nullopt;
  }
  ZoCrypto::md_cleanup(context);
  return digest;
}

std::optional<PacketDigest> computedMessageAuthenticator(ByteView packet, std::size_t at,
                                                         ByteView cover, ByteView secret,
                                                         ByteView field) {
  if (at + AttributeConstants::valueOffset() + field.size() > packet.size()) {
    return std::nullopt;
  }
  std::vector<U8> covered(packet.begin(), packet.end());
  put(covered, at + AttributeConstants::valueOffset(), field);
  return computedMessageAuthenticator(covered, cover, secret);
}

std::optional<PacketDigest> computedMessageAuthenticator(ByteView packet, ByteView cover,
                                                         ByteView secret) {
  if (cover.size() != PacketConstants::authLength()) {
    return std::nullopt;
  }
  std::vector<U8> covered(packet.begin(), packet.end());
  put(covered, PacketConstants::authenticatorOffset(), cover);
  PacketDigest digest{};
  U32 length = 0;
  const bool isComputed = ZoCrypto::hmacMd5(secret, covered, digest, length);
  return isComputed ? std::optional(digest) : std::nullopt;
}

ByteView messageAuthenticatorIn(ByteView packet, std::size_t at) {
  return packet.subspan(at + AttributeConstants::valueOffset(),
                        AttributeConstants::msgAuthLength());
}

bool sameDigest(const std::optional<PacketDigest>& computed, ByteView received) {
  return computed.has_value() && ZoCrypto::equalInConstantTime(*computed, received);
}

}  // namespace RadiusPacketTool
