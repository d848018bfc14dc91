#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "Verda/Types.h"

namespace TestSupport {

/// The bytes of a text of hex digit pairs; white space between them does not count.
inline std::vector<Verda::U8> fromHex(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (std::string_view(" \t\n\r").find(c) == std::string_view::npos) {
      digits += c;
    }
  }
  if (digits.size() % 2 != 0 ||
      digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
    throw std::invalid_argument("not hex: " + digits);
  }
  std::vector<Verda::U8> bytes;
  for (std::size_t at = 0; at < digits.size(); at += 2) {
    bytes.push_back(static_cast<Verda::U8>(std::stoi(digits.substr(at, 2), nullptr, 16)));
  }
  return bytes;
}

/// The lower-case hex digits of bytes.
template <typename Range>
std::string toHex(const Range& bytes) {
  std::string text;
  for (const auto byte : bytes) {
    text += fmt::format("{:02x}", static_cast<Verda::U8>(byte));
  }
  return text;
}

}  // namespace TestSupport
