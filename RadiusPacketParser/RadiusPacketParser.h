#pragma once

#include <compare>
#include <ostream>

#include "Tyl/Accessors.h"
#include "Tyl/Entity.h"
#include "Verda/Bytes.h"
#include "Verda/Export.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Types.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"

/// The legacy interface: one object per packet, which checks it, reads its values as text, makes
/// edited copies of it, and computes and checks its authenticators.
///
/// A bad packet sets `badPkt`, and the validators say false. What a caller does wrong (a Request
/// Authenticator given for a request, a value over a limit, a type that the editor does not know)
/// is traced where there is something to say, and fails an assertion, which ends the process.
///
/// The operations trust the Length field, not the number of bytes that there are. What lies behind
/// a packet's own bytes reads as zeros, and nothing but the packet's own storage is ever touched:
/// it grows when a Length says more than it holds.
///
/// New code is better off with `RadiusPktParserBase`.
namespace RadiusPacketParser {

/// A packet header.
class VERDA_EXPORT RadiusHdr : public Verda::Node {
  TYL_ENTITY(RadiusHdr)

 public:
  RadiusHdr() = default;

  /// The packet's code.
  TYL_ATTRIBUTE(Verda::U8, code, 0)
  /// The identifier that a response shares with its request.
  TYL_ATTRIBUTE(Verda::U8, id, 0)
  /// The packet's Length field, in bytes.
  TYL_ATTRIBUTE(Verda::U16, length, 0)
  /// The 16 authenticator bytes.
  TYL_ATTRIBUTE(Verda::String, authenticator, {})
};

/// One kind of attribute, standard or vendor.
struct VERDA_EXPORT Attribute {
  Verda::U8 attrId = 0;        ///< the attribute's type; 26 for a vendor attribute
  Verda::U8 vendorAttrId = 0;  ///< the vendor type; 0 for a standard attribute
  Verda::U32 vendorId = 0;     ///< the vendor's enterprise number; 0 for a standard attribute

  Attribute() = default;
  /// The kind of these numbers.
  Attribute(Verda::U8 type, Verda::U8 vendorType, Verda::U32 vendor)
      : attrId(type), vendorAttrId(vendorType), vendorId(vendor) {}
  /// Reads the text form. Throws `Verda::RangeError`, naming the field, when it is not one.
  explicit Attribute(const Verda::String& text);

  /// By the fields in declared order.
  // NOLINTNEXTLINE(modernize-use-nullptr): what the compiler makes of "= default"
  auto operator<=>(const Attribute&) const = default;

  /// Mixes all three fields with a collection's seed.
  Verda::U32 hash(Verda::U32 seed) const;

  /// The record text form: the three fields under their names, in declared order.
  Verda::String text() const;
};

/// A vendor attribute to add, its value as text.
struct VERDA_EXPORT VsaValueType {
  Verda::U32 vendorId = 0;  ///< the vendor's enterprise number
  Verda::U8 code = 0;       ///< the vendor type
  Verda::String value;      ///< as text, which the dictionary's data type says how to read

  VsaValueType() = default;
  /// An attribute with this text.
  VsaValueType(Verda::U32 vendor, Verda::U8 vendorType, const Verda::String& text)
      : vendorId(vendor), code(vendorType), value(text) {}
  /// Reads the text form. Throws `Verda::RangeError`, naming the field, when it is not one.
  explicit VsaValueType(const Verda::String& text);

  /// Whether all fields are the same.
  bool operator==(const VsaValueType&) const = default;
  /// By the fields in declared order.
  // NOLINTNEXTLINE(modernize-use-nullptr): what the compiler makes of "= default"
  std::strong_ordering operator<=>(const VsaValueType&) const = default;

  /// Whether any field is not what it is by default.
  explicit operator bool() const { return *this != VsaValueType(); }

  /// Mixes all three fields with a collection's seed.
  Verda::U32 hash(Verda::U32 seed) const;

  /// The record text form: the three fields under their names, in declared order.
  Verda::String text() const;
};

/// Prints the text form.
VERDA_EXPORT std::ostream& operator<<(std::ostream& out, const Attribute& attribute);
/// Prints the text form.
VERDA_EXPORT std::ostream& operator<<(std::ostream& out, const VsaValueType& vsa);

/// The values that a packet holds of one kind of attribute.
class VERDA_EXPORT AttrInfo : public Verda::Node {
  TYL_ENTITY(AttrInfo)

 public:
  /// No values yet.
  explicit AttrInfo(const Attribute& attribute) : attribute_(attribute) {}

