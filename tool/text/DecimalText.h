#pragma once

#include <optional>
#include <string_view>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// The number that decimal digits, and nothing else, stand for; nothing when it is more than
/// `greatest`.
std::optional<Verda::U32> decimalOf(std::string_view digits, Verda::U32 greatest);

}  // namespace RadiusPacketTool
