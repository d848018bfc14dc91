#include "tool/capture/IpPacket.h"

#include <algorithm>

#include "Zonet/WireReader.h"

namespace RadiusPacketTool {

using Verda::U16;
using Verda::U32;
using Verda::U8;
using Zonet::IpGenAddr;
using Zonet::WireReader;

namespace {

using ByteView = std::span<const U8>;

constexpr unsigned versionShift = 4;
constexpr U8 ip4Version = 4;
constexpr U8 ip6Version = 6;

constexpr U8 ip4LengthMask = 0x0f;
constexpr std::size_t ip4LengthUnit = 4;
constexpr std::size_t ip4MinHeader = 20;
constexpr U16 ip4MoreFragments = 0x2000;
constexpr U16 ip4OffsetMask = 0x1fff;
constexpr U32 ip4OffsetUnit = 8;

constexpr std::size_t ip6FlowRest = 3;

constexpr U8 hopByHopOptions = 0;
constexpr U8 routingHeader = 43;
constexpr U8 fragmentHeader = 44;
constexpr U8 destinationOptions = 60;
constexpr std::size_t extensionUnit = 8;
constexpr std::size_t extensionFront = 2;  ///< next header and length
constexpr U16 ip6MoreFragments = 1;
constexpr U16 ip6OffsetMask = 0xfff8;

bool readIp4Address(WireReader& reader, IpGenAddr& address) {
  ByteView bytes;
  if (!reader.read(IpGenAddr::ip4Length, bytes)) {
    return false;
  }
  address = IpGenAddr(bytes.first<IpGenAddr::ip4Length>());
  return true;
}

bool readIp6Address(WireReader& reader, IpGenAddr& address) {
  ByteView bytes;
  if (!reader.read(Zonet::Ip6Addr::length, bytes)) {
    return false;
  }
  address = Zonet::Ip6Addr(bytes.first<Zonet::Ip6Addr::length>());
  return true;
}

/// Takes what the frame has of a payload that is said to be so long; padding may stand behind it.
void takePayload(std::size_t length, WireReader& reader, IpPacket& packet) {
  const std::size_t there = std::min(length, reader.remaining());
  reader.read(there, packet.payload);
  packet.missing = length - there;
}

ReadStep readIp4(WireReader reader, IpPacket& packet) {
  U8 versionAndLength = 0;
  U8 service = 0;
  U8 timeToLive = 0;
  U16 totalLength = 0;
  U16 id = 0;
  U16 flagsAndOffset = 0;
  U16 checksum = 0;
  if (!reader.read(versionAndLength) || !reader.read(service) || !reader.read(totalLength) ||
      !reader.read(id) || !reader.read(flagsAndOffset) || !reader.read(timeToLive) ||
      !reader.read(packet.protocol) || !reader.read(checksum) ||
      !readIp4Address(reader, packet.from) || !readIp4Address(reader, packet.to)) {
    return ReadStep::lacking;
  }
  const std::size_t headerLength = (versionAndLength & ip4LengthMask) * ip4LengthUnit;
  if (headerLength < ip4MinHeader || totalLength < headerLength) {
    return ReadStep::foreign;
  }
  ByteView options;
  if (!reader.read(headerLength - ip4MinHeader, options)) {
    return ReadStep::lacking;
  }
  takePayload(totalLength - headerLength, reader, packet);
  const U32 offset = (flagsAndOffset & ip4OffsetMask) * ip4OffsetUnit;
  const bool isLast = (flagsAndOffset & ip4MoreFragments) == 0;
  if (offset > 0 || !isLast) {
    packet.fragment = FragmentPlace{.id = id, .offset = offset, .isLast = isLast};
  }
  return ReadStep::done;
}

ReadStep readIp6(WireReader reader, IpPacket& packet) {
  U8 versionAndClass = 0;
  ByteView flow;
  U16 payloadLength = 0;
  U8 hopLimit = 0;
  if (!reader.read(versionAndClass) || !reader.read(ip6FlowRest, flow) ||
      !reader.read(payloadLength) || !reader.read(packet.protocol) || !reader.read(hopLimit) ||
      !readIp6Address(reader, packet.from) || !readIp6Address(reader, packet.to)) {
    return ReadStep::lacking;
  }
  takePayload(payloadLength, reader, packet);
  return skipExtensionHeaders(packet);
}

/// A fragment that is its whole datagram is no fragment (RFC 6946).
ReadStep readFragmentHeader(WireReader& reader, IpPacket& packet) {
  U8 next = 0;
  U8 reserved = 0;
  U16 offsetAndMore = 0;
  U32 id = 0;
  if (!reader.read(next) || !reader.read(reserved) || !reader.read(offsetAndMore) ||
      !reader.read(id)) {
    return ReadStep::lacking;
  }
  packet.protocol = next;
  const U32 offset = offsetAndMore & ip6OffsetMask;
  const bool isLast = (offsetAndMore & ip6MoreFragments) == 0;
  if (offset > 0 || !isLast) {
    packet.fragment = FragmentPlace{.id = id, .offset = offset, .isLast = isLast};
  }
  return ReadStep::done;
}

ReadStep skipOptions(WireReader& reader, IpPacket& packet) {
  U8 next = 0;
  U8 length = 0;
  ByteView options;
  if (!reader.read(next) || !reader.read(length) ||
      !reader.read((length + std::size_t{1}) * extensionUnit - extensionFront, options)) {
    return ReadStep::lacking;
  }
  packet.protocol = next;
  return ReadStep::done;
}

bool hasOptions(U8 protocol) {
  return protocol == hopByHopOptions || protocol == routingHeader || protocol == destinationOptions;
}

}  // namespace

ReadStep readIpPacket(ByteView bytes, IpPacket& packet) {
  const WireReader reader(bytes);
  U8 first = 0;
  if (!reader.peek(0, first)) {
    return ReadStep::lacking;
  }
  switch (first >> versionShift) {
    case ip4Version:
      return readIp4(reader, packet);
    case ip6Version:
      return readIp6(reader, packet);
    default:
      return ReadStep::foreign;
  }
}

ReadStep skipExtensionHeaders(IpPacket& packet) {
  if (!packet.from.isIp6()) {
    return ReadStep::done;
  }
  WireReader reader(packet.payload);
  ReadStep step = ReadStep::done;
  while (step == ReadStep::done && !packet.fragment.has_value()) {
    if (hasOptions(packet.protocol)) {
      step = skipOptions(reader, packet);
    } else if (packet.protocol == fragmentHeader) {
      step = readFragmentHeader(reader, packet);
    } else {
      break;
    }
  }
  packet.payload = packet.payload.last(reader.remaining());
  return step;
}

}  // namespace RadiusPacketTool
