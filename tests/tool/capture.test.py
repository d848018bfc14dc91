"""`radius-packet decode` on captures: what is read, paired, summed up, and refused.

    capture.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the captures.
"""

import os
import pathlib
import pty
import re
import struct
import subprocess
import sys
import tempfile
import unittest

from capture_files import ETHERNET, RAW, TCP, ethernet, fragment, ip, pcap, pcapng, udp
from program import PROGRAM, VARIABLE, run
from signed_packets import SECRET, attribute, packet
from synthetic_captures import (ACCEPT, CAPTURES, CLIENT, LONG_REQUEST, MILLISECOND, OTHER_CLIENT,
                                OTHER_SECRET, PORT, REQUEST, SERVER, START, access_request, answer,
                                answered, asked, at_intervals, exchange)

DATA = pathlib.Path(sys.argv[2])
RECORDED = DATA / "captures"
SYNTHETIC = RECORDED / "synthetic"
RECORDED_SECRET = "interop secret"
MISSING = "no Request Authenticator: give that of the request which this packet answers with -a HEX"
NO_SUMMARY = {"schema": 1, "kind": "summary", "packets": 0, "answered": 0, "unanswered": 0,
              "retransmissions": 0, "refused": {}, "skippedFrames": 0, "cutFrames": 0,
              "incompleteDatagrams": 0}
FLOW, FLOW_BACK = ((f"{CLIENT}:40000", f"{SERVER}:1812"), (f"{SERVER}:1812", f"{CLIENT}:40000"))
FLOW6 = ("[2001:db8::1]:40000", "[2001:db8::2]:1812")


def decode(*arguments, stdin=b"", secret=SECRET, **options):
    """Decodes with a secret in the variable."""
    return run("decode", *arguments, stdin=stdin, variable=secret, **options)


def index_of(place):
    return place and place["index"]


def lines_of(result):
    """Of each packet its code, error, and the packets that it answers and repeats."""
    return [(report["codeName"], report["error"], index_of(report["pairedWith"]),
             index_of(report["retransmissionOf"])) for report in result.objects[:-1]]


def summary(**counts):
    return {**NO_SUMMARY, **counts}


def ethernet_capture(*packets):
    return pcap(ETHERNET, at_intervals([ethernet(packet) for packet in packets]))


class TestWithFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path


# ---- What captures hold ----


GOOD_EXCHANGE = [("ACCESS_REQUEST", "success", None, None), ("ACCESS_ACCEPT", "success", 1, None)]
TWO_EXCHANGES = [*GOOD_EXCHANGE, ("ACCESS_REQUEST", "success", None, None),
                 ("ACCESS_ACCEPT", "success", 3, None)]
ONE = {"packets": 2, "answered": 1}
TWO = {"packets": 4, "answered": 2}

SYNTHETIC_RESULTS = {
    **dict.fromkeys(("vlan.pcap", "qinq.pcap", "raw-ip4.pcap", "options.pcap", "extensions.pcap",
                     "fragments4.pcap", "fragments4-mixed.pcap", "fragments6.pcap",
                     "fragments6-mixed.pcap", "nanoseconds.pcap", "big-endian.pcap",
                     "big-endian-nanoseconds.pcap", "interfaces.pcapng", "big-endian.pcapng"),
                    (GOOD_EXCHANGE, ONE)),
    **dict.fromkeys(("cooked.pcap", "cooked2.pcap", "raw.pcap", "loopback.pcap",
                     "loopback-big.pcap"), (TWO_EXCHANGES, TWO)),
    "overlap4.pcap": (GOOD_EXCHANGE, {**ONE, "incompleteDatagrams": 2}),
    "overlap6.pcap": (GOOD_EXCHANGE, {**ONE, "incompleteDatagrams": 2}),
    "fragment-missing.pcap": (
        [("ACCESS_ACCEPT", None, None, None)],
        {"packets": 1, "refused": {"noRequestAuthenticator": 1}, "incompleteDatagrams": 1}),
    "retransmissions.pcap": (
        [("ACCESS_REQUEST", "success", None, None), ("ACCESS_REQUEST", "success", None, 1),
         ("ACCESS_ACCEPT", "success", 2, None), ("ACCESS_REQUEST", "success", None, 1),
         ("ACCESS_ACCEPT", "success", 4, 3), ("ACCESS_REQUEST", "success", None, None),
         ("ACCESS_REJECT", "success", 6, None), ("ACCESS_REQUEST", "success", None, None)],
        {"packets": 8, "answered": 2, "unanswered": 1, "retransmissions": 3}),
    "same-identifiers.pcap": (
        [("ACCESS_REQUEST", "success", None, None)] * 3
        + [("ACCESS_ACCEPT", "success", number, None) for number in (1, 2, 3)],
        {"packets": 6, "answered": 3}),
    "others.pcap": (GOOD_EXCHANGE, {**ONE, "skippedFrames": 8}),
    "cut.pcap": ([("ACCESS_REQUEST", None, None, None), ("ACCESS_ACCEPT", None, 1, None)],
                 {**ONE, "refused": {"cutShort": 2}, "cutFrames": 2}),
    "cut-headers.pcap": ([], {"cutFrames": 2}),
    "truncated.pcap": (GOOD_EXCHANGE[:1], {"packets": 1, "unanswered": 1}),
}
SYNTHETIC_FAULTS = {
    "fragment-missing.pcap": (1, [f"packet 1 of {{}} refused: {MISSING}"]),
    "cut.pcap": (1, ["packet 1 of {} refused: the capture has only 22 of its 27 bytes",
                     "packet 2 of {} refused: the capture has only 22 of its 29 bytes",
                     "{}: warning: frames cut short: 2"]),
    "cut-headers.pcap": (66, ["{}: warning: frames cut short: 2", "no packets in the input"]),
    "truncated.pcap": (66, ["{}: frame 2 cannot be read: truncated dump file; tried to read 71 "
                            "captured bytes, only got 70"]),
}


