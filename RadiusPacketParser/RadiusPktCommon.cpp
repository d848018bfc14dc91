#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <string_view>

#include "Verda/Assert.h"
#include "Verda/Trace.h"
#include "ZoCrypto/Cleanse.h"
#include "Zonet/WireWriter.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.detail.h"

namespace RadiusPktParserBase {

using detail::ByteView;
using detail::Digest;
using detail::MsgAuthCover;
using detail::zeroAuthenticator;
using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using RadiusPacketParser::RadiusDict;
using RadiusPacketParser::VsaConstants;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;

namespace {

/// Whether an authenticator gives all the bytes that one has; traces when it does not.
bool isWholeAuthenticator(ByteView authenticator, std::string_view function) {
  const auto copied =
      static_cast<U32>(std::min<std::size_t>(authenticator.size(), PacketConstants::authLength()));
  if (copied != PacketConstants::authLength()) {
    VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", function,
                   "Mismatch in bytes copied: {}, expected: {}", copied,
                   PacketConstants::authLength());
    return false;
  }
  return true;
}

/// What a digest's length says of it; traces when it is wrong.
ErrorMsg md5Outcome(U32 digestLength) {
  if (digestLength != PacketConstants::authLength()) {
    VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", "md5Calculator",
                   "MD5 digest of incorrect length: {}", digestLength);
    return ErrorMsg::md5GenerationFailed;
  }
  return ErrorMsg::success;
}

/// Puts a digest into packet and header as their authenticator.
void setAuthenticator(const Digest& digest, U8* pktData, RadiusHdr& hdr) {
  std::ranges::copy(digest, pktData + PacketConstants::authenticatorOffset());
  hdr.authenticatorIs(String(ByteView(digest)));
}

constexpr U32 msgAuthAttrLength =
    AttributeConstants::valueOffset() + AttributeConstants::msgAuthLength();

/// Whether a packet's buffer holds all that its header says, and a header at the least.
bool holdsPacket(const Ptr<Zonet::Pkt>& pkt, const RadiusHdr& hdr) {
  return pkt && hdr.length() >= PacketConstants::headerLength() && hdr.length() <= pkt->bytes();
}

/// Whether a whole Message-Authenticator attribute lies among the packet's attributes at `attr`.
bool liesInPacket(const U8* attr, const U8* pktData, U32 length) {
  const std::less<> before;
  return length >= PacketConstants::headerLength() + msgAuthAttrLength &&
         !before(attr, pktData + PacketConstants::headerLength()) &&
         !before(pktData + (length - msgAuthAttrLength), attr);
}

/// Keeps sixteen bytes of a packet and puts them back when the scope ends, on every way out.
class RestoreOnExit {
 public:
  explicit RestoreOnExit(U8* place) : place_(place) {
    std::copy_n(place, saved_.size(), saved_.data());
  }
  RestoreOnExit(const RestoreOnExit&) = delete;
  RestoreOnExit& operator=(const RestoreOnExit&) = delete;
  ~RestoreOnExit() { std::ranges::copy(saved_, place_); }

 private:
  U8* place_;
  Digest saved_;
};

/// The authenticator under which a packet's values are hidden.
Bytes hidingAuthenticator(const RadiusHdr& hdr, const Bytes& reqAuth) {
  return isRequest(hdr.code()) ? Bytes(hdr.authenticator().bytes()) : reqAuth;
}

/// Hides or reveals the value of the type-length-value unit at `unit`.
ErrorMsg transformUnit(U8* unit, const String& secret, const Bytes& reqAuth, const RadiusHdr& hdr,
                       const AttrInfo& attrInfo, bool encrypt) {
  const U8 length = unit[AttributeConstants::lengthOffset()];
  if (length < AttributeConstants::valueOffset()) {
    return ErrorMsg::success;
  }
  return encryptHelper(unit + AttributeConstants::valueOffset(),
                       U32{length} - AttributeConstants::valueOffset(), secret,
                       hidingAuthenticator(hdr, reqAuth), attrInfo.encryptionType,
                       attrInfo.isTagged, encrypt);
}

}  // namespace

