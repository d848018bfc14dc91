#include "RadiusPacketParser/RadiusPktTypes.h"

#include "Tyl/RecordText.h"
#include "Verda/Hash.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace RadiusPktParserBase {

using RadiusPacketParser::RadiusAttributeId;
using Verda::U32;
using Verda::U64;
using Verda::U8;

TYL_ENUMERATION_TABLE(ErrorMsg, RADIUS_ERROR_MSG_LIST)

TYL_ENTITY_TYPE(RadiusHdr)
TYL_ENTITY_TYPE(AttrWithValue)
TYL_ENTITY_TYPE(AttrToAddValue)
TYL_ENTITY_TYPE(PktReturn)
TYL_ENTITY_TYPE(RadiusHdrReturn)
TYL_ENTITY_TYPE(PktInfoBase)
TYL_ENTITY_TYPE(ConcatAttr)

Verda::TraceFacility codecTrace("RadiusPacketParser::RadiusPktParser");

namespace {

constexpr U32 tagShift = 24;
constexpr U32 taggedValueMask = 0x00FFFFFF;

/// The record's fields, the same list for writing and for reading.
template <typename Record, typename Info>
void eachField(Record& record, Info& info) {
  record.field("isConcat", info.isConcat);
  record.field("isTagged", info.isTagged);
  record.field("isInDict", info.isInDict);
  record.field("encryptionType", info.encryptionType);
  record.field("attributeType", info.attributeType);
  record.field("errorMsg", info.errorMsg);
}

}  // namespace

U32 Attribute::hash(U32 seed) const {
  return Verda::hashMix(seed, (U64{vendorId} << 16U) | (U64{attrId} << 8U) | vendorAttrId);
}

Attribute vendorAttribute(U32 vendorId, U8 vendorAttrId) {
  return {.vendorId = vendorId,
          .attrId = RadiusAttributeId::VENDOR_SPECIFIC,
          .vendorAttrId = vendorAttrId};
}

void TaggedStr::handleTaggedStr() {}

void TaggedInt::handleTaggedInt() {}

TaggedStr separateTag(const TaggedStr& delivered) {
  if (delivered.str.empty()) {
    return delivered;
  }
  return {.str = delivered.str.view().substr(1), .tag = static_cast<U8>(delivered.str[0])};
}

TaggedInt separateTag(const TaggedInt& delivered) {
  return {.value = delivered.value & taggedValueMask,
          .tag = static_cast<U8>(delivered.value >> tagShift)};
}

AttrInfo::AttrInfo(const Verda::String& text) {
  Tyl::RecordReader record(text.view());
  eachField(record, *this);
  record.end();
}

Verda::String AttrInfo::text() const {
  Tyl::RecordWriter record;
  eachField(record, *this);
  return record.text();
}

std::ostream& operator<<(std::ostream& out, const AttrInfo& attrInfo) {
  return out << attrInfo.text();
}

}  // namespace RadiusPktParserBase
