"""`radius-packet inspect` as a script sees it: tables, JSON, exit status.

    inspect.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the golden packets and the outputs.
"""

import os
import pathlib
import pty
import random
import subprocess
import sys
import tempfile
import unittest

from expected_outputs import ExpectedOutputs
from golden_files import golden_count, golden_packets
from program import PROGRAM, VARIABLE, run
from signed_packets import (REQUEST_AUTHENTICATOR, SECRET, attribute, hidden, packet,
                            signed_request)

DATA = pathlib.Path(sys.argv[2])
PACKET_KEYS = ["schema", "kind", "source", "index", "time", "from", "to", "code", "codeName",
               "id", "length", "authenticator", "structure", "checks", "fields"]
CHECK_KEYS = ["error", "reason", "authenticator", "messageAuthenticator", "pairedWith"]
FIELD_KEYS = ["offset", "length", "path", "depth", "name", "hex", "meaning", "redacted", "fault"]
FAULT_KEYS = ["error", "found", "expected", "section"]
CHECK_FAILED = ("invalidPktAuth", "invalidMsgAuth", "missingRequiredMsgAuth")
NOT_STRUCTURAL = ("invalidPktAuth", "invalidMsgAuth")


def inspect(*arguments, stdin=b"", **options):
    return run("inspect", *arguments, stdin=stdin, **options)


def status_of(error):
    if error == "success":
        return 0
    return 1 if error is None or error in CHECK_FAILED else 2


class Outputs(unittest.TestCase):
    def test_are_the_expected_ones_without_a_secret(self):
        outputs = ExpectedOutputs(DATA, "inspect", "inspect")
        seen = set()
        for golden, expected in outputs.cases():
            with self.subTest(golden.path.name):
                result = outputs.result(golden)
                self.assertEqual(result.text, expected)
                self.assertEqual((result.status, result.errors), (status_of(golden.result), ""))
                seen.add(golden.result)
        self.assertEqual(seen, {"success", "invalidPktLength", "invalidAttrLength",
                                "invalidMsgAuth", "concatAttrNotConsecutive", "tagByteMissing",
                                "missingRequiredMsgAuth", "unsupportedPktType"})

    def test_are_the_expected_ones_with_a_secret(self):
        outputs = ExpectedOutputs(DATA, "inspect-with-secret", "inspect")
        self.assertEqual(len(outputs.files), 7)
        with tempfile.TemporaryDirectory() as folder:
            for golden, expected in outputs.cases():
                with self.subTest(golden.path.name):
                    result = outputs.result(golden, *golden.options(folder))
                    self.assertEqual(result.text, expected)
                    self.assertEqual((result.status, result.errors),
                                     (status_of(golden.result), ""))

    def test_have_no_long_lines(self):
        for path in (DATA / "outputs").rglob("*.txt"):
            for line in path.read_text().splitlines():
                self.assertLessEqual(len(line), 110, path.name)


class Golden(unittest.TestCase):
    def test_packets_are_judged_as_decode_judges_them(self):
        goldens = golden_packets(DATA)
        self.assertEqual(len(goldens), golden_count(DATA))
        with tempfile.TemporaryDirectory() as folder:
            for golden in goldens:
                with self.subTest(golden.path.name):
                    options = golden.options(folder)
                    result = inspect("--json", *options, golden.path)
                    (report,) = result.objects
                    (decoded,) = run("decode", "--json", *options, golden.path).objects
                    self.assertEqual(list(report), PACKET_KEYS)
                    self.assertEqual(list(report["checks"]), CHECK_KEYS)
                    for key in ("error", "reason", "pairedWith"):
                        self.assertEqual(report["checks"][key], decoded[key])
                    for key in ("source", "index", "code", "codeName", "id", "length",
                                "authenticator"):
                        self.assertEqual(report[key], decoded[key])
                    self.assertEqual(result.status, status_of(golden.result))
                    if golden.result not in NOT_STRUCTURAL:
                        self.assertEqual(report["structure"], golden.result)
                    self.check_attributes(report, decoded)

    def check_attributes(self, report, decoded):
        """Each attribute that decode shows has its field."""
        wholes = {(field["offset"], field["length"], field["path"].split(": ")[0])
                  for field in report["fields"]}
        for number, shown in enumerate(decoded["attributes"], 1):
            self.assertIn((shown["offset"], shown["length"], f"attribute {number}"), wholes)


