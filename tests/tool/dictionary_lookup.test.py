"""`radius-packet dictionary show` and `dictionary list` as a script sees them.

    dictionary_lookup.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the test data.
"""

import json
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

from program import PROGRAM, run

STANDARD = """ATTRIBUTE User-Name 1 string
ATTRIBUTE User-Password 2 string encrypt=1
ATTRIBUTE Vendor-Specific 26 octets
# Tunnels
ATTRIBUTE Tunnel-Password 69 string has_tag,encrypt=2
ATTRIBUTE EAP-Message 79 octets concat
"""
ACME = """VENDOR Acme 79
BEGIN-VENDOR Acme
ATTRIBUTE Acme-Role 2 word
ATTRIBUTE User-Name 1 string
END-VENDOR Acme
"""
BASE = "VENDOR Base 9\nBEGIN-VENDOR Base\nATTRIBUTE acme 255 date\nEND-VENDOR Base\n"


class LookupTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name, content in (("rfc", STANDARD), ("acme", ACME), ("base", BASE),
                              ("dictionary", "$INCLUDE rfc\n$INCLUDE acme\n$INCLUDE base\n")):
            (self.folder / name).write_text(content)
        self.top = self.folder / "dictionary"

    def show(self, word, *arguments):
        return run("dictionary", "show", "-d", self.top, *arguments, "--", word)

    def list(self, *arguments):
        return run("dictionary", "list", "-d", self.top, *arguments)

    def broken_top(self):
        (self.folder / "broken").write_text("BOGUS\n")
        return self.folder / "broken"


class Show(LookupTest):
    def entry(self, name, code, kind, flags, place, vendor=None):
        vendor_line = f"    vendor: {vendor}\n" if vendor else ""
        return (f"{name}\n    code: {code}\n    type: {kind}\n    flags: {flags}\n{vendor_line}"
                f"    defined: {self.folder}/{place}\n")

    def vendor(self, name, number, attributes, place):
        return (f"vendor {name}\n    number: {number}\n    attributes: {attributes}\n"
                f"    defined: {self.folder}/{place}\n")

    def test_finds_names_and_numbers(self):
        user_name = self.entry("User-Name", 1, "string", "-", "rfc:1")
        acme_user_name = self.entry("User-Name", "26.79.1", "string", "-", "acme:4", "Acme (79)")
        password = self.entry("User-Password", 2, "string", "encrypt=1", "rfc:2")
        tunnel = self.entry("Tunnel-Password", 69, "string", "has_tag,encrypt=2", "rfc:5")
        eap = self.entry("EAP-Message", 79, "octets", "concat", "rfc:6")
        role = self.entry("Acme-Role", "26.79.2", "unknown", "-", "acme:3", "Acme (79)")
        acme = self.vendor("Acme", 79, 2, "acme:1")
        base_acme = self.entry("acme", "26.9.255", "date", "-", "base:3", "Base (9)")
        for word, *expected in (
                ("User-Password", password), ("user-PASSWORD", password), ("2", password),
                ("Attr-2", password), ("002", password), ("69", tunnel),
                ("User-Name", user_name, acme_user_name),
                ("26.79.2", role), ("Attr-26.79.2", role), ("26.Acme.2", role), ("26.acme.2", role),
                ("26", self.entry("Vendor-Specific", 26, "octets", "-", "rfc:3")),
                ("79", eap, acme), ("9", self.vendor("Base", 9, 1, "base:1")),
                ("Acme", base_acme, acme), ("BASE", self.vendor("Base", 9, 1, "base:1"))):
            with self.subTest(word):
                result = self.show(word)
                self.assertEqual(result.status, 0)
                self.assertEqual(result.text, "\n".join(expected))

    def test_gives_objects(self):
        result = self.show("79", "--json")
        self.assertEqual(result.status, 0)
        self.assertEqual(result.text,
                         '{"schema":1,"kind":"attribute","attrId":79,"vendorId":0,"vendorAttrId":0,'
                         '"name":"EAP-Message","type":"octets","hasTag":false,"concat":true,'
                         f'"encrypt":0,"vendor":null,"file":"{self.folder}/rfc","line":6}}\n'
                         '{"schema":1,"kind":"vendor","vendorId":79,"name":"Acme","attributes":2,'
                         f'"file":"{self.folder}/acme","line":1}}\n')

    def test_says_what_may_be_meant(self):
        for word, rest in (("Usr-Nmae", "; did you mean User-Name?"),
                           ("password", "; did you mean User-Password, Tunnel-Password?"),
                           ("Acne", "; did you mean acme, Acme?"), ("bse", "; did you mean Base?"),
                           ("no such thing", ""), ("", ""), ("3", ""), ("256", ""),
                           ("26.79", ""), ("26.79.3", ""), ("26.79.256", ""), ("26.78.1", ""),
                           ("1.79.1", ""), ("26..1", ""), ("26.79.2.2", ""), ("Attr-", ""),
                           ("4294967296", ""), ("x" * 100, None)):
            with self.subTest(word):
                result = self.show(word)
                self.assertEqual((result.status, result.text), (1, ""))
                shown = f'"{word}"{rest}' if rest is not None else f'"{word[:64]}..."'
                self.assertEqual(result.errors.splitlines()[1:],
                                 [f"radius-packet: the dictionary has no {shown}"])

    def test_cannot_drive_a_terminal(self):
        self.assertIn('has no "\\x1b[2J"\n', self.show("\x1b[2J").errors)
        (self.folder / "rfc").write_bytes(b"ATTRIBUTE A\x1b[2J\xff 1 string\n")
        for word in ("1", "A\\x1b[2J\\xff"):
            result = self.show(word)
            self.assertEqual(result.status, 0)
            self.assertEqual(result.text,
                             self.entry("A\\x1b[2J\\xff", 1, "string", "-", "rfc:1"))

    def test_takes_the_line_that_counts(self):
        (self.folder / "rfc").write_text("ATTRIBUTE A 1 string has_tag\nATTRIBUTE B 257\t string\n"
                                         "ATTRIBUTE C 1 date\n")
        self.assertEqual(self.show("1").text, self.entry("C", 1, "date", "has_tag", "rfc:3"))

    def test_looks_into_our_own_set_by_default(self):
        result = run("dictionary", "show", "message-authenticator")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertIn("Message-Authenticator\n    code: 80\n    type: octets\n    flags: -\n"
                      "    defined: ", result.text)


