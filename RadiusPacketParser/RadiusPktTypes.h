#pragma once

#include <compare>
#include <ostream>
#include <variant>
#include <vector>

#include "Tyl/Accessors.h"
#include "Tyl/Entity.h"
#include "Tyl/Enumeration.h"
#include "Verda/Bytes.h"
#include "Verda/Export.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Trace.h"
#include "Verda/Types.h"
#include "Zonet/IpGenPrefix.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

/// The codec: parses received packets and builds those to send. Every outcome is an `ErrorMsg`;
/// nothing here throws for a bad packet. What a caller does wrong (a Request Authenticator given
/// for a request, none for a response) fails an assertion, which ends the process.
namespace RadiusPktParserBase {

/// Why an operation failed, or `success`.
#define RADIUS_ERROR_MSG_LIST(X)                                                              \
  X(success, 0)             /* it worked */                                                   \
  X(invalidPktPtr, 1)       /* no packet, or no header to build from */                       \
  X(invalidPktAuth, 2)      /* the authenticator does not verify */                           \
  X(invalidMsgAuth, 3)      /* the Message-Authenticator does not verify, or there are two */ \
  X(invalidPktLength, 4)    /* the packet's length: too short, too long, cut */               \
  X(invalidAttrId, 5)       /* the dictionary lacks the attribute */                          \
  X(invalidAttrLength, 6)   /* an attribute's length, or that of its value */                 \
  X(invalidAttrDataType, 7) /* the value does not go with the data type */                    \
  X(invalidVendorId, 8)     /* the dictionary lacks the vendor */                             \
  X(invalidVendorAttrId, 9) /* the dictionary lacks the vendor's attribute */                 \
  X(invalidVendorAttrDataType, 10)    /* a vendor's value does not go with the type */        \
  X(unknownAttrDataType, 11)          /* the dictionary gives no data type */                 \
  X(maxPktLengthExceeded, 12)         /* the packet would have more than 4096 bytes */        \
  X(concatAttrNotConsecutive, 13)     /* fragments of one value stand apart */                \
  X(pktAuthGenerationFailed, 14)      /* no random bytes */                                   \
  X(md5GenerationFailed, 15)          /* libcrypto failed */                                  \
  X(invalidBytesCopied, 16)           /* an authenticator of less than 16 bytes */            \
  X(unsupportedPktType, 17)           /* no rule for a Message-Authenticator in this code */  \
  X(pktTypeDoesNotSupportMsgAuth, 18) /* not given at present */                              \
  X(missingRequiredMsgAuth, 19)       /* an EAP-Message without Message-Authenticator */      \
  X(tagByteMissing, 20)               /* a tagged value of no bytes */

TYL_ENUMERATION(ErrorMsg, ::Verda::U8, RADIUS_ERROR_MSG_LIST)

/// Which attribute: a standard one, or the sub-attribute of a vendor. `attrId` 26 alone says that
/// it is a vendor's.
struct VERDA_EXPORT Attribute {
  Verda::U32 vendorId = 0;     ///< the vendor's enterprise number; 0 for a standard attribute
  Verda::U8 attrId = 0;        ///< the attribute's type; 26 for a vendor attribute
  Verda::U8 vendorAttrId = 0;  ///< the vendor type; 0 for a standard attribute

  /// By the fields in declared order.
  // NOLINTNEXTLINE(modernize-use-nullptr): what the compiler makes of "= default"
  auto operator<=>(const Attribute&) const = default;

  /// Mixes all three fields with a collection's seed.
  Verda::U32 hash(Verda::U32 seed) const;
};

/// The key of a standard attribute.
constexpr Attribute standardAttribute(Verda::U8 attrId) {
  return {.vendorId = 0, .attrId = attrId, .vendorAttrId = 0};
}

/// The key of a vendor's sub-attribute.
VERDA_EXPORT Attribute vendorAttribute(Verda::U32 vendorId, Verda::U8 vendorAttrId);

/// The value of a tagged `string` attribute (RFC 2868). The parser delivers the tag byte as the
/// first byte of `str` and leaves `tag` 0; `separateTag` takes them apart.
struct VERDA_EXPORT TaggedStr {
  Verda::String str;  ///< the text
  Verda::U8 tag = 0;  ///< the tag byte (RFC 2868 section 3.1)

  /// Called on each value that the parser has made; has no effect.
  void handleTaggedStr();

  /// Whether both fields are the same.
  bool operator==(const TaggedStr&) const = default;
};

/// The value of a tagged `integer` attribute (RFC 2868). The parser delivers all 32 bits in
/// `value`, the tag in the highest eight, and leaves `tag` 0; `separateTag` takes them apart.
struct VERDA_EXPORT TaggedInt {
  Verda::U32 value = 0;  ///< the number; 24 bits behind a tag
  Verda::U8 tag = 0;     ///< as in `TaggedStr`

  /// Called on each value that the parser has made; has no effect.
  void handleTaggedInt();