  /// Which kind.
  TYL_FIXED_ATTRIBUTE(Attribute, attribute)
  /// The values as text, numbered from 0 as the packet has them.
  TYL_VALUE_COLLECTION(OrderedMap, Verda::U16, Verda::String, value, TylValue)
  /// The tag bytes under the same numbers, of kinds that carry one (RFC 2868).
  TYL_VALUE_COLLECTION(HashMap, Verda::U16, Verda::U8, tag, TylTag)
};

/// A packet with what is asked of it. The object belongs to one caller at a time, and so does the
/// packet that it is given: validating changes it while it runs, and hiding, identifier and
/// authenticators are written into it.
///
/// Where the packet's Length says more than there is, any operation may let the packet's storage
/// grow: pointers into its bytes are then void.
///
/// Every operation but `setHeader` reads `header`; it is asserted that there is one ("header()").
/// None of them refreshes it: whoever changes code, length or authenticator in the packet calls
/// `setHeader` again.
class VERDA_EXPORT RadiusPacketParserBase : public Verda::Node {
  TYL_ENTITY(RadiusPacketParserBase)

 public:
  /// Looks at nothing yet: call `setHeader` before any other operation.
  RadiusPacketParserBase(const Verda::Ptr<const RadiusDict>& dictionary,
                         const Verda::Ptr<Zonet::Pkt>& pkt)
      : dictionary_(dictionary), pkt_(pkt) {}

  /// The dictionary that attributes are looked up in; not null.
  TYL_FIXED_ATTRIBUTE(Verda::Ptr<const RadiusDict>, dictionary)
  /// The packet.
  TYL_ATTRIBUTE(Verda::Ptr<Zonet::Pkt>, pkt, nullptr)

  /// The packet's header; null until `setHeader` has found one.
  const Verda::Ptr<RadiusHdr>& header() const { return header_; }
  /// Makes a new header the object's, and returns it.
  Verda::Ptr<RadiusHdr> headerIs();

  /// The kinds whose values `getValuesOfAttributesFromAttributeList` reads.
  TYL_SET(Attribute, getValueOfAttributesList)
  /// What it found, for each kind that was asked for.
  TYL_ENTITY_COLLECTION(HashMap, Attribute, AttrInfo, attrInfo, TylAttrInfo)
  /// The types that `setValuesOfAttributesFromAttributesToSet` rewrites, each with its text.
  TYL_VALUE_COLLECTION(HashMap, Verda::U8, Verda::String, attributesToSet, TylAttributesToSet)
  /// The standard attributes that `addAttribute` appends, in no particular order.
  TYL_VALUE_COLLECTION(HashMap, Verda::U8, Verda::String, attributesToAdd, TylAttributesToAdd)
  /// The vendor attributes that `addAttribute` appends, in ascending order of the caller's keys.
  TYL_VALUE_COLLECTION(OrderedMap, Verda::U8, VsaValueType, vsaToAdd, TylVsaToAdd)
  /// The kinds that `removeAttribute` leaves out.
  TYL_SET(Attribute, attributesToRemove)

  /// Whether the packet failed a check.
  bool badPkt() const { return badPkt_; }
  /// Marks the packet as bad; a mark stays.
  void badPktIs(bool bad) { badPkt_ = badPkt_ || bad; }

  /// Whether the check found a well-formed Message-Authenticator.
  TYL_ATTRIBUTE(bool, msgAuthPresent, false)

  // ---- Checking ----

  /// Reads the packet's first 20 bytes into a new `header`. A shorter packet is bad, and `header`
  /// stays. It is asserted that there is a packet ("pkt()").
  void setHeader();

  /// Checks the packet's Length field (20 to 4096), the framing of its attributes, the lengths that
  /// their types demand, and that an EAP-Message comes with a Message-Authenticator (RFC 3579
  /// section 3.1). The first fault is traced, and makes the packet bad. Of a vendor attribute the
  /// first sub-attribute is checked, if the dictionary knows the vendor.
  virtual void doBasicPacketSanityCheck();

  /// Whether the Length field says 20 to 4096; traces when it does not.
  bool validatePacketLength() const;

  /// Whether the packet has the identifier of the request; traces when it does not.
  /// @param reqHdr  not null
  // NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes it by value
  bool validatePacketId(Verda::Ptr<RadiusHdr> reqHdr) const;

  /// Whether a Status-Server request (RFC 5997) has a Message-Authenticator and no attribute that
  /// asks for authentication or accounting. False also when an attribute's length byte is zero.
  bool validateStatusServerPkt();

  /// The data type of an attribute, `unknown` when the dictionary lacks it.
  RadiusAttributeType::RadiusAttributeTypeEnum getAttributeType(const Attribute& attribute) const;

  // ---- Reading ----

