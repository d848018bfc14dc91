#pragma once

#include <cstddef>
#include <span>

#include "Verda/Bytes.h"
#include "Verda/Export.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Types.h"
#include "Zonet/IpGenPrefix.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktTypes.h"

/// What parser and builder share: the attribute cursor, dictionary lookup, authenticators and
/// attribute hiding; and what builds a packet: the encoders and the assembly.
///
/// In all of them the shared secret counts up to its first zero byte, the packet bytes covered are
/// those that the header's length says, and `reqAuth` is empty when the packet is itself a request
/// and holds the 16 bytes of the request's authenticator when it is a response. Of a longer
/// `reqAuth` the first 16 bytes count.
namespace RadiusPktParserBase {

class PktInfoBuilder;

/// Walks the attributes of a packet, one at a time, whatever their bytes: every walk uses it, and
/// decides for itself what it makes of a fault.
class VERDA_EXPORT AttributeCursor {
 public:
  /// Where the cursor stands.
  enum class Step : Verda::U8 {
    attribute,  ///< the cursor stands on an attribute
    end,        ///< no byte is left
    loneByte,   ///< one byte is left where an attribute should begin; `type` gives it
    badLength,  ///< `length` is less than 2 or more than what is left
  };

  /// `attributes` (a packet from its 21st byte to its length) must outlive the cursor, which stands
  /// before the first attribute.
  explicit AttributeCursor(std::span<const Verda::U8> attributes) : rest_(attributes) {}

  /// Goes to the next attribute. After anything but `Step::attribute` the cursor stays where it is.
  Step next() {
    using RadiusPacketParser::AttributeConstants;
    remaining_ = rest_.size();
    if (rest_.empty()) {
      return Step::end;
    }
    type_ = rest_[AttributeConstants::typeOffset()];
    if (rest_.size() < AttributeConstants::valueOffset()) {
      return Step::loneByte;
    }
    length_ = rest_[AttributeConstants::lengthOffset()];
    if (length_ < AttributeConstants::valueOffset() || length_ > rest_.size()) {
      return Step::badLength;
    }
    current_ = rest_.first(length_);
    rest_ = rest_.subspan(length_);
    return Step::attribute;
  }

  /// The Type byte; valid also after `loneByte` and `badLength`.
  Verda::U8 type() const { return type_; }
  /// The Length byte; valid also after `badLength`.
  Verda::U8 length() const { return length_; }
  /// Type, Length and value of the attribute.
  std::span<const Verda::U8> bytes() const { return current_; }
  /// How many bytes there are from the attribute's first byte, or the fault, to the end.
  std::size_t remaining() const { return remaining_; }

