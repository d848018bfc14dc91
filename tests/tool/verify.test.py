"""`radius-packet verify` as a script sees it: lines, JSON, exit status, whatever the input.

    verify.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the golden packets and the vectors.
"""

import hmac
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import unittest

from golden_files import golden_packets
from program import PROGRAM, run
from signed_packets import (REQUEST_AUTHENTICATOR, REQUEST_CODES, SECRET, attribute, packet,
                            signed_request)

DATA = pathlib.Path(sys.argv[2])
KEYS = ["schema", "kind", "source", "index", "check", "verdict", "reason", "offset", "length", "rfc"]
CHECKS = [
    "structure", "authenticator", "Message-Authenticator present", "Message-Authenticator first",
    "Message-Authenticator unique", "Message-Authenticator valid", "salts unique",
    "first bit of salts", "attributes allowed", "attributes required",
]
A_OPTION = ("-a", REQUEST_AUTHENTICATOR.hex())
ACCESS_TABLES = ("RFC 2865 section 5.44, RFC 2868 section 4, RFC 2869 section 5.19, "
                 "RFC 3162 section 3")
SIGNATURE = attribute(80, bytes(16))
NAS = attribute(4, bytes([192, 0, 2, 1]))
PASSWORD = attribute(2, bytes(16))


def verify(*arguments, stdin=b"", secret=SECRET, **options):
    """Verifies with a secret in the variable."""
    return run("verify", *arguments, stdin=stdin, variable=secret, **options)


def answer(code, *attributes, before=b"", request_authenticator=REQUEST_AUTHENTICATOR):
    """A response with a Message-Authenticator, which stands behind `before`."""
    behind = b"".join(attributes)
    length = 20 + len(before) + len(SIGNATURE) + len(behind)
    head = bytes([code, 7]) + length.to_bytes(2, "big") + request_authenticator
    digest = hmac.digest(SECRET.encode(), head + before + SIGNATURE + behind, "md5")
    return packet(code, before, attribute(80, digest), behind,
                  request_authenticator=request_authenticator)


GOOD_REQUEST = signed_request(attribute(1, b"alice"), PASSWORD, NAS)
GOOD_ANSWER = answer(2, attribute(1, b"alice"))
UNPROTECTED_ANSWER = packet(2, attribute(1, b"alice"))


def lines_of(place, *lines):
    """The lines of a packet, given as check, then verdict and what follows."""
    width = max(len(check) for check, _ in lines)
    return "".join(f"{place}: {check:>{width}}: {rest}\n" for check, rest in lines)


