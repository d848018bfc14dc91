#include "bench/Floor.h"

#include <array>
#include <initializer_list>

#include <benchmark/benchmark.h>

#include "ZoCrypto/HmacMd5.h"
#include "ZoCrypto/MessageDigest.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace Bench {
namespace {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using RadiusPacketParser::VsaConstants;
using RadiusPktParserBase::AttributeCursor;
using Verda::U32;
using Verda::U8;
using ByteView = std::span<const U8>;
using Digest = std::array<U8, ZoCrypto::md5DigestLength>;

constexpr Digest zeroAuthenticator{};

ByteView secretBytes() {
  return {reinterpret_cast<const U8*>(secret.data()), secret.size()};
}

void md5Of(std::initializer_list<ByteView> parts) {
  ZoCrypto::MdContext context;
  ZoCrypto::md_init(context, ZoCrypto::md_find("md5"));
  for (const ByteView part : parts) {
    ZoCrypto::md_update(context, part.data(), part.size());
  }
  Digest digest;
  U32 length = 0;
  ZoCrypto::md_final(context, digest.data(), &length);
  ZoCrypto::md_cleanup(context);
  benchmark::DoNotOptimize(digest);
}

}  // namespace

Floor::Floor(const BenchPacket& packet,
             const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary, Hidden hidden)
    : bytes_(packet.bytes) {
  const U8 code = bytes_[PacketConstants::codeOffset()];
  const bool isAccounting = code == RadiusCode::ACCOUNTING_REQUEST;
  hasPacketDigest_ = code != RadiusCode::ACCESS_REQUEST;
  authenticator_ = isAccounting ? ByteView(zeroAuthenticator) : packet.reqAuth.span();
  if (!hasPacketDigest_) {
    authenticator_ =
        bytes_.subspan(PacketConstants::authenticatorOffset(), PacketConstants::authLength());
  }
  AttributeCursor cursor(bytes_.subspan(PacketConstants::headerLength()));
  while (cursor.next() == AttributeCursor::Step::attribute) {
    if (cursor.type() == RadiusAttributeId::MESSAGE_AUTHENTICATOR) {
      hasMessageAuthenticator_ = !isAccounting;
    }
    if (hidden == Hidden::handled) {
      addKeystream(cursor.bytes(), dictionary);
    }
  }
}

void Floor::addKeystream(ByteView attribute,
                         const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary) {
  RadiusPktParserBase::Attribute key =
      RadiusPktParserBase::standardAttribute(attribute[AttributeConstants::typeOffset()]);
  if (key.attrId == RadiusAttributeId::VENDOR_SPECIFIC) {
    U32 vendorId = 0;
    for (const U8 byte : attribute.subspan(VsaConstants::vendorIdOffset(), sizeof(vendorId))) {
      vendorId = vendorId << 8U | byte;
    }
    attribute = attribute.subspan(VsaConstants::vendorTypeOffset());
    key = RadiusPktParserBase::vendorAttribute(vendorId, attribute[0]);
  }
  const RadiusPktParserBase::AttrInfo info = getAttrInfo(key, dictionary);
  if (!isHidden(info)) {
    return;
  }
  ByteView value = attribute.subspan(AttributeConstants::valueOffset() + (info.isTagged ? 1U : 0U));
  const U32 saltLength = info.encryptionType == RadiusPktParserBase::saltedMethod
                             ? AttributeConstants::saltLength()
                             : 0;
  keystreamParts_.emplace_back(authenticator_, value.first(saltLength));
  value = value.subspan(saltLength);
  constexpr U32 block = AttributeConstants::passwdWordSize();
  for (; value.size() > block; value = value.subspan(block)) {
    keystreamParts_.emplace_back(value.first(block), ByteView());
  }
}

void Floor::run() const {
  if (hasPacketDigest_) {
    md5Of({bytes_.first(PacketConstants::authenticatorOffset()), authenticator_,
           bytes_.subspan(PacketConstants::headerLength()), secretBytes()});
  }
  if (hasMessageAuthenticator_) {
    Digest digest;
    U32 length = 0;
    ZoCrypto::hmacMd5(secretBytes(), bytes_, digest, length);
    benchmark::DoNotOptimize(digest);
  }
  for (const auto& [first, second] : keystreamParts_) {
    md5Of({secretBytes(), first, second});
  }
}

}  // namespace Bench