  /// Whether both fields are the same.
  bool operator==(const TaggedInt&) const = default;
};

/// Tag and text of a value as the parser delivers it: the first byte becomes `tag`, the others
/// `str`. An empty value stays as it is.
VERDA_EXPORT TaggedStr separateTag(const TaggedStr& delivered);

/// Tag and number of a value as the parser delivers it: the highest eight bits become `tag`, the
/// low 24 `value`.
VERDA_EXPORT TaggedInt separateTag(const TaggedInt& delivered);

/// The value of an attribute. The alternative follows from the dictionary's data type:
/// 0 `string`; 1 tagged `string`; 2 `integer` or `date`; 3 tagged `integer`; 4 `integer64` (the
/// eight wire bytes in host memory order); 5 `ipaddr`, `ipv6addr`, `ipv6prefix` and `ifid`; 6
/// `octets` and attributes of no known type.
using AttrValue = std::variant<Verda::String, TaggedStr, unsigned int, TaggedInt, unsigned long,
                               Zonet::IpGenPrefix, Verda::Bytes>;

/// What the dictionary says of one attribute.
struct VERDA_EXPORT AttrInfo {
  bool isConcat = false;         ///< long values are split over consecutive attributes
  bool isTagged = false;         ///< the value carries a leading tag byte
  bool isInDict = false;         ///< when false, all else but `errorMsg` is zero
  Verda::U8 encryptionType = 0;  ///< 0 not hidden, 1 User-Password method, 2 salted method
  /// The data type, `unknown` when there is none.
  RadiusPacketParser::RadiusAttributeType::RadiusAttributeTypeEnum attributeType =
      RadiusPacketParser::RadiusAttributeType::unknown;
  ErrorMsg errorMsg = ErrorMsg::success;  ///< why the lookup failed

  AttrInfo() = default;

  /// Reads the text form. Throws `Verda::RangeError`, naming the field, when it is not one.
  explicit AttrInfo(const Verda::String& text);

  /// The record text form: all six fields under their names, in declared order.
  Verda::String text() const;

  /// Whether all fields are the same.
  bool operator==(const AttrInfo&) const = default;
};

/// Prints the text form.
VERDA_EXPORT std::ostream& operator<<(std::ostream& out, const AttrInfo& attrInfo);

/// A packet header, decoded or to be built.
class VERDA_EXPORT RadiusHdr : public Verda::Node {
  TYL_ENTITY(RadiusHdr)

 public:
  RadiusHdr() = default;

  /// The packet's code.
  TYL_ATTRIBUTE(Verda::U8, code, 0)
  /// The identifier that a response shares with its request.
  TYL_ATTRIBUTE(Verda::U8, id, 0)
  /// The length of the whole packet in bytes.
  TYL_ATTRIBUTE(Verda::U16, length, 0)
  /// The 16 authenticator bytes; empty while they are not known.
  TYL_ATTRIBUTE(Verda::String, authenticator, {})
};

/// One attribute with its values in order.
class VERDA_EXPORT AttrWithValue : public Verda::Node {
  TYL_ENTITY(AttrWithValue)

 public:
  /// An attribute without values.
  explicit AttrWithValue(const Attribute& attribute) : attribute_(attribute) {}

  /// Which attribute.
  TYL_FIXED_ATTRIBUTE(Attribute, attribute)
  /// Its values: each becomes one attribute of the packet.
  TYL_SEQUENCE(AttrValue, attrValue)
};

/// One row of the builder's table of attributes to add.
class VERDA_EXPORT AttrToAddValue : public Verda::Node {
  TYL_ENTITY(AttrToAddValue)

 public:
  /// A row without an attribute.
  explicit AttrToAddValue(Verda::U16 key) : key_(key) {}

  /// The row's place in the table.
  TYL_FIXED_ATTRIBUTE(Verda::U16, key)
  /// The attribute with its values; null until set.
  TYL_ATTRIBUTE(Verda::Ptr<AttrWithValue>, attrWithValue, nullptr)
};

/// The outcome of building or modifying a packet.
class VERDA_EXPORT PktReturn : public Verda::Node {
  TYL_ENTITY(PktReturn)

 public:
  /// The outcome that has this packet, or none.
  explicit PktReturn(const Verda::Ptr<Zonet::Pkt>& pkt) : pkt_(pkt) {}

  /// The packet; null on failure.
  TYL_FIXED_ATTRIBUTE(Verda::Ptr<Zonet::Pkt>, pkt)
  /// Why there is no packet, or `success`.
  TYL_ATTRIBUTE(ErrorMsg, errorMsg, ErrorMsg::success)
};

/// The outcome of parsing or making a header.
class VERDA_EXPORT RadiusHdrReturn : public Verda::Node {
  TYL_ENTITY(RadiusHdrReturn)

 public:
  /// The outcome that has this header, or none.
  explicit RadiusHdrReturn(const Verda::Ptr<RadiusHdr>& hdr) : hdr_(hdr) {}

  /// The header; null on failure.
  TYL_FIXED_ATTRIBUTE(Verda::Ptr<RadiusHdr>, hdr)
  /// Why there is no header, or `success`.
  TYL_ATTRIBUTE(ErrorMsg, errorMsg, ErrorMsg::success)
};

/// What a caller hands to the codec with one packet: the base of the parser's sink and of the
/// builder's request.
class VERDA_EXPORT PktInfoBase : public Verda::Node {
  TYL_ENTITY(PktInfoBase)

 public:
  PktInfoBase() = default;
};

/// The attributes of which a run of fragments has ended in a packet.
class VERDA_EXPORT ConcatAttr : public Verda::Node {
  TYL_ENTITY(ConcatAttr)

 public:
  ConcatAttr() = default;

  /// Their keys.
  TYL_SET(Attribute, concatAttrMap)
};

TYL_FACTORY(radiusHdrFactory, RadiusHdr)
TYL_FACTORY(attrWithValueFactory, AttrWithValue)
TYL_FACTORY(attrToAddValueFactory, AttrToAddValue)
TYL_FACTORY(pktReturnFactory, PktReturn)
TYL_FACTORY(radiusHdrReturnFactory, RadiusHdrReturn)
TYL_FACTORY(pktInfoBaseFactory, PktInfoBase)
TYL_FACTORY(concatAttrFactory, ConcatAttr)

/// Where the codec traces: "RadiusPacketParser::RadiusPktParser". The library's own: not exported.
extern Verda::TraceFacility codecTrace;

}  // namespace RadiusPktParserBase