class Synthetic(unittest.TestCase):
    def test_committed_ones_are_those_that_are_written(self):
        self.assertEqual({path.name: path.read_bytes() for path in SYNTHETIC.iterdir()}, CAPTURES)

    def test_each_gives_its_packets_and_its_summary(self):
        self.assertEqual({*SYNTHETIC_RESULTS, "two-clients.pcap"}, set(CAPTURES))
        for name, (lines, counts) in SYNTHETIC_RESULTS.items():
            with self.subTest(name):
                path = SYNTHETIC / name
                status, errors = SYNTHETIC_FAULTS.get(name, (0, []))
                result = decode("--json", path)
                self.assertEqual(lines_of(result), lines)
                self.assertEqual(result.objects[-1], summary(**counts))
                self.assertEqual(result.errors, "".join(f"radius-packet: {error.format(path)}\n"
                                                        for error in errors))
                self.assertEqual(result.status, status)

    def test_packets_are_those_that_were_sent(self):
        for name, packets in (("vlan.pcap", [REQUEST, ACCEPT]),
                              ("fragments4-mixed.pcap", [LONG_REQUEST, answer(2, LONG_REQUEST)]),
                              ("fragments6-mixed.pcap", [LONG_REQUEST, answer(2, LONG_REQUEST)])):
            with self.subTest(name):
                reports = decode("--json", SYNTHETIC / name).objects[:-1]
                attributes = ["".join(f"{entry['attrId']:02x}{entry['length']:02x}{entry['hex']}"
                                      for entry in report["attributes"]) for report in reports]
                self.assertEqual(attributes, [sent[20:].hex() for sent in packets])
                self.assertEqual([report["authenticator"] for report in reports],
                                 [sent[4:20].hex() for sent in packets])

    def test_times_and_ends_are_told(self):
        for name, expected in (
                ("raw-ip4.pcap", [("2026-11-21T10:00:00.123456Z", *FLOW),
                                  ("2026-11-21T10:00:00.124456Z", *FLOW_BACK)]),
                ("nanoseconds.pcap", [("2026-11-21T10:00:00.123456789Z", *FLOW),
                                      ("2026-11-21T10:00:00.124456789Z", *FLOW_BACK)]),
                ("big-endian-nanoseconds.pcap", [("2026-11-21T10:00:00.123456Z", *FLOW),
                                                 ("2026-11-21T10:00:00.124456Z", *FLOW_BACK)]),
                ("interfaces.pcapng", [("2026-11-21T10:00:00.123456789Z", *FLOW),
                                       ("2026-11-21T10:00:00.124456789Z", *FLOW_BACK)]),
                ("extensions.pcap", [("2026-11-21T10:00:00.123456Z", *FLOW6),
                                     ("2026-11-21T10:00:00.124456Z", *FLOW6[::-1])])):
            with self.subTest(name):
                reports = decode("--json", SYNTHETIC / name).objects[:-1]
                self.assertEqual([(report["time"], report["from"], report["to"])
                                  for report in reports], expected)

    def test_packets_from_elsewhere_have_neither(self):
        (report,) = decode("--json", stdin=REQUEST.hex()).objects
        self.assertEqual([report[key] for key in ("time", "from", "to", "retransmissionOf")],
                         [None] * 4)


