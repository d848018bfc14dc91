#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "tool/capture/CaptureCounts.h"
#include "tool/decoding/EarlierRequests.h"
#include "tool/decoding/PacketReport.h"

namespace RadiusPacketTool {

/// What a command says at the end of captures: how many packets and exchanges there were, what was
/// refused and why, and what became of the other frames.
class RunSummary {
 public:
  /// Counts a packet.
  void take(const PacketReport& report);

  /// How many were counted.
  std::size_t packets() const { return packets_; }

  /// The summary for people: lines that begin with `#`, which are comments to who reads packets
  /// back from the text.
  std::string text(const ExchangeCounts& exchanges, const CaptureCounts& frames) const;

  /// The same for programs, as `jsonLine` gives it.
  std::string json(const ExchangeCounts& exchanges, const CaptureCounts& frames) const;

 private:
  std::size_t refusedCount() const;

  std::size_t packets_ = 0;
  std::map<std::string, std::size_t> refused_;  ///< by reason
};

}  // namespace RadiusPacketTool