class Text(unittest.TestCase):
    maxDiff = None

    def test_of_an_exchange_that_is_good(self):
        response = answer(2, attribute(1, b"alice"), request_authenticator=GOOD_REQUEST[4:20])
        result = verify(stdin=f"{GOOD_REQUEST.hex()}\n\n{response.hex()}")
        no_salt = "pass: there is no salt (RFC 2868 section 3.5)"
        paired = "pass: paired with packet 1 of -"
        request_lines = lines_of(
            "packet 1 of -",
            ("structure", "pass: 4 attributes (RFC 2865 section 5)"),
            ("authenticator", "cannot tell: it is random in this code (RFC 2865 section 3)"),
            ("Message-Authenticator present", "pass (RFC 3579 section 3.2)"),
            ("Message-Authenticator first", "pass: its place does not matter in this code"),
            ("Message-Authenticator unique", "pass (RFC 2869 section 5.19)"),
            ("Message-Authenticator valid", "pass (RFC 3579 section 3.2)"),
            ("salts unique", no_salt),
            ("first bit of salts", no_salt),
            ("attributes allowed", f"pass ({ACCESS_TABLES})"),
            ("attributes required",
             "pass (RFC 2865 section 4.1 and RFC 3162 section 2.1, RFC 2865 section 4.1)"))
        answer_lines = lines_of(
            "packet 2 of -",
            ("structure", "pass: 2 attributes (RFC 2865 section 5)"),
            ("authenticator", f"{paired} (RFC 2865 section 3)"),
            ("Message-Authenticator present", "pass (RFC 3579 section 3.2)"),
            ("Message-Authenticator first", "pass"),
            ("Message-Authenticator unique", "pass (RFC 2869 section 5.19)"),
            ("Message-Authenticator valid", f"{paired} (RFC 3579 section 3.2)"),
            ("salts unique", no_salt),
            ("first bit of salts", no_salt),
            ("attributes allowed", f"pass ({ACCESS_TABLES})"),
            ("attributes required", "pass: this code requires none"))
        self.assertEqual(result.text, f"{request_lines}\n{answer_lines}")
        self.assertEqual((result.status, result.errors), (0, ""))

    def test_of_an_answer_in_which_everything_fails(self):
        salted = attribute(69, b"\1\0\1" + bytes(16))
        bad = packet(2, salted, salted, SIGNATURE, SIGNATURE, PASSWORD, attribute(4, b"\1"))
        bad = bad[:4] + bytes(16) + bad[20:]
        result = verify(*A_OPTION, stdin=bad.hex())
        self.assertEqual(result.text, lines_of(
            "packet 1 of -",
            ("structure", "fail: invalidAttrLength: Attribute: 4, VendorId: 0, VendorAttrId: 0, "
                          "Data Type: Ipaddr, Invalid length: 1 (offset 116, RFC 2865 section 5)"),
            ("authenticator", "fail: it is not that of this packet, secret and Request "
                              "Authenticator (offset 4, RFC 2865 section 3)"),
            ("Message-Authenticator present", "pass (RFC 3579 section 3.2)"),
            ("Message-Authenticator first",
             "fail: a client that does not insist on one can be given a forged answer "
             "(CVE-2024-3596) unless TLS or IPsec protects it (offset 62)"),
            ("Message-Authenticator unique", "fail: there are 2 (offset 80, RFC 2869 section 5.19)"),
            ("Message-Authenticator valid", "cannot tell: there are 2 (RFC 3579 section 3.2)"),
            ("salts unique", "fail: Tunnel-Password has the salt 0001, as has Tunnel-Password at "
                             "offset 20 (offset 41, RFC 2868 section 3.5)"),
            ("first bit of salts", "fail: Tunnel-Password has the salt 0001, whose first bit is "
                                   "not set (offset 20, RFC 2868 section 3.5)"),
            ("first bit of salts", "fail: Tunnel-Password has the salt 0001, whose first bit is "
                                   "not set (offset 41, RFC 2868 section 3.5)"),
            ("attributes allowed", "fail: User-Password has no place in this code (offset 98, "
                                   "RFC 2865 section 5.44)"),
            ("attributes allowed", "fail: NAS-IP-Address has no place in this code (offset 116, "
                                   "RFC 2865 section 5.44)"),
            ("attributes required", "pass: this code requires none")))
        self.assertEqual(result.errors, "radius-packet: packet 1 of - refused: invalidPktAuth: "
                                        "Packet's authenticator field is invalid\n")
        self.assertEqual(result.status, 1)

    def test_can_be_searched(self):
        text = verify(*A_OPTION, stdin=UNPROTECTED_ANSWER.hex()).text
        self.assertEqual([line for line in text.splitlines() if ": fail" in line],
                         ["packet 1 of -: Message-Authenticator present: fail: without one, anybody "
                          "on the path can forge this answer (CVE-2024-3596) unless TLS or IPsec "
                          "protects it"])
        self.assertIn(" authenticator: pass", text)


