#include "tool/input/ClientNetwork.h"

#include <algorithm>

namespace RadiusPacketTool {

using Verda::U8;

ClientNetwork networkOf(const Zonet::IpGenAddr& address, U8 length) {
  constexpr std::size_t byteBits = 8;
  constexpr unsigned allBits = 0xff;
  ClientNetwork network{.family = address.family(), .length = length};
  address.copyTo(network.bits);
  for (std::size_t at = 0; at < network.bits.size(); ++at) {
    const std::size_t front = at * byteBits;
    const std::size_t kept = length > front ? std::min(length - front, byteBits) : 0;
    network.bits[at] = static_cast<U8>(network.bits[at] & (allBits << (byteBits - kept)));
  }
  return network;
}

}  // namespace RadiusPacketTool