class Secret(unittest.TestCase):
    password = packet(2, attribute(69, b"\1" + hidden(b"\x0awonderland", b"\x80\1")))
    options = ("-a", REQUEST_AUTHENTICATOR.hex())

    def value(self, *arguments, variable=SECRET):
        """Meaning and `redacted` of the hidden value."""
        (report,) = inspect("--json", *self.options, *arguments, stdin=self.password.hex(),
                            variable=variable).objects
        field = report["fields"][-1]
        self.assertEqual(field["path"], "attribute 1: Tunnel-Password / Value")
        self.assertEqual(field["hex"], self.password[25:].hex())
        return field["meaning"], field["redacted"]

    def test_reveals(self):
        self.assertEqual(self.value(), ('"wonderland"', False))

    def test_is_not_needed(self):
        self.assertEqual(self.value(variable=None), ("hidden (encrypt=2)", False))

    def test_that_is_wrong_reveals_nothing(self):
        self.assertEqual(self.value(variable="wrong"), ("hidden (encrypt=2)", False))

    def test_reveals_nothing_of_a_response_whose_request_is_not_known(self):
        result = inspect(stdin=self.password.hex(), variable=SECRET)
        self.assertIn("hidden (encrypt=2)", result.text)
        self.assertEqual(result.text.splitlines()[-1],
                         "decode     no Request Authenticator: give that of the request which this "
                         "packet answers with -a HEX")
        self.assertEqual(result.status, 1)

    def test_is_kept_back(self):
        self.assertEqual(self.value("--redact"), (None, True))
        text = inspect("--redact", *self.options, stdin=self.password.hex(), variable=SECRET).text
        self.assertIn("(redacted)", text)
        self.assertNotIn("wonderland", text)

    def test_is_kept_back_on_a_terminal_unless_it_is_to_be_shown(self):
        for arguments, shown in (((), False), (("--show-secrets",), True)):
            with self.subTest(arguments):
                self.assertEqual("wonderland" in self.on_a_terminal(*arguments), shown)

    def on_a_terminal(self, *arguments):
        with tempfile.NamedTemporaryFile() as file:
            file.write(self.password)
            file.flush()
            master, terminal = pty.openpty()
            subprocess.run([PROGRAM, "inspect", *self.options, *arguments, file.name], check=True,
                           stdout=terminal, env={**os.environ, VARIABLE: SECRET})
            os.close(terminal)
            text = b""
            try:
                while piece := os.read(master, 65536):
                    text += piece
            except OSError:
                pass  # the end of a terminal that nobody writes to any more
            os.close(master)
        return text.decode()

    def test_says_what_the_checks_say(self):
        request = signed_request(attribute(1, b"alice"))
        for content, lines in (
            (request, ["structure  good",
                       "checks     authenticator unchecked, Message-Authenticator verified",
                       "decode     success"]),
            (request[:-1] + bytes([request[-1] ^ 1]),
             ["structure  good", "checks     authenticator unchecked, Message-Authenticator wrong",
              "decode     invalidMsgAuth"]),
            (packet(4, attribute(80, bytes(16)), secret="other"),
             ["structure  good", "checks     authenticator wrong, Message-Authenticator unchecked",
              "decode     invalidPktAuth: Packet's authenticator field is invalid"]),
        ):
            with self.subTest(lines[-1]):
                result = inspect(stdin=content.hex(), variable=SECRET)
                self.assertEqual(result.text.splitlines()[-3:], lines)

    def test_pairs_responses_with_requests(self):
        request = packet(1, attribute(1, b"alice"))
        response = packet(2, request_authenticator=request[4:20])
        result = inspect(stdin=f"{request.hex()}\n\n{response.hex()}", variable=SECRET)
        self.assertEqual(result.text.splitlines()[-2:],
                         ["checks     authenticator verified, Message-Authenticator absent, paired "
                          "with packet 1 of -", "decode     success"])


class Packets(unittest.TestCase):
    def test_are_shown_one_behind_the_other(self):
        two = packet(1).hex() + "\n\n" + packet(1, b"\1").hex()
        result = inspect(stdin=two)
        tables = result.text.split("\n\n")
        self.assertEqual([table.splitlines()[0] for table in tables],
                         ["packet 1 of -: ACCESS_REQUEST, id 7",
                          "packet 2 of -: ACCESS_REQUEST, id 7"])
        self.assertEqual(result.status, 2)
        self.assertEqual([report["index"] for report in inspect("--json", stdin=two).objects],
                         [1, 2])

    def test_of_several_files(self):
        with tempfile.TemporaryDirectory() as folder:
            paths = [pathlib.Path(folder) / name for name in ("one", "two\n\x1b[2J")]
            for path in paths:
                path.write_bytes(packet(1))
            result = inspect(*paths)
            self.assertIn("\\n\\x1b[2J: ACCESS_REQUEST", result.text)
            self.assertNotIn("\x1b", result.text)

    def test_that_are_worst_decide_the_exit_status(self):
        good, two = packet(1), packet(1, attribute(80, bytes(16)), attribute(80, bytes(16)))
        eap, broken = packet(1, attribute(79, b"\2")), packet(1, b"\1")
        for contents, status in (([good], 0), ([good, eap], 1), ([two, good], 1),
                                 ([broken, eap], 2), ([packet(2)], 0)):
            with self.subTest(status):
                self.assertEqual(inspect(stdin="\n\n".join(p.hex() for p in contents)).status,
                                 status)


