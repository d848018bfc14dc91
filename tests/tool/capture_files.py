"""Writes captures: files, frames, IP packets and their fragments, byte by byte. Times are in
nanoseconds, addresses text."""

import ipaddress
import struct

ETHERNET, NULL, RAW, LOOP, SLL, IPV4, IPV6, SLL2 = 1, 0, 101, 108, 113, 228, 229, 276
ETHER_IP4, ETHER_IP6, ETHER_ARP = 0x0800, 0x86DD, 0x0806
CUSTOMER_TAG, SERVICE_TAG = 0x8100, 0x88A8
UDP, TCP = 17, 6
HOP_BY_HOP, ROUTING, FRAGMENT, DESTINATION, NO_NEXT = 0, 43, 44, 60, 59
SNAP_LENGTH = 262144


def packed(address):
    return ipaddress.ip_address(address).packed


def udp(source, destination, payload, length=None):
    """A datagram between two ports, without a checksum."""
    length = 8 + len(payload) if length is None else length
    return struct.pack(">HHHH", source, destination, length, 0) + payload


def ip4(source, destination, payload, *, protocol=UDP, ident=1, options=b"", offset=0, more=False):
    """An IPv4 packet; one with an offset or with more behind it is a fragment."""
    words = 5 + len(options) // 4
    return struct.pack(">BBHHHBBH4s4s", 0x40 | words, 0, 4 * words + len(payload), ident,
                       (0x2000 if more else 0) | offset // 8, 64, protocol, 0, packed(source),
                       packed(destination)) + options + payload


def ip6(source, destination, payload, *, headers=(), protocol=UDP):
    """An IPv6 packet; `headers` are the extension headers by number, without their next one."""
    numbers = [number for number, _ in headers] + [protocol]
    content = b"".join(bytes([after]) + rest
                       for (_, rest), after in zip(headers, numbers[1:])) + payload
    return struct.pack(">IHBB16s16s", 0x60000000, len(content), numbers[0], 64, packed(source),
                       packed(destination)) + content


def ip(source, destination, payload, **options):
    """A packet of the version of its addresses."""
    return (ip6 if ":" in source else ip4)(source, destination, payload, **options)


def option_header(number, units=1):
    """An extension header of so many times eight bytes, all padding."""
    return number, bytes([units - 1]) + bytes(8 * units - 2)


def fragment_header(offset, more, ident=1):
    return FRAGMENT, struct.pack(">BHI", 0, offset | more, ident)


def fragment(source, destination, payload, offset, more, ident=1, **options):
    """The fragment of a payload that begins at that offset."""
    if ":" in source:
        headers = (*options.pop("headers", ()), fragment_header(offset, more, ident))
        return ip6(source, destination, payload, headers=headers, **options)
    return ip4(source, destination, payload, offset=offset, more=more, ident=ident, **options)


def fragments(source, destination, payload, size, **options):
    """A payload in fragments of that size, but for the last."""
    return [fragment(source, destination, payload[at:at + size], at, at + size < len(payload),
                     **options)
            for at in range(0, len(payload), size)]


def ether_type(packet):
    return ETHER_IP6 if packet[0] >> 4 == 6 else ETHER_IP4


def ethernet(packet, *tags, kind=None):
    """A frame, with VLAN tags of those types."""
    tagged = b"".join(struct.pack(">HH", tag, 100) for tag in tags)
    kind = ether_type(packet) if kind is None else kind
    return bytes.fromhex("020000000001020000000002") + tagged + struct.pack(">H", kind) + packet


def cooked(packet):
    return struct.pack(">HHH8sH", 0, 1, 6, b"\2\0\0\0\0\1\0\0", ether_type(packet)) + packet


def cooked2(packet):
    return struct.pack(">HHIHBB8s", ether_type(packet), 0, 2, 1, 0, 6, b"\2\0\0\0\0\1\0\0") + packet


def loopback(packet, order="<", families=(2, 30)):
    return struct.pack(order + "I", families[packet[0] >> 4 == 6]) + packet


def pcap(link_type, frames, *, order="<", nanoseconds=False, snap_length=SNAP_LENGTH):
    """A file of frames, each its time and its bytes; what is behind the snap length is cut off."""
    pieces = [struct.pack(order + "IHHiIII", 0xA1B23C4D if nanoseconds else 0xA1B2C3D4, 2, 4, 0, 0,
                          snap_length, link_type)]
    for time, frame in frames:
        second, fraction = divmod(time, 10**9)
        pieces += [struct.pack(order + "IIII", second, fraction // (1 if nanoseconds else 1000),
                               min(len(frame), snap_length), len(frame)), frame[:snap_length]]
    return b"".join(pieces)


def block(order, kind, content):
    content += bytes(-len(content) % 4)
    length = 12 + len(content)
    return struct.pack(order + "II", kind, length) + content + struct.pack(order + "I", length)


def pcapng(link_types, frames, *, order="<", nanoseconds=False, snap_length=SNAP_LENGTH):
    """A file of several interfaces and of frames: time, bytes, and the number of the interface."""
    content = block(order, 0x0A0D0D0A, struct.pack(order + "IHHq", 0x1A2B3C4D, 1, 0, -1))
    resolution = struct.pack(order + "HHB3xHH", 9, 1, 9, 0, 0) if nanoseconds else b""
    for link_type in link_types:
        content += block(order, 1,
                         struct.pack(order + "HHI", link_type, 0, snap_length) + resolution)
    for time, frame, interface in frames:
        ticks = time // (1 if nanoseconds else 1000)
        kept = frame[:snap_length]
        content += block(order, 6, struct.pack(order + "IIIII", interface, ticks >> 32,
                                               ticks & 0xFFFFFFFF, len(kept), len(frame)) + kept)
    return content
