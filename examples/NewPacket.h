#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "Verda/Bytes.h"
#include "Verda/Ptr.h"
#include "Verda/String.h"
#include "Verda/Types.h"
#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktTypes.h"

namespace Example {

/// The attributes of a packet to build; they stand in it in the order in which they are added.
class AttributesToAdd {
 public:
  void add(const RadiusPktParserBase::Attribute& attribute,
           const RadiusPktParserBase::AttrValue& value) {
    next(attribute)->attrValuePush(value);
  }
  void add(Verda::U8 attrId, const RadiusPktParserBase::AttrValue& value) {
    add(RadiusPktParserBase::standardAttribute(attrId), value);
  }
  void addText(Verda::U8 attrId, std::string_view text) {
    add(attrId, RadiusPktParserBase::AttrValue(std::in_place_type<Verda::String>, text));
  }
  /// A place for it: the build computes the value, once all other bytes are there.
  void addMessageAuthenticator() {
    next(RadiusPktParserBase::standardAttribute(
        RadiusPacketParser::RadiusAttributeId::MESSAGE_AUTHENTICATOR));
  }

  const Verda::Ptr<RadiusPktParserBase::PktInfoBuilder>& toBuild() const { return toBuild_; }

 private:
  Verda::Ptr<RadiusPktParserBase::AttrWithValue> next(
      const RadiusPktParserBase::Attribute& attribute) {
    auto added = RadiusPktParserBase::attrWithValueFactory(attribute);
    toBuild_->attributesToAddIs(nextKey_++)->attrWithValueIs(added);
    return added;
  }

  Verda::Ptr<RadiusPktParserBase::PktInfoBuilder> toBuild_ =
      RadiusPktParserBase::pktInfoBuilderFactory();
  Verda::U16 nextKey_ = 0;
};

/// A packet that is ready to be sent, and its header. Of a request, the header is what an agent
/// remembers until the answer is there.
struct NewPacket {
  Verda::Ptr<RadiusPktParserBase::RadiusHdr> hdr;
  Verda::Ptr<Zonet::Pkt> pkt;
};

/// Builds a packet, always with a header of its own: one that has served another packet holds that
/// packet's authenticator.
/// @param reqAuth  empty for a request; the authenticator of the request that a response answers
inline NewPacket newPacket(const RadiusPktParserBase::RadiusPktBuilder& builder, Verda::U8 code,
                           Verda::U8 id, const Verda::String& secret, const Verda::Bytes& reqAuth,
                           const AttributesToAdd& attributes) {
  using RadiusPktParserBase::ErrorMsg;
  const auto header = builder.createRadiusHdr(code, id);
  if (header->errorMsg() != ErrorMsg::success) {
    throw std::runtime_error("no header: " + std::string(stringValue(header->errorMsg()).view()));
  }
  const auto built = builder.createPktFromHdr(secret, reqAuth, header->hdr(), attributes.toBuild());
  if (built->errorMsg() != ErrorMsg::success) {
    throw std::runtime_error("no packet: " + std::string(stringValue(built->errorMsg()).view()));
  }
  return {header->hdr(), built->pkt()};
}

}  // namespace Example
