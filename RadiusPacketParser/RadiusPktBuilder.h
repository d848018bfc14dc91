#pragma once

#include "Tyl/Accessors.h"
#include "Tyl/Entity.h"
#include "Verda/Bytes.h"
#include "Verda/Export.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Types.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktTypes.h"

namespace RadiusPktParserBase {

/// What a build is to put into a packet. The caller's own data: a build reads it and leaves it as
/// it is, so one request may serve several builds, by several threads at once while nobody changes
/// it.
class VERDA_EXPORT PktInfoBuilder : public PktInfoBase {
  TYL_ENTITY(PktInfoBuilder)

 public:
  PktInfoBuilder() = default;

  /// The attributes to append, in ascending order of their keys, which the caller chooses. Set the
  /// `attrWithValue` of each entry: it becomes one attribute for each of its values. The first
  /// entry of a Message-Authenticator is a place: it needs no value, and the build computes it.
  TYL_ENTITY_COLLECTION(OrderedMap, Verda::U16, AttrToAddValue, attributesToAdd, TylAttributesToAdd)
  /// The attributes of an existing packet to overwrite in place, each with the first of its values.
  /// Replacing beats removing; a Message-Authenticator is always kept and computed anew.
  TYL_ENTITY_COLLECTION(HashMap, Attribute, AttrWithValue, attributesToReplace,
                        TylAttributesToReplace)
  /// The attributes of an existing packet to drop.
  TYL_SET(Attribute, attributesToRemove)
};

/// Makes outgoing packets, and changes existing ones.
///
/// A builder holds the dictionary and nothing else: one builder may serve any number of threads at
/// once, each with a header of its own, since a build writes the header's length and authenticator.
///
/// The caller makes what hidden values consist of: for the salted method (RFC 2868 section 3.5) the
/// salt, the length byte and the padding are part of the value.
class VERDA_EXPORT RadiusPktBuilder : public Verda::Node {
  TYL_ENTITY(RadiusPktBuilder)

 public:
  /// A builder on `dictionary`, which must not be null.
  explicit RadiusPktBuilder(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary)
      : dictionary_(dictionary) {}

  /// The dictionary that attributes are looked up in.
  TYL_FIXED_ATTRIBUTE(Verda::Ptr<const RadiusPacketParser::RadiusDict>, dictionary)

  /// A header for a new packet, of length 20. The authenticator of an Access-Request and of a
  /// Status-Server request is random (RFC 2865 section 3); that of any other packet is zeros until
  /// the packet is built.
  /// @return the header, or no header and `pktAuthGenerationFailed`
  Verda::Ptr<RadiusHdrReturn> createRadiusHdr(Verda::U8 code, Verda::U8 id) const;

  /// Builds a packet of the header's code and identifier from the attributes to add, and signs it.
  /// The header receives the packet's length, and but for codes 1 and 12 its authenticator. Use a
  /// new header for each packet: values are hidden under the authenticator that the header holds.
  ///
  /// It is asserted that `reqAuth` is empty when a value of a request, or a Message-Authenticator
  /// of code 1 or 12, is written, and not empty when a value of a response is.
  /// @param secret   the shared secret, up to its first zero byte
  /// @param reqAuth  empty for a request; the authenticator of the request that a response answers
  /// @return the packet, or no packet and the first fault: `invalidPktPtr` (no header),
  ///         `maxPktLengthExceeded`, `invalidBytesCopied` (an authenticator of less than 16 bytes
  ///         where a value is hidden or a Message-Authenticator computed), `md5GenerationFailed`,
  ///         or what the encoders say of an attribute
  Verda::Ptr<PktReturn> createPktFromHdr(const Verda::String& secret, const Verda::Bytes& reqAuth,
                                         const Verda::Ptr<RadiusHdr>& hdr,
                                         const Verda::Ptr<PktInfoBuilder>& pktInfoBuilder) const;

  /// Builds a packet from another: its code and identifier, its attributes in their order, replaced
  /// or removed as the request says, then those to add; and signs it. Hidden values that are copied
  /// stay as they are. The other packet is not changed.
  /// @return the packet, or no packet and the first fault: `invalidPktPtr` (no packet),
  ///         `invalidPktLength` or `invalidAttrLength` (the other packet is not well formed), or as
  ///         `createPktFromHdr`
  Verda::Ptr<PktReturn> modifyPkt(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::String& secret,
                                  const Verda::Bytes& reqAuth,
                                  const Verda::Ptr<PktInfoBuilder>& pktInfoBuilder) const;
};

TYL_FACTORY(pktInfoBuilderFactory, PktInfoBuilder)
TYL_FACTORY(radiusPktBuilderFactory, RadiusPktBuilder)

}  // namespace RadiusPktParserBase
