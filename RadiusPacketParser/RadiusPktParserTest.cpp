#include "RadiusPacketParser/RadiusPktParserTest.h"

#include "Verda/Trace.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"

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
  switch (attr.attrId) {
    case RadiusAttributeId::USER_NAME:
    case RadiusAttributeId::USER_PASSWORD:
    case RadiusAttributeId::CHAP_PASSWORD:
    case RadiusAttributeId::ACCT_STATUS_TYPE:
    case RadiusAttributeId::ACCT_INPUT_OCTETS:
    case RadiusAttributeId::ACCT_SESSION_ID:
    case RadiusAttributeId::EAP_MESSAGE:
      judge(sink, StatusServerErrorMsg::invalidAttributePresent);
      break;
    case RadiusAttributeId::MESSAGE_AUTHENTICATOR:
      judge(sink, StatusServerErrorMsg::success);
      break;
    default:
      if (!sink.msgAuthPresent()) {
        judge(sink, StatusServerErrorMsg::msgAuthNotPresent);
      }
  }
}

}  // namespace RadiusPktParserTest
