#pragma once

#include <vector>

#include "tool/checks/CheckResult.h"
#include "tool/checks/CheckedPacket.h"
#include "tool/text/AttributeNames.h"

namespace RadiusPacketTool {

inline constexpr const char* uniqueSaltsCheck = "salts unique";
inline constexpr const char* saltBitCheck = "first bit of salts";

/// Whether each value that is hidden with a salt has one of its own, and whether the first bit of
/// each salt is set. A result for each salt that fails, else one.
std::vector<CheckResult> uniqueSaltsResults(const CheckedPacket& packet,
                                            const AttributeNames& dictionary);
std::vector<CheckResult> saltBitResults(const CheckedPacket& packet,
                                        const AttributeNames& dictionary);

}  // namespace RadiusPacketTool
