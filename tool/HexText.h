#pragma once

#include <span>
#include <string>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// The lower-case digits of bytes.
std::string hexText(std::span<const Verda::U8> bytes);

/// The same behind "0x", so that nobody takes them for text.
std::string prefixedHex(std::span<const Verda::U8> bytes);

}  // namespace RadiusPacketTool