 private:
  std::span<const Verda::U8> rest_;
  std::span<const Verda::U8> current_;
  std::size_t remaining_ = 0;
  Verda::U8 type_ = 0;
  Verda::U8 length_ = 0;
};

/// Whether `code` is that of a request (Access-Request, Accounting-Request, Status-Server,
/// Disconnect-Request, CoA-Request): its packets are handled with an empty Request Authenticator,
/// those of every other code with the authenticator of the request that they answer.
constexpr bool isRequest(Verda::U8 code) {
  using RadiusPacketParser::RadiusCode;
  switch (code) {
    case RadiusCode::ACCESS_REQUEST:
    case RadiusCode::ACCOUNTING_REQUEST:
    case RadiusCode::STATUS_SERVER:
    case RadiusCode::DISCONNECT_REQUEST:
    case RadiusCode::COA_REQUEST:
      return true;
    default:
      return false;
  }
}

/// Whether a packet of code `response` can answer a request of code `request`: 2, 3, 11 answer 1;
/// 2, 5 answer 12; 5 answers 4; 41, 42 answer 40; 44, 45 answer 43. An agent that waits for an
/// answer must ask this of the header before it passes the packet on with its Request
/// Authenticator: a stranger may send any code.
VERDA_EXPORT bool canAnswer(Verda::U8 response, Verda::U8 request);

/// What the dictionary says of `attribute`. A miss is traced at level 0 and reported in the result:
/// `isInDict` false and `errorMsg` `invalidAttrId`, `invalidVendorId` or `invalidVendorAttrId`.
/// `dict` must not be null.
VERDA_EXPORT AttrInfo getAttrInfo(Attribute attribute,
                                  const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dict);

/// The MD5 of `len` bytes at `data`, into 16 bytes at `digest`. Returns `success`, or
/// `md5GenerationFailed`.
VERDA_EXPORT ErrorMsg md5Calculator(const Verda::U8* data, Verda::U32 len, Verda::U8* digest);

/// Computes a Message-Authenticator (RFC 3579 section 3.2): the HMAC-MD5 over the packet with the
/// attribute's value zeroed.
/// @param savedValue   16 bytes that receive the value as it stood, which is put back when the
///                     computation succeeds; or null: the value stays zeroed
/// @param digest       receives the 16 bytes
/// @param pktData      the packet's first byte
/// @param msgAuthAttr  the first byte of the attribute inside the packet, 18 bytes long
/// @param pktLen       how many bytes to authenticate
/// @return `success` or `md5GenerationFailed`
VERDA_EXPORT ErrorMsg calculateMessageAuthenticator(const Verda::String& secret,
                                                    Verda::U8* savedValue, Verda::U8* digest,
                                                    Verda::U8* pktData, Verda::U8* msgAuthAttr,
                                                    Verda::U32 pktLen);

/// Sets the authenticator of a request: nothing for Access-Request and Status-Server, whose
/// authenticator is random; for every other code the MD5 over the packet with a zero authenticator
/// and the secret (RFC 2866 section 3, RFC 5176 section 2.3), into packet and header.
/// @param pktData  the packet, `hdr->length()` bytes
/// @return `success` or `md5GenerationFailed`
VERDA_EXPORT ErrorMsg setRequestAuthenticator(const Verda::String& secret, Verda::U8* pktData,
                                              const Verda::Ptr<RadiusHdr>& hdr);

/// Sets the authenticator of a response: the MD5 over the packet with the Request Authenticator in
/// place and the secret (RFC 2865 section 3), into packet and header.
/// @param pktData  the packet, `hdr->length()` bytes
/// @return `success` or `md5GenerationFailed`
VERDA_EXPORT ErrorMsg setResponseAuthenticator(const Verda::String& secret,
                                               const Verda::Bytes& reqAuth, Verda::U8* pktData,
                                               const Verda::Ptr<RadiusHdr>& hdr);

/// Checks the authenticator of a received packet against `hdr->authenticator()`, in constant time;
/// Access-Request and Status-Server have none to check. The packet is not changed.
/// @return `success`, `invalidPktAuth` (also when the packet is shorter than its header says),
///         `invalidBytesCopied` (a Request Authenticator of less than 16 bytes) or
///         `md5GenerationFailed`
VERDA_EXPORT ErrorMsg validateAuthenticator(const Verda::Ptr<Zonet::Pkt>& pkt,
                                            const Verda::Ptr<RadiusHdr>& hdr,
                                            const Verda::String& secret,
                                            const Verda::Bytes& reqAuth);

/// Fills in the value of a packet's Message-Authenticator. Call it when the length is final and
/// before the packet's authenticator is set, which covers it: the authenticator bytes are left as
/// zeros or as the Request Authenticator (for Access-Request and Status-Server, as they are).
/// @param pktData      the packet, `hdr->length()` bytes
/// @param msgAuthAttr  the first byte of the attribute inside the packet, 18 bytes long
/// @return `success`, `invalidBytesCopied` (a Request Authenticator of less than 16 bytes) or
///         `md5GenerationFailed`
VERDA_EXPORT ErrorMsg setMessageAuthenticator(Verda::U8* pktData, Verda::U8* msgAuthAttr,
                                              const Verda::String& secret,
                                              const Verda::Bytes& reqAuth,
                                              const Verda::Ptr<RadiusHdr>& hdr);

/// Checks a packet's Message-Authenticator, in constant time; that of accounting packets is not
/// checked. Works in the packet and leaves it as it was, on every path: the packet belongs to this
/// call while it runs.
/// @param msgAuthAttr  the first byte of the attribute inside the packet, 18 bytes long
/// @return `success`, `invalidMsgAuth` (also when the attribute does not lie in the packet),
///         `invalidBytesCopied` (an authenticator of less than 16 bytes), `unsupportedPktType` or
///         `md5GenerationFailed`
VERDA_EXPORT ErrorMsg validateMessageAuthenticator(const Verda::Ptr<Zonet::Pkt>& pkt,
                                                   const Verda::Ptr<RadiusHdr>& hdr,
                                                   const Verda::String& secret,
                                                   const Verda::Bytes& reqAuth,
                                                   Verda::U8* msgAuthAttr);

/// The methods of hiding that this codec applies; any other number is left alone.
inline constexpr Verda::U8 userPasswordMethod = 1;  ///< RFC 2865 section 5.2
inline constexpr Verda::U8 saltedMethod = 2;        ///< RFC 2868 section 3.5, RFC 2548

/// Whether the dictionary asks for a method of hiding that this codec applies.
constexpr bool isHidden(const AttrInfo& attrInfo) {
  return attrInfo.encryptionType == userPasswordMethod || attrInfo.encryptionType == saltedMethod;
}

/// Where the prefix length stands in the value of an `ipv6prefix` attribute, behind the reserved
/// byte (RFC 3162 section 2.3).
inline constexpr std::size_t ipv6PrefixLengthOffset = 1;

/// Hides or reveals a value in place. Tag and salt stay in the clear; a value too short to hold
/// them is left alone. Neither padding nor a length byte is added or taken off.
/// @param data            the first value byte
/// @param len             the length of the value
/// @param authenticator   16 bytes
/// @param encryptionType  `saltedMethod`, or anything else for the method without a salt
/// @param encrypt         true hides, false reveals
/// @return `success`, `invalidBytesCopied` or `md5GenerationFailed`, behind which the value may be
///         partly transformed
VERDA_EXPORT ErrorMsg encryptHelper(Verda::U8* data, Verda::U32 len, const Verda::String& secret,
                                    const Verda::Bytes& authenticator, Verda::U8 encryptionType,
                                    bool isTagged, bool encrypt);

/// Hides the value of an attribute in place, when `attrInfo` asks for a method that the codec
/// applies. A request is hidden under the header's authenticator, a response under `reqAuth`.
/// @param attrPtr  the first byte of the attribute; of the outer one for a vendor attribute
/// @param dict     not consulted
/// @return as `encryptHelper`
VERDA_EXPORT ErrorMsg
encryptAttribute(Attribute attribute, Verda::U8* attrPtr, const Verda::String& secret,
                 const Verda::Bytes& reqAuth, const Verda::Ptr<RadiusHdr>& hdr, AttrInfo attrInfo,
                 const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dict);

/// Reveals the value of an attribute in place, likewise. An attribute that is not in the dictionary
/// is left alone, with a level-0 trace and `success`.
/// @param attrPtr  the first byte of the attribute; of the sub-attribute for a vendor attribute
/// @param dict     not consulted
/// @return as `encryptHelper`
VERDA_EXPORT ErrorMsg
decryptAttribute(Attribute attribute, Verda::U8* attrPtr, const Verda::String& secret,
                 const Verda::Bytes& reqAuth, const Verda::Ptr<RadiusHdr>& hdr, AttrInfo attrInfo,
                 const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dict);

// ---- Encoders ----
//
// Each writes one attribute at `buf`, into a packet of `curLen` bytes so far, when that does not
// make the packet longer than 4096 bytes; there must be room for that at `buf`. Nothing is moved:
// the caller goes on by the Length written. In vendor form (`isVsa`) `attrId` is the vendor type,
// the outer Length is written, and Type and Vendor-Id are left to `addVsa`; a sub-attribute may be
// as long as any attribute, and the outer Length is then written modulo 256.
//
// They return `success`, `maxPktLengthExceeded`, or what each says for itself.

/// Writes text, behind `tag` when `attrInfo` says tagged.
/// @return also `invalidAttrLength` (more than 253 bytes, the tag counted)
VERDA_EXPORT ErrorMsg addStrTypes(Verda::U8* buf, Verda::U8 attrId, const Verda::String& str,
                                  Verda::U8 tag, AttrInfo attrInfo, bool isVsa, Verda::U16 curLen);

/// Writes bytes.
/// @return also `invalidAttrLength` (more than 253 bytes)
VERDA_EXPORT ErrorMsg addOctetTypes(Verda::U8* buf, Verda::U8 attrId, const Verda::Bytes& bytes,
                                    bool isVsa, Verda::U16 curLen);

/// Writes a number in network order. Of an `integer` that `attrInfo` says tagged, `tag` takes the
/// place of the highest eight bits (RFC 2868); a `date` is never tagged.
VERDA_EXPORT ErrorMsg addIntegerDateTypes(Verda::U8* buf, Verda::U8 attrId, const Verda::U32& value,
                                          Verda::U8 tag, AttrInfo attrInfo, bool isVsa,
                                          Verda::U16 curLen);

/// Writes an IPv4 address. Standard form.
/// @return also `invalidAttrDataType` (an IPv6 address)
VERDA_EXPORT ErrorMsg addIpv4Types(Verda::U8* buf, Verda::U8 attrId,
                                   const Zonet::IpGenPrefix& prefix, Verda::U16 curLen);

/// Writes an IPv6 address. Standard form.
/// @return also `invalidAttrDataType` (an IPv4 address)
VERDA_EXPORT ErrorMsg addIpv6Types(Verda::U8* buf, Verda::U8 attrId,
                                   const Zonet::IpGenPrefix& prefix, Verda::U16 curLen);

/// Writes an IPv6 prefix (RFC 3162 section 2.3): its length in bits and all 16 bytes of the
/// address. Standard form.
/// @return also `invalidAttrDataType` (an IPv4 prefix)
VERDA_EXPORT ErrorMsg addIpv6PrefixTypes(Verda::U8* buf, Verda::U8 attrId,
                                         const Zonet::IpGenPrefix& prefix, Verda::U16 curLen);

/// Writes an interface identifier (RFC 3162 section 2.2): the low half of an IPv6 address. Standard
/// form.
/// @return also `invalidAttrDataType` (an IPv4 address)
VERDA_EXPORT ErrorMsg addIfidTypes(Verda::U8* buf, Verda::U8 attrId,
                                   const Zonet::IpGenPrefix& prefix, Verda::U16 curLen);

/// Writes a standard attribute by its data type. A User-Password's text is cut at 128 bytes and
/// filled up with zeros to whole blocks of 16. Octets that `attrInfo` says concat are split into
/// attributes of at most 253 value bytes; `*bufPtr` and `curLen` are then moved to the last of
/// them, and nowhere when one does not fit. An empty concat value and a `TaggedInt` for a tagged
/// `date` write nothing.
/// @param dict  not consulted
/// @return also `attrInfo.errorMsg` (not in the dictionary), `unknownAttrDataType`,
///         `invalidAttrDataType` (the value does not go with the type; `integer64`) or
///         `invalidAttrLength`
VERDA_EXPORT ErrorMsg addAttribute(AttrValue value, Attribute attribute, AttrInfo attrInfo,
                                   Verda::U8** bufPtr, Verda::U16& curLen,
                                   const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dict);

/// Writes a Vendor-Specific attribute of one sub-attribute, of data type `string`, `octets`,
/// `integer` or `date`. A `TaggedInt` for a tagged `date` writes Type and Vendor-Id alone.
/// @param dict  not consulted
/// @return also `attrInfo.errorMsg` (not in the dictionary), `unknownAttrDataType`,
///         `invalidVendorAttrDataType` or `invalidAttrLength`
VERDA_EXPORT ErrorMsg addVsa(AttrValue value, Attribute attribute, AttrInfo attrInfo,
                             Verda::U8* buf, Verda::U16 curLen,
                             const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dict);

// ---- Assembly ----

/// Appends the attributes to add of `pktInfoBuilder`, in ascending order of their keys, and hides
/// those that the dictionary says hidden.
/// @param pkt         a buffer of 4096 bytes that begins with the packet's header
/// @param length      the packet's length so far; moved behind what is written
/// @param msgAuthPos  the packet's Message-Authenticator, or null: the first one to add is then a
///                    place, left for `setMessageAuthenticator`, and this points at it
/// @return `success`, `maxPktLengthExceeded`, `invalidAttrDataType` (also of an entry without an
///         attribute), or the fault of the encoder or of hiding
VERDA_EXPORT ErrorMsg addAttributesToPkt(
    const Verda::String& secret, const Verda::Bytes& reqAuth, const Verda::Ptr<RadiusHdr>& hdr,
    const Verda::Ptr<PktInfoBuilder>& pktInfoBuilder, Verda::U8* pkt, Verda::U16& length,
    Verda::U8*& msgAuthPos, const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary);

/// Copies the attributes of one packet into another, replaced or removed as `pktInfoBuilder` says.
/// A Message-Authenticator becomes a place, whatever is asked for it.
/// @param oldPkt  a packet whose Length field is true
/// @param newPkt  a buffer of 4096 bytes that begins with the packet's header
/// @param length  set to the length of what is written, the header's 20 bytes included
/// @return `success`, `maxPktLengthExceeded`, `invalidPktLength` or `invalidAttrLength` (the old
///         packet is not well formed), `invalidAttrDataType` (also of a replacement without a
///         value), or the fault of the encoder or of hiding
VERDA_EXPORT ErrorMsg replaceAttributesInPkt(
    const Verda::U8* oldPkt, Verda::U8* newPkt, const Verda::String& secret,
    const Verda::Bytes& reqAuth, const Verda::Ptr<RadiusHdr>& hdr,
    const Verda::Ptr<PktInfoBuilder>& pktInfoBuilder, Verda::U16& length, Verda::U8*& msgAuthPos,
    const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary);

/// Builds a packet from `pkt` when one is given, else from `hdr`; what the builder's two operations
/// do.
VERDA_EXPORT Verda::Ptr<PktReturn> buildPkt(
    const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::String& secret, const Verda::Bytes& reqAuth,
    const Verda::Ptr<RadiusHdr>& hdr, const Verda::Ptr<PktInfoBuilder>& pktInfoBuilder,
    const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary);

/// The failed result of building a packet: no packet, and `errorMsg`.
VERDA_EXPORT Verda::Ptr<PktReturn> invalidPkt(ErrorMsg errorMsg);

/// The failed result of parsing or making a header: no header, and `errorMsg`.
VERDA_EXPORT Verda::Ptr<RadiusHdrReturn> invalidHdr(ErrorMsg errorMsg);

}  // namespace RadiusPktParserBase