bool detail::hasRandomAuthenticator(U8 code) {
  return code == RadiusCode::ACCESS_REQUEST || code == RadiusCode::STATUS_SERVER;
}

void detail::copyAuthenticator(ByteView from, U8* to) {
  std::copy_n(from.data(), std::min<std::size_t>(from.size(), PacketConstants::authLength()), to);
}

void detail::writeLength(U16 length, U8* pkt) {
  const std::span<U8> field(pkt + PacketConstants::lengthOffset(), sizeof(length));
  static_cast<void>(Zonet::WireWriter(field).write(length));
}

detail::MsgAuthCover detail::msgAuthCoverOf(U8 code) {
  switch (code) {
    case RadiusCode::ACCOUNTING_REQUEST:
    case RadiusCode::ACCOUNTING_RESPONSE:
      return MsgAuthCover::nothing;
    case RadiusCode::ACCESS_REQUEST:
    case RadiusCode::STATUS_SERVER:
      return MsgAuthCover::asItStands;
    case RadiusCode::DISCONNECT_REQUEST:
    case RadiusCode::COA_REQUEST:
      return MsgAuthCover::zeros;
    case RadiusCode::ACCESS_ACCEPT:
    case RadiusCode::ACCESS_REJECT:
    case RadiusCode::ACCESS_CHALLENGE:
    case RadiusCode::DISCONNECT_ACK:
    case RadiusCode::DISCONNECT_NAK:
    case RadiusCode::COA_ACK:
    case RadiusCode::COA_NAK:
      return MsgAuthCover::requestAuthenticator;
    default:
      return MsgAuthCover::unsupported;
  }
}

bool detail::isForbiddenInStatusServer(U8 type) {
  switch (type) {
    case RadiusAttributeId::USER_NAME:
    case RadiusAttributeId::USER_PASSWORD:
    case RadiusAttributeId::CHAP_PASSWORD:
    case RadiusAttributeId::ACCT_STATUS_TYPE:
    case RadiusAttributeId::ACCT_INPUT_OCTETS:
    case RadiusAttributeId::ACCT_SESSION_ID:
    case RadiusAttributeId::EAP_MESSAGE:
      return true;
    default:
      return false;
  }
}

bool canAnswer(U8 response, U8 request) {
  switch (request) {
    case RadiusCode::ACCESS_REQUEST:
      return response == RadiusCode::ACCESS_ACCEPT || response == RadiusCode::ACCESS_REJECT ||
             response == RadiusCode::ACCESS_CHALLENGE;
    case RadiusCode::STATUS_SERVER:
      return response == RadiusCode::ACCESS_ACCEPT || response == RadiusCode::ACCOUNTING_RESPONSE;
    case RadiusCode::ACCOUNTING_REQUEST:
      return response == RadiusCode::ACCOUNTING_RESPONSE;
    case RadiusCode::DISCONNECT_REQUEST:
      return response == RadiusCode::DISCONNECT_ACK || response == RadiusCode::DISCONNECT_NAK;
    case RadiusCode::COA_REQUEST:
      return response == RadiusCode::COA_ACK || response == RadiusCode::COA_NAK;
    default:
      return false;
  }
}

AttrInfo detail::missingAttrInfo(const Attribute& attribute, const RadiusDict& dict) {
  const auto missing = [](ErrorMsg errorMsg) {
    AttrInfo info;
    info.errorMsg = errorMsg;
    return info;
  };
  if (attribute.attrId != RadiusAttributeId::VENDOR_SPECIFIC) {
    VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", "getAttrInfo",
                   "Missing attribute: {} from radius dictionary", attribute.attrId);
    return missing(ErrorMsg::invalidAttrId);
  }
  if (!dict.vendorAttributeHas(attribute.vendorId)) {
    VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", "getAttrInfo", "Unsupported vendorId: {}",
                   attribute.vendorId);
    return missing(ErrorMsg::invalidVendorId);
  }
  VERDA_TRACE_AS(codecTrace, Verda::traceErrors, "", "getAttrInfo",
                 "Unsupported vendorAttrId: {} for vendorId: {}", attribute.vendorAttrId,
                 attribute.vendorId);
  return missing(ErrorMsg::invalidVendorAttrId);
}

