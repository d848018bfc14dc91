#pragma once

#include <vector>

#include "RadiusPacketParser/RadiusDictionaryParser.h"
#include "tool/checks/CheckResult.h"
#include "tool/checks/CheckedPacket.h"

namespace RadiusPacketTool {

inline constexpr const char* allowedCheck = "attributes allowed";
inline constexpr const char* requiredCheck = "attributes required";

/// Whether a packet carries no attribute that its code must not carry, none too often, and no two
/// that exclude each other. A result for each that fails, else one.
std::vector<CheckResult> allowedResults(const CheckedPacket& packet,
                                        const RadiusPacketParser::RadiusDict& dictionary);

/// Whether it carries those that its code must carry. A result for each that is missing, else one.
std::vector<CheckResult> requiredResults(const CheckedPacket& packet,
                                         const RadiusPacketParser::RadiusDict& dictionary);

}  // namespace RadiusPacketTool
