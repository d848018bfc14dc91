"""`radius-packet decode` as a script sees it: arguments, streams, exit status, JSON.

    decode.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the golden packets and the vectors.
"""

import hashlib
import ipaddress
import json
import os
import pathlib
import random
import re
import shlex
import signal
import subprocess
import sys
import tempfile
import unittest

from golden_files import Golden, golden_count, golden_packets
from program import PROGRAM, run
from signed_packets import (REQUEST_AUTHENTICATOR, REQUEST_CODES, SECRET, attribute, hidden, packet,
                            signed_request, vendor_attribute)

DATA = pathlib.Path(sys.argv[2])
DICTIONARIES = DATA.parent.parent / "dictionaries"
GOLDEN_COUNT = golden_count(DATA)
CHECK_FAILED = ("invalidPktAuth", "invalidMsgAuth", "missingRequiredMsgAuth")
PACKET_KEYS = [
    "schema", "kind", "source", "index", "time", "from", "to", "code", "codeName", "id", "length",
    "authenticator", "pairedWith", "retransmissionOf", "error", "reason", "messageAuthenticator",
    "attributes",
]
ATTRIBUTE_KEYS = [
    "offset", "length", "attrId", "vendorId", "vendorAttrId", "name", "type", "tag", "value",
    "redacted", "hex",
]
MISSING = "no Request Authenticator: give that of the request which this packet answers with -a HEX"


def decode(*arguments, stdin=b"", secret=SECRET, **options):
    """Decodes with a secret in the variable."""
    return run("decode", *arguments, stdin=stdin, variable=secret, **options)


GOOD_REQUEST = packet(1, attribute(1, b"alice"))
GOOD_RESPONSE = packet(2, attribute(1, b"alice"))
A_OPTION = ("-a", REQUEST_AUTHENTICATOR.hex())


# ---- The golden packets ----


def dictionary_flags():
    """The flags of every attribute by its key."""
    flags, vendor = {}, 0
    for path in DICTIONARIES.glob("dictionary.*"):
        vendor = 0
        for line in path.read_text().splitlines():
            words = line.split("#")[0].split()
            if words[:1] == ["VENDOR"]:
                vendor = int(words[2])
            if words[:1] == ["ATTRIBUTE"]:
                key = (26, vendor, int(words[2])) if vendor else (int(words[2]), 0, 0)
                flags[key] = words[4].split(",") if len(words) > 4 else []
    return flags


FLAGS = dictionary_flags()


def escaped(value):
    """Text as it stands between quotes."""
    text, at = "", 0
    names = {"\n": "\\n", "\r": "\\r", "\t": "\\t", '"': '\\"', "\\": "\\\\"}
    while at < len(value):
        for end in range(at + 1, min(at + 5, len(value) + 1)):
            try:
                character = value[at:end].decode()
                break
            except UnicodeDecodeError:
                character = None
        if character is None:
            character, end = "", at + 1
        if character in names:
            text += names[character]
        elif not character or ord(character) < 0x20 or 0x7F <= ord(character) < 0xA0:
            text += "".join(f"\\x{byte:02x}" for byte in value[at:end])
        else:
            text += character
        at = end
    return text


def shown_bytes(value, kind, flags):
    """Tag and shown value of delivered bytes."""
    tag = None
    if "has_tag" in flags and value:
        tag, value = value[0], value[1:]
    if "encrypt=1" in flags and kind == "string":
        value = value.rstrip(b"\0")
    if "encrypt=2" in flags:
        value = value[2:]
        if not value or value[0] > len(value) - 1:
            return tag, ("0x" if kind == "string" else "") + value.hex()
        value = value[1:1 + value[0]]
    return tag, escaped(value) if kind == "string" else value.hex()


def shown(directive, place, wire):
    """What JSON says of an attribute that the hook received as `directive` says.

    `place` is offset and length of the attribute, `wire` its value there."""
    numbers, name, kind, *rest = directive.split(" ")
    key = tuple(int(number) for number in numbers.split("."))
    flags, delivered = FLAGS.get(key, []), rest[0] if rest else ""
    if name == "-":
        name = "Attr-" + (".".join(map(str, key)) if key[0] == 26 else str(key[0]))
    tag = None
    if kind in ("string", "octets", "unknown"):
        tag, value = shown_bytes(bytes.fromhex(delivered), kind, flags)
    elif kind in ("integer", "date"):
        value = int(delivered)
        if "has_tag" in flags:
            tag, value = divmod(value, 1 << 24)
    elif kind == "integer64":
        value = str(int(delivered, 16))
    elif kind == "ipv6prefix":
        value = f"{delivered}/{wire[1]}"
    elif kind == "ifid":
        value = ipaddress.IPv6Address(delivered).exploded[-19:]
    else:
        value = delivered
    return dict(zip(ATTRIBUTE_KEYS, [*place, *key, name, kind, tag, value, False, wire.hex()]))


def places_of(packet, count):
    """Offset and length of the first attributes of a packet."""
    places, offset = [], 20
    for _ in range(count):
        places.append((offset, packet[offset + 1]))
        offset += packet[offset + 1]
    return places


def wire_values(content):
    """The values of well-formed attributes; that of the sub-attribute for a vendor's."""
    values = []
    while content:
        inner = 8 if content[0] == 26 else 2
        values.append(content[inner:content[1]])
        content = content[content[1]:]
    return values


class GoldenPackets(unittest.TestCase):
    def test_none_is_lost(self):
        self.assertEqual(len(golden_packets(DATA)), GOLDEN_COUNT)

    def test_json_says_what_the_directives_say(self):
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                with self.subTest(golden.path.name):
                    self.check(golden, run("decode", *golden.options(folder), "--json", golden.path))

    def check(self, golden, result):
        (report,) = result.objects
        self.assertEqual(list(report), PACKET_KEYS)
        self.assertEqual(report["source"], str(golden.path))
        self.assertEqual(report["index"], 1)
        self.assertEqual(report["code"], golden.packet[0])
        self.assertEqual(report["error"], golden.result)
        self.assertEqual(report["reason"], golden.reason or None)
        wire = [bytes.fromhex(entry["hex"]) for entry in report["attributes"]]
        self.assertEqual(len(wire), len(golden.attributes))
        places = places_of(golden.packet, len(wire))
        self.assertEqual(report["attributes"], list(map(shown, golden.attributes, places, wire)))
        if golden.result == "success":
            self.assertEqual(wire, wire_values(golden.packet[20:report["length"]]))
            self.assertEqual((result.status, result.errors), (0, ""))
        else:
            fault = golden.result + (f": {golden.reason}" if golden.reason else "")
            self.assertEqual(result.errors,
                             f"radius-packet: packet 1 of {golden.path} refused: {fault}\n")
            self.assertEqual(result.status, 1 if golden.result in CHECK_FAILED else 2)

    def test_text_has_a_header_and_a_line_for_each_attribute(self):
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                with self.subTest(golden.path.name):
                    lines = run("decode", *golden.options(folder), golden.path).text.splitlines()
                    self.assertTrue(lines[0].endswith(f", packet 1 of {golden.path}"))
                    self.assertEqual(len(lines) - 1, len(golden.attributes))
                    for line in lines[1:]:
                        self.assertRegex(line, r"^[A-Za-z0-9.-]+(:\d+)? = \S")


class PublishedPackets(unittest.TestCase):
    def setUp(self):
        self.vectors = json.loads((DATA / "vectors" / "packets.json").read_text())

    def decode(self, vector):
        authenticator = vector["request_authenticator_hex"]
        given = ("-a", authenticator) if len(authenticator) == 32 else ()
        return decode("--json", *given, stdin=vector["packet_hex"], secret=vector["secret"] or "")

    def test_malformed_packets_are_refused(self):
        refused = 0
        for vector in self.vectors:
            if vector["expect"]["verdict"] == "reject" and vector["packet_hex"]:
                with self.subTest(vector["name"]):
                    self.assertIn(self.decode(vector).status, (1, 2))
                    refused += 1
        self.assertEqual(refused, 9)

    def test_packets_whose_digests_hold_are_decoded(self):
        decoded = 0
        for vector in self.vectors:
            verified, expected = vector["verified"], vector["expect"]
            signed = verified["response_auth"] or verified["request_auth"]
            if expected["verdict"] != "accept" or not signed or verified["msg_auth"] is False:
                continue
            with self.subTest(vector["name"]):
                (report,) = self.decode(vector).objects
                values = [bytes.fromhex(entry["hex"]) for entry in report["attributes"]]
                content = bytes.fromhex(vector["packet_hex"])[20:report["length"]]
                self.assertEqual(values, wire_values(content)[:len(values)])
                self.assertNotIn(report["error"], (None, "invalidPktAuth", "invalidPktLength"))
                decoded += 1
        self.assertGreater(decoded, 10)

    def test_packets_whose_digests_do_not_hold_fail_the_check(self):
        failed = 0
        for vector in self.vectors:
            verified = vector["verified"]
            if vector["expect"]["verdict"] == "accept" and False in (verified["response_auth"],
                                                                     verified["request_auth"]):
                with self.subTest(vector["name"]):
                    result = self.decode(vector)
                    self.assertEqual(result.objects[0]["error"], "invalidPktAuth")
                    self.assertEqual(result.status, 1)
                    failed += 1
        self.assertGreater(failed, 0)