class List(LookupTest):
    def test_has_a_line_for_each_attribute(self):
        result = self.list()
        self.assertEqual(result.status, 0)
        self.assertEqual(result.text,
                         "1         User-Name        string      -                  -\n"
                         "2         User-Password    string      encrypt=1          -\n"
                         "26        Vendor-Specific  octets      -                  -\n"
                         "69        Tunnel-Password  string      has_tag,encrypt=2  -\n"
                         "79        EAP-Message      octets      concat             -\n"
                         "26.9.255  acme             date        -                  Base\n"
                         "26.79.1   User-Name        string      -                  Acme\n"
                         "26.79.2   Acme-Role        unknown     -                  Acme\n")

    def test_of_a_vendor(self):
        for vendor in ("Base", "base", "9"):
            self.assertEqual(self.list("--vendor", vendor).text,
                             "26.9.255  acme  date        -                  Base\n")
        for vendor, rest in (("Bse", "; did you mean Base?"), ("10", ""), ("User-Name", "")):
            result = self.list("--vendor", vendor)
            self.assertEqual((result.status, result.text), (1, ""))
            self.assertEqual(result.errors.splitlines()[1:],
                             [f'radius-packet: the dictionary has no vendor "{vendor}"{rest}'])

    def test_gives_objects(self):
        result = self.list("--json")
        self.assertEqual(result.status, 0)
        self.assertEqual([entry["schema"] for entry in result.objects], [1] * 8)
        self.assertEqual([entry["name"] for entry in result.objects],
                         [line.split()[1] for line in self.list().text.splitlines()])
        self.assertEqual(result.objects[-1],
                         {"schema": 1, "kind": "attribute", "attrId": 26, "vendorId": 79,
                          "vendorAttrId": 2, "name": "Acme-Role", "type": "unknown",
                          "hasTag": False, "concat": False, "encrypt": 0, "vendor": "Acme",
                          "file": f"{self.folder}/acme", "line": 3})
        self.assertEqual(len(self.list("--json", "--vendor", "79").objects), 2)

    def test_long_name_moves_its_own_line_alone(self):
        (self.folder / "rfc").write_text(f"ATTRIBUTE {'n' * 1000} 1 string\n")
        lines = self.list().text.splitlines()
        self.assertEqual(lines[0], f"1         {'n' * 1000}  string      -                  -")
        self.assertEqual(lines[1], f"26.9.255  {'acme':40}  date        -                  Base")

    def test_of_an_empty_dictionary_is_empty(self):
        self.top.write_text("")
        for arguments in ((), ("--json",)):
            result = self.list(*arguments)
            self.assertEqual((result.status, result.output, result.errors), (0, b"", ""))

    def test_of_our_own_set_is_what_check_counts(self):
        (figures,) = run("dictionary", "check", "--json",
                         pathlib.Path(sys.argv[2]).parent.parent / "dictionaries/dictionary").objects
        result = run("dictionary", "list")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertEqual(len(result.text.splitlines()), figures["standardAttributes"] +
                         sum(vendor["attributes"] for vendor in figures["vendors"]))