class Recorded(unittest.TestCase):
    """What the example agents and a live server said to each other."""

    AUTHENTICATION = [("ACCESS_REQUEST", "success", None, None),
                      ("ACCESS_ACCEPT", "success", 1, None),
                      ("ACCESS_REQUEST", "success", None, None),
                      ("ACCESS_ACCEPT", "success", 3, None),
                      ("ACCESS_REQUEST", "success", None, None),
                      ("ACCESS_REJECT", "success", 5, None),
                      ("STATUS_SERVER", "success", None, None),
                      ("ACCESS_ACCEPT", "success", 7, None)]

    def decode(self, name):
        return decode("--json", RECORDED / name, secret=RECORDED_SECRET)

    def test_agents(self):
        result = self.decode("agents.pcap")
        accounting = [line for number in (9, 11, 13)
                      for line in (("ACCOUNTING_REQUEST", "success", None, None),
                                   ("ACCOUNTING_RESPONSE", "success", number, None))]
        self.assertEqual(lines_of(result), [
            *self.AUTHENTICATION, *accounting, ("STATUS_SERVER", "success", None, None),
            ("ACCOUNTING_RESPONSE", "success", 15, None),
            ("ACCESS_REQUEST", "invalidMsgAuth", None, None),
            ("ACCESS_REQUEST", "invalidMsgAuth", None, 17),
            ("ACCESS_REQUEST", "invalidMsgAuth", None, 17)])
        self.assertEqual(result.objects[-1],
                         summary(packets=19, answered=8, unanswered=1, retransmissions=2,
                                 refused={"invalidMsgAuth": 3}))
        self.assertEqual(result.status, 1)

    def test_values_are_those_that_the_server_was_told(self):
        accept = self.decode("agents.pcap").objects[1]
        values = {entry["name"]: entry["value"] for entry in accept["attributes"]}
        self.assertEqual((values["Tunnel-Password"], values["MS-MPPE-Send-Key"],
                          values["Reply-Message"]),
                         ("salt and pepper", bytes(range(32)).hex(), "welcome"))

    def test_agents_on_all_interfaces(self):
        result = self.decode("agents-any.pcap")
        self.assertEqual((lines_of(result), result.status), (self.AUTHENTICATION, 0))
        self.assertEqual(result.objects[-1], summary(packets=8, answered=4))

    def test_agents_cut_short(self):
        result = self.decode("agents-cut.pcap")
        cut = [(code, None, pair, None) for code, _, pair, _ in self.AUTHENTICATION[:6]]
        self.assertEqual((lines_of(result), result.status), (cut + self.AUTHENTICATION[6:], 1))
        self.assertEqual(result.objects[-1], summary(packets=8, answered=4, cutFrames=6,
                                                     refused={"cutShort": 6}))

    def test_dynamic_authorization(self):
        result = self.decode("dynauth.pcap")
        self.assertEqual(lines_of(result), [
            ("COA_REQUEST", "success", None, None), ("COA_ACK", "success", 1, None),
            ("COA_REQUEST", "success", None, None), ("COA_NAK", "success", 3, None),
            ("DISCONNECT_REQUEST", "success", None, None), ("DISCONNECT_ACK", "success", 5, None)])
        self.assertEqual((result.objects[-1], result.status), (summary(packets=6, answered=3), 0))


# ---- What is printed ----


class Text(TestWithFolder):
    def test_is_whole(self):
        path = SYNTHETIC / "retransmissions.pcap"
        blocks = decode(path).text.split("\n\n")
        self.assertEqual(blocks[4], (
            f"ACCESS_ACCEPT, id 7, length {len(ACCEPT)}, authenticator {ACCEPT[4:20].hex()} "
            f"(verified), 192.0.2.2:1812 > 192.0.2.1:40000, 2026-11-21T10:00:00.127456Z, "
            f"packet 5 of {path}, paired with packet 4 of {path}, retransmission of packet 3 of "
            f"{path}\nReply-Message = \"welcome\""))
        self.assertEqual(blocks[8], (
            "# packets: 8\n"
            "# exchanges: 2 answered, 1 unanswered\n"
            "# retransmissions: 3\n"
            "# refused: 0\n"
            "# frames without a packet: 0\n"
            "# frames cut short: 0\n"
            "# datagrams with fragments that are missing or overlap: 0\n"))
        self.assertEqual(len(blocks), 9)

    def test_summary_counts_refusals_by_reason(self):
        forged = ACCEPT[:4] + bytes(16) + ACCEPT[20:]
        path = self.file("x.pcap", ethernet_capture(
            asked(REQUEST), answered(forged), answered(identified_elsewhere()),
            asked(packet(1, b"\1")), asked(REQUEST[:4]), ip(CLIENT, SERVER, b"", protocol=TCP)))
        result = decode(path)
        self.assertEqual(result.text.split("\n\n")[-1], (
            "# packets: 5\n"
            "# exchanges: 1 answered, 1 unanswered\n"
            "# retransmissions: 0\n"
            "# refused: 4\n"
            "#   invalidAttrLength: 1\n"
            "#   invalidPktAuth: 1\n"
            "#   invalidPktLength: 1\n"
            "#   noRequestAuthenticator: 1\n"
            "# frames without a packet: 1\n"
            "# frames cut short: 0\n"
            "# datagrams with fragments that are missing or overlap: 0\n"))
        self.assertEqual(result.status, 2)

    def test_no_summary_without_a_capture(self):
        result = decode("--json", stdin=REQUEST.hex())
        self.assertEqual([report["kind"] for report in result.objects], ["packet"])
        self.assertNotIn("#", decode(stdin=REQUEST.hex()).text)

    def test_summary_alone_begins_the_output(self):
        result = decode(SYNTHETIC / "cut-headers.pcap")
        self.assertTrue(result.text.startswith("# packets: 0\n# exchanges: 0 answered"))

    def test_json_summary_is_the_last_line(self):
        text = decode("--json", SYNTHETIC / "others.pcap").text
        self.assertEqual(text.splitlines()[-1], (
            '{"schema":1,"kind":"summary","packets":2,"answered":1,"unanswered":0,'
            '"retransmissions":0,"refused":{},"skippedFrames":8,"cutFrames":0,'
            '"incompleteDatagrams":0}'))


