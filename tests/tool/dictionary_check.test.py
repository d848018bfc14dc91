"""`radius-packet dictionary check` as a script sees it.

    dictionary_check.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the test data.
"""

import os
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

from program import PROGRAM, run

OUR_TOP_FILE = pathlib.Path(sys.argv[2]).parent.parent / "dictionaries" / "dictionary"
NOT_OPEN = "this file, or one that it includes, cannot be opened (file.is_open())"
FACILITY = "RadiusPacketParser::RadiusDictionaryParser 0"


def check(*arguments, **options):
    return run("dictionary", "check", *arguments, **options)


class DictionaryTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def top(self, *contents):
        """A top file that includes a file of each content: 0, 1, 2..."""
        for at, content in enumerate(contents):
            self.write(str(at), content)
        return self.write("dictionary", "".join(f"$INCLUDE {at}\n" for at in range(len(contents))))


def vendor_file(name, number, *attributes):
    lines = (f"ATTRIBUTE {attribute}\n" for attribute in attributes)
    return f"VENDOR {name} {number}\nBEGIN-VENDOR {name}\n{''.join(lines)}END-VENDOR {name}\n"


class Figures(DictionaryTest):
    def setUp(self):
        super().setUp()
        self.good = self.top(
            "ATTRIBUTE A 1 string\nATTRIBUTE B 2 string\nVALUE x y z\nATTRIBUTE C 2 octets\n",
            vendor_file("Zebra", 4294967295, "Z-A 1 string", "Z-B 255 octets"),
            "# nothing\n", vendor_file("Acme", 9), vendor_file("Nought", 0, "N-A 1 date"))

    def test_text_has_a_line_for_each(self):
        result = check(self.good)
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertEqual(result.text,
                         f"dictionary: {self.good}\n"
                         "included files: 5\n"
                         "standard attributes: 2\n"
                         "vendors: 3\n"
                         "attributes of Nought (0): 1\n"
                         "attributes of Acme (9): 0\n"
                         "attributes of Zebra (4294967295): 2\n"
                         "warnings: 0\n")

    def test_json_is_one_object(self):
        result = check("--json", self.good)
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertEqual(result.text.count("\n"), 1)
        (figures,) = result.objects
        self.assertEqual(list(figures), ["dictionary", "includedFiles", "standardAttributes",
                                         "vendors", "warnings"])
        self.assertEqual(figures, {
            "dictionary": str(self.good),
            "includedFiles": [str(self.folder / str(at)) for at in range(5)],
            "standardAttributes": 2,
            "vendors": [{"vendorId": 0, "name": "Nought", "attributes": 1},
                        {"vendorId": 9, "name": "Acme", "attributes": 0},
                        {"vendorId": 4294967295, "name": "Zebra", "attributes": 2}],
            "warnings": 0})

    def test_files_are_counted_as_often_as_they_are_included(self):
        self.write("one", "ATTRIBUTE A 1 string\n")
        top = self.write("twice", "$INCLUDE one\n$INCLUDE one # again\n")
        self.assertIn("included files: 2\nstandard attributes: 1\n", check(top).text)

    def test_empty_dictionary_is_good(self):
        result = check(self.write("empty", "# nothing\n"))
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertEqual(result.text, f"dictionary: {self.folder}/empty\nincluded files: 0\n"
                                      "standard attributes: 0\nvendors: 0\nwarnings: 0\n")

    def test_our_own_set_is_without_warnings(self):
        result = check("--json", OUR_TOP_FILE)
        self.assertEqual((result.status, result.errors), (0, ""))
        (figures,) = result.objects
        self.assertEqual(figures["warnings"], 0)
        included = sorted(pathlib.Path(path) for path in figures["includedFiles"])
        self.assertEqual(included, sorted(OUR_TOP_FILE.parent.glob("dictionary.*")))
        self.assertIn(311, [vendor["vendorId"] for vendor in figures["vendors"]])

    def test_top_file_may_be_called_like_a_command(self):
        self.write("one", "")
        for name in ("decode", "dictionary", "check", "[a,b]"):
            self.write(name, "$INCLUDE one\n")
            with self.subTest(name):
                result = check(name, cwd=self.folder)
                self.assertEqual((result.status, result.errors), (0, ""))

    def test_names_cannot_drive_a_terminal(self):
        top = self.top(vendor_file(b"\x1b[2J\xff\xc2\x9b".decode("latin1"), 9).encode("latin1"))
        for arguments in ((top,), ("--json", top)):
            result = check(*arguments)
            self.assertEqual((result.status, result.errors), (0, ""))
            self.assertNotRegex(result.output, rb"[\x00-\x09\x0b-\x1f\x7f]")
        self.assertIn("attributes of \\x1b[2J\\xff\\xc2\\x9b (9): 0\n", check(top).text)


