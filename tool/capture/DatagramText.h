#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "tool/capture/Datagram.h"

namespace RadiusPacketTool {

/// `192.0.2.1:1812`, or `[2001:db8::1]:1812`.
std::string endpointText(const Endpoint& endpoint);

/// `2026-11-21T10:00:00.123456Z`: UTC, with microseconds, or nanoseconds where it takes them.
std::string timeText(std::chrono::nanoseconds time);

/// `192.0.2.1:40000 > 192.0.2.2:1812, 2026-11-21T10:00:00.123456Z`.
std::string datagramText(const Datagram& datagram);

/// The datagram of which that is the text; nothing for any other text.
std::optional<Datagram> datagramOf(std::string_view text);

}  // namespace RadiusPacketTool
