#include "tool/output/JsonOutput.h"

#include <variant>

#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "tool/output/PacketJson.h"
#include "tool/text/HexText.h"
#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;

namespace {

struct ValueWriter {
  Json operator()(const ShownNumber& number) const { return number.number; }
  Json operator()(const ShownText& text) const { return text.escaped; }
  Json operator()(const ShownBytes& shown) const { return hexText(shown.bytes); }
  Json operator()(const ShownPlain& plain) const { return plain.text; }
};

Json attributeJson(const ReportedAttribute& attribute, const OutputOptions& options) {
  const bool isRedacted = options.redact && attribute.isRevealed;
  return {{"offset", attribute.offset},
          {"length", attribute.length},
          {"attrId", attribute.key.attrId},
          {"vendorId", attribute.key.vendorId},
          {"vendorAttrId", attribute.key.vendorAttrId},
          {"name", Verda::escaped(attribute.name)},
          {"type", std::string(stringValue(attribute.type).view())},
          {"tag", jsonOrNull(attribute.tag)},
          {"value", isRedacted ? Json(nullptr) : std::visit(ValueWriter(), attribute.value)},
          {"redacted", isRedacted},
          {"hex", hexText(attribute.wire)}};
}

Json packetJson(const PacketReport& report, const OutputOptions& options) {
  Json packet = packetFrontJson("packet", report.place, report.datagram, report.header);
  packet["pairedWith"] =
      report.pairedWith.has_value() ? placeJson(*report.pairedWith) : Json(nullptr);
  packet["retransmissionOf"] =
      report.retransmissionOf.has_value() ? placeJson(*report.retransmissionOf) : Json(nullptr);
  packet["error"] = nameJson(report.error);
  packet["reason"] = textJson(report.reason);
  packet["messageAuthenticator"] = report.messageAuthenticatorPresent;
  if (options.statusServer) {
    packet["statusServer"] = nameJson(report.statusServer);
  }
  Json& attributes = packet["attributes"] = Json::array();
  for (const ReportedAttribute& attribute : report.attributes) {
    attributes.push_back(attributeJson(attribute, options));
  }
  return packet;
}

}  // namespace

std::string jsonOf(const PacketReport& report, const OutputOptions& options) {
  return jsonLine(packetJson(report, options));
}

}  // namespace RadiusPacketTool
