#include "tool/HexText.h"

#include <string_view>

namespace RadiusPacketTool {

using Verda::U8;

std::string hexText(std::span<const U8> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  constexpr unsigned nibbleBits = 4;
  constexpr unsigned nibbleMask = 0xF;
  std::string text;
  text.reserve(2 * bytes.size());
  for (const U8 byte : bytes) {
    text += digits[byte >> nibbleBits];
    text += digits[byte & nibbleMask];
  }
  return text;
}

std::string prefixedHex(std::span<const U8> bytes) {
  return "0x" + hexText(bytes);
}

}  // namespace RadiusPacketTool
