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
JSON_KEYS = ["schema", "dictionary", "loads", "includedFiles", "standardAttributes", "vendors",
             "errors", "warnings", "problems"]


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
            "ATTRIBUTE A 1 string\nATTRIBUTE B 2 string\nVALUE x y z\nATTRIBUTE B 2 string has_tag\n",
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
        self.assertEqual(list(figures), JSON_KEYS)
        self.assertEqual(figures, {
            "schema": 1,
            "dictionary": str(self.good),
            "loads": True,
            "includedFiles": [str(self.folder / str(at)) for at in range(5)],
            "standardAttributes": 2,
            "vendors": [{"vendorId": 0, "name": "Nought", "attributes": 1},
                        {"vendorId": 9, "name": "Acme", "attributes": 0},
                        {"vendorId": 4294967295, "name": "Zebra", "attributes": 2}],
            "errors": 0, "warnings": 0, "problems": []})

    def test_files_are_counted_as_often_as_they_are_included(self):
        self.write("one", "ATTRIBUTE A 1 string\n")
        top = self.write("twice", "$INCLUDE one\n$INCLUDE one # again\n")
        result = check(top)
        self.assertIn("included files: 2\nstandard attributes: 1\n", result.text)
        self.assertEqual(result.errors,
                         f'{top}:2:10: warning: "one" is included in line 1 already\n')

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


