#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Verda/Ptr.h"
#include "Verda/Types.h"
#include "Zonet/Pkt.h"

namespace Example {

/// A packet of hex digits, in place of one from a socket. Throws when they are none.
inline Verda::Ptr<Zonet::Pkt> packetFromHex(std::string_view digits) {
  constexpr std::size_t digitsOfByte = 2;
  constexpr int base = 16;
  std::vector<Verda::U8> bytes;
  for (; !digits.empty(); digits.remove_prefix(digitsOfByte)) {
    const char* const end = digits.data() + std::min(digitsOfByte, digits.size());
    const auto [stop, fault] = std::from_chars(digits.data(), end, bytes.emplace_back(), base);
    if (fault != std::errc() || stop != digits.data() + digitsOfByte) {
      throw std::runtime_error("a packet is no hex: two digits a byte and nothing else");
    }
  }
  return Zonet::pktFactory(std::span<const Verda::U8>(bytes));
}

inline std::string hexOf(const Zonet::Pkt& pkt) {
  return fmt::format("{:02x}", fmt::join(pkt.span(), ""));
}

}  // namespace Example
