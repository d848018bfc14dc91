#include "tool/output/JsonOutput.h"

#include <optional>
#include <variant>

#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/text/HexText.h"
#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;
using RadiusPacketParser::RadiusCode;

namespace {

template <typename Value>
Json jsonOrNull(const std::optional<Value>& value) {
  return value.has_value() ? Json(*value) : Json(nullptr);
}

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

Json codeNameJson(const PacketReport& report) {
  if (!report.header.code.has_value()) {
    return nullptr;
  }
  const auto code = static_cast<RadiusCode::RadiusCodeEnum>(*report.header.code);
  return std::string(stringValue(code).view());
}

/// The name of an enumerator that may be missing.
template <typename Enum>
Json nameJson(const std::optional<Enum>& value) {
  return value.has_value() ? Json(std::string(stringValue(*value).view())) : Json(nullptr);
}

Json placeJson(const PacketPlace& place) {
  return {{"source", Verda::escaped(place.source)}, {"index", place.index}};
}

Json packetJson(const PacketReport& report, const OutputOptions& options) {
  Json packet = {{"schema", jsonSchema}, {"kind", "packet"}};
  packet.update(placeJson(report.place));
  packet["code"] = jsonOrNull(report.header.code);
  packet["codeName"] = codeNameJson(report);
  packet["id"] = jsonOrNull(report.header.id);
  packet["length"] = jsonOrNull(report.header.length);
  packet["authenticator"] = report.header.authenticator.has_value()
                                ? Json(hexText(*report.header.authenticator))
                                : Json(nullptr);
  packet["pairedWith"] =
      report.pairedWith.has_value() ? placeJson(*report.pairedWith) : Json(nullptr);
  packet["error"] = nameJson(report.error);
  packet["reason"] =
      report.reason.has_value() ? Json(Verda::escaped(*report.reason)) : Json(nullptr);
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
