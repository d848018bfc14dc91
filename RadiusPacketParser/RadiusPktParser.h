#pragma once

#include "Tyl/Accessors.h"
#include "Tyl/Entity.h"
#include "Verda/Bytes.h"
#include "Verda/Export.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "RadiusPacketParser/RadiusPktTypes.h"

namespace RadiusPktParserBase {

/// The sink of one packet: what the caller hands to `doProcessPkt` and what the hook receives.
/// Derive from it to keep what the hook collects. One that is used again carries `msgAuthPresent`
/// over, so make one per packet.
class VERDA_EXPORT PktInfoParser : public PktInfoBase {
  TYL_ENTITY(PktInfoParser)

 public:
  PktInfoParser() = default;

  /// Whether a Message-Authenticator has been found and verified (in accounting packets: found).
  TYL_ATTRIBUTE(bool, msgAuthPresent, false)
};

/// Parses received packets. Derive from it and override `doProcessAttribute` to receive the decoded
/// attributes.
///
/// A parser holds the dictionary and nothing else: one parser may serve any number of threads at
/// once, each with a packet and a sink of its own.
class VERDA_EXPORT RadiusPktParser : public Verda::Node {
  TYL_ENTITY(RadiusPktParser)

 public:
  /// A parser on `dictionary`, which must not be null.
  explicit RadiusPktParser(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary)
      : dictionary_(dictionary) {}

  /// The dictionary that attributes are looked up in.
  TYL_FIXED_ATTRIBUTE(Verda::Ptr<const RadiusPacketParser::RadiusDict>, dictionary)

  /// The hook: called by `doProcessPkt` once per attribute, in packet order. It cannot stop the
  /// walk. A value split over several attributes comes fragment by fragment; a tag stays part of
  /// the value (`separateTag`); revealed values keep padding, salt and length byte. Does nothing
  /// here.
  virtual void doProcessAttribute(const Attribute& attr, const AttrValue& attrValue,
                                  AttrInfo attrInfo,
                                  const Verda::Ptr<PktInfoParser>& pktInfoParser);

  /// Checks that a packet holds a well-formed header (RFC 2865 section 3) and returns it; any code
  /// passes. Bytes behind the packet's length are padding.
  /// @return the header, or no header and `invalidPktPtr` or `invalidPktLength`
  Verda::Ptr<RadiusHdrReturn> getHeader(const Verda::Ptr<Zonet::Pkt>& pkt) const;

  /// Checks a whole packet - header, authenticator, framing, Message-Authenticator and the rules on
  /// single attributes - reveals hidden values, decodes every attribute by its dictionary type and
  /// hands it to the hook. The first fault ends the walk and is the result; attributes handed over
  /// before it stay handed.
  ///
  /// The packet must be this call's alone while it runs. `reqAuth` must be empty for a request and
  /// not empty for anything else, which is asserted: look at the header first (`isRequest`,
  /// `canAnswer`), for a stranger may send any code.
  /// @param secret         the shared secret, up to its first zero byte
  /// @param reqAuth        the authenticator of the request that the packet answers
  /// @param pktInfoParser  the sink; must not be null
  ErrorMsg doProcessPkt(const Verda::Ptr<Zonet::Pkt>& pkt, const Verda::String& secret,
                        const Verda::Bytes& reqAuth,
                        const Verda::Ptr<PktInfoParser>& pktInfoParser);
};

TYL_FACTORY(pktInfoParserFactory, PktInfoParser)
TYL_FACTORY(radiusPktParserFactory, RadiusPktParser)

}  // namespace RadiusPktParserBase
