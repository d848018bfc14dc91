#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>

#include "Verda/Assert.h"
#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Trace.h"
#include "Verda/Types.h"
#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

/// What the codec's units share among themselves and with the legacy interface; no part of either.
namespace RadiusPktParserBase::detail {

using ByteView = std::span<const Verda::U8>;

// ---- The header ----

/// What is wrong with the bytes of a header.
enum class HeaderFault : Verda::U8 {
  none,
  tooShort,          ///< fewer bytes than a header has
  lengthOutOfRange,  ///< the Length field says less than 20 or more than 4096
  cut,               ///< the Length field says more bytes than there are
};

/// Whether a Length field says what a packet may have: 20 to 4096.
constexpr bool isPacketLength(std::size_t length) {
  using RadiusPacketParser::PacketConstants;
  return length >= PacketConstants::headerLength() && length <= PacketConstants::maxLength();
}

/// Reads the header of a packet. Unless the packet is too short, `hdr` holds what it says.
template <typename Hdr>
HeaderFault readHeader(ByteView pkt, Hdr& hdr) {
  using RadiusPacketParser::PacketConstants;
  Zonet::WireReader reader(pkt);
  Verda::U8 code = 0;
  Verda::U8 id = 0;
  Verda::U16 length = 0;
  ByteView authenticator;
  if (!reader.read(code) || !reader.read(id) || !reader.read(length) ||
      !reader.read(PacketConstants::authLength(), authenticator)) {
    return HeaderFault::tooShort;
  }
  hdr.codeIs(code);
  hdr.idIs(id);
  hdr.lengthIs(length);
  hdr.authenticatorIs(Verda::String(authenticator));
  if (!isPacketLength(length)) {
    return HeaderFault::lengthOutOfRange;
  }
  return length > pkt.size() ? HeaderFault::cut : HeaderFault::none;
}

/// Whether packets of that code have an authenticator that is random, and not a digest.
bool hasRandomAuthenticator(Verda::U8 code);

/// Copies as many of an authenticator's bytes as there are into a 16-byte place.
void copyAuthenticator(ByteView from, Verda::U8* to);

/// Writes a packet's length into its header.
void writeLength(Verda::U16 length, Verda::U8* pkt);

// ---- Digests and hiding ----

using Digest = std::array<Verda::U8, RadiusPacketParser::PacketConstants::authLength()>;

inline constexpr Digest zeroAuthenticator{};

/// The part of a shared secret that counts.
ByteView secretBytes(const Verda::String& secret);

// The digests give the length of what they wrote: 16, or something else when the computation
// failed.

/// The MD5 of several parts as if they stood one behind the other: nothing is put together first.
Verda::U32 md5(std::initializer_list<ByteView> parts, Verda::U8* digest);

/// The MD5 over a packet with another authenticator in place, and the secret.
/// @param packet  at least a header
Verda::U32 packetDigest(ByteView packet, ByteView authenticator, const Verda::String& secret,
                        Verda::U8* digest);

/// The HMAC-MD5 over a packet.
/// @param value       the 16 bytes of the packet that are zeroed first, and stay so; or null
/// @param savedValue  receives them as they stood; or null
Verda::U32 messageAuthenticator(const Verda::String& secret, ByteView packet, Verda::U8* value,
                                Verda::U8* savedValue, Verda::U8* digest);

/// What a Message-Authenticator covers in the place of the packet's authenticator.
enum class MsgAuthCover : Verda::U8 {
  nothing,               ///< the Message-Authenticator of accounting packets is not checked
  asItStands,            ///< Access-Request, Status-Server
  zeros,                 ///< the other requests that carry one
  requestAuthenticator,  ///< responses
  unsupported,           ///< all other codes
};

MsgAuthCover msgAuthCoverOf(Verda::U8 code);

/// A value to hide or to reveal, taken apart; the tag in front stays in the clear.
struct HiddenParts {
  ByteView salt;  ///< empty for the method without one
  std::span<Verda::U8> data;
};

/// Nothing when the value is too short to hold tag and salt.
std::optional<HiddenParts> hiddenPartsOf(std::span<Verda::U8> value, Verda::U8 encryptionType,
                                         bool isTagged);

/// Hides or reveals in place. When a digest fails the data may be partly transformed.
/// @param authenticator  16 bytes
Verda::U32 applyKeystream(const HiddenParts& parts, ByteView authenticator,
                          const Verda::String& secret, bool encrypt);

/// Whether a hidden User-Password may be so long: 16 to 128 bytes in whole blocks (RFC 2865 section
/// 5.2).
constexpr bool isPasswordLength(std::size_t valueLength) {
  using RadiusPacketParser::AttributeConstants;
  return valueLength >= AttributeConstants::minPasswdSize() &&
         valueLength <= AttributeConstants::maxPasswdSize() &&
         valueLength % AttributeConstants::passwdWordSize() == 0;
}

using PaddedPassword =
    std::array<Verda::U8, RadiusPacketParser::AttributeConstants::maxPasswdSize()>;

/// A User-Password's text, cut at the longest length and filled up with zeros to whole blocks (RFC
/// 2865 section 5.2); a part of `padded`.
ByteView padPassword(ByteView text, PaddedPassword& padded);

// ---- One attribute ----

/// Whether a Status-Server packet must not carry a standard attribute of that type: it asks for
/// neither authentication nor accounting (RFC 5997 section 3).
bool isForbiddenInStatusServer(Verda::U8 type);

/// The longest value of an attribute.
inline constexpr std::size_t maxValueLength =
    std::size_t{RadiusPacketParser::AttributeConstants::maxLength()} -
    RadiusPacketParser::AttributeConstants::valueOffset();

/// The Vendor-Id of the Vendor-Specific attribute at `attr`.
inline Verda::U32 vendorIdOf(const Verda::U8* attr) {
  using RadiusPacketParser::VsaConstants;
  Verda::U32 vendorId = 0;
  static_cast<void>(
      Zonet::WireReader({attr + VsaConstants::vendorIdOffset(), VsaConstants::vendorIdLength()})
          .read(vendorId));
  return vendorId;
}

/// Writes Type and Vendor-Id of a Vendor-Specific attribute.
void writeVendor(Verda::U32 vendorId, Verda::U8* attr);

/// Writes Type and Length of an attribute, or of a vendor's sub-attribute, and gives the place of
/// the value behind them.
inline std::span<Verda::U8> beginUnit(Verda::U8* unit, Verda::U8 type, std::size_t valueLength) {
  using RadiusPacketParser::AttributeConstants;
  unit[AttributeConstants::typeOffset()] = type;
  unit[AttributeConstants::lengthOffset()] =
      static_cast<Verda::U8>(valueLength + AttributeConstants::valueOffset());
  return {unit + AttributeConstants::valueOffset(), valueLength};
}

/// What the dictionary says of an attribute, or null.
inline const RadiusPacketParser::RadiusNode* entryOf(const RadiusPacketParser::RadiusDict& dict,
                                                     Verda::U8 attrId, Verda::U32 vendorId,
                                                     Verda::U8 vendorAttrId) {
  if (attrId != RadiusPacketParser::RadiusAttributeId::VENDOR_SPECIFIC) {
    const auto* found = dict.radiusAttribute().find(attrId);
    return found == nullptr ? nullptr : found->get();
  }
  const auto* vendor = dict.vendorAttribute().find(vendorId);
  const auto* found = vendor == nullptr ? nullptr : (*vendor)->vendorNodeDict().find(vendorAttrId);
  return found == nullptr ? nullptr : found->get();
}

/// Whether the encoder of a value that goes with its attribute writes none: of a `TaggedInt` for a
/// tagged `date`, and of an empty value of a concat attribute in standard form.
bool isWrittenAsNothing(const AttrValue& value, const AttrInfo& attrInfo, bool isVsa);

// What the functions of these names do, for walk and assembly, which ask them of every attribute:
// the short ways inline, the others out of line. Values go by reference because copying them costs,
// key and info because they have just been written field by field, and to load them whole into a
// register, as passing them by value does, would stall the processor each time.

/// Traces which attribute the dictionary lacks, and gives what a lookup says of it.
AttrInfo missingAttrInfo(const Attribute& attribute, const RadiusPacketParser::RadiusDict& dict);

inline void getAttrInfo(const Attribute& attribute,
                        const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dict,
                        AttrInfo& info) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  VERDA_ASSERT(dict);
  const RadiusPacketParser::RadiusNode* entry =
      entryOf(*dict, attribute.attrId, attribute.vendorId, attribute.vendorAttrId);
  if (entry == nullptr) {
    info = missingAttrInfo(attribute, *dict);
    return;
  }
  info.isConcat = entry->concat();
  info.isTagged = entry->hasTag();
  info.isInDict = true;
  info.encryptionType = entry->attributeEncryptionType();
  info.attributeType = entry->attributeType();
  info.errorMsg = ErrorMsg::success;
}

