#pragma once

#include <array>
#include <compare>

#include "Verda/Types.h"
#include "Zonet/IpGenAddr.h"

namespace RadiusPacketTool {

/// What all addresses of a prefix have in common.
struct ClientNetwork {
  Zonet::IpFamily family = Zonet::IpFamily::ip4;
  Verda::U8 length = 0;                                  ///< in bits
  std::array<Verda::U8, Zonet::Ip6Addr::length> bits{};  ///< those behind the length are zero

  auto operator<=>(const ClientNetwork&) const = default;
};

/// The network of that prefix length which the address is in; of one longer than the address, one
/// that no prefix stands for.
ClientNetwork networkOf(const Zonet::IpGenAddr& address, Verda::U8 length);

}  // namespace RadiusPacketTool