class Warnings(DictionaryTest):
    def test_are_said_and_counted_and_change_nothing_else(self):
        top = self.top("ATTRIBUTE A 1 word\nATTRIBUTE B 256 string\nATTRIBUTE C 3 string\n")
        expected = [f"{FACILITY} attributeParsingHelper: File {self.folder}/0 "
                    "Unknown/Non-Standard Type word",
                    f"{FACILITY} attributeParsingHelper: File {self.folder}/0 "
                    "Attribute Code out of range 256"]
        result = check(top)
        self.assertEqual((result.status, result.errors.splitlines()), (0, expected))
        self.assertEqual(result.text.splitlines()[1:],
                         ["included files: 1", "standard attributes: 2", "vendors: 0",
                          "warnings: 2"])
        result = check("--json", top)
        self.assertEqual((result.status, result.errors.splitlines()), (0, expected))
        self.assertEqual(result.objects[0]["warnings"], 2)

    def test_control_bytes_in_them_are_escaped(self):
        result = check(self.top(b"\x1b[2J\0 A 1 string\n"))
        self.assertEqual(result.status, 0)
        self.assertIn("Unknown Type \\x1b[2J\\x00 At 1\n", result.errors)


class Faults(DictionaryTest):
    def assert_broken(self, result, errors):
        self.assertEqual((result.status, result.text), (3, ""))
        self.assertEqual(result.errors, errors)

    def test_file_that_cannot_be_opened(self):
        missing = self.write("includes-missing", "$INCLUDE missing\n")
        (self.folder / "sub").mkdir()
        folder = self.write("includes-a-folder", "$INCLUDE sub\n")
        for arguments in (("",), ("--json", "")):
            self.assert_broken(check(*arguments), "radius-packet: the dictionary does not load: "
                                                  "its name is empty\n")
        for path in (self.folder / "nowhere", self.folder, missing, folder, "-"):
            for arguments in ((path,), ("--json", path)):
                with self.subTest(arguments):
                    self.assert_broken(check(*arguments, stdin="$INCLUDE a\n"),
                                       f"radius-packet: the dictionary {path} does not load: "
                                       f"{NOT_OPEN}\n")

    @unittest.skipIf(os.geteuid() == 0, "root may read every file")
    def test_file_without_permission(self):
        top = self.top("ATTRIBUTE A 1 string\n")
        (self.folder / "0").chmod(0)
        self.assert_broken(check(top), f"radius-packet: the dictionary {top} does not load: "
                                       f"{NOT_OPEN}\n")

    def test_broken_line_is_said(self):
        top = self.top("ATTRIBUTE A 1 word\n", "ATTRIBUTE B 2\n")
        for arguments in ((top,), ("--json", top)):
            self.assert_broken(
                check(*arguments),
                f"{FACILITY} attributeParsingHelper: File {self.folder}/0 "
                "Unknown/Non-Standard Type word\n"
                f"{FACILITY} attributeParsingHelper: File {self.folder}/1 "
                "Wrong Number of Arguments for Attribute\n"
                f"radius-packet: the dictionary {top} does not load\n")

    def test_broken_top_file_is_said(self):
        top = self.write("dictionary", "ATTRIBUTE A 1 string\n")
        self.assert_broken(check(top),
                           f"{FACILITY} populateVendorMap: File {top} "
                           "Parsing Error - Not Include at 2\n"
                           f"radius-packet: the dictionary {top} does not load\n")

    def test_any_bytes_end_with_a_documented_status(self):
        generator = random.Random(2865)
        words = [b"ATTRIBUTE", b"VENDOR", b"BEGIN-VENDOR", b"END-VENDOR", b"VALUE", b"A", b"9",
                 b"string", b"has_tag,encrypt=2", b"\n", b"\n", b"#", b"\0", b"\xff", b"9" * 40,
                 b"x" * 10000]
        for _ in range(60):
            content = b" ".join(generator.choices(words, k=generator.randrange(40)))
            with self.subTest(content):
                result = check(self.top(content))
                self.assertIn(result.status, (0, 3))
                self.assertEqual(result.text == "", result.status == 3)
        for size in (0, 1, 70000):
            result = check(self.top(generator.randbytes(size)))
            self.assertIn(result.status, (0, 3))
            result = check(self.write("noise", generator.randbytes(size)))
            self.assertEqual(result.status, 3 if size else 0)


class Usage(DictionaryTest):
    def test_wrong_usage_ends_with_64_and_repeats_no_argument(self):
        top = self.top()
        unexpected = "there is an option or argument that was not expected"
        for arguments, fault in ((["dictionary"], "A subcommand is required"),
                                 (["dictionary", "chek", top], "A subcommand is required"),
                                 (["dictionary", "check"], "TOPFILE is required"),
                                 (["dictionary", "check", "--json"], "TOPFILE is required"),
                                 (["dictionary", "check", top, top], unexpected),
                                 (["dictionary", "check", "-d", top], unexpected),
                                 (["dictionary", "check", top, "--secret", "s"], unexpected),
                                 (["check", top], "A subcommand is required")):
            with self.subTest(arguments):
                result = run(*arguments)
                self.assertEqual((result.status, result.text), (64, ""))
                self.assertEqual(result.errors,
                                 f"radius-packet: {fault}\nradius-packet: radius-packet --help "
                                 "and radius-packet COMMAND --help tell more\n")

    def test_help_names_the_exit_status(self):
        result = run("dictionary", "check", "--help")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertIn("radius-packet dictionary check", result.text)
        self.assertIn("Exit status: 0 the dictionary loads; 3 it does not;", result.text)

    def test_output_that_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            completed = subprocess.run([PROGRAM, "dictionary", "check", self.top()], stdout=full,
                                       stderr=subprocess.PIPE, timeout=120)
        self.assertEqual(completed.returncode, 74)
        self.assertEqual(completed.stderr, b"radius-packet: cannot write to standard output: "
                                           b"No space left on device\n")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
