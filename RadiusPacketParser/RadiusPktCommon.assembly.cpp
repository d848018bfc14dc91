#include "RadiusPacketParser/RadiusPktCommon.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "Verda/Assert.h"
#include "Verda/Trace.h"
#include "ZoCrypto/Cleanse.h"
#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktCommon.detail.h"

namespace RadiusPktParserBase {

using detail::ByteView;
using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusDict;
using RadiusPacketParser::VsaConstants;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U16;
using Verda::U32;
using Verda::U8;

namespace {

/// Writes attributes behind each other into a packet buffer of the largest packet's length. The
/// packet's length so far is where the next attribute goes.
class AttributeAppender {
 public:
  AttributeAppender(U8* pkt, U16& length, U8*& msgAuthPos, const String& secret,
                    const Bytes& reqAuth, const RadiusHdr& hdr,
                    const Ptr<const RadiusDict>& dictionary)
      : pkt_(pkt),
        length_(length),
        msgAuthPos_(msgAuthPos),
        secret_(secret),
        reqAuth_(reqAuth),
        hdr_(hdr),
        dictionary_(dictionary) {}

  bool hasMessageAuthenticator() const { return msgAuthPos_ != nullptr; }

  /// Writes Type and Length of a Message-Authenticator, whose value is computed when the packet's
  /// length is final.
  ErrorMsg reserveMessageAuthenticator() {
    if (!fits(messageAuthenticatorLength)) {
      return ErrorMsg::maxPktLengthExceeded;
    }
    msgAuthPos_ = pkt_ + length_;
    msgAuthPos_[AttributeConstants::typeOffset()] = RadiusAttributeId::MESSAGE_AUTHENTICATOR;
    msgAuthPos_[AttributeConstants::lengthOffset()] = messageAuthenticatorLength;
    length_ = static_cast<U16>(length_ + messageAuthenticatorLength);
    return ErrorMsg::success;
  }

  void lookUp(const Attribute& key, AttrInfo& attrInfo) const {
    detail::getAttrInfo(key, dictionary_, attrInfo);
  }

  /// Encodes a value and hides it as the dictionary asks.
  ErrorMsg append(const Attribute& key, const AttrInfo& attrInfo, const AttrValue& value) {
    U8* position = pkt_ + length_;
    const bool isVsa = key.attrId == RadiusAttributeId::VENDOR_SPECIFIC;
    ErrorMsg fault = isVsa ? detail::addVsa(value, key, attrInfo, position, length_)
                           : detail::addAttribute(value, key, attrInfo, position, length_);
    if (fault == ErrorMsg::success) {
      // Where nothing was written nothing is hidden; a caller's mistake is one all the same.
      static constexpr AttrInfo nothingHidden;
      const bool isNothing =
          isHidden(attrInfo) && detail::isWrittenAsNothing(value, attrInfo, isVsa);
      fault = detail::encryptAttribute(key, position, secret_, reqAuth_, hdr_,
                                       isNothing ? nothingHidden : attrInfo);
    }
    return fault == ErrorMsg::success ? passAttribute() : fault;
  }

  /// Copies an attribute of another packet as it is.
  ErrorMsg appendCopy(ByteView attribute) {
    if (!fits(attribute.size())) {
      return ErrorMsg::maxPktLengthExceeded;
    }
    std::ranges::copy(attribute, pkt_ + length_);
    length_ = static_cast<U16>(length_ + attribute.size());
    return ErrorMsg::success;
  }

 private:
  static constexpr U8 messageAuthenticatorLength =
      AttributeConstants::valueOffset() + AttributeConstants::msgAuthLength();

  bool fits(std::size_t bytes) const { return length_ + bytes <= PacketConstants::maxLength(); }

  /// Moves behind the attribute at the end by what its Length byte says, which of a long vendor
  /// attribute is less than was written; where nothing was written, that byte is as it was found.
  ErrorMsg passAttribute() {
    if (!fits(AttributeConstants::valueOffset())) {
      return ErrorMsg::success;  // no Length byte, so nothing was written
    }
    const U8 attributeLength = pkt_[length_ + AttributeConstants::lengthOffset()];
    if (!fits(attributeLength)) {
      return ErrorMsg::maxPktLengthExceeded;
    }
    length_ = static_cast<U16>(length_ + attributeLength);
    return ErrorMsg::success;
  }

  U8* const pkt_;
  U16& length_;
  U8*& msgAuthPos_;
  const String& secret_;
  const Bytes& reqAuth_;
  const RadiusHdr& hdr_;
  const Ptr<const RadiusDict>& dictionary_;
};

/// Copies the attributes of one packet into another, but for those that are replaced or removed.
class OldAttributes {
 public:
  OldAttributes(const PktInfoBuilder& request, AttributeAppender& appender)
      : request_(request), appender_(appender) {}