class Problems(DictionaryTest):
    """Every problem with its place, its text and what was probably meant."""

    def lines_of(self, errors, path):
        """The problems in standard error that are of that file, without its path."""
        front = f"{path}:"
        return [line.removeprefix(front) for line in errors.splitlines() if line.startswith(front)]

    def assert_problems(self, content, *expected):
        """Of the first of two included files; the second declares the vendor Other."""
        top = self.top(content, "VENDOR Other 8\nBEGIN-VENDOR Other\nEND-VENDOR Other\n")
        with self.subTest(content):
            result = check(top)
            self.assertEqual(self.lines_of(result.errors, self.folder / "0"), list(expected))
            fatal = [line for line in expected if ": error: " in line]
            self.assertEqual(result.status, 3 if fatal else 0)
            self.assertEqual(f"does not load: {len(fatal)} error" in result.errors, bool(fatal))

    def test_of_keywords(self):
        ignored = "the line is ignored"
        self.assert_problems("\n  ATRIBUTE A 1 string\nBOGUS\n$INCLUDE a\nEND-VENDOR A\n",
                             f'2:3: warning: "ATRIBUTE" is no keyword: {ignored}; did you mean ATTRIBUTE?',
                             f'3:1: warning: "BOGUS" is no keyword: {ignored}',
                             f"4:1: warning: $INCLUDE is not followed in an included file: {ignored}",
                             f"5:1: warning: END-VENDOR stands in a file of no vendor: {ignored}")
        self.assert_problems("\ufeffATTRIBUTE A 1 string\n",
                             f"1:1: warning: a byte order mark spoils the keyword: {ignored}; "
                             "did you mean ATTRIBUTE?")
        self.assert_problems("attribute A 1 string\n" + "x" * 1000,
                             f'1:1: warning: "attribute" is no keyword: {ignored}; did you mean ATTRIBUTE?',
                             f'2:1: warning: "{"x" * 64}..." is no keyword: {ignored}')

    def test_of_attributes(self):
        form = "its form is ATTRIBUTE NAME CODE TYPE [FLAGS]"
        self.assert_problems("ATTRIBUTE A 1\nATTRIBUTE B 2 string has_tag concat\n",
                             f"1:1: error: the line has too few words: {form}",
                             f"2:30: error: the line has too many words: {form}")
        self.assert_problems("ATTRIBUTE A 256 word\nATTRIBUTE B 0x1 word\nATTRIBUTE C 4294967297 string\n",
                             '1:13: warning: "256" is no code from 0 to 255: the line is ignored',
                             '2:13: warning: "0x1" is no code from 0 to 255: the line is ignored',
                             '3:13: warning: "4294967297" is no code from 0 to 255: it wraps around, '
                             "and counts as 1")
        self.assert_problems("ATTRIBUTE A 1 String\nATTRIBUTE B 2 intger\nATTRIBUTE C 3 word\n",
                             '1:15: warning: "String" is no data type: values are bytes; did you mean string?',
                             '2:15: warning: "intger" is no data type: values are bytes; did you mean integer?',
                             '3:15: warning: "word" is no data type: values are bytes')

    def test_of_flags(self):
        self.assert_problems("ATTRIBUTE A 1 string has-tag,encypt=1,,\n",
                             '1:22: warning: "has-tag" is no flag: it is ignored; did you mean has_tag?',
                             '1:30: warning: "encypt=1" is no flag: it is ignored; did you mean encrypt=?',
                             '1:39: warning: "" is no flag: it is ignored',
                             "1:22: warning: more than 2 flags, though all are looked at")
        self.assert_problems("ATTRIBUTE A 1 string encrypt=12,encrypt=x\nATTRIBUTE B 2 string encrypt=\n",
                             '1:30: error: behind encrypt= stands one digit, not "12"',
                             '1:41: error: behind encrypt= stands one digit, not "x"',
                             '2:30: error: behind encrypt= stands one digit, not ""')
        self.assert_problems(vendor_file("Acme", 9, "A 1 string concat"),
                             "3:22: warning: concat is for standard attributes: it is ignored")

    def test_of_definitions_that_contradict_each_other(self):
        path = self.folder / "0"
        self.assert_problems("ATTRIBUTE A 1 string\nATTRIBUTE B 1 string\nATTRIBUTE B 1 date\n"
                             "ATTRIBUTE B 2 date\nATTRIBUTE A 3 date\n",
                             f'2:11: warning: code 1 was "A" of type string at {path}:1: this line replaces it',
                             f'3:11: warning: code 1 was "B" of type string at {path}:2: this line replaces it',
                             f'4:11: warning: the name "B" is that of code 1 at {path}:3 too')
        top = self.top(vendor_file("Acme", 9, "A 1 string", "A 2 string"), vendor_file("Acme", 8),
                       vendor_file("Akme", 9, "A 1 date"))
        self.assertEqual(check(top).errors.splitlines(), [
            f'{path}:4:11: warning: the name "A" is that of code 26.9.1 at {path}:3 too',
            f'{self.folder}/1:1:8: warning: the name "Acme" is that of vendor 9 at {path}:1 too',
            f'{self.folder}/2:1:8: warning: vendor 9 was "Acme" at {path}:1: this line renames it',
            f'{self.folder}/2:3:11: warning: code 26.9.1 was "A" of type string at {path}:3: '
            "this line replaces it"])

    def test_of_vendor_lines(self):
        missing = "error: the block of this vendor is missing"
        self.assert_problems("VENDOR Acme\n",
                             "1:1: error: the line has too few words: its form is VENDOR NAME NUMBER",
                             f"1:1: {missing}")
        self.assert_problems("VENDOR Acme 9 a b\n",
                             "1:17: error: the line has too many words: its form is VENDOR NAME NUMBER",
                             f"1:1: {missing}")
        self.assert_problems("\nVENDOR Acme 4294967296\n",
                             '2:13: error: "4294967296" is no vendor number from 0 to 4294967295',
                             f"2:1: {missing}")
        self.assert_problems("VENDOR Acme 9 1,1\nBEGIN-VENDOR Acme f\nEND-VENDOR Acme\n",
                             '1:15: warning: the format "1,1" is ignored',
                             '2:19: warning: the format "f" is ignored')
        self.assert_problems(vendor_file("Acme", 9, "A 1 string") + vendor_file("Zebra", 7, "Z 1 word"),
                             "5:1: error: a second VENDOR: a file holds one vendor",
                             '7:15: warning: "word" is no data type: values are bytes')

    def test_of_blocks(self):
        form = "its form is BEGIN-VENDOR NAME"
        end_form = "its form is END-VENDOR NAME"
        self.assert_problems("VENDOR Acme 9\nBEGIN-VENDOR\nEND-VENDOR a b\n",
                             f"2:1: error: the line has too few words: {form}",
                             f"3:14: error: the line has too many words: {end_form}")
        self.assert_problems("VENDOR Acme 9\nBEGIN-VENDOR Acne\nEND-VENDOR Ace\n",
                             '2:14: error: "Acne" is not the vendor of this file; did you mean Acme?',
                             '3:12: error: "Ace" is not the vendor of this file; did you mean Acme?')
        self.assert_problems("VENDOR Acme 9\nATTRIBUTE A 1 date\nBEGIN-VENDOR Acme\nATTRIBUTE B 2 date\n",
                             "2:1: error: ATTRIBUTE before BEGIN-VENDOR",
                             "3:1: error: no END-VENDOR ends this block")
        self.assert_problems(vendor_file("Acme", 9) + "ATTRIBUTE A 1 date\nEND-VENDOR Acme\n",
                             "4:1: error: ATTRIBUTE behind END-VENDOR",
                             "5:1: error: a second END-VENDOR")
        self.assert_problems(vendor_file("Acme", 9) + "BEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
                             "4:1: error: a second BEGIN-VENDOR: a file holds one block")
        self.assert_problems("END-VENDOR Acme\n" + vendor_file("Acme", 9),
                             "1:1: warning: END-VENDOR stands in a file of no vendor: the line is ignored",
                             "1:1: error: END-VENDOR before BEGIN-VENDOR")
        self.assert_problems("ATTRIBUTE A 1 date\nVENDOR Acme 9\nBEGIN-VENDOR Acme\nEND-VENDOR Acme\n",
                             "2:1: error: VENDOR in a file that begins with standard attributes: a file "
                             "holds either these or one vendor's")

    def test_of_a_block_without_its_vendor_line(self):
        self.assert_problems("BEGIN-VENDOR Other\nEND-VENDOR Other\n",
                             '1:14: warning: no VENDOR line in front: "Other" is number 8, as another '
                             "file says")
        self.assert_problems("BEGIN-VENDOR Othr\nATTRIBUTE A 1 date\nEND-VENDOR Othr\n",
                             '1:14: warning: no first line of any file declares the vendor "Othr": its '
                             "attributes are ignored; did you mean Other?",
                             "2:11: warning: the vendor is not known: the line is ignored",
                             '3:12: error: the vendor "Othr" is not known')

    def test_of_top_files(self):
        self.write("good", "ATTRIBUTE A 1 string\n")
        (self.folder / "sub").mkdir()
        self.write("sub/other", "ATTRIBUTE B 2 string\n")
        top = self.write("dictionary", "$INCLUED good\nBOGUS x\n$INCLUDE\n$INCLUDE  godo\n$INCLUDE sub\n"
                         "$INCLUDE sub/othr\n$INCLUDE ./good\n$INCLUDE sub/other sub/more\n")
        result = check(top)
        self.assertEqual(result.status, 3)
        self.assertEqual(result.text, "")
        nothing_else = "is no $INCLUDE, and a top file holds nothing else"
        self.assertEqual(result.errors.splitlines(), [
            f'{top}:1:1: error: "$INCLUED" {nothing_else}; did you mean $INCLUDE?',
            f'{top}:2:1: error: "BOGUS" {nothing_else}',
            f"{top}:3:1: error: $INCLUDE names no file",
            f'{top}:4:11: error: "godo" cannot be read: No such file or directory; did you mean good?',
            f'{top}:5:10: error: "sub" cannot be read: no regular file',
            f'{top}:6:10: error: "sub/othr" cannot be read: No such file or directory; '
            "did you mean sub/other?",
            f'{top}:7:10: warning: "./good" is included in line 1 already',
            f'{top}:8:20: warning: "sub/more" is ignored: a line includes one file',
            f"radius-packet: the dictionary {top} does not load: 6 errors"])

    def test_of_a_top_file_that_includes_itself(self):
        top = self.write("dictionary", "$INCLUDE dictionary\n")
        result = check(top)
        self.assertEqual(result.status, 0)
        self.assertEqual(result.errors.splitlines(), [
            f"{top}:1:10: warning: the top file includes itself: its lines count as those of an "
            "included file",
            f"{top}:1:1: warning: $INCLUDE is not followed in an included file: the line is ignored"])

    def test_are_in_the_object_too(self):
        top = self.top("ATTRIBUTE A 1 Date\nBOGUS\n", "ATTRIBUTE B 2 date encrypt=\n")
        result = check("--json", top)
        self.assertEqual((result.status, result.text.count("\n")), (3, 1))
        self.assertEqual(result.errors, check(top).errors)
        (figures,) = result.objects
        self.assertEqual(list(figures), JSON_KEYS)
        self.assertEqual(figures, {
            "schema": 1, "dictionary": str(top), "loads": False, "includedFiles": None,
            "standardAttributes": None, "vendors": None, "errors": 1, "warnings": 2,
            "problems": [
                {"file": f"{self.folder}/0", "line": 1, "column": 15, "severity": "warning",
                 "text": '"Date" is no data type: values are bytes', "suggestion": "date"},
                {"file": f"{self.folder}/0", "line": 2, "column": 1, "severity": "warning",
                 "text": '"BOGUS" is no keyword: the line is ignored', "suggestion": None},
                {"file": f"{self.folder}/1", "line": 1, "column": 28, "severity": "error",
                 "text": 'behind encrypt= stands one digit, not ""', "suggestion": None}]})

    def test_that_are_warnings_are_counted_and_change_nothing_else(self):
        top = self.top("ATTRIBUTE A 1 word\nATTRIBUTE B 256 string\nATTRIBUTE C 3 string\n")
        result = check(top)
        self.assertEqual(result.status, 0)
        self.assertEqual(result.text.splitlines()[1:],
                         ["included files: 1", "standard attributes: 2", "vendors: 0",
                          "warnings: 2"])
        self.assertEqual(check("--json", top).objects[0]["warnings"], 2)

    def test_with_control_bytes_have_them_escaped(self):
        top = self.top(b"\x1b[2J\0\xff A 1 string\n")
        result = check(top)
        self.assertEqual(result.status, 0)
        self.assertEqual(result.errors, f'{self.folder}/0:1:1: warning: "\\x1b[2J\\x00\\xff" is no '
                                        "keyword: the line is ignored\n")
        self.assertIn('\\"\\\\x1b[2J\\\\x00\\\\xff\\" is no', check("--json", top).text)