def identified_elsewhere():
    """An answer to a request that is not there."""
    return answer(2, access_request(200))


class FromDecodeToBuild(TestWithFolder):
    """What `decode` prints of a capture builds the same packets."""

    def built(self, path, secret=SECRET):
        text = decode(path, secret=secret).text
        result = run("build", stdin=text, variable=secret)
        self.assertEqual((result.status, result.errors), (0, ""))
        return [bytes.fromhex(line) for line in result.text.split("\n\n")]

    def test_of_synthetic_captures(self):
        users = [access_request(7, 0x41 + n, attribute(1, b"user%d" % n)) for n in range(3)]
        for name, packets in (("qinq.pcap", [REQUEST, ACCEPT]),
                              ("cooked2.pcap", [REQUEST, ACCEPT] * 2),
                              ("same-identifiers.pcap",
                               users + [answer(2, request) for request in users])):
            with self.subTest(name):
                self.assertEqual(self.built(SYNTHETIC / name), packets)

    def test_of_retransmissions(self):
        built = self.built(SYNTHETIC / "retransmissions.pcap")
        self.assertEqual(built[:5], [REQUEST, REQUEST, ACCEPT, REQUEST, ACCEPT])

    def test_of_recorded_ones(self):
        path = RECORDED / "dynauth.pcap"
        sent = [report["authenticator"]
                for report in decode("--json", path, secret=RECORDED_SECRET).objects[:-1]]
        built = self.built(path, RECORDED_SECRET)
        self.assertEqual([content[4:20].hex() for content in built], sent)

    def test_edit_pairs_by_the_ends(self):
        result = run("edit", "--add", 'Reply-Message="x"', SYNTHETIC / "same-identifiers.pcap",
                     variable=SECRET)
        self.assertEqual((result.status, result.errors), (0, ""))
        packets = [bytes.fromhex(line) for line in result.text.split("\n\n")]
        added = attribute(18, b"x")
        self.assertEqual(packets[3:], [answer(2, request, added) for request in packets[:3]])


# ---- Input ----


