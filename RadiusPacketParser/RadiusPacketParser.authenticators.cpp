#include "RadiusPacketParser/RadiusPacketParser.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>

#include "Verda/Assert.h"
#include "Verda/Trace.h"
#include "ZoCrypto/Cleanse.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.detail.h"

namespace RadiusPacketParser {

namespace Shared = RadiusPktParserBase::detail;

using detail::AttributeWalk;
using detail::ByteView;
using detail::legacyTrace;
using detail::parserClass;
using detail::TrustedPacket;
using detail::wholeAuthenticator;
using Shared::Digest;
using Shared::MsgAuthCover;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U32;
using Verda::U8;

namespace {

void assertDigest(U32 digestLength) {
  VERDA_ASSERT_TEXT(digestLength == PacketConstants::authLength(),
                    "digestLen == PacketConstants::authLength()");
}

void assertRequest(const Bytes& reqAuth) {
  VERDA_ASSERT_TEXT(reqAuth.empty(), "reqAuth.empty()");
}

void assertResponse(const Bytes& reqAuth) {
  VERDA_ASSERT_TEXT(reqAuth, "reqAuth");
}

/// What a digest covers in the place of the packet's authenticator: zeros for a request, else the
/// request's.
ByteView coveredAuthenticator(const Bytes& reqAuth) {
  return reqAuth.empty() ? ByteView(Shared::zeroAuthenticator) : wholeAuthenticator(reqAuth.span());
}

std::span<U8> authenticatorOf(std::span<U8> packet) {
  return packet.subspan(PacketConstants::authenticatorOffset(), PacketConstants::authLength());
}

/// The packet's first Message-Authenticator with its whole value, or null.
U8* messageAuthenticatorIn(TrustedPacket& packet) {
  for (AttributeWalk walk(packet); walk.atAttribute();) {
    if (walk.type() == RadiusAttributeId::MESSAGE_AUTHENTICATOR) {
      return walk.attribute(AttributeConstants::valueOffset() +
                            std::size_t{AttributeConstants::msgAuthLength()});
    }
    if (!walk.advance()) {
      break;
    }
  }
  return nullptr;
}

/// The HMAC over a packet with the value of the Message-Authenticator at `attr` (or null) zeroed;
/// the value is put back when it is saved.
void signPacket(const String& secret, ByteView packet, U8* attr, U8* savedValue, U8* hmac) {
  U8* const value = attr == nullptr ? nullptr : attr + AttributeConstants::valueOffset();
  const U32 length = Shared::messageAuthenticator(secret, packet, value, savedValue, hmac);
  VERDA_ASSERT_TEXT(length == AttributeConstants::msgAuthLength(),
                    "md5Ptr && len == AttributeConstants::msgAuthLength()");
  if (value != nullptr && savedValue != nullptr) {
    std::copy_n(savedValue, AttributeConstants::msgAuthLength(), value);
  }
}

/// Hides or reveals the value behind a length byte, of a type that may say anything.
void transformUnit(U8* lengthByte, ByteView authenticator, const String& secret, bool hasTag,
                   bool encrypt, U8 encryptionType) {
  if (*lengthByte < AttributeConstants::valueOffset()) {
    return;
  }
  const std::size_t length = std::size_t{*lengthByte} - AttributeConstants::valueOffset();
  const auto parts = Shared::hiddenPartsOf({lengthByte + 1, length}, encryptionType, hasTag);
  if (parts && !parts->data.empty()) {
    assertDigest(
        Shared::applyKeystream(*parts, wholeAuthenticator(authenticator), secret, encrypt));
  }
}

/// The dictionary's entry for an attribute; what it lacks is traced.
const RadiusNode* entryToHide(const RadiusDict& dictionary, const Attribute& key) {
  const RadiusNode* entry = detail::entryOf(dictionary, key);
  if (entry != nullptr) {
    return entry;
  }
  static constexpr const char* function = "cryptoHelper";
  if (key.attrId != RadiusAttributeId::VENDOR_SPECIFIC) {
    VERDA_TRACE_AS(legacyTrace, Verda::traceErrors, "", function,
                   "Missing attribute: {} from radius dictionary", key.attrId);
  } else if (!dictionary.vendorAttributeHas(key.vendorId)) {
    VERDA_TRACE_AS(legacyTrace, Verda::traceErrors, "", function,
                   "Dictionary for vendor ID: {} not present", key.vendorId);
  } else {
    VERDA_TRACE_AS(legacyTrace, Verda::traceErrors, "", function,
                   "Missing attribute: {} from dictionary for vendor ID: {}", key.vendorAttrId,
                   key.vendorId);
  }
  return nullptr;
}

bool isHidden(const RadiusNode& entry) {
  return entry.attributeEncryptionType() == RadiusPktParserBase::userPasswordMethod ||
         entry.attributeEncryptionType() == RadiusPktParserBase::saltedMethod;
}

}  // namespace

void md5Calculator(U8* data, U32 len, U8* out) {
  assertDigest(Shared::md5({ByteView(data, len)}, out));
}

void calculateMsgAuthenticator(const String& secret, const Ptr<const RadiusDict>& /*dictionary*/,
                               U8* savedValue, U8* hmacOut, U8** cursor, U32 length) {
  const ByteView packet(*cursor, length);
  U8* attr = nullptr;
  std::size_t offset = PacketConstants::headerLength();
  while (offset < length && attr == nullptr) {
    U8* const at = *cursor + offset;
    const U8 step = offset + 1 < length ? at[AttributeConstants::lengthOffset()] : U8{0};
    if (at[AttributeConstants::typeOffset()] == RadiusAttributeId::MESSAGE_AUTHENTICATOR) {
      attr = at;
    } else if (step == 0) {
      break;
    } else {
      offset += step;
    }
  }
  *cursor += offset;
  signPacket(secret, packet, attr, savedValue, hmacOut);
}

void encryptHelper(const String& secret, U8* lengthByte, const Bytes& authenticator, bool hasTag,
                   bool encrypt, U8 encryptionType) {
  transformUnit(lengthByte, authenticator.span(), secret, hasTag, encrypt, encryptionType);
}

void cryptoHelper(const Ptr<const Zonet::Pkt>& pkt, const Ptr<const RadiusHdr>& header,
                  const String& secret, const Bytes& reqAuth,
                  const Ptr<const RadiusDict>& dictionary, bool encrypt) {
  VERDA_ASSERT(header && dictionary);
  const bool isRequest = RadiusPktParserBase::isRequest(header->code());
  if (isRequest) {
    assertRequest(reqAuth);
  } else {
    assertResponse(reqAuth);
  }
  const ByteView authenticator = isRequest ? header->authenticator().bytes() : reqAuth.span();
  TrustedPacket packet(pkt, header->length());
  for (AttributeWalk walk(packet); walk.atAttribute();) {
    const RadiusNode* entry = entryToHide(*dictionary, walk.key());
    if (entry != nullptr && isHidden(*entry)) {
      U8* const lengthByte =
          walk.attribute() + detail::unitOffset(walk.isVsa()) + AttributeConstants::lengthOffset();
      transformUnit(lengthByte, authenticator, secret, entry->hasTag(), encrypt,
                    entry->attributeEncryptionType());
    }
    if (!walk.advance()) {
      detail::traceZeroLength("", __func__);
      return;
    }
  }
}

void RadiusPacketParserBase::encryptPacket(const String& secret, const Bytes& reqAuth) {
  cryptoHelper(pkt(), header_, secret, reqAuth, dictionary(), true);
}

void RadiusPacketParserBase::decryptPacket(const String& secret, const Bytes& reqAuth) {
  cryptoHelper(pkt(), header_, secret, reqAuth, dictionary(), false);
}

bool RadiusPacketParserBase::validateAuthenticator(const String& secret, const Bytes& reqAuth) {
  if (Shared::hasRandomAuthenticator(knownHeader().code())) {
    return true;
  }
  Digest digest;
  assertDigest(Shared::packetDigest(TrustedPacket(pkt(), knownHeader().length()).bytes(),
                                    coveredAuthenticator(reqAuth), secret, digest.data()));
  const ByteView received = knownHeader().authenticator().bytes();
  return received.size() >= digest.size() &&
         ZoCrypto::equalInConstantTime(digest, received.first(digest.size()));
}

bool RadiusPacketParserBase::validateMessageAuthenticator(const String& secret,
                                                          const Bytes& reqAuth) {
  if (!msgAuthPresent()) {
    return true;
  }
  const MsgAuthCover cover = Shared::msgAuthCoverOf(knownHeader().code());
  switch (cover) {
    case MsgAuthCover::nothing:
      return true;
    case MsgAuthCover::requestAuthenticator:
      assertResponse(reqAuth);
      break;
    case MsgAuthCover::asItStands:
    case MsgAuthCover::zeros:
      assertRequest(reqAuth);
      break;
    case MsgAuthCover::unsupported:
      return false;
  }
  const ByteView covered = coveredAuthenticator(reqAuth);
  TrustedPacket packet(pkt(), knownHeader().length());
  U8* const attr = messageAuthenticatorIn(packet);
  if (attr == nullptr) {
    return false;
  }
  Digest received;
  Digest computed;
  if (cover == MsgAuthCover::asItStands) {
    signPacket(secret, packet.bytes(), attr, received.data(), computed.data());
  } else {
    const ByteView own = wholeAuthenticator(knownHeader().authenticator().bytes());
    const std::span<U8> authenticator = authenticatorOf(packet.bytes());
    std::ranges::copy(covered, authenticator.begin());
    signPacket(secret, packet.bytes(), attr, received.data(), computed.data());
    std::ranges::copy(own, authenticator.begin());
  }
  return ZoCrypto::equalInConstantTime(computed, received);
}

void RadiusPacketParserBase::setPacketIdentifier(U8 id) {
  TrustedPacket(pkt(), knownHeader().length()).bytes()[PacketConstants::idOffset()] = id;
}

void RadiusPacketParserBase::setRequestAuthenticator(const String& secret) {
  const std::span<U8> packet = TrustedPacket(pkt(), knownHeader().length()).bytes();
  const std::span<U8> authenticator = authenticatorOf(packet);
  if (Shared::hasRandomAuthenticator(knownHeader().code())) {
    // NOLINTBEGIN(cert-msc*,concurrency-mt-unsafe): on purpose, as callers know
    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    std::ranges::generate(authenticator, [] { return static_cast<U8>(std::rand()); });
    // NOLINTEND(cert-msc*,concurrency-mt-unsafe)
    return;
  }
  Digest digest;
  assertDigest(Shared::packetDigest(packet, Shared::zeroAuthenticator, secret, digest.data()));
  std::ranges::copy(digest, authenticator.begin());
}

void RadiusPacketParserBase::setResponseAuthenticator(const String& secret, const Bytes& reqAuth) {
  assertResponse(reqAuth);
  const std::span<U8> packet = TrustedPacket(pkt(), knownHeader().length()).bytes();
  Digest digest;
  assertDigest(
      Shared::packetDigest(packet, wholeAuthenticator(reqAuth.span()), secret, digest.data()));
  std::ranges::copy(digest, authenticatorOf(packet).begin());
}

void RadiusPacketParserBase::setMessageAuthenticator(const String& secret, const Bytes& reqAuth) {
  const bool isRandom = Shared::hasRandomAuthenticator(knownHeader().code());
  if (isRandom) {
    assertRequest(reqAuth);
  }
  const ByteView covered = coveredAuthenticator(reqAuth);
  TrustedPacket packet(pkt(), knownHeader().length());
  U8* const attr = messageAuthenticatorIn(packet);
  if (attr == nullptr) {
    VERDA_TRACE(legacyTrace, Verda::traceErrors, parserClass,
                "Packet doesn't have message authenticator");
    return;
  }
  if (!isRandom) {
    std::ranges::copy(covered, authenticatorOf(packet.bytes()).begin());
  }
  Digest hmac;
  signPacket(secret, packet.bytes(), attr, nullptr, hmac.data());
  std::ranges::copy(hmac, attr + AttributeConstants::valueOffset());
}

}  // namespace RadiusPacketParser
