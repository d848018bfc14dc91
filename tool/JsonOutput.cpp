#include "tool/JsonOutput.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/HexText.h"

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

Json attributeJson(const ReportedAttribute& attribute) {
  return {{"attrId", attribute.key.attrId},
          {"vendorId", attribute.key.vendorId},
          {"vendorAttrId", attribute.key.vendorAttrId},
          {"name", Verda::escaped(attribute.name)},
          {"type", std::string(stringValue(attribute.type).view())},
          {"tag", jsonOrNull(attribute.tag)},
          {"value", std::visit(ValueWriter(), attribute.value)},
          {"hex", hexText(attribute.wire)}};
}

Json codeNameJson(const PacketReport& report) {
  if (!report.code.has_value()) {
    return nullptr;
  }
  const auto code = static_cast<RadiusCode::RadiusCodeEnum>(*report.code);
  return std::string(stringValue(code).view());
}

/// The name of an enumerator that may be missing.
template <typename Enum>
Json nameJson(const std::optional<Enum>& value) {
  return value.has_value() ? Json(std::string(stringValue(*value).view())) : Json(nullptr);
}

Json packetJson(const PacketReport& report, const OutputOptions& options) {
  Json packet;
  packet["source"] = Verda::escaped(report.source);
  packet["index"] = report.index;
  packet["code"] = jsonOrNull(report.code);
  packet["codeName"] = codeNameJson(report);
  packet["id"] = jsonOrNull(report.id);
  packet["length"] = jsonOrNull(report.length);
  packet["authenticator"] =
      report.authenticator.has_value() ? Json(hexText(*report.authenticator)) : Json(nullptr);
  packet["error"] = nameJson(report.error);
  packet["reason"] =
      report.reason.has_value() ? Json(Verda::escaped(*report.reason)) : Json(nullptr);
  packet["messageAuthenticator"] = report.messageAuthenticatorPresent;
  if (options.statusServer) {
    packet["statusServer"] = nameJson(report.statusServer);
  }
  Json& attributes = packet["attributes"] = Json::array();
  for (const ReportedAttribute& attribute : report.attributes) {
    attributes.push_back(attributeJson(attribute));
  }
  return packet;
}

/// JSON allows these two inside a string as they are, but readers that split lines as Unicode says
/// would see the object end there.
void escapeLineSeparators(std::string& json) {
  constexpr std::string_view lineSeparator = "\xe2\x80\xa8";
  constexpr std::string_view paragraphSeparator = "\xe2\x80\xa9";
  constexpr std::array<std::pair<std::string_view, std::string_view>, 2> escapes{
      {{lineSeparator, "\\u2028"}, {paragraphSeparator, "\\u2029"}}};
  for (const auto& [separator, escape] : escapes) {
    for (std::size_t at = json.find(separator); at != std::string::npos;
         at = json.find(separator, at)) {
      json.replace(at, separator.size(), escape);
    }
  }
}

}  // namespace

std::string jsonOf(const PacketReport& report, const OutputOptions& options) {
  std::string json = packetJson(report, options).dump();
  escapeLineSeparators(json);
  return json + '\n';
}

}  // namespace RadiusPacketTool