class Input(TestWithFolder):
    def test_capture_comes_from_standard_input(self):
        for name in ("vlan.pcap", "interfaces.pcapng"):
            for arguments in ((), ("-",), ("-f", "capture")):
                with self.subTest(name, arguments=arguments):
                    result = decode("--json", *arguments, stdin=CAPTURES[name])
                    self.assertEqual((lines_of(result), result.status), (GOOD_EXCHANGE, 0))
                    self.assertEqual(result.objects[0]["source"], "-")

    def test_kinds_mix_in_their_order(self):
        hex_file = self.file("a.hex", REQUEST.hex())
        binary = self.file("b.bin", REQUEST)
        capture = SYNTHETIC / "vlan.pcap"
        result = decode("--json", hex_file, capture, binary, SYNTHETIC / "others.pcap")
        self.assertEqual([(report["source"], report["index"]) for report in result.objects[:-1]],
                         [(str(hex_file), 1), (str(capture), 1), (str(capture), 2),
                          (str(binary), 1), (str(SYNTHETIC / "others.pcap"), 1),
                          (str(SYNTHETIC / "others.pcap"), 2)])
        # What carried a packet keeps it apart from those of which it is not known.
        self.assertEqual([index_of(report["pairedWith"]) for report in result.objects[:-1]],
                         [None, None, 1, None, None, 1])
        self.assertEqual(result.objects[-1], summary(packets=6, answered=1, unanswered=2,
                                                     retransmissions=2, skippedFrames=8))

    def test_bad_hex_behind_a_capture_decodes_nothing(self):
        bad = self.file("bad", "012")
        result = decode(SYNTHETIC / "vlan.pcap", bad)
        self.assertEqual((result.status, result.text), (66, ""))
        self.assertEqual(result.errors, f"radius-packet: {bad}: line 1: the packet ends with half "
                                        "a byte: an odd number of hex digits\n")

    def test_format_decides(self):
        capture = CAPTURES["vlan.pcap"]
        (report,) = decode("--json", "-f", "binary", stdin=capture).objects
        self.assertEqual((report["error"], report["time"]), ("invalidPktLength", None))
        result = decode("-f", "hex", stdin=capture)
        self.assertEqual((result.status, result.errors),
                         (66, 'radius-packet: -: line 1: "\\xd4" is no hex digit\n'))

    def test_what_is_no_capture(self):
        for content, why in (
                (b"", "truncated dump file; tried to read 4 file header bytes, only got 0"),
                (REQUEST, "unknown file format"),
                (REQUEST.hex().encode(), "unknown file format"),
                (CAPTURES["vlan.pcap"][:23],
                 "truncated dump file; tried to read 24 file header bytes, only got 19")):
            with self.subTest(why):
                result = decode("-f", "capture", stdin=content)
                self.assertEqual((result.status, result.errors), (
                    66, f"radius-packet: -: not a capture that can be read: {why}\n"))
                self.assertEqual(result.text.splitlines()[0], "# packets: 0")

    def test_capture_without_frames_or_packets(self):
        for frames, skipped in (([], 0), ([ethernet(bytes(20), kind=0x0806)], 1)):
            result = decode("--json", stdin=pcap(ETHERNET, at_intervals(frames)))
            self.assertEqual((result.status, result.errors),
                             (66, "radius-packet: no packets in the input\n"))
            self.assertEqual(result.objects, [summary(skippedFrames=skipped)])

    def test_empty_capture_beside_another_file(self):
        empty = self.file("empty.pcap", pcap(ETHERNET, []))
        result = decode("--json", empty, SYNTHETIC / "vlan.pcap")
        self.assertEqual((result.status, lines_of(result)), (0, GOOD_EXCHANGE))

    def test_link_type_that_cannot_be_read(self):
        for link_type, name in ((105, "IEEE802_11"), (147, "147")):
            result = decode("--json", stdin=pcap(link_type, at_intervals([bytes(60)])))
            self.assertEqual((result.status, result.errors), (66, (
                f"radius-packet: -: a capture of link type {name}, which cannot be read\n")))

    def test_interfaces_of_different_link_types(self):
        frames = [(START, ethernet(asked(REQUEST)), 0), (START, asked(REQUEST), 1)]
        result = decode("--json", stdin=pcapng([ETHERNET, RAW], frames))
        self.assertEqual((result.status, result.errors), (66, (
            "radius-packet: -: frame 1 cannot be read: an interface has a type 101 different from "
            "the type of the first interface\n")))

    def test_broken_file_behind_packets(self):
        good = CAPTURES["vlan.pcap"]
        for tail, why in (
                (b"\0", "truncated dump file; tried to read 16 header bytes, only got 1"),
                (struct.pack("<IIII", 0, 0, 300000, 300000),
                 "invalid packet capture length 300000, bigger than snaplen of 262144"),
                (struct.pack("<IIII", 0, 0, 10, 10) + b"123",
                 "truncated dump file; tried to read 10 captured bytes, only got 3")):
            with self.subTest(why):
                result = decode("--json", stdin=good + tail)
                self.assertEqual(lines_of(result), GOOD_EXCHANGE)
                self.assertEqual((result.status, result.errors), (
                    66, f"radius-packet: -: frame 3 cannot be read: {why}\n"))

    def test_times_that_no_clock_shows(self):
        content = bytearray(pcap(ETHERNET, exchange(ethernet)))
        struct.pack_into("<II", content, 24, 0xFFFFFFFF, 0xFFFFFFFF)
        result = decode("--json", stdin=bytes(content))
        self.assertEqual((result.status, result.objects[0]["time"]),
                         (0, "2106-02-07T06:28:15.000000Z"))
        latest = pcapng([ETHERNET], [(2**64 - 1, ethernet(asked(REQUEST)), 0)], nanoseconds=True)
        self.assertEqual(decode("--json", stdin=latest).objects[0]["time"],
                         "2262-04-11T23:47:15.709551615Z")

    def test_other_exit_codes(self):
        capture = SYNTHETIC / "vlan.pcap"
        for arguments, secret, status, error in (
                ((capture,), "wrong", 1, f"packet 2 of {capture} refused: invalidPktAuth: Packet's authenticator field is "
                 "invalid"),
                (("-d", "/missing", capture), SECRET, 3, None),
                ((capture, "/missing"), SECRET, 66,
                 "cannot read /missing: No such file or directory"),
                (("--port", "0", capture), SECRET, 64,
                 "--port: a port is a number from 1 to 65535")):
            with self.subTest(arguments):
                result = decode(*arguments, secret=secret)
                self.assertEqual(result.status, status)
                if error is not None:
                    self.assertEqual(result.errors.splitlines()[0], f"radius-packet: {error}")
        result = decode(stdin=ethernet_capture(asked(packet(1, b"\1"))))
        self.assertEqual((result.status, result.errors), (
            2, "radius-packet: packet 1 of - refused: invalidAttrLength: Invalid attribute: 1 length: 1\n"))

    def test_full_disk(self):
        with open("/dev/full", "wb") as full:
            environment = {**os.environ, VARIABLE: SECRET}
            result = subprocess.run([PROGRAM, "decode", SYNTHETIC / "vlan.pcap"], stdout=full,
                                    stderr=subprocess.PIPE, env=environment)
        self.assertEqual(result.returncode, 74)


