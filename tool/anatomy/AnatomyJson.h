#pragma once

#include <nlohmann/json.hpp>

#include "tool/anatomy/Anatomy.h"

namespace RadiusPacketTool {

/// Where a field stands: offset, length and path.
nlohmann::ordered_json fieldPlaceJson(const Field& field);

/// What is wrong with a field, without where; null when nothing is.
nlohmann::ordered_json faultJson(const Field& field);

}  // namespace RadiusPacketTool
