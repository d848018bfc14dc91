#pragma once

#include <string_view>
#include <vector>

#include "Verda/Types.h"

#include "tool/text/BadAttribute.h"

namespace RadiusPacketTool {

/// The bytes of text that stands in quotes, escaped as it is printed: `\n`, `\r`, `\t`, `\\`, `\"`
/// and
/// `\xNN`. Throws `BadAttribute`.
std::vector<Verda::U8> bytesOfQuoted(std::string_view quoted);

}  // namespace RadiusPacketTool