class Ports(TestWithFolder):
    def indices(self, *arguments, ports=(1812, 1813, 1645, 1646, 3799, 20000)):
        """Which of the requests to those ports are found."""
        capture = ethernet_capture(*(asked(access_request(number), to=port)
                                     for number, port in enumerate(ports)))
        result = decode("--json", *arguments, stdin=capture)
        return [report["id"] for report in result.objects[:-1]]

    def test_are_those_of_radius(self):
        self.assertEqual(self.indices(), [0, 1, 2, 3, 4])

    def test_given_ones_replace_them(self):
        self.assertEqual(self.indices("--port", "20000"), [5])
        self.assertEqual(self.indices("--port", "20000", "--port", "1813"), [1, 5])
        self.assertEqual(self.indices("--port=20000", "-"), [5])

    def test_count_at_either_end(self):
        capture = ethernet_capture(asked(REQUEST, to=20000, port=1812),
                                   asked(REQUEST, to=20000, port=30000))
        result = decode("--json", stdin=capture)
        self.assertEqual(result.objects[-1], summary(packets=1, unanswered=1, skippedFrames=1))

    def test_that_are_none(self):
        for text in ("0", "65536", "-1", "radius", "", "18 12", "0x714"):
            with self.subTest(text):
                result = decode("--port", text, stdin=b"")
                self.assertEqual((result.status, result.errors), (64, (
                    "radius-packet: --port: a port is a number from 1 to 65535\nradius-packet: "
                    "radius-packet --help and radius-packet COMMAND --help tell more\n")))


# ---- Secrets ----


