#include "tool/output/PacketJson.h"

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/capture/DatagramText.h"
#include "tool/text/HexText.h"
#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;
using RadiusPacketParser::RadiusCode;

Json textJson(const std::optional<std::string>& text) {
  return text.has_value() ? Json(Verda::escaped(*text)) : Json(nullptr);
}

Json placeJson(const PacketPlace& place) {
  return {{"source", Verda::escaped(place.source)}, {"index", place.index}};
}

namespace {

Json datagramJson(const std::optional<Datagram>& datagram) {
  if (!datagram.has_value()) {
    return {{"time", nullptr}, {"from", nullptr}, {"to", nullptr}};
  }
  return {{"time", timeText(datagram->time)},
          {"from", endpointText(datagram->from)},
          {"to", endpointText(datagram->to)}};
}

}  // namespace

Json packetFrontJson(std::string_view kind, const PacketPlace& place,
                     const std::optional<Datagram>& datagram, const PacketHeader& header) {
  Json packet = {{"schema", jsonSchema}, {"kind", kind}};
  packet.update(placeJson(place));
  packet.update(datagramJson(datagram));
  packet["code"] = jsonOrNull(header.code);
  packet["codeName"] =
      header.code.has_value()
          ? nameJson(std::optional(static_cast<RadiusCode::RadiusCodeEnum>(*header.code)))
          : Json(nullptr);
  packet["id"] = jsonOrNull(header.id);
  packet["length"] = jsonOrNull(header.length);
  packet["authenticator"] =
      header.authenticator.has_value() ? Json(hexText(*header.authenticator)) : Json(nullptr);
  return packet;
}

}  // namespace RadiusPacketTool
