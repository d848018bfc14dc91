#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace RadiusPacketTool {

/// One JSON value on one line, the newline included. No reader sees a line end within it, not even
/// one that splits lines as Unicode says. Strings in it must be UTF-8.
std::string jsonLine(const nlohmann::ordered_json& value);

}  // namespace RadiusPacketTool