AttrInfo getAttrInfo(Attribute attribute, const Ptr<const RadiusDict>& dict) {
  AttrInfo info;
  detail::getAttrInfo(attribute, dict, info);
  return info;
}

ErrorMsg md5Calculator(const U8* data, U32 len, U8* digest) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  return md5Outcome(detail::md5({ByteView(data, len)}, digest));
}

ErrorMsg calculateMessageAuthenticator(const String& secret, U8* savedValue, U8* digest,
                                       U8* pktData, U8* msgAuthAttr, U32 pktLen) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  U8* const value = msgAuthAttr + AttributeConstants::valueOffset();
  constexpr U32 length = AttributeConstants::msgAuthLength();
  const U32 digestLength =
      detail::messageAuthenticator(secret, ByteView(pktData, pktLen), value, savedValue, digest);
  if (digestLength != length) {
    VERDA_TRACE(codecTrace, Verda::traceErrors, "", "MD5 generation failed, digestLen: {}",
                digestLength);
    return ErrorMsg::md5GenerationFailed;
  }
  if (savedValue != nullptr) {
    std::copy_n(savedValue, length, value);
  }
  return ErrorMsg::success;
}

ErrorMsg setRequestAuthenticator(const String& secret, U8* pktData, const Ptr<RadiusHdr>& hdr) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  if (detail::hasRandomAuthenticator(hdr->code())) {
    return ErrorMsg::success;
  }
  VERDA_ASSERT(hdr->length() >= PacketConstants::headerLength());
  Digest digest;
  const ErrorMsg result = md5Outcome(detail::packetDigest(
      ByteView(pktData, hdr->length()), zeroAuthenticator, secret, digest.data()));
  if (result == ErrorMsg::success) {
    setAuthenticator(digest, pktData, *hdr);
  }
  return result;
}

ErrorMsg setResponseAuthenticator(const String& secret, const Bytes& reqAuth, U8* pktData,
                                  const Ptr<RadiusHdr>& hdr) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  VERDA_ASSERT(hdr->length() >= PacketConstants::headerLength());
  U8* const authenticator = pktData + PacketConstants::authenticatorOffset();
  detail::copyAuthenticator(reqAuth.span(), authenticator);
  Digest digest;
  const ErrorMsg result = md5Outcome(
      detail::md5({ByteView(pktData, hdr->length()), detail::secretBytes(secret)}, digest.data()));
  if (result == ErrorMsg::success) {
    setAuthenticator(digest, pktData, *hdr);
  }
  return result;
}

ErrorMsg validateAuthenticator(const Ptr<Zonet::Pkt>& pkt, const Ptr<RadiusHdr>& hdr,
                               const String& secret, const Bytes& reqAuth) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  if (detail::hasRandomAuthenticator(hdr->code())) {
    return ErrorMsg::success;
  }
  if (!holdsPacket(pkt, *hdr)) {
    return ErrorMsg::invalidPktAuth;
  }
  if (!reqAuth.empty() && !isWholeAuthenticator(reqAuth.span(), __func__)) {
    return ErrorMsg::invalidBytesCopied;
  }
  const ByteView authenticator = reqAuth.empty()
                                     ? ByteView(zeroAuthenticator)
                                     : reqAuth.span().first(PacketConstants::authLength());
  Digest digest;
  const ErrorMsg result = md5Outcome(detail::packetDigest(
      std::as_const(*pkt).span().first(hdr->length()), authenticator, secret, digest.data()));
  if (result != ErrorMsg::success) {
    return result;
  }
  return ZoCrypto::equalInConstantTime(digest, hdr->authenticator().bytes())
             ? ErrorMsg::success
             : ErrorMsg::invalidPktAuth;
}

