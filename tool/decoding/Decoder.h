#pragma once

#include <span>

#include "Verda/Bytes.h"
#include "Verda/Types.h"

#include "tool/decoding/PacketReport.h"
#include "tool/input/Secret.h"

namespace RadiusPacketTool {

/// Sends packets down one of the library's roads and reports what came of it. While a packet is
/// decoded all trace of the process goes into its report, so one decoder at a time may work.
class Decoder {
 public:
  virtual ~Decoder() = default;

  /// Decodes one packet, whatever its bytes; `place` and `pairedWith` of the report are left alone.
  /// @param requestAuthenticator  the authenticator of the request that the packet answers, 16
  ///                              bytes, or empty when none is known; requests do without
  virtual PacketReport decode(std::span<const Verda::U8> packet, const Secret& secret,
                              const Verda::Bytes& requestAuthenticator) const = 0;
};

}  // namespace RadiusPacketTool
