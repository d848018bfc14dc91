#pragma once

#include <span>
#include <string>

#include "tool/checks/CheckResult.h"
#include "tool/input/InputPacket.h"

namespace RadiusPacketTool {

/// The results for a packet for people: a line each, which names the packet, the check and the
/// verdict, then the reason and the RFC. The verdicts stand below each other.
std::string textOf(const PacketPlace& place, std::span<const CheckResult> results);

/// The same for programs: one JSON object each, on a line of its own.
std::string jsonOf(const PacketPlace& place, std::span<const CheckResult> results);

}  // namespace RadiusPacketTool