  /// @param attributes  the old packet from its 21st byte to its length
  ErrorMsg takeAll(ByteView attributes) {
    AttributeCursor cursor(attributes);
    AttributeCursor::Step step = cursor.next();
    for (; step == AttributeCursor::Step::attribute; step = cursor.next()) {
      if (runPassedOver_ == cursor.type()) {
        continue;
      }
      runPassedOver_.reset();
      if (const ErrorMsg fault = take(cursor.type(), cursor.bytes()); fault != ErrorMsg::success) {
        return fault;
      }
    }
    return step == AttributeCursor::Step::end ? ErrorMsg::success : ErrorMsg::invalidAttrLength;
  }

 private:
  ErrorMsg take(U8 type, ByteView attribute) {
    switch (type) {
      case RadiusAttributeId::MESSAGE_AUTHENTICATOR:
        return appender_.reserveMessageAuthenticator();
      case RadiusAttributeId::VENDOR_SPECIFIC:
        return takeVendor(attribute);
      default:
        return takeStandard(type, attribute);
    }
  }

  /// What becomes of one fragment of a value becomes of all that follow it directly.
  ErrorMsg takeStandard(U8 type, ByteView attribute) {
    const Attribute key = standardAttribute(type);
    AttrInfo attrInfo;
    appender_.lookUp(key, attrInfo);
    const AttrWithValue* replacement = replacementOf(key);
    if (replacement == nullptr && !request_.attributesToRemoveHas(key)) {
      return appender_.appendCopy(attribute);
    }
    if (attrInfo.isConcat) {
      runPassedOver_ = type;
    }
    return replacement == nullptr ? ErrorMsg::success : replace(key, attrInfo, *replacement);
  }

  /// Of a vendor's fragments only the one goes, on purpose.
  ErrorMsg takeVendor(ByteView attribute) {
    if (attribute.size() < VsaConstants::vendorAttrValueOffset()) {
      return ErrorMsg::invalidAttrLength;
    }
    const Attribute key = vendorAttribute(detail::vendorIdOf(attribute.data()),
                                          attribute[VsaConstants::vendorTypeOffset()]);
    if (const AttrWithValue* replacement = replacementOf(key)) {
      AttrInfo attrInfo;
      appender_.lookUp(key, attrInfo);
      return replace(key, attrInfo, *replacement);
    }
    return request_.attributesToRemoveHas(key) ? ErrorMsg::success
                                               : appender_.appendCopy(attribute);
  }

  const AttrWithValue* replacementOf(const Attribute& key) const {
    const Ptr<AttrWithValue>* found = request_.attributesToReplace().find(key);
    return found == nullptr ? nullptr : found->get();
  }

  ErrorMsg replace(const Attribute& key, const AttrInfo& attrInfo,
                   const AttrWithValue& replacement) {
    const std::vector<AttrValue>& values = replacement.attrValue();
    return values.empty() ? ErrorMsg::invalidAttrDataType
                          : appender_.append(key, attrInfo, values.front());
  }

  const PktInfoBuilder& request_;
  AttributeAppender& appender_;
  std::optional<U8> runPassedOver_;  // the type of the fragments that go with the one before
};

ErrorMsg appendValues(const AttrWithValue& attribute, AttributeAppender& appender) {
  const Attribute& key = attribute.attribute();
  AttrInfo attrInfo;
  for (const AttrValue& value : attribute.attrValue()) {
    appender.lookUp(key, attrInfo);
    const ErrorMsg fault = appender.append(key, attrInfo, value);
    if (fault != ErrorMsg::success) {
      return fault;
    }
  }
  return ErrorMsg::success;
}

/// The fields in front of the length, and as many of the authenticator's bytes as there are.
void writeHeader(const RadiusHdr& hdr, U8* pkt) {
  pkt[PacketConstants::codeOffset()] = hdr.code();
  pkt[PacketConstants::idOffset()] = hdr.id();
  detail::copyAuthenticator(hdr.authenticator().bytes(),
                            pkt + PacketConstants::authenticatorOffset());
}

/// Fills in what depends on the whole packet: the Message-Authenticator first, since the packet's
/// authenticator covers it.
ErrorMsg sign(U8* pkt, U8* msgAuthPos, const String& secret, const Bytes& reqAuth,
              const Ptr<RadiusHdr>& hdr) {
  if (msgAuthPos != nullptr) {
    const ErrorMsg fault = setMessageAuthenticator(pkt, msgAuthPos, secret, reqAuth, hdr);
    if (fault != ErrorMsg::success) {
      return fault;
    }
  }
  return reqAuth.empty() ? setRequestAuthenticator(secret, pkt, hdr)
                         : setResponseAuthenticator(secret, reqAuth, pkt, hdr);
}

}  // namespace

ErrorMsg addAttributesToPkt(const String& secret, const Bytes& reqAuth, const Ptr<RadiusHdr>& hdr,
                            const Ptr<PktInfoBuilder>& pktInfoBuilder, U8* pkt, U16& length,
                            U8*& msgAuthPos, const Ptr<const RadiusDict>& dictionary) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  VERDA_ASSERT(hdr && pktInfoBuilder && pkt != nullptr);
  AttributeAppender appender(pkt, length, msgAuthPos, secret, reqAuth, *hdr, dictionary);
  for (const auto& [key, entry] : pktInfoBuilder->attributesToAdd()) {
    const Ptr<AttrWithValue>& attribute = entry->attrWithValue();
    if (!attribute) {
      return ErrorMsg::invalidAttrDataType;
    }
    const bool isPlace =
        attribute->attribute().attrId == RadiusAttributeId::MESSAGE_AUTHENTICATOR &&
        !appender.hasMessageAuthenticator();
    const ErrorMsg fault =
        isPlace ? appender.reserveMessageAuthenticator() : appendValues(*attribute, appender);
    if (fault != ErrorMsg::success) {
      return fault;
    }
  }
  return ErrorMsg::success;
}

