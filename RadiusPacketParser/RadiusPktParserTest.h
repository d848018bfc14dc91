// Product code, whatever its name suggests: the parser that tests Status-Server packets.
#pragma once

#include "Tyl/Accessors.h"
#include "Tyl/Entity.h"
#include "Tyl/Enumeration.h"
#include "Verda/Export.h"
#include "Verda/Ptr.h"
#include "Verda/Types.h"

#include "RadiusPacketParser/RadiusPktParser.h"
#include "RadiusPacketParser/RadiusPktTypes.h"

/// The codec's parser for Status-Server requests (RFC 5997): beside what holds for every packet, it
/// judges which attributes such a request carries.
namespace RadiusPktParserTest {

/// Which rule on Status-Server requests a packet breaks, or `success`:
/// - `msgAuthNotPresent`: an attribute stands before any verified Message-Authenticator;
/// - `invalidAttributePresent`: there is an attribute that such a request must not carry.
#define RADIUS_STATUS_SERVER_ERROR_MSG_LIST(X) \
  X(success, 0)                                \
  X(msgAuthNotPresent, 1)                      \
  X(invalidAttributePresent, 2)

TYL_ENUMERATION(StatusServerErrorMsg, ::Verda::U8, RADIUS_STATUS_SERVER_ERROR_MSG_LIST)

/// The sink of one packet and the verdict on it, which grows attribute by attribute. Make one per
/// packet, and read it once `doProcessPkt` has returned `success`: a fault ends the walk, and the
/// attributes behind it are not judged.
class VERDA_EXPORT StatusServerPktInfoParser : public RadiusPktParserBase::PktInfoParser {
  TYL_ENTITY(StatusServerPktInfoParser)

 public:
  StatusServerPktInfoParser() = default;

  /// Whether a rule is broken: `errorMsg` is not `success`.
  TYL_ATTRIBUTE(bool, badPkt, false)
  /// The rule that is broken.
  TYL_ATTRIBUTE(StatusServerErrorMsg, errorMsg, StatusServerErrorMsg::success)
};

/// Parses packets as `RadiusPktParser` does, under the same conditions on sharing, and judges their
/// attributes by the rules for Status-Server requests. It judges a packet of any code alike.
class VERDA_EXPORT StatusServerPktParser : public RadiusPktParserBase::RadiusPktParser {
  TYL_ENTITY(StatusServerPktParser)

 public:
  using RadiusPktParser::RadiusPktParser;

  /// Judges one attribute by its `attrId` alone. A Message-Authenticator, wherever it stands, makes
  /// good for the attributes before it; nothing makes good for a forbidden attribute. A packet
  /// without attributes is never judged and stays good.
  /// @param pktInfoParser  a `StatusServerPktInfoParser`, which is not checked
  void doProcessAttribute(
      const RadiusPktParserBase::Attribute& attr, const RadiusPktParserBase::AttrValue& attrValue,
      RadiusPktParserBase::AttrInfo attrInfo,
      const Verda::Ptr<RadiusPktParserBase::PktInfoParser>& pktInfoParser) override;
};

TYL_FACTORY(statusServerPktInfoParserFactory, StatusServerPktInfoParser)
TYL_FACTORY(statusServerPktParserFactory, StatusServerPktParser)

}  // namespace RadiusPktParserTest
