"""`radius-packet decode --legacy` as a script sees it, beside `decode` on the same packets.

    decode_legacy.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the golden packets.
"""

import hashlib
import ipaddress
import pathlib
import sys
import tempfile
import unittest

from golden_files import golden_count, golden_packets
from program import run
from signed_packets import (REQUEST_AUTHENTICATOR, SECRET, attribute, hidden, packet,
                            signed_request, vendor_attribute)

DATA = pathlib.Path(sys.argv[2])
A_OPTION = ("-a", REQUEST_AUTHENTICATOR.hex())
UNREAD = "the legacy interface gives no value of it: its bytes are shown"
MISSING = "no Request Authenticator: give that of the request which this packet answers with -a HEX"
VENDOR, VENDOR_TEXT, VENDOR_NUMBER = 9, 1, 311


def decode(*arguments, stdin=b""):
    return run("decode", "--legacy", *arguments, stdin=stdin, variable=SECRET)


def groups(address):
    """The bytes as IPv6 groups, none of them shortened; an odd byte is left out."""
    return ":".join(f"{int.from_bytes(address[at:at + 2], 'big'):x}"
                    for at in range(0, len(address) - 1, 2))


def is_unread(entry):
    """A vendor's address: the legacy interface has an empty text for it."""
    return entry["attrId"] == 26 and entry["type"] in ("ipaddr", "ipv6addr", "ifid", "ipv6prefix")


def as_legacy(entry):
    """What JSON says of an attribute on the legacy road, made of what it says on the newer one."""
    wire = bytes.fromhex(entry["hex"])
    value = entry["value"]
    if is_unread(entry):
        value = "0x" + wire.hex()
    elif entry["type"] in ("ipv6addr", "ifid"):
        value = groups(wire)
    elif entry["type"] == "ipv6prefix":
        value = f"{groups(wire[2:])}/{wire[1]}"
    return {**entry, "value": value}


# How many golden packets are good, how many of them have other texts on the legacy road, how many
# are refused on the newer road alone, and how many for another fault.
GOOD, OTHER_TEXTS, REFUSED_THERE_ALONE, OTHER_FAULT = 51, 4, 21, 4


class GoldenPackets(unittest.TestCase):
    def both(self, golden, folder, *arguments):
        options = [*golden.options(folder), *arguments, golden.path]
        return run("decode", *options), run("decode", "--legacy", *options)

    def test_good_ones_are_reported_as_on_the_newer_road(self):
        good = changed = 0
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                if golden.result != "success":
                    continue
                with self.subTest(golden.path.name):
                    newer, legacy = self.both(golden, folder, "--json")
                    (expected,), (report,) = newer.objects, legacy.objects
                    expected["attributes"] = list(map(as_legacy, expected["attributes"]))
                    self.assertEqual((legacy.status, report), (0, expected))
                    self.assertEqual(list(report), list(expected))
                    unread = [entry["name"] for entry in expected["attributes"] if is_unread(entry)]
                    self.assertEqual(legacy.errors.splitlines(), [
                        f"radius-packet: packet 1 of {golden.path}: warning: {name}: {UNREAD}"
                        for name in unread])
                    good += 1
                    if newer.output == legacy.output:
                        newer, legacy = self.both(golden, folder)
                        self.assertEqual((legacy.output, legacy.errors), (newer.output, ""))
                    else:
                        changed += 1
        self.assertEqual((good, changed), (GOOD, OTHER_TEXTS))

    def test_refused_ones_are_said_with_the_reason_of_the_legacy_interface(self):
        """A packet that both roads refuse for the same fault; each has its own words."""
        seen = 0
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                newer, legacy = self.both(golden, folder, "--json")
                (expected,), (report,) = newer.objects, legacy.objects
                if "success" in (expected["error"], report["error"]):
                    continue
                with self.subTest(golden.path.name):
                    self.assertEqual(report["attributes"], [])
                    reason = f": {report['reason']}" if report["reason"] else ""
                    self.assertEqual(legacy.errors,
                                     f"radius-packet: packet 1 of {golden.path} refused: "
                                     f"{report['error']}{reason}\n")
                    if report["error"] == expected["error"]:
                        self.assertEqual(legacy.status, newer.status)
                        seen += 1
        self.assertEqual(seen, golden_count(DATA) - GOOD - REFUSED_THERE_ALONE - OTHER_FAULT)