class SecretOfAClient(TestWithFolder):
    CAPTURE = SYNTHETIC / "two-clients.pcap"

    def decode(self, text, *arguments, secret=None, capture=None):
        return decode("--json", "--secrets", self.file("secrets", text), *arguments,
                      capture or self.CAPTURE, secret=secret)

    def good(self, *arguments, **options):
        """The numbers of the packets that are not refused."""
        result = self.decode(*arguments, **options)
        return [report["index"] for report in result.objects[:-1] if report["error"] == "success"]

    ALL, FIRST, SECOND = list(range(1, 13)), list(range(1, 7)), list(range(7, 13))

    def test_is_taken_in_every_direction(self):
        self.assertEqual(self.good(f"{CLIENT} {SECRET}\n{OTHER_CLIENT} \"{OTHER_SECRET}\"\n"),
                         self.ALL)

    def test_may_be_that_of_a_prefix_the_longest_first(self):
        for text in (f"192.0.2.0/26 {SECRET}\n192.0.2.64/26 \"{OTHER_SECRET}\"",
                     f"192.0.2.66/32\t\"{OTHER_SECRET}\"\n192.0.0.0/16 {SECRET}",
                     f"0.0.0.0/0 {SECRET}\n192.0.2.0/24 wrong\n192.0.2.1 {SECRET}\n"
                     f"192.0.2.67/26 \"{OTHER_SECRET}\"\n2001:db8::/32 wrong"):
            with self.subTest(text):
                self.assertEqual(self.good(text), self.ALL)

    def test_that_is_given_otherwise_is_for_all_others(self):
        entry = f"{OTHER_CLIENT} \"{OTHER_SECRET}\""
        secret_file = self.file("secret", SECRET)
        self.assertEqual(self.good(entry, secret=SECRET), self.ALL)
        self.assertEqual(self.good(entry, "--secret", SECRET, secret="wrong"), self.ALL)
        self.assertEqual(self.good(entry, "-s", secret_file), self.ALL)

    def test_of_the_other_end_counts_when_the_client_has_none(self):
        self.assertEqual(self.good(f"{SERVER} {SECRET}\n{OTHER_CLIENT} \"{OTHER_SECRET}\""),
                         self.ALL)
        # It beats the one for all others.
        self.assertEqual(self.good(f"{SERVER} {SECRET}", secret="wrong")[:6], self.FIRST)

    def test_that_is_not_known(self):
        result = self.decode(f"{OTHER_CLIENT} \"{OTHER_SECRET}\"")
        reason = f"no shared secret is known for its client {CLIENT}"
        self.assertEqual([(report["error"], report["reason"]) for report in result.objects[:6]],
                         [(None, reason)] * 6)
        self.assertEqual([report["error"] for report in result.objects[6:12]], ["success"] * 6)
        self.assertEqual(result.errors, "".join(
            f"radius-packet: packet {n} of {self.CAPTURE} refused: {reason}\n"
            for n in range(1, 7)))
        self.assertEqual(result.objects[-1], summary(packets=12, answered=6,
                                                     refused={"noSharedSecret": 6}))
        self.assertEqual(result.status, 1)

    def test_that_is_not_known_of_a_packet_from_nowhere(self):
        path = self.file("x.hex", REQUEST.hex())
        result = self.decode(f"{CLIENT} {SECRET}", capture=path)
        (report,) = result.objects
        self.assertEqual((result.status, report["error"], report["reason"]),
                         (1, None, "no shared secret is known for its client"))
        self.assertEqual((report["codeName"], report["id"]), ("ACCESS_REQUEST", 7))

    def test_file_may_have_comments_quotes_and_blank_lines(self):
        for secret, written in ((SECRET, f"# ours\n\n  {CLIENT}   {SECRET}  # the first\r\n"),
                                ("a#b", f"{CLIENT} a#b"), ("a#b", f"{CLIENT} a#b\t#c"),
                                ("#a", f"{CLIENT} \"#a\" #c"),
                                ("", f"{CLIENT} \"\""), ("0x6162", f"{CLIENT} 0x6162"),
                                ("a b\"\\\n\xff", f"{CLIENT} \"a b\\\"\\\\\\n\\xc3\\xbf\"\n"),
                                ("a\"b", f"{CLIENT} a\"b"), ("\\x41", f"{CLIENT} \\x41"),
                                ("drítte", f"{CLIENT} drítte\n")):
            with self.subTest(written):
                capture = self.file("x.pcap", ethernet_capture(
                    asked(REQUEST), answered(answer(2, REQUEST, secret=secret))))
                self.assertEqual(self.good(written, capture=capture), [1, 2])

    def test_file_with_a_fault(self):
        secret = "n3v3r-pr1nt3d"
        first = "what stands first is no address and no prefix"
        none = 'no secret stands behind the address; an empty one stands as ""'
        more = "more stands behind the secret; one with white space stands in quotes"
        for text, fault in (
                (secret, f"line 1: {first}"), (f"{CLIENT} a\n{secret} a", f"line 2: {first}"),
                (f"192.0.2.0/33 {secret}", f"line 1: {first}"),
                (f"192.0.2 {secret}", f"line 1: {first}"),
                (f"{CLIENT}\0 {secret}", f"line 1: {first}"),
                (f"{CLIENT}", f"line 1: {none}"), (f"\n\n{CLIENT}  # {secret}", f"line 3: {none}"),
                (f"{CLIENT} {secret} {secret}", f"line 1: {more}"),
                (f"{CLIENT} \"{secret}\" x", f"line 1: {more}"),
                (f"{CLIENT} \"{secret}\"x", f"line 1: {more}"),
                (f"{CLIENT} \"{secret}\"#x", f"line 1: {more}"),
                (f"{CLIENT} \"{secret}", "line 1: the closing quote is missing"),
                (f"{CLIENT} \"{secret}\\\"", "line 1: the closing quote is missing"),
                (f"{CLIENT} \"{secret}\\", "line 1: the escapes are \\n, \\r, \\t, \\\\, \\\" and "
                                           "\\xNN"),
                (f"{CLIENT} \"{secret}\\q\"", "line 1: the escapes are \\n, \\r, \\t, \\\\, \\\" "
                                              "and \\xNN"),
                (f"{CLIENT} \"{secret}\\x4\"", "line 1: behind \\x stand two hex digits"),
                (f"{CLIENT} \"{secret}\t\"", "line 1: a control byte stands as its escape"),
                (f"{CLIENT} a\n\n{CLIENT} {secret}", "line 3: line 1 is for the same clients"),
                (f"192.0.2.0/24 a\n192.0.2.9/24 {secret}",
                 "line 2: line 1 is for the same clients"),
                ("", "no secrets in the file"), ("# nothing\n\n", "no secrets in the file")):
            with self.subTest(text):
                result = self.decode(text)
                self.assertEqual((result.status, result.text), (66, ""))
                self.assertEqual(result.errors,
                                 f"radius-packet: {self.folder / 'secrets'}: {fault}\n")
                self.assertNotIn(secret, result.errors)

    def test_file_that_cannot_be_read(self):
        for path, error in (("/missing", "cannot read /missing: No such file or directory"),
                            ("/", "cannot read /: Is a directory"),
                            ("/dev/zero", "the file of the secrets is longer than 65536 bytes")):
            with self.subTest(path):
                result = decode("--secrets", path, self.CAPTURE)
                self.assertEqual((result.status, result.text), (66, ""))
                self.assertEqual(result.errors, f"radius-packet: {error}\n")

    def test_file_may_be_standard_input_once(self):
        entries = f"{CLIENT} {SECRET}\n{OTHER_CLIENT} \"{OTHER_SECRET}\"\n"
        result = decode("--json", "--secrets", "-", self.CAPTURE, stdin=entries, secret=None)
        self.assertEqual((result.status, result.errors), (0, ""))
        for arguments, error in (
                (("--secrets", "-", "-"), "standard input (-) cannot give both the secret and the "
                                          "packets"),
                (("--secrets", "-", "-s", "-", self.CAPTURE),
                 "standard input (-) can be read only once")):
            result = decode(*arguments, stdin=entries)
            self.assertEqual((result.status, result.errors), (64, f"radius-packet: {error}\n"))


# ---- Large captures ----


def is_sanitized():
    return subprocess.run(["grep", "-q", "__[at]san_init", PROGRAM]).returncode == 0


OTHER_FRAME = ethernet(ip(CLIENT, SERVER, bytes(1400), protocol=TCP))