class Json(unittest.TestCase):
    def test_has_an_object_for_each_check(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "answer.bin"
            path.write_bytes(UNPROTECTED_ANSWER)
            result = verify("--json", *A_OPTION, path)
        self.assertEqual([list(entry) for entry in result.objects], [KEYS] * len(CHECKS))
        self.assertEqual([entry["check"] for entry in result.objects], CHECKS)
        common = {"schema": 1, "kind": "check", "source": str(path), "index": 1}
        self.assertEqual(result.objects[2], {
            **common, "check": "Message-Authenticator present", "verdict": "fail",
            "reason": "without one, anybody on the path can forge this answer (CVE-2024-3596) "
                      "unless TLS or IPsec protects it",
            "offset": None, "length": None, "rfc": None})
        self.assertEqual(result.objects[0], {
            **common, "check": "structure", "verdict": "pass", "reason": "1 attribute",
            "offset": None, "length": None, "rfc": "RFC 2865 section 5"})
        self.assertEqual(result.status, 1)

    def test_says_where_a_fault_is(self):
        result = verify("--json", *A_OPTION, stdin=packet(2, PASSWORD).hex())
        (allowed,) = [entry for entry in result.objects if entry["check"] == "attributes allowed"]
        self.assertEqual(allowed, {
            "schema": 1, "kind": "check", "source": "-", "index": 1, "check": "attributes allowed",
            "verdict": "fail", "reason": "User-Password has no place in this code", "offset": 20,
            "length": 18, "rfc": "RFC 2865 section 5.44"})

    def test_says_the_same_as_the_text(self):
        stdin = "\n\n".join(one.hex() for one in (GOOD_REQUEST, UNPROTECTED_ANSWER, b"\1\2"))
        objects, text = (verify(*flags, stdin=stdin) for flags in (["--json"], []))
        lines = []
        for entry in objects.objects:
            place = [] if entry["offset"] is None else [f"offset {entry['offset']}"]
            place += [entry["rfc"]] if entry["rfc"] else []
            lines.append(f"packet {entry['index']} of -: {entry['check']:>29}: {entry['verdict']}"
                         + (f": {entry['reason']}" if entry["reason"] else "")
                         + (f" ({', '.join(place)})" if place else ""))
        self.assertEqual([line for line in text.text.splitlines() if line], lines)
        self.assertEqual((objects.status, objects.errors), (text.status, text.errors))


class ExitStatus(unittest.TestCase):
    def status(self, *packets, options=A_OPTION, **settings):
        return verify(*options, stdin="\n\n".join(one.hex() for one in packets), **settings).status

    def test_is_0_when_no_check_fails(self):
        self.assertEqual(self.status(GOOD_REQUEST, GOOD_ANSWER), 0)
        self.assertEqual(self.status(packet(4, attribute(40, bytes(4)), attribute(44, b"1"), NAS)), 0)
        self.assertEqual(self.status(packet(43)), 0)

    def test_is_1_when_a_check_of_authenticity_fails_or_cannot_be_made(self):
        self.assertEqual(self.status(GOOD_ANSWER, secret="another"), 1)
        self.assertEqual(self.status(GOOD_REQUEST[:-1] + b"\0"), 1)
        self.assertEqual(self.status(GOOD_ANSWER, options=()), 1)

    def test_is_1_when_a_check_fails_that_decode_does_not_make(self):
        accounting = packet(4, attribute(40, bytes(4)), attribute(44, b"1"), NAS, SIGNATURE)
        for name, one in (("no Message-Authenticator", UNPROTECTED_ANSWER),
                          ("Message-Authenticator behind", answer(2, before=attribute(1, b"alice"))),
                          ("forbidden attribute", answer(3, attribute(1, b"alice"))),
                          ("missing attribute", signed_request(PASSWORD)),
                          ("salt", answer(2, attribute(69, b"\1\0\1" + bytes(16)))),
                          ("Message-Authenticator of accounting", accounting)):
            with self.subTest(name):
                self.assertEqual(run("decode", *A_OPTION, stdin=one.hex(), variable=SECRET).status, 0)
                self.assertEqual(self.status(one), 1)

    def test_is_2_when_a_packet_is_refused_for_another_fault(self):
        broken = answer(2, attribute(4, b"\1"))
        self.assertEqual(self.status(broken), 2)
        self.assertEqual(self.status(UNPROTECTED_ANSWER, broken, UNPROTECTED_ANSWER), 2)
        self.assertEqual(self.status(b"\1"), 2)

    def test_is_3_without_a_dictionary(self):
        result = verify("-d", "/nowhere", stdin=GOOD_REQUEST.hex())
        self.assertEqual((result.status, result.text), (3, ""))

    def test_is_64_for_wrong_usage(self):
        for arguments in (["--bogus"], ["--summary"], ["-f", "pcap"], ["-a", "00"], ["--json=x"],
                          ["--legacy"], ["-s", "x", "--secret", "y"], ["-", "-"]):
            with self.subTest(arguments):
                result = verify(*arguments, stdin=GOOD_REQUEST.hex())
                self.assertEqual((result.status, result.text), (64, ""))
                self.assertTrue(result.errors.startswith("radius-packet: "))
        result = run("verify", stdin=GOOD_REQUEST.hex())
        self.assertEqual((result.status, result.text), (64, ""))
        self.assertEqual(result.errors,
                         "radius-packet: no shared secret: give it in a file with -s FILE, as "
                         "--secret TEXT, or in the environment variable RADIUS_PACKET_SECRET\n")

    def test_is_66_without_packets(self):
        for arguments, stdin in (([], ""), (["-f", "hex"], "xyz"), (["/nowhere/packet"], "")):
            with self.subTest(arguments):
                result = verify(*arguments, stdin=stdin)
                self.assertEqual((result.status, result.text), (66, ""))

    def test_is_74_when_output_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            completed = subprocess.run([PROGRAM, "verify", "--secret", SECRET], stdout=full,
                                       input=GOOD_REQUEST.hex().encode(), stderr=subprocess.PIPE,
                                       timeout=120)
        self.assertEqual(completed.returncode, 74)

    def test_a_closed_pipe_ends_it(self):
        many = "\n\n".join([GOOD_REQUEST.hex()] * 2000)
        with subprocess.Popen([PROGRAM, "verify", "--secret", SECRET], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
            process.stdout.close()
            process.stdin.write(many.encode())
            process.stdin.close()
            self.assertIn(process.wait(timeout=120), (-signal.SIGPIPE, 74))


class Help(unittest.TestCase):
    def test_has_examples(self):
        result = run("verify", "--help")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertIn("\nExamples:\n  radius-packet verify -s secret.txt request.hex answer.hex\n",
                      result.text)
        for check in CHECKS:
            self.assertIn(check, result.text)


# ---- Agreement with decode, on good input and on garbage ----


def random_attribute(generator):
    kind = generator.randrange(6)
    if kind == 0:
        return generator.randbytes(generator.randrange(1, 4))
    if kind == 1:
        return attribute(80, generator.randbytes(generator.choice((16, 16, 16, 3))))
    if kind == 2:
        return attribute(79, generator.randbytes(generator.randrange(20)))
    if kind == 3:
        return attribute(26, generator.choice((9, 311)).to_bytes(4, "big")
                         + attribute(generator.randrange(30), generator.randbytes(20)))
    return attribute(generator.randrange(256), generator.randbytes(generator.randrange(24)))


def random_packet(generator):
    """Anything from noise to a packet that is signed but odd."""
    if generator.randrange(3) == 0:
        return generator.randbytes(generator.randrange(1, 80))
    attributes = [random_attribute(generator) for _ in range(generator.randrange(6))]
    code = generator.choice((*REQUEST_CODES, 2, 3, 5, 11, 41, 44, generator.randrange(256)))
    if code == 1 and generator.randrange(2):
        return signed_request(*attributes)
    made = packet(code, *attributes)
    return made if generator.randrange(4) else generator.randbytes(1) + made[1:]


class Agreement(unittest.TestCase):
    def check(self, packets, options):
        stdin = "\n\n".join(one.hex() for one in packets)
        decoded = run("decode", "--json", *options, stdin=stdin, variable=SECRET)
        verified = verify("--json", *options, stdin=stdin)
        self.assertEqual(verified.errors, decoded.errors)
        self.assertIn(verified.status, (decoded.status, max(decoded.status, 1)))
        results = {}
        for entry in verified.objects:
            self.assertEqual(list(entry), KEYS)
            self.assertIn(entry["verdict"], ("pass", "fail", "cannot tell"))
            results.setdefault(entry["index"], []).append(entry)
        self.assertEqual(sorted(results), list(range(1, len(packets) + 1)))
        for report in decoded.objects:
            with self.subTest(packets[report["index"] - 1].hex()):
                self.check_packet(report, packets[report["index"] - 1], results[report["index"]])

    def check_packet(self, report, made, entries):
        names = [entry["check"] for entry in entries]
        self.assertEqual(list(dict.fromkeys(names)), CHECKS)
        verdicts = {entry["check"]: entry["verdict"] for entry in entries[:6]}
        for entry in entries:
            if entry["offset"] is not None:
                self.assertLessEqual(entry["offset"] + entry["length"], max(len(made), 4))
        error = report["error"]
        if error == "success":
            self.assertEqual(verdicts["structure"], "pass")
            self.assertNotIn("fail", (verdicts["authenticator"],
                                      verdicts["Message-Authenticator unique"]))
            if report["code"] not in (4, 5):
                self.assertNotEqual(verdicts["Message-Authenticator valid"], "fail")
        elif error is None:
            self.assertEqual(verdicts["authenticator"], "cannot tell")
        else:
            self.assertEqual(verdicts[{
                "invalidPktAuth": "authenticator",
                "invalidMsgAuth": "Message-Authenticator unique"
                                  if verdicts["Message-Authenticator unique"] == "fail"
                                  else "Message-Authenticator valid",
                "missingRequiredMsgAuth": "Message-Authenticator present",
                "unsupportedPktType": "Message-Authenticator unique"
                                      if verdicts["Message-Authenticator unique"] == "fail"
                                      else "Message-Authenticator valid",
            }.get(error, "structure")], "fail")

    def test_on_garbage(self):
        generator = random.Random(2865)
        for options in ((), A_OPTION):
            for _ in range(2):
                self.check([random_packet(generator) for _ in range(1000)], options)

    def test_on_every_cut_of_a_packet(self):
        self.check([GOOD_ANSWER[:size] for size in range(1, len(GOOD_ANSWER))], A_OPTION)

    def test_on_golden_packets(self):
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                with self.subTest(golden.path.name):
                    result = run("verify", "--json", *golden.options(folder), golden.path)
                    decoded = run("decode", *golden.options(folder), golden.path)
                    self.assertEqual(result.errors, decoded.errors)
                    self.assertIn(result.status, (decoded.status, max(decoded.status, 1)))
                    checks = [entry["check"] for entry in result.objects]
                    self.assertEqual(list(dict.fromkeys(checks)), CHECKS)
                    if golden.result == "success":
                        self.assertEqual(result.objects[0]["verdict"], "pass")

    def test_random_bytes_of_files_crash_nothing(self):
        generator = random.Random(5997)
        with tempfile.TemporaryDirectory() as folder:
            paths = []
            for index in range(300):
                paths.append(pathlib.Path(folder) / str(index))
                paths[-1].write_bytes(generator.randbytes(generator.randrange(1, 5000)))
            result = verify("--json", "-f", "binary", *paths)
        self.assertEqual(result.status, 2)
        self.assertEqual(len({entry["source"] for entry in result.objects}), 300)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