class Text(unittest.TestCase):
    def test_shows_what_the_interface_gives(self):
        response = packet(
            2, attribute(64, b"\x01\0\0\x0d"), attribute(4, bytes([192, 0, 2, 1])),
            attribute(95, ipaddress.ip_address("2001:db8::1").packed),
            attribute(69, b"\x01" + hidden(b"\x03key", b"\x80\x01")),
            vendor_attribute(VENDOR_NUMBER, 28, bytes([192, 0, 2, 53])),
            attribute(18, b"a\"b\n"), attribute(240, b"\0\xff"))
        result = decode(*A_OPTION, stdin=response.hex())
        self.assertEqual(result.text.splitlines(), [
            f"ACCESS_ACCEPT, id 7, length {len(response)}, authenticator {response[4:20].hex()} "
            "(verified), packet 1 of -",
            "Tunnel-Type:1 = 13",
            "NAS-IP-Address = 192.0.2.1",
            "NAS-IPv6-Address = 2001:db8:0:0:0:0:0:1",
            'Tunnel-Password:1 = "key"',
            "MS-Primary-DNS-Server = 0xc0000235",
            'Reply-Message = "a\\"b\\n"',
            "Attr-240 = 0x00ff"])
        self.assertEqual((result.status, result.errors), (
            0, f"radius-packet: packet 1 of -: warning: MS-Primary-DNS-Server: {UNREAD}\n"))

    def test_a_number_of_64_bits_is_shown_as_its_bytes(self):
        with tempfile.TemporaryDirectory() as folder:
            top = pathlib.Path(folder) / "dictionary"
            top.write_text("$INCLUDE ours\n")
            (top.parent / "ours").write_text("ATTRIBUTE Mine 1 integer64\n")
            request = packet(1, attribute(1, bytes(range(8))))
            result = decode("-d", top, "--json", stdin=request.hex())
        (entry,) = result.objects[0]["attributes"]
        self.assertEqual((entry["name"], entry["type"], entry["value"], entry["hex"]),
                         ("Mine", "integer64", "0x0001020304050607", "0001020304050607"))
        self.assertEqual((result.status, result.errors),
                         (0, f"radius-packet: packet 1 of -: warning: Mine: {UNREAD}\n"))

    def test_responses_are_paired_with_requests(self):
        request = signed_request(attribute(1, b"alice"))
        answer = packet(2, request_authenticator=request[4:20])
        result = decode(stdin=f"{request.hex()}\n\n{answer.hex()}")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertTrue(result.text.endswith(
            f"authenticator {answer[4:20].hex()} (verified), packet 2 of -, "
            "paired with packet 1 of -\n"))

    def test_response_without_a_request_authenticator(self):
        result = decode("--json", stdin=packet(2).hex())
        self.assertEqual((result.status, result.errors),
                         (1, f"radius-packet: packet 1 of - refused: {MISSING}\n"))
        self.assertEqual((result.objects[0]["error"], result.objects[0]["reason"]), (None, MISSING))

    def test_another_secret(self):
        result = run("decode", "--legacy", "--json", *A_OPTION, stdin=packet(2).hex(),
                     variable="another")
        self.assertEqual((result.status, result.errors),
                         (1, "radius-packet: packet 1 of - refused: invalidPktAuth\n"))

    def test_status_server_verdicts(self):
        for content, verdict in (((), "msgAuthNotPresent"),
                                 ((attribute(32, b"nas"),), "success"),
                                 ((attribute(1, b"alice"),), "invalidAttributePresent")):
            with self.subTest(verdict):
                request = signed_request(*content, code=12) if content else packet(12)
                result = decode("--status-server", stdin=request.hex())
                self.assertEqual(result.status, 0)
                self.assertEqual(result.text.splitlines()[1], f"Status-Server: {verdict}")
                (report,) = decode("--status-server", "--json", stdin=request.hex()).objects
                self.assertEqual(report["statusServer"], verdict)

    def test_help_says_what_it_does(self):
        self.assertIn("--legacy", run("decode", "--help").text)


