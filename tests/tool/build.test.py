"""`radius-packet build` as a script sees it: arguments, streams, exit status, and the way back.

    build.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the golden packets.
"""

import hashlib
import hmac
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

from golden_files import golden_count, golden_packets
from program import PROGRAM, run

DATA = pathlib.Path(sys.argv[2])
SECRET = "golden-packets"
REQUEST_AUTHENTICATOR = bytes(range(0xA0, 0xB0))
A_OPTION = ("-a", REQUEST_AUTHENTICATOR.hex())
HINT = "radius-packet: radius-packet --help and radius-packet COMMAND --help tell more\n"


def build(text, *arguments, secret=SECRET):
    return run("build", *arguments, stdin=text, variable=secret)


def built(test, text, *arguments):
    """The packets of a text that must build without a word on standard error."""
    result = build(text, *arguments)
    test.assertEqual((result.status, result.errors), (0, ""))
    return [bytes.fromhex(paragraph) for paragraph in result.text.split("\n\n")]


def decoded_lines(test, packets, *arguments):
    """What decode says of hex text, without the header lines."""
    result = run("decode", *arguments, stdin=packets, variable=SECRET)
    test.assertEqual((result.status, result.errors), (0, ""))
    return [line for line in result.text.splitlines() if ", id " not in line]


# ---- The way back ----


class DecodedPacketsAreBuilt(unittest.TestCase):
    """`decode | build` gives back the same attributes for every golden packet that decodes."""

    # What cannot be built, with what is said of it.
    REFUSED = {
        "access-accept-ms-chap-mppe-keys.txt":
            "radius-packet: -: line 3: MS-Primary-DNS-Server: a vendor's address cannot be "
            "written: Attr-26.311.28 = 0x... can\n",
    }
    # What is built with other bytes, and why.
    OTHER_BYTES = {
        "access-accept-ipv6-prefix-lengths.txt": "a prefix is written with all 16 bytes",
        "access-accept-mppe-keys.txt": "new salts",
        "access-accept-salted-value-of-part-blocks.txt": "a new salt and a whole block",
        "access-accept-salted-values-too-short.txt": "whole salts and blocks",
        "access-accept-tunnel.txt": "a new salt",
        "access-accept-two-tunnels.txt": "new salts",
        "accounting-request-message-authenticator-unchecked.txt":
            "its Message-Authenticator is computed",
        "ipv6-access-accept.txt": "a prefix is written with all 16 bytes",
    }

    @staticmethod
    def comparable(text):
        """Attribute lines; a Message-Authenticator covers the salts, and is no value."""
        return [line.split(" = ")[0] if line.startswith("Message-Authenticator = ") else line
                for line in text.splitlines()[1:]]

    def test_to_the_same_attributes_and_bytes(self):
        names = set()
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                if golden.result != "success":
                    continue
                name = golden.path.name
                names.add(name)
                with self.subTest(name):
                    options = golden.options(folder)
                    text = run("decode", *options, golden.path)
                    self.assertEqual(text.status, 0)
                    result = run("build", *options, stdin=text.output)
                    if name in self.REFUSED:
                        self.assertEqual((result.status, result.text, result.errors),
                                         (65, "", self.REFUSED[name]))
                        continue
                    self.assertEqual((result.status, result.errors), (0, ""))
                    again = run("decode", *options, stdin=result.output)
                    self.assertEqual((again.status, again.errors), (0, ""))
                    self.assertEqual(self.comparable(again.text), self.comparable(text.text))
                    length = int.from_bytes(golden.packet[2:4], "big")
                    isSame = bytes.fromhex(result.text) == golden.packet[:length]
                    self.assertEqual(isSame, name not in self.OTHER_BYTES)
        self.assertLessEqual(set(self.REFUSED) | set(self.OTHER_BYTES), names)
        self.assertGreater(len(names), 40)

    def test_none_is_lost(self):
        self.assertEqual(len(golden_packets(DATA)), golden_count(DATA))

    def test_several_packets_with_their_requests(self):
        request = "ACCESS_REQUEST, id 7\nUser-Name = \"alice\"\n"
        packets = build(request + "\nACCESS_CHALLENGE, id 7\nState = 0x01\n\n" + request +
                        "\nACCESS_ACCEPT, id 7\nMessage-Authenticator\n")
        text = run("decode", stdin=packets.output, variable=SECRET)
        self.assertEqual((text.status, text.errors), (0, ""))
        self.assertEqual(build(text.text).output, packets.output)

    def test_verdict_line_is_passed_over(self):
        packets = build("STATUS_SERVER, id 7\nMessage-Authenticator\nUser-Name = \"alice\"\n")
        text = run("decode", "--status-server", stdin=packets.output, variable=SECRET)
        self.assertIn("\nStatus-Server: invalidAttributePresent\n", text.text)
        self.assertEqual(build(text.text).output, packets.output)


