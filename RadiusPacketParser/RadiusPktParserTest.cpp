#include "RadiusPacketParser/RadiusPktParserTest.h"

#include "Verda/Trace.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.detail.h"

namespace RadiusPktParserTest {

using RadiusPacketParser::RadiusAttributeId;
using RadiusPktParserBase::Attribute;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::PktInfoParser;
using Verda::Ptr;

TYL_ENUMERATION_TABLE(StatusServerErrorMsg, RADIUS_STATUS_SERVER_ERROR_MSG_LIST)

TYL_ENTITY_TYPE(StatusServerPktInfoParser)
TYL_ENTITY_TYPE(StatusServerPktParser)

namespace {

Verda::TraceFacility statusServerTrace("RadiusPacketParser::RadiusPktParserTest");

void judge(StatusServerPktInfoParser& sink, StatusServerErrorMsg verdict) {
  sink.badPktIs(verdict != StatusServerErrorMsg::success);
  sink.errorMsgIs(verdict);
}

}  // namespace

void StatusServerPktParser::doProcessAttribute(const Attribute& attr,
                                               const AttrValue& /*attrValue*/,
                                               AttrInfo /*attrInfo*/,
                                               const Ptr<PktInfoParser>& pktInfoParser) {
  VERDA_TRACE(statusServerTrace, Verda::traceEntries, "StatusServerPktParser", "entry");
  auto& sink = static_cast<StatusServerPktInfoParser&>(*pktInfoParser);
  if (sink.errorMsg() == StatusServerErrorMsg::invalidAttributePresent) {
    return;
  }
  if (RadiusPktParserBase::detail::isForbiddenInStatusServer(attr.attrId)) {
    judge(sink, StatusServerErrorMsg::invalidAttributePresent);
  } else if (attr.attrId == RadiusAttributeId::MESSAGE_AUTHENTICATOR) {
    judge(sink, StatusServerErrorMsg::success);
  } else if (!sink.msgAuthPresent()) {
    judge(sink, StatusServerErrorMsg::msgAuthNotPresent);
  }
}

}  // namespace RadiusPktParserTest