# ---- Arguments ----


class Usage(unittest.TestCase):
    def test_help_and_version_are_no_errors(self):
        for arguments in (["--help"], ["-h"], ["decode", "--help"], ["dictionary", "--help"],
                          ["dictionary", "check", "--help"], ["--version"]):
            with self.subTest(arguments):
                result = run(*arguments)
                self.assertEqual((result.status, result.errors), (0, ""))
                self.assertIn("radius-packet", result.text)

    def test_help_says_that_the_secret_shows(self):
        self.assertIn("process lists", run("decode", "--help").text)

    def test_wrong_usage_ends_with_64_and_a_hint(self):
        request = GOOD_REQUEST.hex()
        for arguments in ([], ["frobnicate"], ["decode", "--bogus"], ["decode", "-f", "pcap"],
                          ["decode", "-f", "HEX"], ["decode", "-f", "automatic"],
                          ["decode", "-f"], ["decode", "-a"], ["decode", "-d"], ["decode", "-s"],
                          ["decode", "--secret"], ["decode", "--json=maybe"],
                          ["decode", "--json="], ["decode", "--json=", "--json"],
                          ["decode", "-f", "hex", "-f", "hex"]):
            with self.subTest(arguments):
                result = run(*arguments, stdin=request, variable=SECRET)
                self.assertEqual((result.status, result.text), (64, ""))
                self.assertIn("--help", result.errors)

    def test_options_stand_before_and_behind_files(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "good.hex"
            path.write_text(GOOD_RESPONSE.hex())
            for arguments in ([*A_OPTION, "--json", "-f", "hex", path],
                              [path, *A_OPTION, "--json", "-f", "hex"],
                              [*A_OPTION, path, "-f", "hex", "--json"],
                              ["--json", *A_OPTION, "--", path]):
                with self.subTest(arguments):
                    result = decode(*arguments)
                    self.assertEqual(result.status, 0)
                    self.assertEqual(result.objects[0]["source"], str(path))

    def test_a_file_may_be_called_like_a_command(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("decode", "dictionary", "check"):
                with self.subTest(name):
                    (pathlib.Path(folder) / name).write_text(GOOD_REQUEST.hex())
                    self.assertEqual(decode(name, cwd=folder).status, 0)

    def test_a_file_may_be_called_like_an_option_or_an_end_of_a_command(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("a", "++", "-dash", "--"):
                (pathlib.Path(folder) / name).write_text(GOOD_REQUEST.hex())
            for arguments, sources in (
                    (["++"], ["./++"]),
                    (["a", "++"], ["a", "./++"]),
                    (["--", "++", "-dash"], ["./++", "./-dash"]),
                    (["a", "--", "-dash", "a"], ["a", "./-dash", "a"]),
                    (["a", "--", "--"], ["a", "./--"]),
                    (["a", "--"], ["a"])):
                with self.subTest(arguments=arguments):
                    result = decode("--json", *arguments, cwd=folder)
                    self.assertEqual((result.status, result.errors), (0, ""))
                    self.assertEqual([report["source"] for report in result.objects], sources)

    def test_behind_the_end_of_options_a_dash_is_still_standard_input(self):
        result = decode("--json", "--", "-", stdin=GOOD_REQUEST.hex())
        self.assertEqual([report["source"] for report in result.objects], ["-"])

    def test_a_file_may_be_called_like_a_list(self):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "[a,b]").write_text(GOOD_REQUEST.hex())
            (pathlib.Path(folder) / "[]").write_text(SECRET)
            for arguments in (["[a,b]"], ["--", "[a,b]"], ["-s", "[]", "[a,b]"],
                              ["--secret", "[a,b]", "[a,b]"], ["--", "[a,b]", "[a,b]"]):
                with self.subTest(arguments):
                    result = decode("--json", *arguments, cwd=folder)
                    self.assertEqual((result.status, result.errors), (0, ""))
                    self.assertEqual({report["source"] for report in result.objects}, {"./[a,b]"})

    def test_standard_input_can_be_named_once(self):
        result = decode("-", "-", stdin=GOOD_REQUEST.hex())
        self.assertEqual(result.status, 64)
        self.assertEqual(result.errors, "radius-packet: standard input (-) can be read only once\n")


class RequestAuthenticator(unittest.TestCase):
    def test_is_any_hex_of_16_bytes(self):
        digits = REQUEST_AUTHENTICATOR.hex()
        pairs = [digits[at:at + 2] for at in range(0, 32, 2)]
        for text in (digits, digits.upper(), "0x" + digits, ":".join(pairs), " ".join(pairs),
                     " 0x".join([""] + pairs)):
            with self.subTest(text):
                self.assertEqual(decode("-a", text, stdin=GOOD_RESPONSE.hex()).status, 0)

    def test_of_another_length_is_wrong_usage_even_for_requests(self):
        digits = REQUEST_AUTHENTICATOR.hex()
        for text in ("", "00", digits[:30], digits[:31], digits + "00", "z" * 32, digits[:-1] + "g",
                     digits + "\n\n" + digits):
            with self.subTest(text):
                result = decode("-a", text, stdin=GOOD_REQUEST.hex())
                self.assertEqual((result.status, result.text), (64, ""))
                self.assertEqual(result.errors, "radius-packet: -a takes 16 bytes in hex: the "
                                                "Request Authenticator\n")

    def test_missing_is_said_and_ends_with_1(self):
        for code in (2, 3, 5, 6, 11, 13, 41, 42, 44, 45, 255):
            with self.subTest(code):
                result = decode("--json", stdin=packet(code).hex())
                (report,) = result.objects
                self.assertEqual((report["error"], report["reason"]), (None, MISSING))
                self.assertEqual(report["attributes"], [])
                self.assertEqual(result.status, 1)
                self.assertEqual(result.errors,
                                 f"radius-packet: packet 1 of - refused: {MISSING}\n")

    def test_header_faults_come_before_a_missing_one(self):
        result = decode("--json", stdin=GOOD_RESPONSE[:19].hex())
        self.assertEqual(result.objects[0]["error"], "invalidPktLength")
        self.assertEqual(result.status, 2)

    def test_requests_take_none(self):
        for code in REQUEST_CODES:
            for given in ((), A_OPTION):
                with self.subTest(code=code, given=given):
                    self.assertEqual(decode(*given, stdin=packet(code).hex()).status, 0)

    def test_no_code_reaches_an_assertion(self):
        packets = [packet(code, attribute(80, bytes(16)), attribute(2, bytes(16)))
                   for code in range(256)]
        for given in ((), A_OPTION):
            with self.subTest(given):
                result = decode("--json", *given, stdin="\n\n".join(p.hex() for p in packets))
                self.assertEqual(len(result.objects), 256)
                self.assertEqual(result.status, 2 if given else 1)


class Secret(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def file(self, content):
        path = self.folder / "secret"
        path.write_bytes(content)
        return path

    def takes(self, secret, *arguments, variable=None):
        """Whether the program decodes with that secret."""
        response = packet(2, secret=secret)
        return run("decode", *A_OPTION, *arguments, stdin=response.hex(),
                   variable=variable).status == 0

    def test_comes_from_a_file_without_one_newline(self):
        self.assertTrue(self.takes("abc", "-s", self.file(b"abc")))
        self.assertTrue(self.takes("abc", "-s", self.file(b"abc\n")))
        self.assertTrue(self.takes("abc\n", "-s", self.file(b"abc\n\n")))
        self.assertTrue(self.takes("abc\r", "-s", self.file(b"abc\r\n")))
        self.assertTrue(self.takes("", "-s", self.file(b"\n")))
        self.assertTrue(self.takes("", "-s", self.file(b"")))
        self.assertTrue(self.takes("ab", "-s", self.file(b"ab\0cd")))
        self.assertTrue(self.takes("s" * 10000, "-s", self.file(b"s" * 10000)))

    def test_comes_from_an_option(self):
        self.assertTrue(self.takes("abc", "--secret", "abc"))
        self.assertTrue(self.takes("abc", "--secret=abc"))
        self.assertTrue(self.takes("", "--secret", ""))
        self.assertTrue(self.takes("", "--secret="))
        self.assertTrue(self.takes("-abc", "--secret", "-abc"))
        self.assertTrue(self.takes("a\n", "--secret", "a\n"))
        self.assertTrue(self.takes("[a,b]", "--secret", "[a,b]"))
        self.assertTrue(self.takes("[a,b]", "--secret=[a,b]"))
        self.assertTrue(self.takes("a=", "--secret=a="))
        self.assertTrue(self.takes("--abc=", "--secret", "--abc="))
        self.assertTrue(self.takes("--secret=", "--secret", "--secret="))
        self.assertTrue(self.takes("--secret", "--secret", "--secret"))
        self.assertTrue(self.takes("--", "--secret", "--"))

    def test_comes_from_the_variable(self):
        self.assertTrue(self.takes("abc", variable="abc"))
        self.assertTrue(self.takes("", variable=""))

    def test_option_beats_the_variable(self):
        self.assertTrue(self.takes("abc", "--secret", "abc", variable="other"))
        self.assertTrue(self.takes("abc", "-s", self.file(b"abc"), variable="other"))
        self.assertTrue(self.takes("", "--secret", "", variable="other"))

    def test_empty_value_does_not_take_the_next_argument(self):
        path = self.folder / "packet"
        path.write_text(packet(2, secret="").hex())
        self.assertEqual(run("decode", *A_OPTION, "--secret=", path).status, 0)

    def test_that_looks_like_an_option_does_not_take_the_next_argument(self):
        path = self.folder / "packet"
        path.write_text(packet(2, secret="--abc=").hex())
        self.assertEqual(run("decode", *A_OPTION, "--secret", "--abc=", path).status, 0)

    def test_comes_from_standard_input_when_packets_do_not(self):
        path = self.folder / "packet"
        path.write_text(packet(2, secret="abc").hex())
        self.assertEqual(run("decode", *A_OPTION, "-s", "-", path, stdin="abc\n").status, 0)

    def test_standard_input_cannot_give_packets_too(self):
        path = self.folder / "packet"
        path.write_text(packet(2, secret="abc").hex())
        for files in ([], ["-"], [path, "-"]):
            with self.subTest(files):
                result = run("decode", *A_OPTION, "-s", "-", *files, stdin="abc\n")
                self.assertEqual((result.status, result.text), (64, ""))
                self.assertEqual(result.errors, "radius-packet: standard input (-) cannot give "
                                                "both the secret and the packets\n")

    def test_both_options_are_wrong_usage(self):
        for arguments in (["-s", self.file(b"a"), "--secret", "b"],
                          ["--secret", "b", "-s", self.file(b"a")]):
            self.assertEqual(run("decode", *arguments, stdin=GOOD_REQUEST.hex()).status, 64)

    def test_none_is_wrong_usage_and_says_how_to_give_one(self):
        result = run("decode", stdin=GOOD_REQUEST.hex())
        self.assertEqual((result.status, result.text), (64, ""))
        self.assertEqual(result.errors,
                         "radius-packet: no shared secret: give it in a file with -s FILE, as "
                         "--secret TEXT, or in the environment variable RADIUS_PACKET_SECRET\n")

    def test_file_that_cannot_be_read(self):
        for path, why in ((self.folder / "missing", "No such file or directory"),
                          (self.folder, "Is a directory")):
            result = run("decode", "-s", path, stdin=GOOD_REQUEST.hex())
            self.assertEqual((result.status, result.text), (66, ""))
            self.assertEqual(result.errors, f"radius-packet: cannot read {path}: {why}\n")

    def test_wrong_usage_repeats_no_argument(self):
        secret = "n3v3r-pr1nt3d"
        unexpected = "there is an option or argument that was not expected"
        value = "an option has a value that it does not take"
        excluded = "-s excludes --secret"
        no_format = "-f: the formats are auto, hex, dump, c, base64, binary and capture"
        empty = "no option but --secret takes an empty value behind ="
        for arguments, fault in (
            (["--secret", secret, "decode", "p"], unexpected),
            ([f"--secret={secret}", "decode"], unexpected),
            ([f"--version={secret}", "decode"], value),
            (["decode", f"--secrt={secret}", "p"], unexpected),
            (["decode", "--secrt", secret, "p"], unexpected),
            (["decode", f"-x{secret}"], unexpected),
            ([secret], "A subcommand is required"),
            (["decode", f"--json={secret}"], value),
            (["decode", "--json", f"--json={secret}"], value),
            (["decode", f"--{secret}="], empty),
            (["decode", f"--secret={secret}", "-s", "p"], excluded),
            (["decode", "-s", "p", "--secret", secret], excluded),
            (["decode", "--secret", secret, "--secret", secret],
             "--secret: At Most 1 required but received 2"),
            (["decode", "-f", secret], no_format), (["decode", f"-f{secret}"], no_format),
            (["decode", "-f", f"--secret={secret}"], no_format), (["decode", "-f", ""], no_format),
            (["decode", "--secret", secret, "-a"], "-a: 1 required HEX missing"),
        ):
            with self.subTest(arguments):
                result = run(*arguments, stdin=GOOD_REQUEST.hex())
                self.assertEqual((result.status, result.text), (64, ""))
                self.assertEqual(result.errors.splitlines(),
                                 [f"radius-packet: {fault}", "radius-packet: radius-packet --help "
                                  "and radius-packet COMMAND --help tell more"])

    def test_is_never_printed(self):
        secret = "n3v3r-pr1nt3d"
        tail = [["--bogus"], ["-f", "pcap"], ["-a", "00"], ["-d", "/missing"], ["/missing"], [],
                ["--json"], ["--secret", secret], A_OPTION]
        ways = [(["--secret", secret], None), ([f"--secret={secret}"], None), ([], secret),
                (["-s", self.file(secret.encode())], None)]
        for way, variable in ways:
            for arguments in tail:
                with self.subTest(way=way, arguments=arguments):
                    content = "\n\n".join([GOOD_REQUEST.hex(), GOOD_RESPONSE.hex(), "0102"])
                    result = run("decode", *way, *arguments, stdin=content, variable=variable)
                    self.assertNotIn(secret, result.text + result.errors)


# ---- Input ----


class Input(unittest.TestCase):
    def test_hex_in_any_dress(self):
        digits = GOOD_REQUEST.hex()
        pairs = [digits[at:at + 2] for at in range(0, len(digits), 2)]
        for name, text in {
            "upper case": digits.upper(), "spaces": " ".join(pairs), "tabs": "\t".join(pairs),
            "lines": "\n".join(pairs), "colons": ":".join(pairs),
            "prefixes": "0x" + " 0x".join(pairs),
            "CR LF": "\r\n".join(pairs) + "\r\n", "single digits": " ".join(digits),
            "comments": " # comment\n".join(pairs), "comment lines": "\n# comment\n".join(pairs),
        }.items():
            with self.subTest(name):
                result = decode("--json", stdin=text)
                self.assertEqual(result.status, 0)
                self.assertEqual(len(result.objects), 1)

    def test_blank_lines_separate_packets(self):
        digits = GOOD_REQUEST.hex()
        for separator in ("\n\n", "\n \t\n", "\r\n\r\n", "\n\n\n\n", "\n\n# next\n"):
            with self.subTest(separator):
                result = decode("--json", stdin=separator.join([digits] * 3))
                self.assertEqual([report["index"] for report in result.objects], [1, 2, 3])

    def test_files_and_standard_input_are_sources_of_their_own(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "two.hex"
            path.write_text(GOOD_REQUEST.hex() + "\n\n" + GOOD_REQUEST.hex())
            result = decode("--json", path, "-", path, stdin=GOOD_REQUEST.hex())
            places = [(report["source"], report["index"]) for report in result.objects]
            self.assertEqual(places, [(str(path), 1), (str(path), 2), ("-", 1), (str(path), 1),
                                      (str(path), 2)])

    def test_bad_hex_names_the_line_and_decodes_nothing(self):
        odd = "the packet ends with half a byte: an odd number of hex digits"
        digits = GOOD_REQUEST.hex()
        for text, line, why in ((b"\n\nzz", 3, '"z" is no hex digit'),
                                (digits.encode() + b"\n\n0\n\n", 3, odd),
                                (digits.encode() + b"\n\0", 2, '"\\x00" is no hex digit'),
                                (b"\xff\xfe", 1, '"\\xff" is no hex digit'),
                                (b"\x1b[2J", 1, '"\\x1b" is no hex digit')):
            with self.subTest(text):
                result = decode("-f", "hex", stdin=text)
                self.assertEqual((result.status, result.text), (66, ""))
                self.assertEqual(result.errors, f"radius-packet: -: line {line}: {why}\n")

    def test_bad_hex_in_a_later_file_decodes_nothing(self):
        with tempfile.TemporaryDirectory() as folder:
            good, bad = pathlib.Path(folder) / "good", pathlib.Path(folder) / "bad"
            good.write_text(GOOD_REQUEST.hex())
            bad.write_text("01\n02\ngg")
            result = decode("-f", "hex", good, bad)
            self.assertEqual((result.status, result.text), (66, ""))
            self.assertEqual(result.errors,
                             f'radius-packet: {bad}: line 3: "g" is no hex digit\n')

    def test_no_packets_at_all(self):
        for formats, texts in (((), ("", "\n\n", "# only a comment\n", ":::", "0x")),
                               (("-f", "auto"), ("", "\n\n", "# only a comment\n", ":::", "0x")),
                               (("-f", "hex"), ("", "\n\n", "#\0\xff\n", ":::", "0x")),
                               (("-f", "binary"), ("",))):
            for text in texts:
                with self.subTest(formats=formats, text=text):
                    result = decode("--json", *formats, stdin=text)
                    self.assertEqual((result.status, result.text), (66, ""))
                    self.assertEqual(result.errors, "radius-packet: no packets in the input\n")

    def test_files_that_cannot_be_read(self):
        # Nobody may read a process's memory at 0, not even root.
        for path, why in (("/missing", "No such file or directory"), ("/", "Is a directory"),
                          ("/proc/self/mem", "Input/output error")):
            for name in ("auto", "hex", "binary"):
                with self.subTest(path=path, format=name):
                    result = decode("-f", name, path)
                    self.assertEqual((result.status, result.text), (66, ""))
                    self.assertEqual(result.errors, f"radius-packet: cannot read {path}: {why}\n")

    @unittest.skipIf(os.geteuid() == 0, "root may read every file")
    def test_file_without_permission(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "secret.hex"
            path.write_text(GOOD_REQUEST.hex())
            path.chmod(0)
            result = decode(path)
            self.assertEqual((result.status, result.text), (66, ""))
            self.assertEqual(result.errors,
                             f"radius-packet: cannot read {path}: Permission denied\n")

    def test_megabytes_are_read(self):
        big = decode("--json", stdin=(GOOD_REQUEST.hex() + "\n\n") * 20000)
        self.assertEqual((len(big.objects), big.status), (20000, 0))
        padded = decode("--json", stdin=GOOD_REQUEST.hex() + "00 " * 1000000)
        self.assertEqual((len(padded.objects), padded.status), (1, 0))

    def test_garbage_never_ends_the_program(self):
        generator = random.Random(2865)
        garbage = []
        for _ in range(2000):
            body = generator.randbytes(generator.randrange(60))
            if generator.random() < 0.7:
                body = bytes([generator.randrange(50), 1, 0, 20 + len(body)]) + bytes(16) + body
            garbage.append(body or b"\0")
        for given in ((), A_OPTION):
            result = decode("--json", *given, stdin="\n\n".join(g.hex() for g in garbage))
            self.assertEqual(len(result.objects), len(garbage))
            self.assertEqual(result.status, 2)
        for _ in range(20):
            noise = generator.randbytes(1000)
            self.assertEqual(decode("-f", "hex", stdin=noise).status, 66)
            for arguments in ((), ("-f", "binary")):
                result = decode("--json", *arguments, stdin=noise)
                self.assertEqual((len(result.objects), result.status), (1, 2))


class Format(unittest.TestCase):
    """`-f`: what is read as hex, and what as one binary packet."""

    def decode(self, name, content, *arguments):
        """Decodes from a file and from standard input, which must agree but for the name."""
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "input"
            path.write_bytes(content)
            from_file = decode("-f", name, *arguments, path)
            result = decode("-f", name, *arguments, stdin=content)
            self.assertEqual(
                (from_file.status, from_file.text.replace(str(path), "-"),
                 from_file.errors.replace(str(path), "-")),
                (result.status, result.text, result.errors))
        return result

    def test_default_is_auto(self):
        for content in (GOOD_REQUEST, GOOD_REQUEST.hex().encode()):
            result = decode("--json", stdin=content)
            self.assertEqual((result.status, result.errors), (0, ""))
            self.assertEqual(result.objects, self.decode("auto", content, "--json").objects)

    def test_binary_is_one_packet_a_file(self):
        with tempfile.TemporaryDirectory() as folder:
            paths = [pathlib.Path(folder) / name for name in ("a", "b", "c.hex")]
            paths[0].write_bytes(GOOD_REQUEST)
            paths[1].write_bytes(GOOD_RESPONSE)
            paths[2].write_text(GOOD_REQUEST.hex() + "\n\n" + GOOD_REQUEST.hex())
            result = decode("--json", *A_OPTION, *paths)
            self.assertEqual((result.status, result.errors), (0, ""))
            self.assertEqual([(report["source"], report["index"]) for report in result.objects],
                             [(str(paths[0]), 1), (str(paths[1]), 1), (str(paths[2]), 1),
                              (str(paths[2]), 2)])

    def test_golden_packets_decode_alike_in_binary(self):
        for golden in golden_packets(DATA):
            with self.subTest(golden.path.name), tempfile.TemporaryDirectory() as folder:
                as_hex, *as_binary = (
                    run("decode", "--json", *golden.options(folder), "-f", name, stdin=content)
                    for name, content in (("hex", golden.packet.hex()), ("auto", golden.packet),
                                          ("binary", golden.packet)))
                self.assertEqual(as_hex.objects[0]["error"], golden.result)
                for result in as_binary:
                    self.assertEqual((result.status, result.text), (as_hex.status, as_hex.text))

    def test_said_to_be_binary_is_binary_whatever_it_looks_like(self):
        result = self.decode("binary", GOOD_REQUEST.hex().encode(), "--json")
        (report,) = result.objects
        self.assertEqual((result.status, report["error"]), (2, "invalidPktLength"))
        self.assertEqual(result.errors, "radius-packet: packet 1 of - refused: invalidPktLength: "
                                        "Invalid packet header length: 12343\n")

    def test_auto_takes_hex_in_any_dress_for_hex(self):
        digits = GOOD_REQUEST.hex()
        for text in (digits.upper(), "0x" + digits, ":".join(digits), "\t" + digits + "\r\n\f\v",
                     "# caf\u00e9 \u2013 zz\n" + digits + "# z", "\n\n" + digits + "\n\n"):
            with self.subTest(text):
                result = self.decode("auto", text.encode(), "--json")
                self.assertEqual((result.status, result.errors, len(result.objects)), (0, "", 1))

    def test_auto_leaves_half_a_byte_bad_hex(self):
        for text in (b"012", b"01\n2 # half\n\n03"):
            self.assertEqual(self.decode("auto", text).status, 66)
            self.assertEqual(self.decode("auto", text).errors, self.decode("hex", text).errors)

    def test_hex_with_a_slip_is_taken_as_binary_and_told_why(self):
        digits = GOOD_REQUEST.hex()
        reason = "refused: invalidPktLength: Invalid packet header length: 12343"
        for text, line, why in (
            (digits + "\n\n\n" + digits + "g", 4, '"g" is no hex digit'),
            (digits + "\n\0", 2, '"\\x00" is no hex digit'),
            (digits + "\n# \x1b[2J", 2, '"\\x1b" is a control byte'),
            (digits + "1\n\n-", 1, "the packet ends with half a byte: an odd number of hex digits"),
            (digits + " " * 300000 + "z", 1, '"z" is no hex digit'),
        ):
            with self.subTest(why):
                result = self.decode("auto", text.encode(), "--json")
                (report,) = result.objects
                self.assertEqual((result.status, report["error"]), (2, "invalidPktLength"))
                self.assertEqual(result.errors,
                                 f"radius-packet: packet 1 of - {reason}\n"
                                 f"radius-packet: - is taken as binary, for it is no hex text: "
                                 f"line {line}: {why}\n")

    def test_binary_packet_with_a_good_header_is_not_told_why(self):
        wrong = GOOD_REQUEST[:-1]
        broken = packet(1, b"\1")
        for content, said in ((broken, 1), (packet(1, attribute(80, bytes(16))), 1), (wrong, 2)):
            self.assertEqual(len(self.decode("auto", content).errors.splitlines()), said)

    def test_binary_packet_that_begins_like_a_comment_is_binary(self):
        for code in (11, 12):
            content = bytearray(packet(code, attribute(18, b"hello")))
            content[1] = ord("#")
            if code == 11:
                digest = hashlib.md5(content[:4] + REQUEST_AUTHENTICATOR + content[20:]
                                     + SECRET.encode()).digest()
                content[4:20] = digest
            result = self.decode("auto", bytes(content), "--json", *A_OPTION)
            (report,) = result.objects
            self.assertEqual((result.status, report["code"], report["id"]), (0, code, ord("#")))

    def test_binary_packet_of_hex_characters_needs_to_be_said_binary(self):
        content = b"\f0\n0" + b"0" * 2604  # Status-Server, its Length the characters LF and 0
        self.assertEqual(len(content), 0x0A30)
        self.assertEqual(self.decode("binary", content, "--json").objects[0]["length"], 0x0A30)
        self.assertEqual(self.decode("auto", content).text, self.decode("hex", content).text)

    def test_padding_is_not_looked_at(self):
        for name in ("auto", "binary"):
            for size in (4096, 4097, 70000):
                with self.subTest(format=name, size=size):
                    content = GOOD_REQUEST + b"\xff" * (size - len(GOOD_REQUEST))
                    result = self.decode(name, content, "--json")
                    self.assertEqual((result.status, result.errors), (0, ""))
                    self.assertEqual(len(result.objects[0]["attributes"]), 1)

    def test_binary_ends_at_the_greatest_packet(self):
        for name in ("auto", "binary"):
            result = decode("-f", name, "/dev/zero")
            self.assertEqual(result.status, 2)
            self.assertEqual(result.errors.splitlines()[0],
                             "radius-packet: packet 1 of /dev/zero refused: invalidPktLength: "
                             "Invalid packet header length: 0")

    def test_greatest_packet_is_decoded_whole(self):
        most = b"".join([attribute(18, b"x" * 253)] * 15 + [attribute(18, b"x" * 249)])
        content = packet(1, most)
        self.assertEqual(len(content), 4096)
        for name, text in (("binary", content), ("auto", content), ("hex", content.hex().encode())):
            result = self.decode(name, text + (b"00" if name == "hex" else b"\0"), "--json")
            self.assertEqual((result.status, len(result.objects[0]["attributes"])), (0, 16))

    def test_very_long_lines(self):
        digits = GOOD_REQUEST.hex()
        for text in (digits + " " * 1000000, "#" + "x" * 1000000 + "\n" + digits,
                     digits + ":" * 1000000, digits + "0" * 1000000):
            result = decode("--json", stdin=text)
            self.assertEqual((result.status, len(result.objects)), (0, 1))

    def test_empty_file_among_others_is_no_packet(self):
        with tempfile.TemporaryDirectory() as folder:
            empty, good = pathlib.Path(folder) / "empty", pathlib.Path(folder) / "good"
            empty.write_bytes(b"")
            good.write_bytes(GOOD_REQUEST)
            for name in ("auto", "binary"):
                result = decode("--json", "-f", name, empty, good)
                self.assertEqual((result.status, len(result.objects)), (0, 1))


# ---- Pairing ----


def identified(content, identifier, request_authenticator=None):
    """The packet under another Identifier; a response is signed anew."""
    changed = content[:1] + bytes([identifier]) + content[2:]
    if request_authenticator is not None:
        digest = hashlib.md5(changed[:4] + request_authenticator + changed[20:]
                             + SECRET.encode()).digest()
        changed = changed[:4] + digest + changed[20:]
    return changed


def answer(code, request, *attributes):
    """A response that answers the request."""
    response = packet(code, *attributes, request_authenticator=request[4:20])
    return identified(response, request[1], request[4:20])


ANSWERS = {2: (1, 12), 3: (1,), 11: (1,), 5: (4, 12), 41: (40,), 42: (40,), 44: (43,), 45: (43,)}


class Pairing(unittest.TestCase):
    def reports(self, *packets, arguments=()):
        return decode("--json", *arguments, stdin="\n\n".join(p.hex() for p in packets)).objects

    def paired(self, *packets):
        """The number of the request that the last packet was paired with, or None."""
        pair = self.reports(*packets)[-1]["pairedWith"]
        return pair and pair["index"]

    def test_response_is_verified_with_the_request_in_front_of_it(self):
        request = packet(1, attribute(1, b"alice"))
        response = answer(2, request, attribute(69, b"\1" + hidden(b"\3key", b"\x80\1",
                                                                  request[4:20])))
        result = decode(stdin=f"{request.hex()}\n\n{response.hex()}")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertEqual(result.text.splitlines()[3:],
                         [f"ACCESS_ACCEPT, id 7, length {len(response)}, authenticator "
                          f"{response[4:20].hex()} (verified), packet 2 of -, paired with packet 1 "
                          "of -", 'Tunnel-Password:1 = "key"'])

    def test_every_code_is_paired_with_the_requests_that_it_can_answer(self):
        # An Identifier for each code of request keeps the pairs apart.
        pairs = [(code, identified(packet(request_code), request_code))
                 for code in range(256) if code not in REQUEST_CODES
                 for request_code in REQUEST_CODES]
        reports = self.reports(*(p for code, request in pairs
                                 for p in (request, answer(code, request))))
        for at, (code, request) in enumerate(pairs):
            with self.subTest(code=code, request=request[0]):
                report = reports[2 * at + 1]
                if request[0] in ANSWERS.get(code, ()):
                    self.assertEqual(report["pairedWith"], {"source": "-", "index": 2 * at + 1})
                    self.assertEqual(report["error"], "success")
                else:
                    self.assertEqual((report["pairedWith"], report["reason"]), (None, MISSING))

    def test_nearest_earlier_request_of_the_same_identifier_is_taken(self):
        first, second = packet(4, attribute(44, b"1")), packet(4, attribute(44, b"2"))
        other = identified(packet(1), 8)
        self.assertEqual(self.paired(first, second, answer(5, second)), 2)
        self.assertEqual(self.paired(first, other, answer(5, first)), 1)
        self.assertEqual(self.paired(second, first, second, answer(5, second)), 3)
        self.assertEqual(self.paired(first, answer(5, first), answer(5, first)), 1)
        self.assertEqual(self.paired(answer(5, first)), None)
        (early, _) = self.reports(answer(5, first), first)
        self.assertEqual((early["pairedWith"], early["reason"]), (None, MISSING))

    def test_nearest_counts_among_all_codes_that_can_be_answered(self):
        status, access, accounting = packet(12), packet(1), packet(4)
        self.assertEqual(self.paired(access, status, accounting, answer(2, status)), 2)
        self.assertEqual(self.paired(status, access, accounting, answer(2, access)), 2)
        self.assertEqual(self.paired(access, status, accounting, answer(5, accounting)), 3)
        self.assertEqual(self.paired(access, status, accounting, answer(3, access)), 1)

    def test_wrong_answer_fails_the_check(self):
        first, second = packet(4, attribute(44, b"1")), packet(4, attribute(44, b"2"))
        report = self.reports(first, second, answer(5, first))[2]
        self.assertEqual((report["error"], report["pairedWith"]["index"]), ("invalidPktAuth", 2))

    def test_refused_request_is_answered_all_the_same(self):
        broken = packet(1, b"\1")
        forged = packet(4)[:4] + bytes(16)
        truncated = packet(1, attribute(1, b"alice"))[:20]
        for code, request, error in ((2, broken, "invalidAttrLength"),
                                     (5, forged, "invalidPktAuth"),
                                     (2, truncated, "invalidPktLength")):
            with self.subTest(error):
                refused, response = self.reports(request, answer(code, request))
                self.assertEqual(refused["error"], error)
                self.assertEqual((response["error"], response["pairedWith"]["index"]),
                                 ("success", 1))

    def test_request_without_a_whole_header_is_none(self):
        request = packet(1)
        for size in range(1, 20):
            with self.subTest(size):
                self.assertIsNone(self.paired(request[:size], answer(2, request)))

    def test_runs_across_files_in_their_order(self):
        request = packet(1)
        with tempfile.TemporaryDirectory() as folder:
            paths = [pathlib.Path(folder) / name for name in ("request", "answer")]
            paths[0].write_bytes(request)
            paths[1].write_text(answer(2, request).hex())
            result = decode("--json", *paths)
            self.assertEqual(result.status, 0)
            self.assertEqual(result.objects[1]["pairedWith"],
                             {"source": str(paths[0]), "index": 1})
            self.assertEqual(decode("--json", *reversed(paths)).objects[0]["reason"], MISSING)
            piped = decode("--json", paths[0], "-", stdin=answer(2, request).hex())
            self.assertEqual(piped.objects[1]["pairedWith"], {"source": str(paths[0]), "index": 1})

    def test_a_given_authenticator_beats_it(self):
        request = packet(1)
        report = self.reports(request, answer(2, request), arguments=A_OPTION)[1]
        self.assertEqual((report["error"], report["pairedWith"]), ("invalidPktAuth", None))
        report = self.reports(request, packet(2), arguments=A_OPTION)[1]
        self.assertEqual((report["error"], report["pairedWith"]), ("success", None))

    def test_requests_are_paired_with_nothing(self):
        for report in self.reports(*[packet(code) for code in REQUEST_CODES * 2]):
            self.assertEqual((report["error"], report["pairedWith"]), ("success", None))


class SpoofedAnswers(unittest.TestCase):
    """An agent's peer may be anybody: packets of any code arrive where an answer should."""

    REQUEST = Golden(DATA / "packets" / "rfc2865-7.1-access-request.txt")
    ANSWER = Golden(DATA / "packets" / "rfc2865-7.1-access-accept.txt")
    # What an Access-Accept is under another code: codes 1 and 12 claim nothing that can be checked.
    STATUS = {1: 0, 12: 0, 4: 1, 40: 1, 43: 1, 6: 1, 99: 1}

    def decode(self, code, given, request_in_front):
        packets = [self.REQUEST.packet] if request_in_front else []
        packets.append(bytes([code]) + self.ANSWER.packet[1:])
        arguments = ("-a", self.ANSWER.request_authenticator) if given else ()
        return decode("--json", *arguments, stdin="\n\n".join(p.hex() for p in packets),
                      secret=bytes.fromhex(self.ANSWER.secret).decode())

    def test_never_reach_an_assertion(self):
        for code, status in self.STATUS.items():
            for given in (False, True):
                for request_in_front in (False, True):
                    with self.subTest(code=code, given=given, request_in_front=request_in_front):
                        result = self.decode(code, given, request_in_front)
                        self.assertEqual(result.status, status)
                        self.assertNotIn("assertion", result.errors.lower())
                        self.check(result.objects[-1], code, given)

    def check(self, report, code, given):
        """A code of a request is taken at its word; every other one answers nothing."""
        self.assertEqual((report["code"], report["pairedWith"]), (code, None))
        if self.STATUS[code] == 0:
            self.assertEqual((report["error"], report["reason"]), ("success", None))
        elif code in REQUEST_CODES or given:
            self.assertEqual(report["error"], "invalidPktAuth")
        else:
            self.assertEqual((report["error"], report["reason"]), (None, MISSING))


# ---- Output ----


class Output(unittest.TestCase):
    def text(self, *attributes):
        return decode(*A_OPTION, stdin=packet(2, *attributes).hex()).text.splitlines()[1:]

    def json(self, *attributes):
        (report,) = decode("--json", *A_OPTION, stdin=packet(2, *attributes).hex()).objects
        return report["attributes"]

    def test_header_line(self):
        self.assertEqual(decode(stdin=GOOD_REQUEST.hex()).text.splitlines()[0],
                         "ACCESS_REQUEST, id 7, length 27, authenticator "
                         "000102030405060708090a0b0c0d0e0f (unchecked), packet 1 of -")

    def test_verified_is_said_only_of_what_was(self):
        wrong = GOOD_RESPONSE[:4] + bytes(16) + GOOD_RESPONSE[20:]
        mac = attribute(80, bytes(16))
        for name, content, said in (
            ("Access-Request", GOOD_REQUEST, ["(unchecked)"]),
            ("signed Access-Request", signed_request(),
             ["(unchecked)", "Message-Authenticator (verified)"]),
            ("response", GOOD_RESPONSE, ["(verified)"]),
            ("wrong response", wrong, ["(wrong)"]),
            ("accounting", packet(4, mac), ["(verified)", "Message-Authenticator (unchecked)"]),
            ("wrong Message-Authenticator", packet(1, mac),
             ["(unchecked)", "Message-Authenticator (wrong)"]),
        ):
            with self.subTest(name):
                header = decode(*A_OPTION, stdin=content.hex()).text.splitlines()[0]
                self.assertEqual(re.findall(r"(?:Message-Authenticator )?\(\w+\)", header), said)

    def test_text_is_quoted_and_escaped(self):
        self.assertEqual(self.text(attribute(18, b'a"b\\c\n\t\r\0\x1b\x7f\xff\xc3\xa9\xc2\x9b')),
                         ['Reply-Message = "a\\"b\\\\c\\n\\t\\r\\x00\\x1b\\x7f\\xff\u00e9'
                          '\\xc2\\x9b"'])

    def test_nothing_from_the_wire_drives_a_terminal(self):
        values = bytes(range(1, 250))
        everything = packet(1, attribute(1, values), attribute(24, values), attribute(240, values),
                            vendor_attribute(9, 1, values[:240]))
        for options in ((), ("--json",)):
            output = decode(*options, stdin=everything.hex()).output
            self.assertNotRegex(output, rb"[\x00-\x09\x0b-\x1f\x7f]")
            output.decode()

    def test_line_ends_of_unicode_end_no_object(self):
        name = "a\u2028b\u2029c\u0085d"
        result = decode("--json", stdin=packet(1, attribute(1, name.encode())).hex())
        self.assertEqual(len(result.text.splitlines()), 1)
        self.assertEqual(result.objects[0]["attributes"][0]["value"],
                         "a\u2028b\u2029c\\xc2\\x85d")

    def test_faults_are_said_on_standard_error_alone(self):
        content = packet(1, attribute(5, bytes(4)), b"\1")
        result = decode(stdin=content.hex())
        self.assertEqual(result.text.splitlines()[1:], ["NAS-Port = 0"])
        self.assertEqual(result.errors, "radius-packet: packet 1 of - refused: invalidAttrLength: "
                                        "Invalid attribute: 1 length: 1\n")

    def test_numbers_of_known_enumerations_are_named(self):
        numbers = [attribute(code, value.to_bytes(4, "big"))
                   for code, value in ((40, 1), (40, 99), (6, 8), (101, 503), (5, 1))]
        self.assertEqual(self.text(*numbers),
                         ["Acct-Status-Type = START (1)", "Acct-Status-Type = 99",
                          "Service-Type = AUTHENTICATE_ONLY (8)",
                          "Error-Cause = SESSION_CONTEXT_NOT_FOUND (503)", "NAS-Port = 1"])
        self.assertEqual([entry["value"] for entry in self.json(*numbers)], [1, 99, 8, 503, 1])

    def test_tags_are_printed_also_when_0(self):
        attributes = [attribute(64, b"\0\0\0\3"), attribute(64, b"\1\xff\xff\xff"),
                      attribute(81, b"\0text"), attribute(81, b"\x1ftext")]
        self.assertEqual(self.text(*attributes),
                         ["Tunnel-Type:0 = 3", "Tunnel-Type:1 = 16777215",
                          'Tunnel-Private-Group-Id:0 = "text"',
                          'Tunnel-Private-Group-Id:31 = "text"'])
        entries = self.json(*attributes)
        self.assertEqual([(entry["tag"], entry["value"]) for entry in entries],
                         [(0, 3), (1, 16777215), (0, "text"), (31, "text")])
        self.assertEqual([entry["hex"] for entry in entries],
                         ["00000003", "01ffffff", "0074657874", "1f74657874"])

    def test_salted_values_are_revealed(self):
        salt = b"\x80\x01"
        attributes = [attribute(69, b"\1" + hidden(b"\3key", salt)),
                      attribute(69, b"\0" + hidden(b"\0", salt)),
                      attribute(69, b"\1" + hidden(b"\xffkey", salt)),
                      attribute(69, b"\1"), attribute(69, b"\1\x80"), attribute(69, b"\1" + salt),
                      vendor_attribute(311, 16, hidden(b"\2\xaa\xbb", salt))]
        self.assertEqual(self.text(*attributes),
                         ['Tunnel-Password:1 = "key"', 'Tunnel-Password:0 = ""',
                          "Tunnel-Password:1 = 0xff6b6579" + "00" * 12, "Tunnel-Password:1 = 0x",
                          "Tunnel-Password:1 = 0x", "Tunnel-Password:1 = 0x",
                          "MS-MPPE-Send-Key = 0xaabb"])
        self.assertEqual([entry["value"] for entry in self.json(*attributes)],
                         ["key", "", "0xff6b6579" + "00" * 12, "0x", "0x", "0x", "aabb"])
        self.assertEqual(self.json(*attributes)[0]["hex"], attributes[0][2:].hex())
        self.assertEqual(self.json(*attributes)[-1]["hex"], attributes[-1][8:].hex())

    def test_unknown_attributes_are_named_by_their_numbers(self):
        attributes = [attribute(240, b"a"), vendor_attribute(4294967295, 255, b""),
                      vendor_attribute(311, 255, b"b")]
        self.assertEqual(self.text(*attributes),
                         ["Attr-240 = 0x61", "Attr-26.4294967295.255 = 0x",
                          "Attr-26.311.255 = 0x62"])
        self.assertEqual([entry["value"] for entry in self.json(*attributes)], ["61", "", "62"])
        self.assertEqual(self.json(*attributes)[1],
                         {"offset": 23, "length": 8, "attrId": 26, "vendorId": 4294967295,
                          "vendorAttrId": 255, "name": "Attr-26.4294967295.255",
                          "type": "unknown", "tag": None, "value": "", "redacted": False,
                          "hex": ""})

    def test_addresses_are_text(self):
        self.assertEqual(
            self.text(attribute(4, bytes([192, 0, 2, 1])),
                      attribute(95, ipaddress.ip_address("2001:db8::1").packed),
                      attribute(96, bytes.fromhex("02005efffe000001")),
                      attribute(97, bytes.fromhex("002020010db8")), attribute(97, bytes(2))),
            ["NAS-IP-Address = 192.0.2.1", "NAS-IPv6-Address = 2001:db8::1",
             "Framed-Interface-Id = 0200:5eff:fe00:0001", "Framed-IPv6-Prefix = 2001:db8::/32",
             "Framed-IPv6-Prefix = ::/0"])

    def test_short_packets_have_null_for_what_they_lack(self):
        fields = ("code", "codeName", "id", "length", "authenticator")
        for size, expected in ((1, [2, "ACCESS_ACCEPT", None, None, None]),
                               (2, [2, "ACCESS_ACCEPT", 7, None, None]),
                               (3, [2, "ACCESS_ACCEPT", 7, None, None]),
                               (4, [2, "ACCESS_ACCEPT", 7, 27, None]),
                               (19, [2, "ACCESS_ACCEPT", 7, 27, None]),
                               (20, [2, "ACCESS_ACCEPT", 7, 27, GOOD_RESPONSE[4:20].hex()])):
            with self.subTest(size):
                result = decode("--json", stdin=GOOD_RESPONSE[:size].hex())
                (report,) = result.objects
                self.assertEqual([report[field] for field in fields], expected)
                self.assertEqual((report["error"], result.status), ("invalidPktLength", 2))

    def test_message_authenticator_is_what_the_sink_says(self):
        for content, present in ((GOOD_REQUEST, False), (signed_request(), True),
                                 (packet(4, attribute(80, bytes(16))), True),
                                 (packet(1, attribute(80, bytes(16))), False)):
            (report,) = decode("--json", stdin=content.hex()).objects
            self.assertIs(report["messageAuthenticator"], present)

    def test_source_that_is_no_utf8(self):
        with tempfile.TemporaryDirectory() as folder:
            name = os.fsencode(folder) + b"/\xff\x1b.hex"
            with open(name, "w") as file:
                file.write(GOOD_RESPONSE.hex())
            result = decode("--json", name)
            self.assertEqual(result.objects[0]["source"], folder + "/\\xff\\x1b.hex")
            self.assertNotIn("\x1b", result.errors)

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            completed = subprocess.run([PROGRAM, "decode", "--secret", "a"], stdout=full,
                                       input=GOOD_REQUEST.hex().encode(), stderr=subprocess.PIPE)
        self.assertEqual(completed.returncode, 74)
        self.assertEqual(completed.stderr, b"radius-packet: cannot write to standard output: "
                                           b"No space left on device\n")

    def test_reader_that_goes_away(self):
        process = subprocess.Popen([PROGRAM, "decode", "--secret", "a"], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        process.stdout.close()
        process.stdin.write((GOOD_REQUEST.hex() + "\n\n").encode() * 5000)
        process.stdin.close()
        self.assertIn(process.wait(timeout=120), (-signal.SIGPIPE, 74))


# ---- Exit status ----


class RevealedValues(unittest.TestCase):
    """A request with a User-Password, which is revealed."""

    SHOWN = 'User-Password = "xyzzy"'
    REDACTED = "User-Password = (redacted)"
    REQUEST = packet(1, attribute(1, b"alice"),
                     attribute(2, hidden(b"xyzzy", b"", bytes(range(16)))))

    def lines(self, *options):
        result = decode(*options, stdin=self.REQUEST.hex())
        self.assertEqual((result.status, result.errors), (0, ""))
        return result.text.splitlines()[1:]

    def lines_on_a_terminal(self, *options):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "request"
            path.write_text(self.REQUEST.hex())
            command = shlex.join([PROGRAM, "decode", *options, "--secret", SECRET, str(path)])
            result = subprocess.run(["script", "--quiet", "--return", "--command", command,
                                     "/dev/null"], stdin=subprocess.DEVNULL, timeout=60,
                                    stdout=subprocess.PIPE, check=True)
            return result.stdout.decode().splitlines()[1:]

    def test_are_shown_where_no_terminal_is(self):
        self.assertEqual(self.lines(), ['User-Name = "alice"', self.SHOWN])
        self.assertEqual(self.lines("--show-secrets"), ['User-Name = "alice"', self.SHOWN])

    def test_are_kept_back_when_that_is_asked_for(self):
        self.assertEqual(self.lines("--redact"), ['User-Name = "alice"', self.REDACTED])

    def test_are_kept_back_on_a_terminal(self):
        self.assertEqual(self.lines_on_a_terminal(), ['User-Name = "alice"', self.REDACTED])
        self.assertEqual(self.lines_on_a_terminal("--show-secrets"),
                         ['User-Name = "alice"', self.SHOWN])

    def test_are_null_in_json_when_they_are_kept_back(self):
        for options, password in (((), "xyzzy"), (("--redact",), None)):
            with self.subTest(options):
                result = decode("--json", *options, stdin=self.REQUEST.hex())
                shown = [(entry["value"], entry["redacted"])
                         for entry in result.objects[0]["attributes"]]
                self.assertEqual(shown, [("alice", False), (password, bool(options))])

    def test_are_kept_back_by_the_legacy_interface_too(self):
        self.assertEqual(self.lines("--legacy", "--redact"),
                         ['User-Name = "alice"', self.REDACTED])

    def test_cannot_be_shown_and_kept_back(self):
        result = decode("--redact", "--show-secrets", stdin=self.REQUEST.hex())
        self.assertEqual((result.status, result.text), (64, ""))
        self.assertEqual(result.errors,
                         "radius-packet: --redact excludes --show-secrets\n"
                         "radius-packet: radius-packet --help and radius-packet COMMAND --help "
                         "tell more\n")

    def test_that_are_kept_back_are_not_built(self):
        text = decode("--redact", stdin=self.REQUEST.hex()).text
        result = run("build", stdin=text, variable=SECRET)
        self.assertEqual((result.status, result.text), (65, ""))
        self.assertEqual(result.errors,
                         "radius-packet: -: line 3: User-Password: text stands in quotes\n")


class StatusServer(unittest.TestCase):
    ROWS = (
        ("good", signed_request(attribute(32, b"nas"), code=12), 0, "success"),
        ("unsigned", packet(12, attribute(32, b"nas")), 0, "msgAuthNotPresent"),
        ("forbidden", signed_request(attribute(1, b"alice"), code=12), 0,
         "invalidAttributePresent"),
        ("without attributes", packet(12), 0, "success"),
        ("refused", packet(12, attribute(79, b"eap")), 1, "invalidAttributePresent"),
        ("header refused", packet(12)[:19], 2, None),
        ("another code", GOOD_REQUEST, 0, None),
    )

    def test_verdict_is_a_line_behind_the_header_line(self):
        for name, content, _, verdict in self.ROWS:
            with self.subTest(name):
                header, *attributes = decode(stdin=content.hex()).text.splitlines()
                line = [f"Status-Server: {verdict}"] if verdict else []
                result = decode("--status-server", stdin=content.hex())
                self.assertEqual(result.text.splitlines(), [header, *line, *attributes])

    def test_verdict_is_a_key_of_every_object(self):
        for name, content, _, verdict in self.ROWS:
            with self.subTest(name):
                (report,) = decode("--json", "--status-server", stdin=content.hex()).objects
                (plain,) = decode("--json", stdin=content.hex()).objects
                self.assertEqual(list(report),
                                 [*PACKET_KEYS[:-1], "statusServer", PACKET_KEYS[-1]])
                self.assertEqual(report.pop("statusServer"), verdict)
                self.assertEqual(report, plain)

    def test_verdict_changes_no_exit_status(self):
        for name, content, status, _ in self.ROWS:
            with self.subTest(name):
                plain = decode(stdin=content.hex())
                result = decode("--status-server", stdin=content.hex())
                self.assertEqual((plain.status, result.status), (status, status))
                self.assertEqual(result.errors, plain.errors)


class ExitStatus(unittest.TestCase):
    GOOD = GOOD_REQUEST
    FAILED = packet(1, attribute(80, bytes(16)))
    UNANSWERED = GOOD_RESPONSE
    REFUSED = packet(1, b"\1")

    def status(self, *packets):
        return decode(stdin="\n\n".join(p.hex() for p in packets)).status

    def test_is_the_greatest_of_all_packets(self):
        self.assertEqual(self.status(self.GOOD), 0)
        self.assertEqual(self.status(self.FAILED), 1)
        self.assertEqual(self.status(self.UNANSWERED), 1)
        self.assertEqual(self.status(packet(1, attribute(79, b"eap"))), 1)
        self.assertEqual(self.status(self.REFUSED), 2)
        self.assertEqual(self.status(self.GOOD, self.FAILED, self.GOOD), 1)
        self.assertEqual(self.status(self.REFUSED, self.FAILED), 2)
        self.assertEqual(self.status(self.FAILED, self.REFUSED, self.GOOD), 2)

    def test_every_refused_packet_is_said(self):
        result = decode(stdin="\n\n".join(p.hex() for p in (self.UNANSWERED, self.GOOD, self.FAILED,
                                                            self.REFUSED)))
        self.assertEqual(result.errors.splitlines(),
                         [f"radius-packet: packet 1 of - refused: {MISSING}",
                          "radius-packet: packet 3 of - refused: invalidMsgAuth",
                          "radius-packet: packet 4 of - refused: invalidAttrLength: Invalid "
                          "attribute: 1 length: 1"])

    def test_warnings_are_not_said(self):
        result = decode(stdin=packet(1, attribute(240, b"a")).hex())
        self.assertEqual((result.status, result.errors), (0, ""))


class Dictionary(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def top(self, content):
        (self.folder / "dictionary").write_text("$INCLUDE ours\n")
        (self.folder / "ours").write_text(content)
        return self.folder / "dictionary"

    def test_is_the_file_of_the_option(self):
        top = self.top("ATTRIBUTE Mine 1 integer64\nATTRIBUTE Other 2 octets has_tag\n"
                       "ATTRIBUTE When 3 date has_tag\n")
        content = packet(1, attribute(1, bytes(range(1, 9))), attribute(3, b"\1\0\0\2"))
        (report,) = decode("--json", "-d", top, stdin=content.hex()).objects
        first, second = report["attributes"]
        self.assertEqual((first["name"], first["type"], first["value"]),
                         ("Mine", "integer64", "72623859790382856"))
        self.assertEqual((second["tag"], second["value"]), (1, 2))

    def test_warnings_go_to_standard_error(self):
        top = self.top("ATTRIBUTE Mine 1 word\n")
        result = decode("--json", "-d", top, stdin=GOOD_REQUEST.hex())
        self.assertEqual(result.status, 0)
        self.assertEqual(result.objects[0]["attributes"][0]["type"], "unknown")
        self.assertIn(f"File {self.folder}/ours Unknown/Non-Standard Type word", result.errors)

    def test_that_cannot_be_opened_ends_with_3(self):
        result = decode("-d", "", stdin=GOOD_REQUEST.hex())
        self.assertEqual((result.status, result.text, result.errors), (
            3, "", "radius-packet: the dictionary does not load: its name is empty\n"))
        for path in (self.folder / "missing", self.folder):
            result = decode("-d", path, stdin=GOOD_REQUEST.hex())
            self.assertEqual((result.status, result.text), (3, ""))
            self.assertEqual(result.errors,
                             f"radius-packet: the dictionary {path} does not load: this file, "
                             "or one that it includes, cannot be opened (file.is_open())\n")

    def test_that_is_broken_ends_with_3_and_the_message(self):
        top = self.top("ATTRIBUTE Mine 1\n")
        result = decode("-d", top, stdin=GOOD_REQUEST.hex())
        self.assertEqual((result.status, result.text), (3, ""))
        self.assertIn(f"File {self.folder}/ours Wrong Number of Arguments for Attribute\n",
                      result.errors)
        self.assertTrue(result.errors.endswith(
            f"radius-packet: the dictionary {top} does not load\n"))


class Pastes(unittest.TestCase):
    """Packets as people paste them; the forms themselves are the unit tests'."""

    FOLDER = DATA / "pastes"
    FORMATS = {"xxd": "dump", "hexdump-C": "dump", "tshark-x": "dump", "tcpdump-text": "dump",
               "tcpdump-x": "dump", "od": "dump", "xxd-i": "c", "python": "c", "base64": "base64",
               "base64-url": "base64", "xxd-p": "hex"}

    def bytes_of(self, *arguments, **options):
        """The packets as `decode` saw them, whatever it thinks of them."""
        result = decode(*arguments, "--json", *A_OPTION, **options)
        self.assertIn(result.status, (0, 1, 2))
        return [(report["code"], report["id"], report["length"], report["authenticator"],
                 [attribute["hex"] for attribute in report["attributes"]])
                for report in result.objects]

    def test_are_the_packets_of_plain_hex(self):
        for name in ("hexlike", "zeros"):
            expected = self.bytes_of(self.FOLDER / f"{name}.hex.txt")
            self.assertEqual(len(expected), 1)
            for form, name_of_format in self.FORMATS.items():
                path = self.FOLDER / f"{name}.{form}.txt"
                with self.subTest(path):
                    self.assertEqual(self.bytes_of(path), expected)
                    self.assertEqual(self.bytes_of("-f", name_of_format, path), expected)
                    self.assertEqual(self.bytes_of(stdin=path.read_bytes()), expected)

    def test_may_be_several_in_a_text(self):
        request = GOOD_REQUEST
        text = "".join(f"{at:04x}   {request[at:at + 16].hex(' ')}\n" for at in range(0, len(request), 16))
        self.assertEqual(decode(stdin=text).status, 0)
        self.assertEqual(decode("-f", "dump", stdin=text + "\n" + text).text.count("ACCESS_REQUEST"), 2)

    def test_that_contradict_themselves_name_the_line(self):
        text = (self.FOLDER / "hexlike.xxd.txt").read_text()
        for old, new, fault in (
            ("00000020:", "00000030:", "line 3: the offset is 0030, but the bytes in front of it end at 0020"),
            ("6465", "6466", "line 2: the text does not show the bytes in front of it"),
            ("6465", "646x", 'line 2: "x" is no hex digit')):
            for arguments in ((), ("-f", "dump")):
                result = decode(*arguments, stdin=text.replace(old, new))
                self.assertEqual((result.status, result.text), (66, ""))
                self.assertEqual(result.errors, f"radius-packet: -: {fault}\n")

    def test_without_packets_are_no_input(self):
        for name_of_format in ("dump", "c", "base64"):
            result = decode("-f", name_of_format, stdin="\n")
            self.assertEqual((result.status, result.text), (66, ""))
            self.assertEqual(result.errors, "radius-packet: no packets in the input\n")

    def test_of_any_bytes_end_with_a_documented_status(self):
        generator = random.Random(2867)
        texts = [path.read_bytes() for path in sorted(self.FOLDER.glob("hexlike.*.txt"))]
        for _ in range(150):
            text = bytearray(generator.choice(texts))
            for _ in range(generator.randrange(1, 8)):
                at = generator.randrange(len(text))
                text[at:at + generator.randrange(3)] = generator.randbytes(generator.randrange(3))
                text += b"x"
            result = decode("-f", generator.choice(["auto", "dump", "c", "base64"]), *A_OPTION,
                            stdin=bytes(text))
            self.assertIn(result.status, (0, 1, 2, 66))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