# ---- What is built ----


class Packets(unittest.TestCase):
    def test_are_signed_by_other_hands_too(self):
        packet, = built(self, "ACCOUNTING_REQUEST, id 9\nAcct-Status-Type = START\n")
        unsigned = bytes([4, 9, 0, 26]) + bytes(16) + bytes([40, 6, 0, 0, 0, 1])
        digest = hashlib.md5(unsigned + SECRET.encode()).digest()
        self.assertEqual(packet, unsigned[:4] + digest + unsigned[20:])
        packet, = built(self, "ACCESS_REQUEST, id 9\nMessage-Authenticator\n")
        unsigned = packet[:22] + bytes(16)
        self.assertEqual(packet[22:], hmac.digest(SECRET.encode(), unsigned, "md5"))
        packet, = built(self, "ACCESS_REJECT, id 9", *A_OPTION)
        head = bytes([3, 9, 0, 20])
        self.assertEqual(packet[4:], hashlib.md5(
            head + REQUEST_AUTHENTICATOR + SECRET.encode()).digest())

    def test_are_hex_a_paragraph_each(self):
        one, two = "1, id 1, authenticator " + "00" * 16, "12, id 2, authenticator " + "00" * 16
        self.assertEqual(build(f"{one}\n\n{two}\n").text,
                         "01010014" + "00" * 16 + "\n\n" + "0c020014" + "00" * 16 + "\n")

    def test_binary_is_one_packet(self):
        line = "1, id 1, authenticator " + "00" * 16
        self.assertEqual(build(line, "--binary").output, bytes([1, 1, 0, 20]) + bytes(16))
        result = build(f"{line}\n\n{line}", "--binary")
        self.assertEqual((result.status, result.text, result.errors),
                         (64, "", "radius-packet: --binary writes one packet, and there are 2\n"))

    def test_options_beat_the_header_line(self):
        packet, = built(self, "ACCESS_REQUEST, id 1\n", "-c", "STATUS_SERVER", "-i", "255")
        self.assertEqual(packet[:2], bytes([12, 255]))
        packet, = built(self, "Class = 0x00\n", "-c", "4", "-i", "0")
        self.assertEqual(packet[:2], bytes([4, 0]))

    def test_salts_are_random_and_unlike(self):
        text = "ACCESS_ACCEPT, id 1\n" + "Tunnel-Password:1 = \"x\"\n" * 150
        packet, = built(self, text, *A_OPTION)
        values = [packet[at:at + 21] for at in range(20, len(packet), 21)]
        self.assertEqual(len({value[3:5] for value in values}), 150)
        self.assertTrue(all(value[3] & 0x80 for value in values))
        self.assertEqual(len(built(self, text, *A_OPTION)[0]), len(packet))
        self.assertNotEqual(built(self, text, *A_OPTION)[0], packet)
        self.assertEqual(decoded_lines(self, packet.hex(), *A_OPTION),
                         text.splitlines()[1:])

    def test_hidden_values_of_digest_signed_requests_are_warned_of(self):
        result = build("COA_REQUEST, id 1\nTunnel-Password:1 = \"x\"\n")
        self.assertEqual((result.status, result.errors), (
            0, "radius-packet: -: line 2: Tunnel-Password: warning: no receiver can reveal a value "
               "that is hidden in a packet of COA_REQUEST\n"))
        self.assertEqual(len(bytes.fromhex(result.text)), 41)

    def test_what_decode_refuses_is_warned_of(self):
        text = "ACCESS_REQUEST, id 1\nNAS-Port = 1\n\nACCESS_REQUEST, id 2\nAttr-5 = 0x01\n"
        result = build(text)
        fault = ("invalidAttrLength: Attribute: 5, VendorId: 0, VendorAttrId: 0, Data Type: "
                 "Integer, Invalid length: 1")
        self.assertEqual((result.status, result.errors), (
            0, "radius-packet: -: line 4: warning: the packet is built, but decode refuses it: "
               f"{fault}\n"))
        decoded = run("decode", stdin=result.output, variable=SECRET)
        self.assertEqual((decoded.status, decoded.errors), (
            2, f"radius-packet: packet 2 of - refused: {fault}\n"))

    def test_value_that_is_hidden_in_part_is_warned_of(self):
        with tempfile.TemporaryDirectory() as folder:
            top = pathlib.Path(folder) / "dictionary"
            top.write_text("$INCLUDE dictionary.own\n")
            (pathlib.Path(folder) / "dictionary.own").write_text(
                "ATTRIBUTE Own-Long 200 octets concat,encrypt=1\n")
            for length in (253, 254):
                line = "Own-Long = 0x" + "41" * length
                for result, place in (
                        (build("2, id 1\n" + line, "-d", top, *A_OPTION), "-: line 2"),
                        (run("edit", "-d", top, *A_OPTION, "--add", line, variable=SECRET,
                             stdin=build("2, id 1", *A_OPTION).output),
                         "packet 1 of -: --add number 1")):
                    with self.subTest(place, length=length):
                        self.assertEqual((result.status, result.errors), (
                            0, "" if length == 253 else
                            f"radius-packet: {place}: Own-Long: warning: only the last piece of "
                            "the value is hidden: the others stand in clear\n"))
                        self.assertEqual(b"A" * 253 in bytes.fromhex(result.text), length == 254)

    def test_every_text_form_comes_back(self):
        lines = [
            'User-Name = "\\x00\\"\\\\\\n\\xff\u00e9"', "NAS-IP-Address = 192.0.2.1", "NAS-Port = 4294967295",
            "Service-Type = CALL_CHECK (10)", "Service-Type = 77", "Class = 0x00ff",
            "Tunnel-Type:0 = 13", "Tunnel-Private-Group-Id:255 = \"100\"",
            "Framed-Interface-Id = 0011:2233:4455:66ff", "Framed-IPv6-Prefix = 2001:db8::/29",
            "NAS-IPv6-Address = ::ffff:192.0.2.1", "MS-MPPE-Send-Key = 0x0102",
            "Event-Timestamp = 1700000000", "Attr-240 = 0x01", "Attr-26.99999.255 = 0x",
            "Tunnel-Password:0 = \"\"", "Tunnel-Password:31 = 0xff01",
        ]
        packets = built(self, "ACCESS_ACCEPT, id 1\n" + "\n".join(lines), *A_OPTION)
        self.assertEqual(decoded_lines(self, packets[0].hex(), *A_OPTION), lines)


