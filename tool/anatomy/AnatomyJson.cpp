#include "tool/anatomy/AnatomyJson.h"

#include "Verda/Escape.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;

Json fieldPlaceJson(const Field& field) {
  return {{"offset", field.offset}, {"length", field.length}, {"path", Verda::escaped(field.path)}};
}

Json faultJson(const Field& field) {
  if (!field.fault.has_value()) {
    return nullptr;
  }
  return {{"error", std::string(stringValue(field.fault->error).view())},
          {"found", Verda::escaped(field.fault->found)},
          {"expected", Verda::escaped(field.fault->expected)},
          {"section", field.fault->section}};
}

}  // namespace RadiusPacketTool
