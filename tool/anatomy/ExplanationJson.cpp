#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "tool/anatomy/AnatomyJson.h"
#include "tool/anatomy/Explanation.h"
#include "tool/output/PacketJson.h"
#include "tool/text/HexText.h"
#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;

namespace {

/// A field and its fault in one object.
Json faultyFieldJson(const Field& field) {
  Json json = fieldPlaceJson(field);
  json["hex"] = hexText(field.bytes);
  json.update(faultJson(field));
  return json;
}

/// The culprit; why the packet is refused stands with the packet.
Json culpritJson(const std::optional<Field>& culprit) {
  if (!culprit.has_value()) {
    return nullptr;
  }
  Json json = faultyFieldJson(*culprit);
  json.erase("error");
  return json;
}

Json ruledOutJson(const std::vector<std::string>& lines) {
  Json json = Json::array();
  for (const std::string& line : lines) {
    json.push_back(Verda::escaped(line));
  }
  return json;
}

}  // namespace

std::string jsonOf(const Explanation& explanation) {
  const PacketReport& report = explanation.report;
  Json packet = packetFrontJson("explanation", report.place, report.datagram, report.header);
  packet["pairedWith"] =
      report.pairedWith.has_value() ? placeJson(*report.pairedWith) : Json(nullptr);
  packet["error"] = nameJson(report.error);
  packet["reason"] = textJson(report.reason);
  packet["fault"] = culpritJson(explanation.culprit);
  packet["finding"] = textJson(explanation.diagnosis.finding);
  packet["ruledOut"] = ruledOutJson(explanation.diagnosis.ruledOut);
  Json& others = packet["others"] = Json::array();
  for (const Field& field : explanation.others) {
    others.push_back(faultyFieldJson(field));
  }
  return jsonLine(packet);
}

}  // namespace RadiusPacketTool
