"""The captures that are made and not recorded, by name. As a program it writes them:

    synthetic_captures.py FOLDER
"""

import hashlib
import pathlib
import sys

from capture_files import (CUSTOMER_TAG, DESTINATION, ETHER_ARP, ETHERNET, HOP_BY_HOP, IPV4, LOOP,
                           NULL, RAW, ROUTING, SERVICE_TAG, SLL, SLL2, TCP, cooked, cooked2,
                           ethernet, fragment, fragments, ip, loopback, option_header, pcap,
                           pcapng, udp)
from signed_packets import SECRET, attribute, packet

OTHER_SECRET = "another secret"
START = 1795255200123456000  # 2026-11-21T10:00:00.123456Z
MILLISECOND = 10**6

CLIENT, OTHER_CLIENT, SERVER = "192.0.2.1", "192.0.2.66", "192.0.2.2"
CLIENT6, SERVER6 = "2001:db8::1", "2001:db8::2"
PORT, CLIENT_PORT = 1812, 40000


def identified(content, identifier):
    return content[:1] + bytes([identifier]) + content[2:]


def access_request(identifier=7, filler=0x11, *attributes):
    """An Access-Request; its authenticator is `filler` throughout."""
    content = b"".join(attributes) or attribute(1, b"alice")
    return (bytes([1, identifier]) + (20 + len(content)).to_bytes(2, "big") + bytes([filler]) * 16
            + content)


def answer(code, request, *attributes, secret=SECRET):
    """A response that answers the request."""
    content = b"".join(attributes)
    head = bytes([code, request[1]]) + (20 + len(content)).to_bytes(2, "big")
    return head + hashlib.md5(head + request[4:20] + content + secret.encode()).digest() + content


def ends(version6, client):
    return (CLIENT6, SERVER6) if version6 else (client, SERVER)


def asked(content, *, version6=False, client=CLIENT, port=CLIENT_PORT, to=PORT, **options):
    """The IP packet of a request."""
    return ip(*ends(version6, client), udp(port, to, content), **options)


def answered(content, *, version6=False, client=CLIENT, port=CLIENT_PORT, to=PORT, **options):
    """The IP packet of a response."""
    near, far = ends(version6, client)
    return ip(far, near, udp(to, port, content), **options)


def at_intervals(frames):
    """Frames, one each millisecond."""
    return [(START + number * MILLISECOND, frame) for number, frame in enumerate(frames)]


REQUEST = access_request()
ACCEPT = answer(2, REQUEST, attribute(18, b"welcome"))
# One that does not fit into a frame.
LONG_REQUEST = access_request(8, 0x12, *[attribute(18, bytes([0x61 + n]) * 253) for n in range(8)])


def exchange(wrap, **options):
    return at_intervals([wrap(asked(REQUEST, **options)), wrap(answered(ACCEPT, **options))])


def exchanges_of_both_versions(wrap):
    return at_intervals([wrap(packet_of(content, version6=version6))
                         for version6 in (False, True)
                         for packet_of, content in ((asked, REQUEST), (answered, ACCEPT))])


def fragmented(version6, *order):
    """A long request in fragments in that order, and its answer."""
    near, far = ends(version6, CLIENT)
    pieces = fragments(near, far, udp(CLIENT_PORT, PORT, LONG_REQUEST), 800)
    answer_frame = ethernet(answered(answer(2, LONG_REQUEST), version6=version6))
    return pcap(ETHERNET,
                at_intervals([*(ethernet(pieces[number]) for number in order), answer_frame]))


def overlapping(version6):
    """Two datagrams whose fragments overlap, in a half and in eight bytes, and an exchange."""
    near, far = ends(version6, CLIENT)
    content = udp(CLIENT_PORT, PORT, LONG_REQUEST)
    frames = []
    for ident, back in ((1, 800), (2, 8)):
        frames += [fragment(near, far, content[:1600], 0, True, ident),
                   fragment(near, far, content[1600 - back:], 1600 - back, False, ident)]
    frames += [asked(REQUEST, version6=version6), answered(ACCEPT, version6=version6)]
    return pcap(ETHERNET, at_intervals([ethernet(frame) for frame in frames]))


def retransmissions():
    """A request three times, its answer twice; then its Identifier again, for another."""
    again = access_request(7, 0x22, attribute(1, b"bob"))
    packets = [asked(REQUEST), asked(REQUEST), answered(ACCEPT), asked(REQUEST), answered(ACCEPT),
               asked(again), answered(answer(3, again)), asked(access_request(9, 0x33))]
    return pcap(ETHERNET, at_intervals([ethernet(packet) for packet in packets]))


def same_identifiers():
    """Two ports of a client and another client, which use one Identifier at the same time."""
    flows = [{"port": 40000}, {"port": 40001}, {"client": OTHER_CLIENT}]
    requests = [access_request(7, 0x41 + n, attribute(1, b"user%d" % n)) for n in range(3)]
    frames = [asked(request, **flow) for request, flow in zip(requests, flows)]
    frames += [answered(answer(2, request), **flow) for request, flow in zip(requests, flows)]
    return pcap(ETHERNET, at_intervals([ethernet(frame) for frame in frames]))