  /// Reads the values of the kinds in `getValueOfAttributesList` into `attrInfo`, behind those that
  /// are there. Of a bad packet nothing is read.
  ///
  /// Strings and octets are given byte by byte; numbers and dates in decimal; an `ipaddr` with
  /// dots; `ipv6addr` and `ifid` as hexadecimal groups, none of them shortened; an `ipv6prefix`
  /// likewise with its length. A vendor's address is an empty text. A packet that holds a kind of
  /// another type fails the assertion "false".
  void getValuesOfAttributesFromAttributeList();

  // ---- Editing: a new packet is made, and this one stays as it is ----
  //
  // What is left to do: the identifier, hiding, the Message-Authenticator and the authenticator, by
  // an object made of the new packet. It is asserted that the new packet has at most 4096 bytes.

  /// The packet with the attributes of `attributesToSet` rewritten: types 1, 2, 30, 31 and 32 with
  /// the text, 4 and 95 with the address that it says; any other type fails the assertion "false".
  /// The authenticator is zeros. Keep texts to 253 bytes: the length counts in eight bits and is
  /// not checked, so that a longer text, or what follows it, becomes other attributes.
  /// @throws std::invalid_argument, std::out_of_range, Zonet::AddressTextError for an address that
  ///         the text does not say
  Verda::Ptr<Zonet::Pkt> setValuesOfAttributesFromAttributesToSet();

  /// The packet with `attributesToAdd` and `vsaToAdd` appended, by their data types. When the
  /// packet has a Message-Authenticator, or one is to be added (whatever its text), a zeroed one
  /// comes first, and its key is removed from `attributesToAdd`.
  /// @throws std::invalid_argument, std::out_of_range, Zonet::AddressTextError for an address that
  ///         the text does not say
  Verda::Ptr<Zonet::Pkt> addAttribute();

  /// The packet without the attributes of `attributesToRemove`. A vendor attribute goes as a whole
  /// when its first sub-attribute is named.
  Verda::Ptr<Zonet::Pkt> removeAttribute();

  // ---- Authenticators and hiding: in the packet itself ----
  //
  // The secret counts up to its first zero byte. `reqAuth` is empty for a request and holds the
  // request's 16 bytes for a response; anything else fails an assertion.

  /// Whether the authenticator is right; true for Access-Request and Status-Server, which have
  /// nothing to check.
  bool validateAuthenticator(const Verda::String& secret, const Verda::Bytes& reqAuth);

  /// Whether the Message-Authenticator is right; true when `msgAuthPresent` is not set, and for
  /// accounting packets. The packet ends as it began, with the authenticator that `header` holds.
  bool validateMessageAuthenticator(const Verda::String& secret, const Verda::Bytes& reqAuth);

  /// Hides, and reveals, every attribute that the dictionary says hidden: `cryptoHelper`.
  void encryptPacket(const Verda::String& secret, const Verda::Bytes& reqAuth);
  /// Reveals likewise.
  void decryptPacket(const Verda::String& secret, const Verda::Bytes& reqAuth);

  /// Writes the identifier into the packet.
  void setPacketIdentifier(Verda::U8 id);

  /// Writes the authenticator of a request. For Access-Request and Status-Server it is 16 bytes of
  /// `rand()`, seeded with the current second: guessable, and the same for all requests of one
  /// second. `RadiusPktParserBase::RadiusPktBuilder` has a better one.
  void setRequestAuthenticator(const Verda::String& secret);

  /// Writes the authenticator of a response.
  void setResponseAuthenticator(const Verda::String& secret, const Verda::Bytes& reqAuth);

  /// Writes the value of the packet's Message-Authenticator, and leaves zeros or the Request
  /// Authenticator in the place of a digest that is still to be set. A packet without one is traced
  /// and left as it is.
  void setMessageAuthenticator(const Verda::String& secret, const Verda::Bytes& reqAuth);

 private:
  /// The header, of which it is asserted that there is one.
  const RadiusHdr& knownHeader() const;

  Verda::Ptr<RadiusHdr> header_;
  bool badPkt_ = false;
};

/// A packet that is parsed and checked when the object is made: ask `badPkt` first.
class VERDA_EXPORT RadiusPacketParser : public RadiusPacketParserBase {
  TYL_ENTITY(RadiusPacketParser)

 public:
  /// Parses and checks `pkt`: asks `handleInitialized`.
  RadiusPacketParser(const Verda::Ptr<const RadiusDict>& dictionary,
                     const Verda::Ptr<Zonet::Pkt>& pkt);

  /// `setHeader`, and `doBasicPacketSanityCheck` unless the packet is bad; the constructor runs it.
  void handleInitialized();
};

/// Makes a packet without attributes from a header.
class VERDA_EXPORT RadiusPacketNew : public Verda::Node {
  TYL_ENTITY(RadiusPacketNew)