class Faults(DictionaryTest):
    def test_empty_name_is_said(self):
        for arguments in (("",), ("--json", "")):
            result = check(*arguments)
            self.assertEqual((result.status, result.text), (3, ""))
            self.assertEqual(result.errors, "radius-packet: the dictionary does not load: "
                                            "its name is empty\n")

    def test_top_file_that_cannot_be_read(self):
        os.mkfifo(self.folder / "pipe")
        absent = "No such file or directory"
        for path, why in ((self.folder / "nowhere", absent), (self.folder, "no regular file"),
                          (self.folder / "pipe", "no regular file"), ("-", absent),
                          ("/dev/zero", "no regular file"),
                          ("/proc/self/mem", "it opens, but cannot be read")):
            with self.subTest(path):
                result = check(path, stdin="$INCLUDE a\n")
                self.assertEqual((result.status, result.text), (3, ""))
                self.assertEqual(result.errors,
                                 f"{path}: error: the file cannot be read: {why}\n"
                                 f"radius-packet: the dictionary {path} does not load: 1 error\n")
        (figures,) = check("--json", self.folder).objects
        self.assertEqual(figures["problems"],
                         [{"file": str(self.folder), "line": None, "column": None,
                           "severity": "error", "text": "the file cannot be read: no regular file",
                           "suggestion": None}])

    @unittest.skipIf(os.geteuid() == 0, "root may read every file")
    def test_file_without_permission(self):
        top = self.top("ATTRIBUTE A 1 string\n")
        (self.folder / "0").chmod(0)
        result = check(top)
        self.assertEqual((result.status, result.text), (3, ""))
        self.assertIn(f'{top}:1:10: error: "0" cannot be read: Permission denied\n', result.errors)

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