def claiming(length, content):
    """An Accounting-Request whose Length says more than there is, signed over the zeros that are
    read in the place of what is missing."""
    head = bytes([4, 7]) + length.to_bytes(2, "big")
    whole = head + bytes(16) + content + bytes(length - 20 - len(content))
    return head + hashlib.md5(whole + SECRET.encode()).digest() + content


class Hostile(unittest.TestCase):
    def test_cut_packets(self):
        cut = claiming(40, attribute(1, b"alice") + bytes([18, 13]) + b"he")
        result = decode("--json", stdin=cut.hex())
        self.assertEqual(result.status, 0)
        self.assertEqual([entry["value"] for entry in result.objects[0]["attributes"]],
                         ["alice", "he" + "\\x00" * 9])
        self.assertEqual(result.errors, "radius-packet: packet 1 of -: warning: its Length says 40, "
                         "but there are 31 bytes: the others are read as zeros\n")

    def test_lengths_that_lie(self):
        for length, status, errors in (
                (0, 2, ["invalidPktLength: Received packet with invalid header length"]),
                (19, 2, ["invalidPktLength: Received packet with invalid header length"]),
                (4097, 2, ["invalidPktLength: Received packet with invalid header length"]),
                (65535, 2, ["invalidPktLength: Received packet with invalid header length"]),
                (4096, 2, ["invalidAttrLength: Received packet with invalid attribute length",
                           "its Length says 4096, but there are 27 bytes: the others are read as "
                           "zeros"])):
            with self.subTest(length):
                lying = bytearray(packet(1, attribute(1, b"alice")))
                lying[2:4] = length.to_bytes(2, "big")
                result = decode(stdin=lying.hex())
                self.assertEqual(result.status, status)
                self.assertEqual(
                    [line.split(" of -")[1].removeprefix(" refused: ").removeprefix(": warning: ")
                     for line in result.errors.splitlines()], errors)

    def test_zero_length_bytes(self):
        for content in (bytes([1, 0]), bytes([1, 0, 0, 0]), attribute(1, b"a") + bytes([26, 0, 0]),
                        bytes([80, 0]) + bytes(16), bytes([2, 0]) + bytes(16)):
            for code in (1, 4, 12):
                with self.subTest(content=content, code=code):
                    result = decode("--json", "--status-server", stdin=packet(code, content).hex())
                    self.assertEqual((result.status, result.objects[0]["error"]),
                                     (2, "invalidAttrLength"))

    def test_lengths_of_sub_attributes(self):
        for length, value in ((0, "abc\\x01\\x03u" + "\\x00" * 248),
                              (1, "abc\\x01\\x03u" + "\\x00" * 249),
                              (255, "abc\\x01\\x03u" + "\\x00" * 247)):
            with self.subTest(length):
                vsa = bytearray(vendor_attribute(VENDOR, VENDOR_TEXT, b"abc"))
                vsa[7] = length
                result = decode("--json", stdin=packet(1, bytes(vsa), attribute(1, b"u")).hex())
                first, second = result.objects[0]["attributes"]
                self.assertEqual((first["value"], first["hex"], second["value"]),
                                 (value, b"abc".hex(), "u"))
                self.assertEqual((result.status, result.errors), (
                    0, "radius-packet: packet 1 of -: warning: Cisco-AVPair: its vendor's Length "
                    f"byte says {length}, where 5 would be right\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
