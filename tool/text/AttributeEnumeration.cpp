#include "tool/text/AttributeEnumeration.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusAccountingStatus;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusDynAuthErrorCode;
using RadiusPacketParser::RadiusServiceTypeValue;
using RadiusPktParserBase::Attribute;

const Tyl::EnumerationTable* enumerationOf(const Attribute& key) {
  switch (key.attrId) {
    case RadiusAttributeId::SERVICE_TYPE:
      return &RadiusServiceTypeValue::enumerationTable();
    case RadiusAttributeId::ACCT_STATUS_TYPE:
      return &RadiusAccountingStatus::enumerationTable();
    case RadiusAttributeId::ERROR_CAUSE:
      return &RadiusDynAuthErrorCode::enumerationTable();
    default:
      return nullptr;
  }
}

}  // namespace RadiusPacketTool
