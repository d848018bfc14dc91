#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tool/capture/CaptureCounts.h"
#include "tool/capture/CaptureReader.h"
#include "tool/input/InputFormat.h"
#include "tool/input/InputPacket.h"
#include "tool/input/PacketInput.h"
#include "tool/process/ProgressLine.h"

namespace RadiusPacketTool {

/// The packets of all files of a command, one behind the other.
class PacketStream {
 public:
  /// Opens the files, standard input when there are none. Files of hex and binary packets are read
  /// whole before the first packet is given, so that bad input in any of them gives no output; a
  /// capture is read as its packets are asked for. Throws as `openSources`.
  /// @param ports  the UDP ports whose datagrams are taken from captures
  PacketStream(const std::vector<std::string>& files, InputFormat format,
               const UdpPorts& ports = radiusPorts());

  /// The next packet, or nothing at the end. Throws `ToolError` when a capture cannot be read on,
  /// and when there was no packet at all.
  std::optional<InputPacket> next();

  /// What became of the frames of the captures so far; nothing when no file is a capture.
  std::optional<CaptureCounts> captureCounts() const;

 private:
  std::optional<InputPacket> nextOf(OpenedSource& opened);
  std::optional<InputPacket> nextOfCapture(OpenedSource& opened);
  void openCapture(OpenedSource& opened);
  void endSource();

  std::vector<OpenedSource> sources_;
  UdpPorts ports_;
  bool hasCapture_;
  std::size_t source_ = 0;
  std::size_t packet_ = 0;  ///< of this source, how many were given
  std::size_t given_ = 0;
  std::unique_ptr<ProgressLine> progress_;  ///< of this source, when it is a capture
  std::optional<CaptureReader> reader_;     ///< of this source, when it is a capture
  CaptureCounts counts_;                    ///< of the captures in front of it
};

}  // namespace RadiusPacketTool