# ---- Wrong text ----


class WrongText(unittest.TestCase):
    def test_names_line_attribute_and_reason(self):
        head = "ACCESS_REQUEST, id 1\n"
        for text, fault in (
                (head + "User-Name = \"a\"\nUser-Name = alice",
                 "line 3: User-Name: text stands in quotes"),
                (head + "MIP6-Feature-Vector = 1",
                 "line 2: MIP6-Feature-Vector: a number of 64 bits cannot be written: "
                 "Attr-124 = 0x... can"),
                (head + f"Reply-Message = \"{'x' * 254}\"",
                 "line 2: Reply-Message: a value of 254 bytes: there is room for 253"),
                (head + f"User-Password = \"{'x' * 129}\"",
                 "line 2: User-Password: a password has at most 128 bytes; these are 129"),
                (head + "NAS-Port = 1\nAttr-5 = 0x01",
                 "line 3: Attr-5: the attribute stands both in raw form and under its name"),
                (head + "Nobody = 1", "line 2: the dictionary has no attribute of that name"),
                (head + "to be", "line 2: the line is neither a header line nor NAME = VALUE"),
                (head + "\n\nNAS-Port = 1",
                 "line 4: the packet has no code: give it a header line, or -c CODE"),
                ("ACCESS_ACCEPT, id 1", "line 1: no Request Authenticator: give that of the "
                                        "request which this packet answers with -a HEX"),
                (head + "EAP-Message = 0x" + "00" * 5000,
                 "line 2: EAP-Message: maxPktLengthExceeded: Attribute: 79 Length: 255 addition "
                 "exceeds max packet length 3845")):
            with self.subTest(fault):
                result = build(text)
                self.assertEqual((result.status, result.text, result.errors),
                                 (65, "", f"radius-packet: -: {fault}\n"))

    def test_slip_in_a_header_line_is_no_comment(self):
        for rest in (", autenticator " + "00" * 16, ", lenght 20", ", length twenty"):
            with self.subTest(rest):
                result = build("1, id 1\n\n1, id 2" + rest)
                self.assertEqual((result.status, result.text, result.errors), (
                    65, "", "radius-packet: -: line 3: the header line is not CODE, id N"
                            "[, length N][, authenticator HEX], with nothing behind it but what "
                            "decode prints\n"))

    def test_names_the_file(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "packet.txt"
            path.write_text("words of no sense")
            result = build("", path)
            self.assertEqual((result.status, result.errors), (
                65, f"radius-packet: {path}: line 1: the line is neither a header line nor "
                    "NAME = VALUE\n"))

    def test_in_a_later_packet_builds_nothing(self):
        result = build("1, id 1\n\n2, id 2\n")
        self.assertEqual((result.status, result.text), (65, ""))

    def test_is_never_repeated(self):
        for text in ("hunter2", "hunter2=", "hunter2 = hunter2", "1, id 1\nUser-Name = hunter2",
                     "1, id 1\nUser-Password = \"hunter2", "1, id hunter2",
                     "1, id 1\nNAS-Port = hunter2", "1, id 1\nNAS-IP-Address = hunter2"):
            with self.subTest(text):
                result = build(text)
                self.assertEqual(result.status, 65)
                self.assertNotIn("hunter2", result.text + result.errors)


class Hostile(unittest.TestCase):
    def ends(self, text, statuses=(0, 65, 66)):
        result = build(text, *A_OPTION, "-c", "2", "-i", "1")
        self.assertIn(result.status, statuses)
        self.assertEqual(result.text == "", result.status != 0)
        return result

    def test_random_bytes(self):
        random.seed(20240602)
        for _ in range(60):
            self.ends(random.randbytes(random.randrange(3000)))

    def test_random_words_of_the_language(self):
        random.seed(20240603)
        words = ["User-Name", "Tunnel-Type:1", "Attr-26.9.1", "Attr-240", " = ", "=", "\"", "0x",
                 "\\x", "ff", "\n", "\n", "\n\n", "#", ", id 1", "ACCESS_REQUEST", "1", "::1/", ":",
                 "Message-Authenticator", "\0", "\xff", "(1)", "START", " "]
        for _ in range(150):
            text = "".join(random.choice(words) for _ in range(random.randrange(60)))
            self.ends(text.encode("latin-1"))

    def test_every_value_for_every_type(self):
        names = ["User-Name", "User-Password", "Class", "EAP-Message", "NAS-Port",
                 "Acct-Status-Type", "NAS-IP-Address", "NAS-IPv6-Address", "Framed-IPv6-Prefix",
                 "Framed-Interface-Id", "Event-Timestamp", "MIP6-Feature-Vector", "Tunnel-Type:1",
                 "Tunnel-Type", "Tunnel-Password:1", "Tunnel-Password", "MS-MPPE-Send-Key",
                 "MS-Primary-DNS-Server", "Message-Authenticator", "Attr-240", "Attr-26.9.9"]
        values = ["", "0", "-1", "4294967296", "9" * 5000, "0x", "0x0", "0xzz", "0x" + "00" * 247,
                  "0x" + "00" * 248, "0x" + "00" * 254, "0x" + "00" * 30000, '"', '""', '"\\', '"a',
                  '"' + "x" * 60000 + '"', "::", "::/129", "1.2.3.4", "1.2.3.4/33", "START (1)",
                  "START (2)", "0:0:0:0", "0000:0000:0000:0000", "\0", "\x1b[31m", "%s%n", "{}"]
        for name in names:
            for value in values:
                with self.subTest(name=name, value=value[:20]):
                    result = self.ends(f"{name} = {value}")
                    self.assertNotIn("\x1b", result.errors)

    def test_very_long_lines(self):
        for text in ("x" * 10_000_000, "User-Name = \"" + "x" * 10_000_000, "#" * 10_000_000):
            result = self.ends(text, (65,))
            self.assertEqual(result.errors,
                             "radius-packet: -: line 1: the line is longer than 65536 bytes\n")

    def test_a_hundred_thousand_lines(self):
        result = self.ends("Class = 0x\n" * 100_000, (65,))
        self.assertEqual(result.errors, "radius-packet: -: line 2039: no packet has room for more "
                                        "than 2038 attributes\n")
        self.ends("# nothing\n" * 100_000, (66,))
        packets = self.ends("Class = 0x\n\n" * 50_000, (0,)).text.strip().split("\n\n")
        self.assertEqual((len(packets), len(set(packets))), (50_000, 1))

    def test_a_packet_as_full_as_can_be(self):
        packets = built(self, "1, id 1\n" + "Class = 0x\n" * 2038)
        self.assertEqual(len(packets[0]), 4096)

    def test_endless_input_ends(self):
        for source in ("/dev/zero", "/dev/urandom"):
            with self.subTest(source), open(source, "rb") as endless:
                completed = subprocess.run([PROGRAM, "build", "--secret", "x"], stdin=endless,
                                           timeout=120, capture_output=True)
                self.assertEqual(completed.returncode, 65)


# ---- Arguments ----


class Arguments(unittest.TestCase):
    def test_help_has_an_example(self):
        result = run("build", "--help")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertIn("Example", result.text)

    def test_example_of_the_help_works(self):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "secret.txt").write_text("xyzzy5461\n")
            os.symlink(PROGRAM, pathlib.Path(folder) / "radius-packet")
            lines = run("build", "--help").text.split("Example")[1].splitlines()[2:5]
            environment = dict(os.environ, PATH=f"{folder}:{os.environ['PATH']}")
            completed = subprocess.run(["sh", "-c", "\n".join(lines)], cwd=folder, env=environment,
                                       capture_output=True, check=True)
            self.assertIn(b'\nUser-Name = "alice"\nUser-Password = "wonderland"\n',
                          completed.stdout)

    def test_wrong_usage(self):
        for arguments, fault in (
                (("-c", "hunter2"), "-c: a code is a number from 0 to 255, or a name"),
                (("-c", "256"), "-c: a code is a number from 0 to 255, or a name"),
                (("-i", "256"), "-i: an identifier is a number from 0 to 255"),
                (("-i", "hunter2"), "-i: an identifier is a number from 0 to 255"),
                (("-x",), "there is an option or argument that was not expected"),
                (("one", "two"), "there is an option or argument that was not expected")):
            with self.subTest(arguments):
                result = build("1, id 1", *arguments)
                self.assertEqual((result.status, result.text, result.errors),
                                 (64, "", f"radius-packet: {fault}\n{HINT}"))

    def test_secret_is_needed_and_never_shown(self):
        result = run("build", stdin="1, id 1")
        self.assertEqual((result.status, result.text), (64, ""))
        self.assertIn("no shared secret", result.errors)
        result = build("1, id 1\nUser-Password = \"x\"", secret="very-secret-words")
        self.assertNotIn("very-secret-words", result.text + result.errors)

    def test_standard_input_gives_text_or_secret(self):
        result = build("1, id 1", "-s", "-")
        self.assertEqual((result.status, result.errors), (
            64, "radius-packet: standard input (-) cannot give both the secret and the text\n"))

    def test_input_that_cannot_be_read(self):
        result = build("", "/nonexistent")
        self.assertEqual((result.status, result.errors), (
            66, "radius-packet: cannot read /nonexistent: No such file or directory\n"))
        for arguments in (("",), ("-s", "")):
            result = build("1, id 1", *arguments)
            self.assertEqual((result.status, result.text, result.errors),
                             (66, "", "radius-packet: cannot read a file: its name is empty\n"))
        for text in ("", "\n\n", "# nothing"):
            result = build(text)
            self.assertEqual((result.status, result.errors),
                             (66, "radius-packet: no packets in the input\n"))

    def test_dictionary_that_does_not_load(self):
        self.assertEqual(build("1, id 1", "-d", "/nonexistent").status, 3)
        result = build("1, id 1", "-d", "")
        self.assertEqual((result.status, result.text, result.errors), (
            3, "", "radius-packet: the dictionary does not load: its name is empty\n"))

    def test_dictionary_of_the_option_is_used(self):
        with tempfile.TemporaryDirectory() as folder:
            top = pathlib.Path(folder) / "dictionary"
            top.write_text("$INCLUDE dictionary.own\n")
            (pathlib.Path(folder) / "dictionary.own").write_text(
                "ATTRIBUTE Own-Tagged 200 octets has_tag,encrypt=2\n"
                "ATTRIBUTE Own-Date 201 date has_tag\n"
                "ATTRIBUTE Own-Prefix 202 ipv6prefix encrypt=1\n")
            text = "ACCESS_ACCEPT, id 1\nOwn-Tagged:7 = 0x0102\nOwn-Tagged:8 = 0x\n"
            packets = built(self, text, "-d", top, *A_OPTION)
            self.assertEqual(decoded_lines(self, packets[0].hex(), "-d", top, *A_OPTION),
                             text.splitlines()[1:])
            for line, fault in (
                    ("Own-Date:1 = 5", "a tagged date cannot be written: Attr-201 = 0x... can"),
                    ("Own-Prefix = 2001:db8::", "the value is no IPv6 prefix: there is no / with "
                                                "the prefix length")):
                result = build("1, id 1\n" + line, "-d", top)
                self.assertEqual((result.status, result.errors), (
                    65, f"radius-packet: -: line 2: {line[:line.find(' =')].split(':')[0]}: "
                        f"{fault}\n"))

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            completed = subprocess.run([PROGRAM, "build", "--secret", "a"], stdout=full,
                                       input=b"1, id 1", stderr=subprocess.PIPE)
        self.assertEqual((completed.returncode, completed.stderr), (
            74, b"radius-packet: cannot write to standard output: No space left on device\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