ErrorMsg replaceAttributesInPkt(const U8* oldPkt, U8* newPkt, const String& secret,
                                const Bytes& reqAuth, const Ptr<RadiusHdr>& hdr,
                                const Ptr<PktInfoBuilder>& pktInfoBuilder, U16& length,
                                U8*& msgAuthPos, const Ptr<const RadiusDict>& dictionary) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  VERDA_ASSERT(hdr && pktInfoBuilder && oldPkt != nullptr && newPkt != nullptr);
  U16 oldLength = 0;
  static_cast<void>(Zonet::WireReader({oldPkt + PacketConstants::lengthOffset(), sizeof(oldLength)})
                        .read(oldLength));
  if (oldLength < PacketConstants::headerLength()) {
    return ErrorMsg::invalidPktLength;
  }
  length = PacketConstants::headerLength();
  AttributeAppender appender(newPkt, length, msgAuthPos, secret, reqAuth, *hdr, dictionary);
  return OldAttributes(*pktInfoBuilder, appender)
      .takeAll(ByteView(oldPkt, oldLength).subspan(PacketConstants::headerLength()));
}

Ptr<PktReturn> buildPkt(const Ptr<Zonet::Pkt>& pkt, const String& secret, const Bytes& reqAuth,
                        const Ptr<RadiusHdr>& hdr, const Ptr<PktInfoBuilder>& pktInfoBuilder,
                        const Ptr<const RadiusDict>& dictionary) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  VERDA_ASSERT(pktInfoBuilder);
  if (!pkt && !hdr) {
    return invalidPkt(ErrorMsg::invalidPktPtr);
  }
  const Ptr<RadiusHdr> header = pkt ? radiusHdrFactory() : hdr;
  if (pkt && detail::readHeader(std::as_const(*pkt).span(), *header) != detail::HeaderFault::none) {
    return invalidPkt(ErrorMsg::invalidPktLength);
  }
  const Ptr<Zonet::PktBuffer> buffer = Zonet::pktBufferFactory(U32{PacketConstants::maxLength()});
  U8* const newPkt = buffer->data();
  U16 length = PacketConstants::headerLength();
  U8* msgAuthPos = nullptr;
  writeHeader(*header, newPkt);
  ErrorMsg fault = ErrorMsg::success;
  if (pkt) {
    fault = replaceAttributesInPkt(std::as_const(*pkt).data(), newPkt, secret, reqAuth, header,
                                   pktInfoBuilder, length, msgAuthPos, dictionary);
  }
  if (fault == ErrorMsg::success) {
    fault = addAttributesToPkt(secret, reqAuth, header, pktInfoBuilder, newPkt, length, msgAuthPos,
                               dictionary);
  }
  if (fault == ErrorMsg::success) {
    header->lengthIs(length);
    buffer->tailCut(U32{PacketConstants::maxLength()} - length);
    detail::writeLength(length, newPkt);
    fault = sign(newPkt, msgAuthPos, secret, reqAuth, header);
  }
  if (fault != ErrorMsg::success) {
    // A password that was still to be hidden may stand in what is given back.
    ZoCrypto::cleanse({newPkt, PacketConstants::maxLength()});
    return invalidPkt(fault);
  }
  return pktReturnFactory(Zonet::pktFactory(buffer));
}

}  // namespace RadiusPktParserBase
