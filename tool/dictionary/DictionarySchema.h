#pragma once

namespace RadiusPacketTool {

/// The `schema` of the JSON objects that concern dictionaries. It grows when a key changes or goes.
inline constexpr int dictionarySchema = 1;

}  // namespace RadiusPacketTool
