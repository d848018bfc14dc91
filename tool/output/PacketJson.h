#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tool/decoding/PacketHeader.h"
#include "tool/input/InputPacket.h"

namespace RadiusPacketTool {

/// What the JSON objects that describe a packet have in common.

/// A value that may be missing.
template <typename Value>
nlohmann::ordered_json jsonOrNull(const std::optional<Value>& value) {
  return value.has_value() ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
}

/// The name of an enumerator that may be missing.
template <typename Enum>
nlohmann::ordered_json nameJson(const std::optional<Enum>& value) {
  return value.has_value() ? nlohmann::ordered_json(std::string(stringValue(*value).view()))
                           : nlohmann::ordered_json(nullptr);
}

/// Text that may be missing, with control bytes escaped.
nlohmann::ordered_json textJson(const std::optional<std::string>& text);

/// Which packet it is.
nlohmann::ordered_json placeJson(const PacketPlace& place);

/// The beginning of the object: schema, kind, which packet it is, what carried it, and its header.
nlohmann::ordered_json packetFrontJson(std::string_view kind, const PacketPlace& place,
                                       const std::optional<Datagram>& datagram,
                                       const PacketHeader& header);

}  // namespace RadiusPacketTool