ErrorMsg setMessageAuthenticator(U8* pktData, U8* msgAuthAttr, const String& secret,
                                 const Bytes& reqAuth, const Ptr<RadiusHdr>& hdr) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  U8* const authenticator = pktData + PacketConstants::authenticatorOffset();
  if (detail::hasRandomAuthenticator(hdr->code())) {
    VERDA_ASSERT_TEXT(reqAuth.empty(), "Request authenticator found not NULL for request packet");
  } else {
    std::ranges::copy(zeroAuthenticator, authenticator);
  }
  if (!reqAuth.empty()) {
    detail::copyAuthenticator(reqAuth.span(), authenticator);
    if (!isWholeAuthenticator(reqAuth.span(), __func__)) {
      return ErrorMsg::invalidBytesCopied;
    }
  }
  Digest digest;
  const ErrorMsg result = calculateMessageAuthenticator(secret, nullptr, digest.data(), pktData,
                                                        msgAuthAttr, hdr->length());
  if (result == ErrorMsg::success) {
    std::ranges::copy(digest, msgAuthAttr + AttributeConstants::valueOffset());
  }
  return result;
}

namespace {

/// Compares a packet's Message-Authenticator with the computed one. The packet's authenticator
/// bytes are already what the computation covers.
ErrorMsg compareMessageAuthenticator(Zonet::Pkt& pkt, const RadiusHdr& hdr, const String& secret,
                                     U8* msgAuthAttr, bool authenticatorReplaced) {
  const RestoreOnExit value(msgAuthAttr + AttributeConstants::valueOffset());
  Digest received;
  Digest computed;
  const ErrorMsg result = calculateMessageAuthenticator(secret, received.data(), computed.data(),
                                                        pkt.data(), msgAuthAttr, hdr.length());
  if (authenticatorReplaced &&
      !isWholeAuthenticator(hdr.authenticator().bytes(), "validateMessageAuthenticator")) {
    return ErrorMsg::invalidBytesCopied;
  }
  if (result != ErrorMsg::success) {
    return result;
  }
  return ZoCrypto::equalInConstantTime(computed, received) ? ErrorMsg::success
                                                           : ErrorMsg::invalidMsgAuth;
}

}  // namespace

ErrorMsg validateMessageAuthenticator(const Ptr<Zonet::Pkt>& pkt, const Ptr<RadiusHdr>& hdr,
                                      const String& secret, const Bytes& reqAuth, U8* msgAuthAttr) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  const MsgAuthCover cover = detail::msgAuthCoverOf(hdr->code());
  switch (cover) {
    case MsgAuthCover::nothing:
      return ErrorMsg::success;
    case MsgAuthCover::requestAuthenticator:
      VERDA_ASSERT_TEXT(!reqAuth.empty(), "Request authenticator found NULL for response packet");
      break;
    case MsgAuthCover::asItStands:
    case MsgAuthCover::zeros:
      VERDA_ASSERT_TEXT(reqAuth.empty(), "Request authenticator found not NULL for request packet");
      break;
    case MsgAuthCover::unsupported:
      return ErrorMsg::unsupportedPktType;
  }
  if (!holdsPacket(pkt, *hdr) || !liesInPacket(msgAuthAttr, pkt->data(), hdr->length())) {
    return ErrorMsg::invalidMsgAuth;
  }
  if (cover == MsgAuthCover::asItStands) {
    return compareMessageAuthenticator(*pkt, *hdr, secret, msgAuthAttr, false);
  }
  if (!reqAuth.empty() && !isWholeAuthenticator(reqAuth.span(), __func__)) {
    return ErrorMsg::invalidBytesCopied;
  }
  U8* const authenticator = pkt->data() + PacketConstants::authenticatorOffset();
  const RestoreOnExit received(authenticator);
  detail::copyAuthenticator(reqAuth.empty() ? ByteView(zeroAuthenticator) : reqAuth.span(),
                            authenticator);
  return compareMessageAuthenticator(*pkt, *hdr, secret, msgAuthAttr, true);
}

