#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// The lower-case digits of bytes.
std::string hexText(std::span<const Verda::U8> bytes);

/// The same behind "0x", so that nobody takes them for text.
std::string prefixedHex(std::span<const Verda::U8> bytes);

/// The value of a hex digit of either case.
std::optional<Verda::U8> hexDigitValue(char c);

/// The bytes that the digits stand for; nothing when there is an odd number of them, or what is no
/// digit.
std::optional<std::vector<Verda::U8>> bytesOfHex(std::string_view digits);

}  // namespace RadiusPacketTool
