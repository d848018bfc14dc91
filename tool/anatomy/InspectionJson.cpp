#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "tool/anatomy/AnatomyJson.h"
#include "tool/anatomy/Inspection.h"
#include "tool/output/PacketJson.h"
#include "tool/output/TextOutput.h"
#include "tool/text/HexText.h"
#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;

namespace {

Json fieldJson(const Field& field, const OutputOptions& options) {
  const bool isRedacted = options.redact && field.isRevealed;
  Json json = fieldPlaceJson(field);
  json["depth"] = field.depth;
  json["name"] = Verda::escaped(field.name);
  json["hex"] = hexText(field.bytes);
  json["meaning"] = isRedacted ? Json(nullptr) : Json(field.meaning);
  json["redacted"] = isRedacted;
  json["fault"] = faultJson(field);
  return json;
}

Json checksJson(const std::optional<PacketReport>& report) {
  if (!report.has_value()) {
    return nullptr;
  }
  return {{"error", nameJson(report->error)},
          {"reason", textJson(report->reason)},
          {"authenticator", checkText(report->authenticatorCheck)},
          {"messageAuthenticator", checkText(report->messageAuthenticatorCheck)},
          {"pairedWith",
           report->pairedWith.has_value() ? placeJson(*report->pairedWith) : Json(nullptr)}};
}

}  // namespace

std::string jsonOf(const Inspection& inspection, const OutputOptions& options) {
  Json packet =
      packetFrontJson("anatomy", inspection.place, inspection.datagram, inspection.header);
  const Field* first = inspection.anatomy.firstFaulty();
  packet["structure"] = first == nullptr ? "success" : faultJson(*first)["error"];
  packet["checks"] = checksJson(inspection.report);
  Json& fields = packet["fields"] = Json::array();
  for (const Field& field : inspection.anatomy.fields) {
    fields.push_back(fieldJson(field, options));
  }
  return jsonLine(packet);
}

}  // namespace RadiusPacketTool
