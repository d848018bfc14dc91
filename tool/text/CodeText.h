#pragma once

#include <optional>
#include <string_view>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// The packet code that a text stands for: a name as the text form prints it (`ACCESS_REQUEST`, or
/// `RadiusCode(99)` for one without), or a number.
std::optional<Verda::U8> codeOf(std::string_view text);

}  // namespace RadiusPacketTool
