"""tshark, an independent dissector, finds in captures what `radius-packet decode` finds there: framing,
data types, values, and the verdicts on the authenticators of responses.

    tshark.test.py PROGRAM CAPTURES [COUNT [SEED]]

CAPTURES is the folder of the captures; COUNT random packets come beside them.
"""

import collections
import ipaddress
import json
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import unittest

from peer_packets import skip

try:
    import pyrad.dictionary
except ImportError:
    skip("python3-pyrad is not installed")
if not shutil.which("tshark"):
    skip("tshark is not installed")

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "tool"))

from attribute_catalogue import write_our_dictionary
from capture_files import RAW, ip, pcap, udp
from dissector import dissected
from exchanges import SECRET
from random_packets import OurPackets
from tool_packets import Tool, unescaped

PROGRAM, CAPTURES = sys.argv[1], pathlib.Path(sys.argv[2])
COUNT = int(sys.argv[3]) if len(sys.argv) > 3 else 2000
SEED = sys.argv[4] if len(sys.argv) > 4 else "1"
RADIUS_PORT, FIRST_CLIENT_PORT = 1812, 40000

# The dissector's data types for ours; values without bytes have none, and those of attributes that it
# does not know are bytes.
KINDS = {"string": "FT_STRING", "octets": "FT_BYTES", "integer": "FT_UINT32", "date": "FT_ABSOLUTE_TIME",
         "ipaddr": "FT_IPv4", "ipv6addr": "FT_IPv6", "ipv6prefix": "FT_BYTES", "ifid": "FT_BYTES",
         "integer64": "FT_BYTES", "unknown": "FT_BYTES"}
UNKNOWN = "radius.Unknown_Attribute"

# Where the two give one attribute different types. Its bytes are the same.
OTHER_TYPE = {
    "PKM-SAID": "FT_UINT32", "Ruckus-Sta-Expiration": "FT_STRING",
    "ADSL-Agent-Circuit-Id": "FT_STRING", "ADSL-Agent-Remote-Id": "FT_STRING",
    "Chargeable-User-Identity": "FT_STRING", "EAP-Key-Name": "FT_STRING",
    "Originating-Line-Info": "FT_STRING", "Ruckus-Read-Preference": "FT_STRING",
    "Framed-IPX-Network": "FT_IPXNET",
}
# What the dissector goes on to take apart by rules of its own; it gives up a packet at random values of
# the first two. Their framing is compared, their values are not.
GIVEN_UP = ("EAP-Message", "3GPP-")
TAKEN_APART = ("3GPP-", "CHAP-Password", "Egress-VLANID", "Egress-VLAN-Name", "Operator-Name")
RANDOM_AUTHENTICATORS = (1, 12)


def value_of(field):
    """What the dissector shows, in the terms of the tool's JSON."""
    match field.kind:
        case "FT_UINT8" | "FT_UINT32":
            return int(field.shown, 0)
        case "FT_ABSOLUTE_TIME":
            return int.from_bytes(field.wire, "big")
        case "FT_IPv4" | "FT_IPv6":
            return ipaddress.ip_address(field.shown)
        case _:
            return field.wire


def value_in(kind, reported):
    """The value that the tool reports, in the terms of a field of that kind."""
    value = reported["value"]
    match kind, reported["type"]:
        case ("FT_IPv4" | "FT_IPv6"), _:
            return ipaddress.ip_address(value)
        case "FT_STRING", "string":
            return unescaped(value)
        case ("FT_UINT32" | "FT_ABSOLUTE_TIME"), ("integer" | "date"):
            return value
        case "FT_UINT32", _:
            return int(reported["hex"] or "0", 16)
        case _:
            return bytes.fromhex(reported["hex"])


