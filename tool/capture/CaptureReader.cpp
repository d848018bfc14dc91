#include "tool/capture/CaptureReader.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "Zonet/WireReader.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/capture/LinkLayer.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using Verda::U16;
using Verda::U8;
using Zonet::WireReader;

namespace {

constexpr std::size_t udpHeaderLength = 8;

struct UdpHeader {
  U16 from = 0;
  U16 to = 0;
  U16 length = 0;  ///< with the header
};

bool readUdpHeader(WireReader& reader, UdpHeader& header) {
  U16 checksum = 0;
  return reader.read(header.from) && reader.read(header.to) && reader.read(header.length) &&
         reader.read(checksum);
}

}  // namespace

UdpPorts radiusPorts() {
  return {1812, 1813, 1645, 1646, 3799};
}

CaptureReader::CaptureReader(const std::string& name, ByteStream stream, UdpPorts ports)
    : file_(name, std::move(stream)), ports_(std::move(ports)) {
  if (!isReadableLinkType(file_.linkType())) {
    throw ToolError(ExitCode::noInput,
                    fmt::format("{}: a capture of link type {}, which cannot be read", name,
                                file_.linkTypeName()));
  }
}

std::optional<CapturedPacket> CaptureReader::next() {
  while (const std::optional<Frame> frame = file_.next()) {
    if (std::optional<CapturedPacket> packet = packetOf(*frame)) {
      return packet;
    }
  }
  return std::nullopt;
}

CaptureCounts CaptureReader::counts() const {
  CaptureCounts counts = counts_;
  counts.incomplete = fragments_.incomplete();
  return counts;
}

std::optional<CapturedPacket> CaptureReader::packetOf(const Frame& frame) {
  std::span<const U8> bytes;
  ReadStep step = readLinkLayer(file_.linkType(), frame.bytes, bytes);
  IpPacket packet;
  if (step == ReadStep::done) {
    step = readIpPacket(bytes, packet);
  }
  if (step != ReadStep::done) {
    return without(step, frame);
  }
  if (packet.fragment.has_value()) {
    return packetOfFragment(packet, frame);
  }
  return packetOfUdp(packet, frame, 1);
}

std::optional<CapturedPacket> CaptureReader::packetOfFragment(const IpPacket& packet,
                                                              const Frame& frame) {
  if (!packet.from.isIp6() && packet.protocol != udpProtocol) {
    return without(ReadStep::foreign, frame);
  }
  if (packet.missing > 0) {
    return without(ReadStep::lacking, frame);
  }
  const std::optional<WholePayload> whole = fragments_.take(packet, frame.time);
  if (!whole.has_value()) {
    return std::nullopt;
  }
  IpPacket put{.from = packet.from,
               .to = packet.to,
               .protocol = whole->protocol,
               .payload = whole->bytes,
               .missing = 0,
               .fragment = std::nullopt};
  if (skipExtensionHeaders(put) != ReadStep::done || put.fragment.has_value()) {
    return without(ReadStep::foreign, frame, whole->frames);
  }
  return packetOfUdp(put, frame, whole->frames);
}

std::optional<CapturedPacket> CaptureReader::packetOfUdp(const IpPacket& packet, const Frame& frame,
                                                         std::size_t frames) {
  if (packet.protocol != udpProtocol) {
    return without(ReadStep::foreign, frame, frames);
  }
  WireReader reader(packet.payload);
  UdpHeader udp;
  if (!readUdpHeader(reader, udp)) {
    return without(packet.missing > 0 ? ReadStep::lacking : ReadStep::foreign, frame, frames);
  }
  const bool fits =
      udp.length > udpHeaderLength && udp.length <= packet.payload.size() + packet.missing;
  if (!fits || (!isAsked(udp.from) && !isAsked(udp.to))) {
    return without(ReadStep::foreign, frame, frames);
  }
  const auto most = [](std::size_t length) {
    return std::min<std::size_t>(length, PacketConstants::maxLength());
  };
  const std::size_t originalLength = most(udp.length - udpHeaderLength);
  std::span<const U8> bytes;
  reader.read(std::min(reader.remaining(), originalLength), bytes);
  const bool isCut = bytes.size() < originalLength;
  if (isCut && (bytes.empty() || !frame.isCut())) {
    return without(ReadStep::lacking, frame, frames);
  }
  counts_.cut += isCut ? 1 : 0;
  return CapturedPacket{.datagram = {.time = frame.time,
                                     .from = {.address = packet.from, .port = udp.from},
                                     .to = {.address = packet.to, .port = udp.to}},
                        .bytes = {bytes.begin(), bytes.end()},
                        .originalLength = originalLength};
}

/// Counts frames that give no packet. Where the bytes of a whole frame are too few, its lengths are
/// wrong, and it is no packet.
std::optional<CapturedPacket> CaptureReader::without(ReadStep step, const Frame& frame,
                                                     std::size_t frames) {
  if (step == ReadStep::lacking && frame.isCut()) {
    ++counts_.cut;
  } else {
    counts_.skipped += frames;
  }
  return std::nullopt;
}

bool CaptureReader::isAsked(U16 port) const {
  return std::ranges::find(ports_, port) != ports_.end();
}

}  // namespace RadiusPacketTool