 public:
  /// @param hdr  not null
  explicit RadiusPacketNew(const Verda::Ptr<RadiusHdr>& hdr) : hdr_(hdr) {}

  /// The header, as it was given.
  TYL_FIXED_ATTRIBUTE(Verda::Ptr<RadiusHdr>, hdr)

  /// A packet of 20 bytes: code, identifier, length 20, and the first 16 bytes of the header's
  /// authenticator, of which it is asserted that there are so many.
  Verda::Ptr<Zonet::Pkt> createPacket() const;
};

TYL_FACTORY(radiusHdrFactory, RadiusHdr)
TYL_FACTORY(attrInfoFactory, AttrInfo)
TYL_FACTORY(radiusPacketParserBaseFactory, RadiusPacketParserBase)
TYL_FACTORY(radiusPacketParserFactory, RadiusPacketParser)
TYL_FACTORY(radiusPacketNewFactory, RadiusPacketNew)

// ---- One attribute ----
//
// `attr` points at the attribute's first byte, the outer one for a vendor attribute (`isVsa`).

/// The bytes of a string or of octets, without the tag when there is one.
/// @param attr      holds a value of `valueLen` bytes
/// @param valueLen  the value's length, the tag counted; it is asserted that a tagged one is not
///                  empty ("distance >= 0")
VERDA_EXPORT Verda::String extractStrOctetTypes(Verda::U8* attr, Verda::U32 valueLen, bool isVsa,
                                                bool hasTag);

/// A number, in decimal. With a tag the bytes behind it are the low 24 bits.
/// @param valueLen  the value's length, the tag counted; of more than 4 bytes the first 4 count
VERDA_EXPORT Verda::String extractIntegerDateTypes(Verda::U8* attr, Verda::U32 valueLen, bool isVsa,
                                                   bool hasTag);

/// Writes an attribute, or the sub-attribute of a vendor's behind the 6 bytes that are left for its
/// head. A text of more than 253 bytes is traced and fails an assertion.
VERDA_EXPORT void addStrOctetTypes(Verda::U8* attr, Verda::U8 code, Verda::String text, bool isVsa);

/// Writes a number likewise. The text is read as `strtoll` does, in base 10, 16 (`0x`) or 8 (`0`):
/// as far as it is one, and 0 when it is none; the low 32 bits count.
VERDA_EXPORT void addIntegerDateTypes(Verda::U8* attr, Verda::U8 code, Verda::String text,
                                      bool isVsa);

// ---- Digests and hiding ----

/// The MD5 of `len` bytes at `data`, into 16 bytes at `out`.
VERDA_EXPORT void md5Calculator(Verda::U8* data, Verda::U32 len, Verda::U8* out);

/// The HMAC-MD5 of a packet with the value of its first Message-Authenticator zeroed (RFC 3579
/// section 3.2).
/// @param dictionary  not consulted
/// @param savedValue  16 bytes that receive the value as it stood, which is put back; or null: the
///                    value stays zeroed
/// @param hmacOut     receives the 16 bytes
/// @param cursor      points at the packet, and is moved to its Message-Authenticator; to where the
///                    search ended when there is none
/// @param length      how many bytes to sign; there must be so many, and a whole attribute where
///                    one begins
VERDA_EXPORT void calculateMsgAuthenticator(const Verda::String& secret,
                                            const Verda::Ptr<const RadiusDict>& dictionary,
                                            Verda::U8* savedValue, Verda::U8* hmacOut,
                                            Verda::U8** cursor, Verda::U32 length);

/// Hides or reveals a value in place. Nothing is done to one that is not longer than tag and salt.
/// @param lengthByte      the length byte of the attribute, or of a vendor's sub-attribute, with
///                        the value behind it
/// @param authenticator   16 bytes; it is asserted
/// @param encrypt         true hides, false reveals
/// @param encryptionType  2 for the method with a salt (RFC 2868 section 3.5), anything else for
///                        the one without (RFC 2865 section 5.2)
VERDA_EXPORT void encryptHelper(const Verda::String& secret, Verda::U8* lengthByte,
                                const Verda::Bytes& authenticator, bool hasTag, bool encrypt,
                                Verda::U8 encryptionType);

/// Hides or reveals every attribute of a packet that the dictionary says hidden by method 1 or 2,
/// in the packet's buffer: under the header's authenticator for a request, else under `reqAuth`.
/// What the dictionary lacks is traced and left alone.
VERDA_EXPORT void cryptoHelper(const Verda::Ptr<const Zonet::Pkt>& pkt,
                               const Verda::Ptr<const RadiusHdr>& header,
                               const Verda::String& secret, const Verda::Bytes& reqAuth,
                               const Verda::Ptr<const RadiusDict>& dictionary, bool encrypt);

}  // namespace RadiusPacketParser