class Both(LookupTest):
    def test_of_a_dictionary_that_does_not_load(self):
        for command in (("show", "1"), ("list",)):
            result = run("dictionary", *command, "-d", self.broken_top())
            self.assertEqual((result.status, result.text), (3, ""))
            self.assertIn(f"radius-packet: the dictionary {self.folder}/broken does not load\n",
                          result.errors)

    def test_wrong_usage(self):
        unexpected = "there is an option or argument that was not expected"
        for arguments, fault in ((("show",), "WORD is required"),
                                 (("show", "1", "2"), unexpected),
                                 (("show", "1", "--vendor", "2"), unexpected),
                                 (("list", "1"), unexpected),
                                 (("list", "--secret", "1"), unexpected),
                                 (("list", "--vendor"), "--vendor: 1 required NAME|ID missing")):
            with self.subTest(arguments):
                result = run("dictionary", *arguments)
                self.assertEqual((result.status, result.text), (64, ""))
                self.assertEqual(result.errors,
                                 f"radius-packet: {fault}\nradius-packet: radius-packet --help "
                                 "and radius-packet COMMAND --help tell more\n")

    def test_help_has_examples_and_the_exit_status(self):
        for command, status in (("show", "0 something is found; 1 nothing is; 3"),
                                ("list", "0 all is listed; 1 there is no such vendor; 3")):
            result = run("dictionary", command, "--help")
            self.assertEqual((result.status, result.errors), (0, ""))
            self.assertIn(f"Examples: radius-packet dictionary {command}", result.text)
            self.assertIn(f"Exit status: {status}", result.text)

    def test_output_that_cannot_be_written(self):
        for command in (("show", "1"), ("list",), ("list", "--json")):
            with open("/dev/full", "wb") as full:
                completed = subprocess.run([PROGRAM, "dictionary", *command], stdout=full,
                                           stderr=subprocess.PIPE, timeout=120)
            self.assertEqual(completed.returncode, 74)
            self.assertEqual(completed.stderr, b"radius-packet: cannot write to standard output: "
                                               b"No space left on device\n")

    def test_any_bytes_end_with_a_documented_status(self):
        generator = random.Random(2866)
        for _ in range(40):
            word = bytes(generator.choices(range(1, 256), k=generator.randrange(30)))
            result = subprocess.run([PROGRAM, "dictionary", "show", "-d", self.top, "--", word],
                                    capture_output=True, timeout=120)
            self.assertIn(result.returncode, (0, 1))
            self.assertNotRegex(result.stderr, rb"[\x00-\x09\x0b-\x1f\x7f]")
            result = subprocess.run([PROGRAM, "dictionary", "list", "-d", self.top, "--vendor",
                                     b"x" + word], capture_output=True, timeout=120)
            self.assertIn(result.returncode, (0, 1))
            json.dumps(result.stderr.decode())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