class Robustness(unittest.TestCase):
    def random_packets(self):
        source = random.Random(6)
        for number in range(3000):
            size = source.randrange(1, 150)
            content = bytearray(source.randbytes(size))
            if number % 3 and size >= 4:
                content[0] = source.choice([1, 2, 4, 11, 12, 40, 43])
                content[2:4] = size.to_bytes(2, "big")
            yield bytes(content)

    def test_json_is_valid_whatever_the_bytes(self):
        contents = list(self.random_packets())
        text = "\n\n".join(content.hex() for content in contents)
        for variable in (None, SECRET):
            result = inspect("--json", "-f", "hex", stdin=text, variable=variable)
            self.assertEqual(result.errors, "")
            reports = result.objects
            self.assertEqual(len(reports), len(contents))
            for content, report in zip(contents, reports):
                self.check(content, report)

    def check(self, content, report):
        self.assertEqual(list(report), PACKET_KEYS)
        self.assertEqual((report["schema"], report["kind"]), (1, "anatomy"))
        faults = 0
        for field in report["fields"]:
            self.assertEqual(list(field), FIELD_KEYS)
            end = field["offset"] + field["length"]
            self.assertEqual(field["hex"], content[field["offset"]:end].hex())
            if field["fault"] is not None:
                self.assertEqual(list(field["fault"]), FAULT_KEYS)
                faults += 1
        self.assertEqual(report["structure"] == "success", faults == 0)

    def test_nothing_drives_a_terminal(self):
        text = "\n\n".join(content.hex() for content in self.random_packets())
        for arguments in ((), ("--json",)):
            output = inspect("-f", "hex", *arguments, stdin=text, variable=SECRET).text
            self.assertEqual([c for c in output if ord(c) < 0x20 and c != "\n"], [])
            self.assertEqual([c for c in output if 0x7F <= ord(c) < 0xA0], [])

    def test_a_packet_of_nothing_but_zeros(self):
        content = bytes([1, 7, 0x10, 0]) + bytes(4092)
        result = inspect("-f", "binary", stdin=content)
        self.assertEqual(result.status, 2)
        self.assertIn("... 3818 more", result.text)

    def test_many_sub_attributes(self):
        content = packet(1, attribute(26, bytes([0, 0, 1, 55]) + b"\7\2" * 124))
        (report,) = inspect("--json", stdin=content.hex()).objects
        self.assertEqual(sum(field["name"] == "Vendor-Type" for field in report["fields"]), 124)


class Usage(unittest.TestCase):
    def test_that_is_wrong(self):
        for arguments, fault in (
            (("--bogus",), "there is an option or argument that was not expected"),
            (("-f", "pdf"), None),
            (("--redact", "--show-secrets"), None),
            (("-s", "a", "--secret", "b"), "-s excludes --secret"),
        ):
            with self.subTest(arguments):
                result = inspect(*arguments, stdin=packet(1).hex())
                self.assertEqual((result.status, result.text), (64, ""))
                if fault is not None:
                    self.assertEqual(result.errors.splitlines()[0], f"radius-packet: {fault}")

    def test_standard_input_cannot_give_secret_and_packets(self):
        result = inspect("-s", "-", stdin="abc")
        self.assertEqual(result.status, 64)
        self.assertEqual(result.errors, "radius-packet: standard input (-) cannot give both the "
                                        "secret and the packets\n")

    def test_files_that_cannot_be_read(self):
        for arguments in (("/missing",), ("-s", "/missing", "-")):
            result = inspect(*arguments, stdin=packet(1).hex())
            self.assertEqual((result.status, result.text), (66, ""))
            self.assertEqual(result.errors,
                             "radius-packet: cannot read /missing: No such file or directory\n")

    def test_input_without_packets(self):
        result = inspect()
        self.assertEqual((result.status, result.text), (66, ""))
        self.assertEqual(result.errors, "radius-packet: no packets in the input\n")

    def test_a_dictionary_that_does_not_load(self):
        self.assertEqual(inspect("-d", "/missing", stdin=packet(1).hex()).status, 3)

    def test_hex_with_a_slip_is_told_why_it_is_taken_as_binary(self):
        result = inspect(stdin=packet(1).hex() + "g")
        self.assertEqual(result.status, 2)
        self.assertEqual(result.errors, "radius-packet: - is taken as binary, for it is no hex "
                                        'text: line 1: "g" is no hex digit\n')

    def test_help_has_examples(self):
        result = inspect("--help")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertIn("\nExamples:\n  radius-packet inspect packet.bin ", result.text)


class Secrets(unittest.TestCase):
    def test_of_other_clients_give_no_verdict_on_a_packet(self):
        """As `decode` does: a packet whose client has no secret is not good."""
        capture = DATA / "captures" / "synthetic" / "two-clients.pcap"
        with tempfile.TemporaryDirectory() as folder:
            clients = pathlib.Path(folder) / "clients"
            clients.write_text("203.0.113.9 another\n")
            results = [run(command, "--json", "--secrets", clients, capture)
                       for command in ("decode", "inspect")]
        for result in results:
            self.assertEqual(result.status, 1)
        decoded, inspected = (result.objects for result in results)
        self.assertEqual(inspected[-1], decoded[-1])
        self.assertEqual(inspected[-1]["refused"], {"noSharedSecret": len(inspected) - 1})
        for one, other in zip(decoded[:-1], inspected[:-1]):
            self.assertEqual(other["checks"]["reason"], one["reason"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
