#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace RadiusPacketTool {

/// The version of the form in which the commands write JSON. It grows when a key goes or changes
/// its meaning; new keys may come at any time.
inline constexpr int jsonSchema = 1;

/// One JSON value on one line, the newline included. No reader sees a line end within it, not even
/// one that splits lines as Unicode says. Strings in it must be UTF-8.
std::string jsonLine(const nlohmann::ordered_json& value);

}  // namespace RadiusPacketTool
