"""`radius-packet explain` as a script sees it: explanations, JSON, exit status.

    explain.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the golden packets and the outputs.
"""

import pathlib
import random
import sys
import tempfile
import unittest

from expected_outputs import ExpectedOutputs
from golden_files import golden_count, golden_packets
from program import run
from signed_packets import (REQUEST_AUTHENTICATOR, SECRET, attribute, hidden, packet,
                            signed_request)

DATA = pathlib.Path(sys.argv[2])
PACKET_KEYS = ["schema", "kind", "source", "index", "time", "from", "to", "code", "codeName",
               "id", "length", "authenticator", "pairedWith", "error", "reason", "fault",
               "finding", "ruledOut",
               "others"]
FAULT_KEYS = ["offset", "length", "path", "hex", "found", "expected", "section"]
OTHER_KEYS = ["offset", "length", "path", "hex", "error", "found", "expected", "section"]
ZERO_FINDING = ("The signer put zeros in the place of the Request Authenticator: the authenticator of "
                "the request that it answers belongs there.")
MISSING = "no Request Authenticator: give that of the request which this packet answers with -a HEX"


def explain(*arguments, stdin=b"", secret=SECRET, **options):
    return run("explain", *arguments, stdin=stdin, variable=secret, **options)


class Outputs(unittest.TestCase):
    def test_are_the_expected_ones(self):
        outputs = ExpectedOutputs(DATA, "explain", "explain")
        seen = set()
        with tempfile.TemporaryDirectory() as folder:
            for golden, expected in outputs.cases():
                with self.subTest(golden.path.name):
                    result = outputs.result(golden, *golden.options(folder))
                    self.assertEqual((result.text, result.errors), (expected, ""))
                    seen.add(golden.result)
        self.assertEqual(seen, {golden.result for golden in golden_packets(DATA)})
        self.assertEqual(len(seen), 9)

    def test_of_a_response_without_its_request(self):
        result = explain(stdin=packet(2).hex())
        digits = packet(2).hex(" ")
        self.assertEqual(result.status, 1)
        self.assertEqual(result.errors, "")
        lines = result.text.splitlines()
        self.assertEqual(lines[:3], ["packet 1 of - cannot be checked", f"reason     {MISSING}", ""])
        self.assertTrue(lines[3].startswith(f"  0000  {digits[:23]}  {digits[24:47]}  "), lines[3])
        self.assertEqual(lines[4], "                    ^^ ^^ ^^ ^^  ^^ ^^ ^^ ^^ ^^ ^^ ^^ ^^")
        self.assertEqual(lines[7:], [
            "",
            "where      offset 4 (0x04), 16 bytes: Authenticator",
            "found      a response, and no request that it answers in front of it",
            "expected   its request in the input, or the authenticator of that with -a",
            "section    RFC 2865 section 3"])

    def test_of_an_exchange_name_the_request(self):
        request = packet(1, attribute(1, b"alice"))
        good = packet(2, request_authenticator=request[4:20])
        bad = packet(2, request_authenticator=bytes(range(16, 32)))
        result = explain(stdin="\n\n".join(p.hex() for p in (request, good, bad)))
        lines = result.text.splitlines()
        self.assertEqual(lines[:4], ["packet 1 of - is accepted", "packet 2 of - is accepted", "",
                                     "packet 3 of - is refused: invalidPktAuth"])
        self.assertIn("answers    packet 1 of -", lines)
        self.assertEqual(result.status, 1)

    def test_name_the_cause_of_a_wrong_digest(self):
        request = packet(1, attribute(1, b"alice"))
        bad = packet(2, request_authenticator=bytes(16))
        result = explain(stdin=f"{request.hex()}\n\n{bad.hex()}")
        finding = result.text.partition("finding    ")[2].split()
        self.assertEqual(" ".join(finding), ZERO_FINDING)
        (_, explanation) = explain("--json", stdin=f"{request.hex()}\n\n{bad.hex()}").objects
        self.assertEqual(explanation["finding"], ZERO_FINDING)
        self.assertIn("an empty secret", explanation["ruledOut"])

    def test_try_the_secrets_of_other_clients(self):
        with tempfile.TemporaryDirectory() as folder:
            clients = pathlib.Path(folder) / "clients"
            clients.write_text(f"192.0.2.0/24 {SECRET}\n")
            result = explain("--secrets", clients, "--json", stdin=packet(4, attribute(1, b"a")).hex(),
                             secret="another")
        self.assertIn("192.0.2.0/24", result.objects[0]["finding"])
        self.assertNotIn(SECRET, result.text)

    def test_of_a_long_packet_show_the_lines_around_the_fault(self):
        long = packet(1, *[attribute(18, b"x" * 253)] * 8, attribute(5, b"\1\2\3"),
                      *[attribute(18, b"x" * 253)] * 6)
        result = explain(stdin=long.hex())
        self.assertEqual(result.text, """\
packet 1 of - is refused: invalidAttrLength
reason     Attribute: 5, VendorId: 0, VendorAttrId: 0, Data Type: Integer, Invalid length: 3

  ....
  07e0  78 78 78 78 78 78 78 78  78 78 78 78 78 78 78 78  xxxxxxxxxxxxxxxx
  07f0  78 78 78 78 78 78 78 78  78 78 78 78 78 78 78 78  xxxxxxxxxxxxxxxx
  0800  78 78 78 78 78 78 78 78  78 78 78 78 05 05 01 02  xxxxxxxxxxxx....
                                                ^^
  0810  03 12 ff 78 78 78 78 78  78 78 78 78 78 78 78 78  ...xxxxxxxxxxxxx
  0820  78 78 78 78 78 78 78 78  78 78 78 78 78 78 78 78  xxxxxxxxxxxxxxxx
  ....

where      offset 2061 (0x80d), 1 byte: attribute 9: NAS-Port / Length
found      Length 5: 3 value bytes
expected   Length 6: integer has 4 value bytes
section    RFC 8044 section 3.1
""")

    def test_name_the_faults_behind_the_first(self):
        broken = packet(1, attribute(5, b"\1"), attribute(4, b"\1"), attribute(79, b"\2"))
        result = explain(stdin=broken.hex())
        self.assertEqual(result.text.splitlines()[-2:], [
            "also       invalidAttrLength at offset 24 (0x18): attribute 2: NAS-IP-Address / Length",
            "also       missingRequiredMsgAuth at offset 26 (0x1a): attribute 3: EAP-Message"])


