#include "tool/output/CheckOutput.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Verda/Escape.h"

#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;

namespace {

/// The place in the packet, and in the RFCs.
std::string whereText(const CheckResult& result) {
  if (!result.place.has_value()) {
    return result.rfc;
  }
  const std::string offset = fmt::format("offset {}", result.place->offset);
  return result.rfc.empty() ? offset : fmt::format("{}, {}", offset, result.rfc);
}

std::string lineOf(const std::string& place, std::size_t width, const CheckResult& result) {
  std::string line =
      fmt::format("{}: {:>{}}: {}", place, result.check, width, verdictText(result.verdict));
  if (!result.reason.empty()) {
    line += fmt::format(": {}", Verda::escaped(result.reason));
  }
  const std::string where = whereText(result);
  if (!where.empty()) {
    line += fmt::format(" ({})", where);
  }
  return line + '\n';
}

Json textOrNull(const std::string& text) {
  return text.empty() ? Json(nullptr) : Json(Verda::escaped(text));
}

Json resultJson(const PacketPlace& place, const CheckResult& result) {
  return {{"schema", jsonSchema},
          {"kind", "check"},
          {"source", Verda::escaped(place.source)},
          {"index", place.index},
          {"check", result.check},
          {"verdict", verdictText(result.verdict)},
          {"reason", textOrNull(result.reason)},
          {"offset", result.place.has_value() ? Json(result.place->offset) : Json(nullptr)},
          {"length", result.place.has_value() ? Json(result.place->length) : Json(nullptr)},
          {"rfc", textOrNull(result.rfc)}};
}

}  // namespace

std::string textOf(const PacketPlace& place, std::span<const CheckResult> results) {
  std::size_t width = 0;
  for (const CheckResult& result : results) {
    width = std::max(width, result.check.size());
  }
  const std::string placeName = Verda::escaped(placeText(place));
  std::string text;
  for (const CheckResult& result : results) {
    text += lineOf(placeName, width, result);
  }
  return text;
}

std::string jsonOf(const PacketPlace& place, std::span<const CheckResult> results) {
  std::string json;
  for (const CheckResult& result : results) {
    json += jsonLine(resultJson(place, result));
  }
  return json;
}

}  // namespace RadiusPacketTool
