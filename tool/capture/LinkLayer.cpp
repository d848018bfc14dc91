#include "tool/capture/LinkLayer.h"

#include <algorithm>
#include <array>
#include <pcap/dlt.h>

#include "Zonet/WireReader.h"

namespace RadiusPacketTool {

using Verda::U16;
using Verda::U32;
using Verda::U8;
using Zonet::WireReader;

namespace {

using ByteView = std::span<const U8>;

constexpr std::size_t ethernetAddresses = 12;
constexpr std::size_t cookedBeforeProtocol = 14;
constexpr std::size_t cooked2BehindProtocol = 18;
constexpr std::size_t vlanTag = 2;

constexpr U16 etherTypeIp4 = 0x0800;
constexpr U16 etherTypeIp6 = 0x86dd;

bool isVlanType(U16 etherType) {
  constexpr U16 customerTag = 0x8100;
  constexpr U16 serviceTag = 0x88a8;
  constexpr U16 olderServiceTag = 0x9100;
  return etherType == customerTag || etherType == serviceTag || etherType == olderServiceTag;
}

bool skip(std::size_t count, WireReader& reader) {
  ByteView skipped;
  return reader.read(count, skipped);
}

/// Goes on behind a protocol number: over VLAN tags to the IP packet.
ReadStep readBehind(U16 etherType, WireReader& reader) {
  while (isVlanType(etherType)) {
    if (!skip(vlanTag, reader) || !reader.read(etherType)) {
      return ReadStep::lacking;
    }
  }
  const bool isIp = etherType == etherTypeIp4 || etherType == etherTypeIp6;
  return isIp ? ReadStep::done : ReadStep::foreign;
}

ReadStep readEthernet(WireReader& reader) {
  U16 etherType = 0;
  if (!skip(ethernetAddresses, reader) || !reader.read(etherType)) {
    return ReadStep::lacking;
  }
  return readBehind(etherType, reader);
}

ReadStep readCooked(WireReader& reader) {
  U16 protocol = 0;
  if (!skip(cookedBeforeProtocol, reader) || !reader.read(protocol)) {
    return ReadStep::lacking;
  }
  return readBehind(protocol, reader);
}

ReadStep readCooked2(WireReader& reader) {
  U16 protocol = 0;
  if (!reader.read(protocol) || !skip(cooked2BehindProtocol, reader)) {
    return ReadStep::lacking;
  }
  return readBehind(protocol, reader);
}

/// The numbers of the address families in front of a packet on a loopback: that of IPv4, which is
/// one everywhere, and those of IPv6 on Linux, NetBSD and OpenBSD, FreeBSD, and macOS.
constexpr std::array<U32, 5> ipFamilies{2, 10, 24, 28, 30};

/// The family stands in the byte order of the system that captured.
ReadStep readLoopback(WireReader& reader) {
  U32 family = 0;
  if (!reader.read(family)) {
    return ReadStep::lacking;
  }
  constexpr U32 mostFamily = 0xff;
  constexpr unsigned lowestByteShift = 24;
  const U32 number = family > mostFamily ? family >> lowestByteShift : family;
  const bool isIp = std::ranges::find(ipFamilies, number) != ipFamilies.end();
  return isIp ? ReadStep::done : ReadStep::foreign;
}

ReadStep readHeaders(int linkType, WireReader& reader) {
  switch (linkType) {
    case DLT_EN10MB:
      return readEthernet(reader);
    case DLT_LINUX_SLL:
      return readCooked(reader);
    case DLT_LINUX_SLL2:
      return readCooked2(reader);
    case DLT_NULL:
    case DLT_LOOP:
      return readLoopback(reader);
    default:
      return ReadStep::done;
  }
}

}  // namespace

bool isReadableLinkType(int linkType) {
  switch (linkType) {
    case DLT_EN10MB:
    case DLT_LINUX_SLL:
    case DLT_LINUX_SLL2:
    case DLT_RAW:
    case DLT_IPV4:
    case DLT_IPV6:
    case DLT_NULL:
    case DLT_LOOP:
      return true;
    default:
      return false;
  }
}

ReadStep readLinkLayer(int linkType, ByteView frame, ByteView& packet) {
  WireReader reader(frame);
  const ReadStep step = readHeaders(linkType, reader);
  packet = frame.last(reader.remaining());
  return step;
}

}  // namespace RadiusPacketTool