ErrorMsg addAttribute(const AttrValue& value, const Attribute& attribute, const AttrInfo& attrInfo,
                      Verda::U8*& position, Verda::U16& length);

ErrorMsg addVsa(const AttrValue& value, const Attribute& attribute, const AttrInfo& attrInfo,
                Verda::U8* buf, Verda::U16 length);

/// Hides the value of the attribute at `attr`, for which `attrInfo` asks.
ErrorMsg hideValue(const Attribute& attribute, Verda::U8* attr, const Verda::String& secret,
                   const Verda::Bytes& reqAuth, const RadiusHdr& hdr, const AttrInfo& attrInfo);

inline ErrorMsg encryptAttribute(const Attribute& attribute, Verda::U8* attr,
                                 const Verda::String& secret, const Verda::Bytes& reqAuth,
                                 const RadiusHdr& hdr, const AttrInfo& attrInfo) {
  VERDA_TRACE(codecTrace, Verda::traceEntries, "", "entry");
  if (isRequest(hdr.code())) {
    VERDA_ASSERT_TEXT(reqAuth.empty(), "Request authenticator found not NULL for request packet");
  } else {
    VERDA_ASSERT_TEXT(!reqAuth.empty(), "Request authenticator found NULL for response packet");
  }
  return isHidden(attrInfo) ? hideValue(attribute, attr, secret, reqAuth, hdr, attrInfo)
                            : ErrorMsg::success;
}

ErrorMsg decryptAttribute(const Attribute& attribute, Verda::U8* unit, const Verda::String& secret,
                          const Verda::Bytes& reqAuth, const RadiusHdr& hdr,
                          const AttrInfo& attrInfo);

}  // namespace RadiusPktParserBase::detail
