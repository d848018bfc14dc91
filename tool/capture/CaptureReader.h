#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "tool/capture/CaptureCounts.h"
#include "tool/capture/CaptureFile.h"
#include "tool/capture/Datagram.h"
#include "tool/capture/Fragments.h"
#include "tool/capture/IpPacket.h"

namespace RadiusPacketTool {

using UdpPorts = std::vector<Verda::U16>;

/// The ports that RADIUS has (RFC 2865, 2866, 5176), and those that it had.
UdpPorts radiusPorts();

/// A packet as a capture has it.
struct CapturedPacket {
  Datagram datagram;
  std::vector<Verda::U8> bytes;    ///< no more than the greatest packet has
  std::size_t originalLength = 0;  ///< in bytes; more than there are when the capture cut it short
};

/// The RADIUS packets of a capture: what datagrams from and to certain UDP ports carry. Whatever
/// the capture holds, the memory that it takes to read it has a bound. Checksums are not looked at:
/// who captures what he sends often sees them unfinished.
class CaptureReader {
 public:
  /// Throws `ToolError` for what is no capture, for one of a link type that cannot be read, and
  /// what the stream throws.
  /// @param name   the capture's, for messages
  /// @param ports  one of the two ports of a datagram is among them
  CaptureReader(const std::string& name, ByteStream stream, UdpPorts ports);

  /// The next packet, or nothing at the end. Throws as `CaptureFile::next`.
  std::optional<CapturedPacket> next();

  /// What became of the frames so far.
  CaptureCounts counts() const;

 private:
  std::optional<CapturedPacket> packetOf(const Frame& frame);
  std::optional<CapturedPacket> packetOfFragment(const IpPacket& packet, const Frame& frame);
  std::optional<CapturedPacket> packetOfUdp(const IpPacket& packet, const Frame& frame,
                                            std::size_t frames);
  std::optional<CapturedPacket> without(ReadStep step, const Frame& frame, std::size_t frames = 1);
  bool isAsked(Verda::U16 port) const;

  CaptureFile file_;
  UdpPorts ports_;
  Fragments fragments_;
  CaptureCounts counts_;
};

}  // namespace RadiusPacketTool