class Golden(unittest.TestCase):
    def test_packets_are_explained_as_decode_judges_them(self):
        goldens = golden_packets(DATA)
        self.assertEqual(len(goldens), golden_count(DATA))
        with tempfile.TemporaryDirectory() as folder:
            for golden in goldens:
                with self.subTest(golden.path.name):
                    options = golden.options(folder)
                    result = explain("--json", *options, golden.path)
                    decoded = run("decode", "--json", *options, golden.path)
                    self.assertEqual(result.status, decoded.status)
                    self.assertEqual(result.errors, "")
                    self.check(result.objects[0], decoded.objects[0])

    def check(self, report, decoded):
        self.assertEqual(list(report), PACKET_KEYS)
        for key in PACKET_KEYS:
            if key not in ("kind", "fault", "finding", "ruledOut", "others"):
                self.assertEqual(report[key], decoded[key])
        if report["error"] == "success":
            self.assertIsNone(report["fault"])
            self.assertEqual(report["others"], [])
        else:
            self.assertEqual(list(report["fault"]), FAULT_KEYS)
            self.assertRegex(report["fault"]["section"], r"^RFC \d{4} section \d+(\.\d+)?$")


class Secrets(unittest.TestCase):
    def test_are_not_shown(self):
        salted = attribute(69, b"\1" + hidden(b"\x0awonderland", b"\x80\1"))
        response = packet(2, salted, attribute(5, b"\1"))
        for arguments in ((), ("--json",)):
            result = explain("-a", REQUEST_AUTHENTICATOR.hex(), *arguments, stdin=response.hex())
            self.assertEqual(result.status, 2)
            self.assertNotIn("wonderland", result.text)
            self.assertNotIn(SECRET, result.text)

    def test_are_needed(self):
        result = explain(stdin=packet(1).hex(), secret=None)
        self.assertEqual((result.status, result.text), (64, ""))
        self.assertEqual(result.errors,
                         "radius-packet: no shared secret: give it in a file with -s FILE, as "
                         "--secret TEXT, or in the environment variable RADIUS_PACKET_SECRET\n")


