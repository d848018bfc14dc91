#include "tool/text/HexText.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

constexpr unsigned nibbleBits = 4;

}  // namespace

std::string hexText(std::span<const U8> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
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

std::optional<U8> hexDigitValue(char c) {
  constexpr int ten = 10;
  if (c >= '0' && c <= '9') {
    return static_cast<U8>(c - '0');
  }
  if (c >= 'a' && c <= 'f') {
    return static_cast<U8>(c - 'a' + ten);
  }
  if (c >= 'A' && c <= 'F') {
    return static_cast<U8>(c - 'A' + ten);
  }
  return std::nullopt;
}

std::optional<std::vector<U8>> bytesOfHex(std::string_view digits) {
  if (digits.size() % 2 != 0) {
    return std::nullopt;
  }
  std::vector<U8> bytes;
  bytes.reserve(digits.size() / 2);
  for (std::size_t at = 0; at < digits.size(); at += 2) {
    const std::optional<U8> high = hexDigitValue(digits[at]);
    const std::optional<U8> low = hexDigitValue(digits[at + 1]);
    if (!high.has_value() || !low.has_value()) {
      return std::nullopt;
    }
    bytes.push_back(static_cast<U8>((*high << nibbleBits) | *low));
  }
  return bytes;
}

}  // namespace RadiusPacketTool