class Large(TestWithFolder):
    """A capture of 100 MB: more requests without an answer, more datagrams without an end, and more
    of everything else than is ever held."""

    REQUESTS, ROUNDS, OTHERS = 70000, 7000, 9
    SIZE = 100 * 10**6
    MOST_MEMORY = 64 << 10  # in kilobytes, as the system counts

    def capture(self):
        """Writes it piece by piece, so that the test itself stays small."""
        path = self.folder / "large.pcap"
        per_round = self.REQUESTS // self.ROUNDS
        with path.open("wb") as file:
            file.write(pcap(ETHERNET, []))
            for number in range(self.ROUNDS):
                requests = [ethernet(asked(access_request(index % 256), port=1024 + index // 256,
                                           client=CLIENT))
                            for index in range(number * per_round, (number + 1) * per_round)]
                begun = ethernet(fragment(CLIENT, SERVER, bytes(1400), 0, True, number))
                frames = [(START + number * MILLISECOND, frame)
                          for frame in (*requests, begun, *[OTHER_FRAME] * self.OTHERS)]
                file.write(pcap(ETHERNET, frames)[24:])
        self.assertGreater(path.stat().st_size, self.SIZE)
        return path

    def decoded(self, path, **streams):
        """Runs the program, and returns its exit status and the most memory that it took."""
        environment = {**os.environ, VARIABLE: SECRET}
        process = subprocess.Popen([PROGRAM, "decode", "--json", path], env=environment, **streams)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        return process.returncode, usage.ru_maxrss

    def test_takes_no_more_memory_than_a_small_one(self):
        path, output, errors = self.capture(), self.folder / "out", self.folder / "errors"
        with output.open("wb") as out, errors.open("wb") as err:
            status, memory = self.decoded(path, stdout=out, stderr=err)
        self.assertEqual((status, errors.read_text()), (0, ""))
        last = subprocess.run(["tail", "-n", "1", output], stdout=subprocess.PIPE).stdout.decode()
        self.assertEqual(last, (
            f'{{"schema":1,"kind":"summary","packets":{self.REQUESTS},"answered":0,'
            f'"unanswered":{self.REQUESTS},"retransmissions":0,"refused":{{}},'
            f'"skippedFrames":{self.ROUNDS * self.OTHERS},"cutFrames":0,'
            f'"incompleteDatagrams":{self.ROUNDS}}}\n'))
        if not is_sanitized():
            self.assertLess(memory, self.MOST_MEMORY)


class Progress(TestWithFolder):
    LARGE_SIZE = 16 << 20

    def capture(self, size, content=asked(REQUEST)):
        """A capture of at least that size, with one packet in the middle."""
        others = [OTHER_FRAME] * (size // len(OTHER_FRAME) // 2)
        return self.file("large.pcap", pcap(ETHERNET, at_intervals([*others, ethernet(content),
                                                                    *others])))

    def on_a_terminal(self, path, shown_output=False):
        """What a terminal shows of standard error, and of standard output too."""
        terminal, program_end = pty.openpty()
        with (self.folder / "out").open("wb") as out:
            process = subprocess.Popen(
                [PROGRAM, "decode", "--json", path], env={**os.environ, VARIABLE: SECRET},
                stdout=program_end if shown_output else out, stderr=program_end)
            os.close(program_end)
            shown = b""
            while True:
                try:
                    piece = os.read(terminal, 65536)
                except OSError:  # the program has ended
                    break
                shown += piece
            os.close(terminal)
            process.wait()
        return shown.decode()

    def test_is_told_of_a_large_file(self):
        path = self.capture(self.LARGE_SIZE)
        clear = "\r\x1b[K"
        shown = self.on_a_terminal(path)
        percents = [int(found) for found in
                    re.findall(r"\r\x1b\[Kradius-packet: (\d+) % of large\.pcap", shown)]
        self.assertEqual(percents, sorted(set(percents)))
        self.assertGreater(len(percents), 50)
        self.assertTrue(shown.endswith(f"{clear}radius-packet: 100 % of large.pcap{clear}"))

    def test_is_told_neither_of_a_smaller_file_nor_amid_the_output(self):
        self.assertEqual(self.on_a_terminal(self.capture(self.LARGE_SIZE // 2)), "")
        self.assertNotIn("%", self.on_a_terminal(self.capture(self.LARGE_SIZE), True))

    def test_gives_way_to_a_complaint(self):
        shown = self.on_a_terminal(self.capture(self.LARGE_SIZE, asked(REQUEST[:4])))
        self.assertRegex(shown, r"% of large\.pcap\r\x1b\[Kradius-packet: packet 1 of [^\r\n]* "
                                r"refused: invalidPktLength: [^\r\n]*\r\n\r\x1b\[Kradius-packet: ")

    def test_is_not_told_in_a_file(self):
        with (self.folder / "errors").open("wb") as errors:
            subprocess.run([PROGRAM, "decode", "--json", self.capture(self.LARGE_SIZE)],
                           env={**os.environ, VARIABLE: SECRET}, stdout=subprocess.DEVNULL,
                           stderr=errors)
        self.assertEqual((self.folder / "errors").read_bytes(), b"")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
