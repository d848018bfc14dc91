#pragma once

#include <chrono>

#include "Verda/Types.h"
#include "Zonet/IpGenAddr.h"

namespace RadiusPacketTool {

/// One end of a datagram.
struct Endpoint {
  Zonet::IpGenAddr address;
  Verda::U16 port = 0;

  bool operator==(const Endpoint&) const = default;
};

/// When and between whom the datagram went that carried a packet.
struct Datagram {
  std::chrono::nanoseconds time{};  ///< since 1970-01-01 00:00 UTC
  Endpoint from;
  Endpoint to;

  bool operator==(const Datagram&) const = default;
};

}  // namespace RadiusPacketTool
