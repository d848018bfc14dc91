#include <algorithm>
#include <functional>

#include "ZoCrypto/Cleanse.h"
#include "ZoCrypto/HmacMd5.h"
#include "ZoCrypto/MessageDigest.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.detail.h"

namespace RadiusPktParserBase::detail {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using Verda::String;
using Verda::U32;
using Verda::U8;

ByteView secretBytes(const String& secret) {
  return secret.bytes().first(secret.viewToNul().size());
}

U32 md5(std::initializer_list<ByteView> parts, U8* digest) {
  ZoCrypto::MdContext context;
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  for (const ByteView part : parts) {
    ZoCrypto::md_update(context, part.data(), part.size());
  }
  U32 digestLength = 0;
  ZoCrypto::md_final(context, digest, &digestLength);
  // A failed digest has nothing to release.
  if (digestLength == PacketConstants::authLength()) {
    ZoCrypto::md_cleanup(context);
  }
  return digestLength;
}

U32 packetDigest(ByteView packet, ByteView authenticator, const String& secret, U8* digest) {
  return md5({packet.first(PacketConstants::authenticatorOffset()), authenticator,
              packet.subspan(PacketConstants::headerLength()), secretBytes(secret)},
             digest);
}

U32 messageAuthenticator(const String& secret, ByteView packet, U8* value, U8* savedValue,
                         U8* digest) {
  constexpr U32 length = AttributeConstants::msgAuthLength();
  if (value != nullptr) {
    if (savedValue != nullptr) {
      std::copy_n(value, length, savedValue);
    }
    std::fill_n(value, length, U8{0});
  }
  U32 digestLength = 0;
  const bool computed = ZoCrypto::hmacMd5(secretBytes(secret), packet,
                                          std::span<U8, length>(digest, length), digestLength);
  return computed ? digestLength : 0;
}

std::optional<HiddenParts> hiddenPartsOf(std::span<U8> value, U8 encryptionType, bool isTagged) {
  const std::size_t tagLength = isTagged ? 1 : 0;
  const std::size_t saltLength =
      encryptionType == saltedMethod ? AttributeConstants::saltLength() : 0;
  if (value.size() < tagLength + saltLength) {
    return std::nullopt;
  }
  return HiddenParts{.salt = value.subspan(tagLength, saltLength),
                     .data = value.subspan(tagLength + saltLength)};
}

U32 applyKeystream(const HiddenParts& parts, ByteView authenticator, const String& secret,
                   bool encrypt) {
  const ByteView sharedSecret = secretBytes(secret);
  Digest keystream;
  const ZoCrypto::CleanseOnExit cleanKeystream(keystream);
  U32 digestLength = md5({sharedSecret, authenticator, parts.salt}, keystream.data());
  std::span<U8> rest = parts.data;
  while (digestLength == keystream.size() && !rest.empty()) {
    const std::span<U8> block =
        rest.first(std::min<std::size_t>(rest.size(), AttributeConstants::passwdWordSize()));
    Digest hidden{};  // a short last block counts as filled up with zeros
    if (!encrypt) {
      std::ranges::copy(block, hidden.begin());
    }
    std::ranges::transform(block, keystream, block.begin(), std::bit_xor<>());
    if (encrypt) {
      std::ranges::copy(block, hidden.begin());
    }
    rest = rest.subspan(block.size());
    if (!rest.empty()) {
      digestLength = md5({sharedSecret, hidden}, keystream.data());
    }
  }
  return digestLength;
}

ByteView padPassword(ByteView text, PaddedPassword& padded) {
  constexpr std::size_t block = AttributeConstants::passwdWordSize();
  padded.fill(0);
  const std::size_t length = std::min(text.size(), padded.size());
  std::ranges::copy(text.first(length), padded.begin());
  return ByteView(padded).first((length + block - 1) / block * block);
}

}  // namespace RadiusPktParserBase::detail