class Agreement(unittest.TestCase):
    def setUp(self):
        self.met = collections.Counter()

    def check(self, capture, reports, secret):
        """Compares every packet; returns how many there were."""
        packets = list(dissected(capture, secret))
        self.assertEqual(len(packets), len(reports))
        for at, (packet, report) in enumerate(zip(packets, reports), 1):
            with self.subTest(capture=str(capture), packet=at):
                self.check_packet(packet, report)
        return len(packets)

    def check_packet(self, packet, report):
        self.assertEqual((packet.code, packet.id, packet.length, packet.authenticator.hex()),
                         (report["code"], report["id"], report["length"], report["authenticator"]))
        if packet.is_authentic is not None:
            self.met[f"authenticator {'right' if packet.is_authentic else 'wrong'}"] += 1
            self.assertEqual(packet.is_authentic, report["error"] != "invalidPktAuth")
        if report["error"] != "success":
            return
        attributes = report["attributes"]
        if packet.is_malformed and len(packet.attributes) < len(attributes):
            self.met["given up by tshark"] += 1
            attributes = attributes[:len(packet.attributes)]
            self.assertTrue(attributes[-1]["name"].startswith(GIVEN_UP), attributes[-1])
        self.assertEqual(len(packet.attributes), len(attributes))
        for found, reported in zip(packet.attributes, attributes):
            self.check_attribute(packet, found, reported)

    def check_attribute(self, packet, found, reported):
        self.assertEqual(
            (found.offset, found.length, *found.numbers),
            tuple(reported[key] for key in ("offset", "length", "attrId", "vendorId", "vendorAttrId")))
        self.met["attributes"] += 1
        *parts, field = found.fields or [None]
        if reported["name"].startswith(TAKEN_APART):
            self.met["taken apart"] += 1
        elif field is None:
            self.assertEqual(reported["hex"], "", reported)
        elif field.name == UNKNOWN or field.name.endswith("_encrypted"):
            self.assertEqual(b"".join(one.wire for one in found.fields).hex(), reported["hex"])
        elif reported["name"] == "User-Password":
            self.check_password(packet.code, field, reported)
        else:
            self.check_value(parts, field, reported)

    def check_password(self, code, field, reported):
        """The dissector reveals it with the same secret, everywhere as in a request; what is no text
        it shows in its own way."""
        self.assertEqual(field.wire.hex(), reported["hex"])
        value = reported["value"]
        if code in RANDOM_AUTHENTICATORS and value.isascii() and "\\" not in value:
            self.met["passwords"] += 1
            self.assertEqual(field.shown, value)

    def check_value(self, parts, field, reported):
        kind = OTHER_TYPE.get(reported["name"], KINDS[reported["type"]])
        self.met["other types" if reported["name"] in OTHER_TYPE else "typed values"] += 1
        self.assertEqual(field.kind, kind, reported)
        if kind in ("FT_IPXNET", "FT_STRING") and reported["type"] != "string":
            self.assertEqual(field.wire.hex(), reported["hex"])
        else:
            self.assertEqual(value_of(field), value_in(kind, reported), reported)
        if parts:
            self.assertEqual(value_of(parts[0]), reported["tag"])
        else:
            self.assertIsNone(reported["tag"])

    def report(self, what):
        print(f"{what}: " + ", ".join(f"{count} {name}" for name, count in sorted(self.met.items())))


def decoded(capture, *options):
    run = subprocess.run([PROGRAM, "decode", "--json", *options, capture], capture_output=True,
                         timeout=600)
    reports = map(json.loads, run.stdout.splitlines())
    return [report for report in reports if report["kind"] == "packet"]


class RandomPackets(Agreement):
    """Packets of ours, a tenth of the responses with a byte of the authenticator changed."""

    def test_are_dissected_as_they_are_decoded(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            dictionary = write_our_dictionary(folder)
            capture = folder / "random.pcap"
            self.write(capture, Tool(PROGRAM, dictionary))
            reports = decoded(capture, "-d", dictionary, "--secret", SECRET)
            self.assertEqual(self.check(capture, reports, SECRET), COUNT // 2 * 2)
        self.report(f"{COUNT // 2 * 2} random packets, seed {SEED}")
        for name in ("authenticator right", "authenticator wrong", "attributes", "typed values",
                     "other types", "given up by tshark"):
            self.assertGreater(self.met[name], 0, name)

    def write(self, capture, tool):
        packets = OurPackets(SEED)
        exchanges = [packets.exchange(at) for at in range(COUNT // 2)]
        wires, _ = tool.build([packet for pair in exchanges for packet in pair], SECRET.encode())
        chance = random.Random(SEED)
        frames = []
        for at, (request, response) in enumerate(zip(wires[::2], wires[1::2])):
            port = FIRST_CLIENT_PORT + at // 256  # so that no two requests have one Identifier
            if chance.random() < 0.1:
                place = chance.randrange(4, 20)
                response = response[:place] + bytes([response[place] ^ 1]) + response[place + 1:]
            frames += [ip("192.0.2.1", "192.0.2.2", udp(port, RADIUS_PORT, request)),
                       ip("192.0.2.2", "192.0.2.1", udp(RADIUS_PORT, port, response))]
        capture.write_bytes(pcap(RAW, [(at * 10**9, frame) for at, frame in enumerate(frames)]))


class Captures(Agreement):
    """What the example agents and the live peer said to each other."""

    def test_are_dissected_as_they_are_decoded(self):
        count = 0
        for name in ("agents.pcap", "agents-any.pcap", "dynauth.pcap"):
            reports = decoded(CAPTURES / name, "--secret", SECRET)
            self.assertGreater(len(reports), 0, name)
            count += self.check(CAPTURES / name, reports, SECRET)
        self.report(f"{count} packets of captures")
        self.assertGreater(self.met["authenticator right"], 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
