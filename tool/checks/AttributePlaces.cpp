#include "tool/checks/AttributePlaces.h"

#include <algorithm>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPktParserBase::AttributeCursor;

std::vector<AttributePlace> attributePlaces(ByteView packet) {
  std::vector<AttributePlace> places;
  std::size_t offset = PacketConstants::headerLength();
  AttributeCursor cursor(packet.subspan(offset));
  while (cursor.next() == AttributeCursor::Step::attribute) {
    places.push_back({.type = cursor.type(), .offset = offset, .length = cursor.length()});
    offset += cursor.length();
  }
  return places;
}

bool isWholeMessageAuthenticator(const AttributePlace& place) {
  return place.type == RadiusAttributeId::MESSAGE_AUTHENTICATOR &&
         place.length == messageAuthenticatorLength;
}

std::optional<std::size_t> messageAuthenticatorAt(ByteView packet) {
  const std::vector<AttributePlace> places = attributePlaces(packet);
  const auto found = std::ranges::find_if(places, isWholeMessageAuthenticator);
  return found == places.end() ? std::nullopt : std::optional(found->offset);
}

}  // namespace RadiusPacketTool