def two_clients():
    """Two clients, each with its secret, in authentication, accounting and Disconnect."""
    frames = []
    for client, secret in ((CLIENT, SECRET), (OTHER_CLIENT, OTHER_SECRET)):
        accounting = packet(4, attribute(44, b"session"), secret=secret)
        disconnect = packet(40, attribute(44, b"session"), secret=secret)
        frames += [
            asked(REQUEST, client=client),
            answered(answer(2, REQUEST, secret=secret), client=client),
            asked(accounting, client=client, to=1813),
            answered(answer(5, accounting, secret=secret), client=client, to=1813),
            # The other way round: the client of the secret is the one that is asked.
            answered(disconnect, client=client, to=50000, port=3799),
            asked(answer(41, disconnect, secret=secret), client=client, to=50000, port=3799),
        ]
    return pcap(ETHERNET, at_intervals([ethernet(frame) for frame in frames]))


def other_frames():
    """An exchange among frames without RADIUS packets, one more of each kind."""
    request = asked(REQUEST)
    others = [ethernet(bytes(28), kind=ETHER_ARP), ethernet(ip(CLIENT, SERVER, bytes(20),
                                                               protocol=TCP)),
              ethernet(ip(CLIENT, SERVER, udp(5353, 53, b"name"))),
              ethernet(ip(CLIENT, SERVER, udp(CLIENT_PORT, PORT, b""))),  # no packet in it
              ethernet(ip(CLIENT, SERVER, udp(CLIENT_PORT, PORT, REQUEST, 7))),
              ethernet(ip(CLIENT, SERVER, udp(CLIENT_PORT, PORT, REQUEST, 200))),
              ethernet(request)[:40], b"\0"]
    # What stands behind the IP packet is the frame's padding.
    frames = [ethernet(request) + bytes(6), *others, ethernet(answered(ACCEPT)) + bytes(6)]
    return pcap(ETHERNET, at_intervals(frames))


def many_interfaces(order, nanoseconds):
    frames = [(time + 789, frame, number)
              for number, (time, frame) in enumerate(exchange(ethernet))]
    return pcapng([ETHERNET, ETHERNET], frames, order=order, nanoseconds=nanoseconds)


EXTENSIONS = (option_header(HOP_BY_HOP), option_header(ROUTING, 3), option_header(DESTINATION, 2))

CAPTURES = {
    "vlan.pcap": pcap(ETHERNET, exchange(lambda packet: ethernet(packet, CUSTOMER_TAG))),
    "qinq.pcap": pcap(ETHERNET,
                      exchange(lambda packet: ethernet(packet, SERVICE_TAG, CUSTOMER_TAG))),
    "cooked.pcap": pcap(SLL, exchanges_of_both_versions(cooked)),
    "cooked2.pcap": pcap(SLL2, exchanges_of_both_versions(cooked2)),
    "raw.pcap": pcap(RAW, exchanges_of_both_versions(bytes)),
    "raw-ip4.pcap": pcap(IPV4, exchange(bytes)),
    "loopback.pcap": pcap(NULL, exchanges_of_both_versions(loopback)),
    "loopback-big.pcap": pcap(LOOP, exchanges_of_both_versions(
        lambda packet: loopback(packet, ">", (2, 24)))),
    "options.pcap": pcap(ETHERNET, exchange(ethernet, options=b"\1" * 8)),
    "extensions.pcap": pcap(ETHERNET, exchange(ethernet, version6=True, headers=EXTENSIONS)),
    "fragments4.pcap": fragmented(False, 0, 1, 2),
    "fragments4-mixed.pcap": fragmented(False, 2, 0, 2, 1),
    "fragments6.pcap": fragmented(True, 0, 1, 2),
    "fragments6-mixed.pcap": fragmented(True, 1, 2, 1, 0),
    "overlap4.pcap": overlapping(False),
    "overlap6.pcap": overlapping(True),
    "fragment-missing.pcap": fragmented(False, 0, 2),
    "retransmissions.pcap": retransmissions(),
    "same-identifiers.pcap": same_identifiers(),
    "two-clients.pcap": two_clients(),
    "others.pcap": other_frames(),
    "truncated.pcap": pcap(ETHERNET, exchange(ethernet))[:-1],
    "cut.pcap": pcap(ETHERNET, exchange(ethernet), snap_length=64),
    "cut-headers.pcap": pcap(ETHERNET, exchange(ethernet), snap_length=36),
    "nanoseconds.pcap": pcap(ETHERNET, [(time + 789, frame) for time, frame in exchange(ethernet)],
                             nanoseconds=True),
    "big-endian.pcap": pcap(ETHERNET, exchange(ethernet), order=">"),
    "big-endian-nanoseconds.pcap": pcap(ETHERNET, exchange(ethernet), order=">", nanoseconds=True),
    "interfaces.pcapng": many_interfaces("<", True),
    "big-endian.pcapng": many_interfaces(">", False),
}


if __name__ == "__main__":
    for name, content in CAPTURES.items():
        (pathlib.Path(sys.argv[1]) / name).write_bytes(content)
