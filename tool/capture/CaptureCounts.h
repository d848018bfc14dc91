#pragma once

#include <cstddef>

namespace RadiusPacketTool {

/// What became of the frames of captures that gave no packet.
struct CaptureCounts {
  std::size_t skipped = 0;     ///< frames without a RADIUS packet
  std::size_t cut = 0;         ///< frames that the capture cut short, with what matters lost
  std::size_t incomplete = 0;  ///< fragmented datagrams that could not be put together

  bool operator==(const CaptureCounts&) const = default;

  CaptureCounts& operator+=(const CaptureCounts& other) {
    skipped += other.skipped;
    cut += other.cut;
    incomplete += other.incomplete;
    return *this;
  }
};

}  // namespace RadiusPacketTool