class Robustness(unittest.TestCase):
    def setUp(self):
        source = random.Random(8)
        self.contents = []
        for number in range(3000):
            content = bytearray(source.randbytes(source.randrange(1, 150)))
            if number % 3 and len(content) >= 4:
                content[0] = source.choice([1, 2, 4, 11, 12, 40, 43])
                content[2:4] = len(content).to_bytes(2, "big")
            self.contents.append(bytes(content))
        self.text = "\n\n".join(content.hex() for content in self.contents)

    def test_json_is_valid_whatever_the_bytes(self):
        for given in ((), ("-a", REQUEST_AUTHENTICATOR.hex())):
            result = explain("--json", "-f", "hex", *given, stdin=self.text)
            self.assertEqual((result.status, result.errors), (2, ""))
            reports = result.objects
            self.assertEqual(len(reports), len(self.contents))
            for content, report in zip(self.contents, reports):
                self.check(content, report)

    def check(self, content, report):
        self.assertEqual(list(report), PACKET_KEYS)
        self.assertEqual((report["schema"], report["kind"]), (1, "explanation"))
        fault = report["fault"]
        self.assertEqual(fault is None, report["error"] == "success")
        if fault is not None:
            self.assertEqual(list(fault), FAULT_KEYS)
            self.assertEqual(fault["hex"],
                             content[fault["offset"]:fault["offset"] + fault["length"]].hex())
        for other in report["others"]:
            self.assertEqual(list(other), OTHER_KEYS)

    def test_nothing_drives_a_terminal(self):
        for arguments in ((), ("--json",)):
            output = explain("-f", "hex", *arguments, stdin=self.text).text
            self.assertEqual([c for c in output if ord(c) < 0x20 and c != "\n"], [])
            self.assertEqual([c for c in output if 0x7F <= ord(c) < 0xA0], [])

    def test_a_name_that_drives_a_terminal(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "x\n\x1b[2J"
            path.write_bytes(packet(1, b"\1"))
            for arguments in ((), ("--json",)):
                self.assertNotIn("\x1b", explain(*arguments, path).text)


class Usage(unittest.TestCase):
    def test_that_is_wrong(self):
        for arguments in (("--bogus",), ("--redact",), ("-a", "00"), ("-f", "pdf")):
            result = explain(*arguments, stdin=packet(1).hex())
            self.assertEqual((result.status, result.text), (64, ""))

    def test_files_that_cannot_be_read(self):
        result = explain("/missing")
        self.assertEqual((result.status, result.text), (66, ""))
        self.assertEqual(result.errors,
                         "radius-packet: cannot read /missing: No such file or directory\n")

    def test_input_without_packets(self):
        self.assertEqual(explain().status, 66)

    def test_hex_with_a_slip_is_told_why_it_is_taken_as_binary(self):
        result = explain(stdin=packet(1).hex() + "g")
        self.assertEqual(result.status, 2)
        self.assertEqual(result.errors, "radius-packet: - is taken as binary, for it is no hex "
                                        'text: line 1: "g" is no hex digit\n')

    def test_good_packets_are_one_line_each(self):
        two = signed_request().hex() + "\n\n" + packet(4).hex()
        result = explain(stdin=two)
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertEqual(result.text, "packet 1 of - is accepted\npacket 2 of - is accepted\n")

    def test_help_has_examples(self):
        result = explain("--help")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertIn("\nExamples:\n  radius-packet explain -s secret.txt packet.bin ", result.text)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