ErrorMsg encryptHelper(U8* data, U32 len, const String& secret, const Bytes& authenticator,
                       U8 encryptionType, bool isTagged, bool encrypt) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  const std::optional<detail::HiddenParts> parts =
      detail::hiddenPartsOf({data, len}, encryptionType, isTagged);
  if (!parts) {
    return ErrorMsg::success;
  }
  if (!isWholeAuthenticator(authenticator.span(), __func__)) {
    return ErrorMsg::invalidBytesCopied;
  }
  return md5Outcome(detail::applyKeystream(
      *parts, authenticator.span().first(PacketConstants::authLength()), secret, encrypt));
}

ErrorMsg detail::hideValue(const Attribute& attribute, U8* attr, const String& secret,
                           const Bytes& reqAuth, const RadiusHdr& hdr, const AttrInfo& attrInfo) {
  const bool isVendor = attribute.attrId == RadiusAttributeId::VENDOR_SPECIFIC;
  U8* const unit = isVendor ? attr + VsaConstants::vendorTypeOffset() : attr;
  return transformUnit(unit, secret, reqAuth, hdr, attrInfo, true);
}

ErrorMsg encryptAttribute(Attribute attribute, U8* attrPtr, const String& secret,
                          const Bytes& reqAuth, const Ptr<RadiusHdr>& hdr, AttrInfo attrInfo,
                          const Ptr<const RadiusDict>& /*dict*/) {
  return detail::encryptAttribute(attribute, attrPtr, secret, reqAuth, *hdr, attrInfo);
}

ErrorMsg detail::decryptAttribute(const Attribute& attribute, U8* unit, const String& secret,
                                  const Bytes& reqAuth, const RadiusHdr& hdr,
                                  const AttrInfo& attrInfo) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  if (isRequest(hdr.code())) {
    VERDA_ASSERT_TEXT(reqAuth.empty(), "Request authenticator not NULL for request packet");
  } else {
    VERDA_ASSERT_TEXT(!reqAuth.empty(), "Request authenticator NULL for response packet");
  }
  if (!attrInfo.isInDict) {
    VERDA_TRACE(codecTrace, Verda::traceErrors, "",
                "Unknown Attribute, attrId: {}, vendorId: {}, vendorAttrId: {}", attribute.attrId,
                attribute.vendorId, attribute.vendorAttrId);
    return ErrorMsg::success;
  }
  if (!isHidden(attrInfo)) {
    return ErrorMsg::success;
  }
  return transformUnit(unit, secret, reqAuth, hdr, attrInfo, false);
}

ErrorMsg decryptAttribute(Attribute attribute, U8* attrPtr, const String& secret,
                          const Bytes& reqAuth, const Ptr<RadiusHdr>& hdr, AttrInfo attrInfo,
                          const Ptr<const RadiusDict>& /*dict*/) {
  return detail::decryptAttribute(attribute, attrPtr, secret, reqAuth, *hdr, attrInfo);
}

Ptr<PktReturn> invalidPkt(ErrorMsg errorMsg) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  Ptr<PktReturn> result = pktReturnFactory(nullptr);
  result->errorMsgIs(errorMsg);
  return result;
}

Ptr<RadiusHdrReturn> invalidHdr(ErrorMsg errorMsg) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  Ptr<RadiusHdrReturn> result = radiusHdrReturnFactory(nullptr);
  result->errorMsgIs(errorMsg);
  return result;
}

}  // namespace RadiusPktParserBase
