"""`radius-packet edit` as a script sees it: arguments, streams, exit status, and what comes of it.

    edit.test.py PROGRAM DATA

PROGRAM is the built program, DATA the folder with the golden packets.
"""

import os
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

from golden_files import golden_packets
from program import PROGRAM, run

DATA = pathlib.Path(sys.argv[2])
SECRET = "golden-packets"
REQUEST_AUTHENTICATOR = bytes(range(0xA0, 0xB0))
A_OPTION = ("-a", REQUEST_AUTHENTICATOR.hex())
HINT = "radius-packet: radius-packet --help and radius-packet COMMAND --help tell more\n"
NOTHING = ("--remove", "Attr-253")  # which no packet has


def build(text, *arguments):
    return run("build", *arguments, stdin=text, variable=SECRET).output


def edit(packets, *arguments, secret=SECRET):
    return run("edit", *arguments, stdin=packets, variable=secret)


def attributes(test, packets, *arguments):
    """What decode says of packets, without the header lines."""
    result = run("decode", *arguments, stdin=packets, variable=SECRET)
    test.assertEqual((result.status, result.errors), (0, ""))
    return [line for line in result.text.splitlines() if ", id " not in line]


REQUEST = build("ACCESS_REQUEST, id 7\nUser-Name = \"alice\"\nUser-Password = \"wonderland\"\n"
                "Class = 0x01\nNAS-Port = 5\nClass = 0x02\n")


class EditedPackets(unittest.TestCase):
    def edited(self, packets, *arguments):
        result = edit(packets, *arguments)
        self.assertEqual((result.status, result.errors), (0, ""))
        return result.output

    def test_hold_what_was_asked_for(self):
        self.assertEqual(
            attributes(self, self.edited(
                REQUEST, "--set", "User-Name=\"bob\"", "--set", "Class = 0x09", "--add",
                "Proxy-State=0x01", "--remove", "NAS-Port", "--set", "Attr-240=0x",
                "--add", "Proxy-State=0x00")),
            ['User-Name = "bob"', 'User-Password = "wonderland"', "Class = 0x09", "Class = 0x09",
             "Attr-240 = 0x", "Proxy-State = 0x01", "Proxy-State = 0x00"])

    def test_keep_their_header_and_are_signed(self):
        packet = bytes.fromhex(self.edited(REQUEST, *NOTHING).decode())
        self.assertEqual(packet, bytes.fromhex(REQUEST.decode()))
        packets = build("ACCESS_REQUEST, id 7\n\nACCESS_ACCEPT, id 7\nMessage-Authenticator\n\n"
                        "ACCOUNTING_REQUEST, id 8\n\nACCOUNTING_RESPONSE, id 8\n")
        result = self.edited(packets, "--add", "Message-Authenticator", "--add", "Class=0x01")
        self.assertEqual(attributes(self, result).count("Class = 0x01"), 4)

    def test_new_hidden_values_are_revealed(self):
        accept = build("ACCESS_ACCEPT, id 1\nTunnel-Password:1 = \"old\"\n", *A_OPTION)
        self.assertEqual(
            attributes(self, self.edited(accept, *A_OPTION, "--add", "Tunnel-Password:2=\"new\""),
                       *A_OPTION),
            ['Tunnel-Password:1 = "old"', 'Tunnel-Password:2 = "new"'])
        self.assertIn('User-Password = "rabbit"', attributes(
            self, self.edited(REQUEST, "--set", "User-Password=\"rabbit\"")))

    def test_are_the_same_when_nothing_changes(self):
        count = 0
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                if golden.result != "success":
                    continue
                with self.subTest(golden.path.name):
                    result = run("edit", *golden.options(folder), *NOTHING, golden.path)
                    self.assertEqual((result.status, result.errors), (0, ""))
                    length = int.from_bytes(golden.packet[2:4], "big")
                    # This one's Message-Authenticator is zeros, which nobody checks.
                    if golden.path.name != ("accounting-request-message-authenticator-"
                                            "unchecked.txt"):
                        self.assertEqual(bytes.fromhex(result.text), golden.packet[:length])
                    count += 1
        self.assertGreater(count, 40)

    def test_golden_packets_with_one_more_attribute(self):
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                if golden.result != "success":
                    continue
                with self.subTest(golden.path.name):
                    options = golden.options(folder)
                    before = run("decode", *options, golden.path).text.splitlines()[1:]
                    result = run("edit", *options, "--add", "Proxy-State=0x01", golden.path)
                    self.assertEqual((result.status, result.errors), (0, ""))
                    after = run("decode", *options, stdin=result.output)
                    self.assertEqual((after.status, after.errors), (0, ""))
                    names = [line.split(" = ")[0] for line in after.text.splitlines()[1:]]
                    self.assertEqual(names, [line.split(" = ")[0] for line in before] +
                                     ["Proxy-State"])

    def test_binary_in_and_out(self):
        packet = bytes.fromhex(REQUEST.decode())
        self.assertEqual(self.edited(packet, "-f", "binary", "--binary", *NOTHING), packet)

    def test_come_from_files_in_their_order(self):
        with tempfile.TemporaryDirectory() as folder:
            paths = []
            for number in (1, 2):
                paths.append(pathlib.Path(folder) / str(number))
                paths[-1].write_bytes(build(f"ACCESS_REQUEST, id {number}\nNAS-Port = {number}"))
            result = run("edit", "--add", "Class=0x00", *paths, variable=SECRET)
            self.assertEqual(attributes(self, result.output),
                             ["NAS-Port = 1", "Class = 0x00", "", "NAS-Port = 2", "Class = 0x00"])

    def test_hidden_copies_are_warned_of(self):
        coa = run("build", stdin="COA_REQUEST, id 1\nTunnel-Password:1 = \"x\"\n",
                  variable=SECRET).output
        result = edit(coa, "--add", "Class=0x01")
        self.assertEqual((result.status, result.errors), (
            0, "radius-packet: packet 1 of -: Tunnel-Password: warning: the value is hidden under "
               "an authenticator that has changed: no receiver can reveal it\n"))


    def test_what_decode_refuses_is_warned_of(self):
        result = edit(REQUEST + b"\n" + REQUEST, "--add", "EAP-Message=0x01")
        self.assertEqual((result.status, result.errors), (0, "".join(
            f"radius-packet: packet {number} of -: warning: the packet is built, but decode "
            "refuses it: missingRequiredMsgAuth\n" for number in (1, 2))))
        self.assertEqual(run("decode", stdin=result.output, variable=SECRET).status, 1)


class RefusedPackets(unittest.TestCase):
    def test_end_as_they_do_for_decode_and_nothing_is_written(self):
        count = 0
        with tempfile.TemporaryDirectory() as folder:
            for golden in golden_packets(DATA):
                if golden.result == "success":
                    continue
                with self.subTest(golden.path.name):
                    options = golden.options(folder)
                    decoded = run("decode", *options, golden.path)
                    result = run("edit", *options, *NOTHING, golden.path)
                    self.assertIn(result.status, (1, 2))
                    self.assertEqual((result.status, result.text, result.errors),
                                     (decoded.status, "", decoded.errors))
                    count += 1
        self.assertGreater(count, 80)

    def test_among_good_ones_nothing_is_written(self):
        result = edit(REQUEST + b"\n0202\n\n" + REQUEST, *NOTHING)
        self.assertEqual((result.status, result.text, result.errors), (
            2, "", "radius-packet: packet 2 of - refused: invalidPktLength: Packet has invalid "
                   "length: 2\n"))

    def test_response_without_its_request(self):
        result = edit(build("ACCESS_ACCEPT, id 1", *A_OPTION), *NOTHING)
        self.assertEqual((result.status, result.text, result.errors), (
            1, "", "radius-packet: packet 1 of - refused: no Request Authenticator: give that of "
                   "the request which this packet answers with -a HEX\n"))

    def test_forged_packet_is_not_signed(self):
        result = edit(build("ACCOUNTING_REQUEST, id 1"), *NOTHING, secret="another")
        self.assertEqual((result.status, result.text), (1, ""))


class Arguments(unittest.TestCase):
    def test_help_has_an_example(self):
        result = run("edit", "--help")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertIn("Example", result.text)

    def test_example_of_the_help_works(self):
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            (folder / "secret.txt").write_text(SECRET + "\n")
            (folder / "request.bin").write_bytes(bytes.fromhex(REQUEST.decode()))
            os.symlink(PROGRAM, folder / "radius-packet")
            lines = run("edit", "--help").text.split("Example")[1].splitlines()[2:4]
            environment = dict(os.environ, PATH=f"{folder}:{os.environ['PATH']}")
            completed = subprocess.run(["sh", "-c", "\n".join(lines)], cwd=folder, env=environment,
                                       capture_output=True, check=True)
            shown = attributes(self, completed.stdout)
            self.assertEqual((shown[0], shown[-1]),
                             ('User-Name = "alice@example.org"', "Proxy-State = 0x01"))

    def test_wrong_usage(self):
        for arguments, fault in (
                ((), "nothing to change: give --set, --add or --remove"),
                (("--set", "hunter 2"), "--set number 1: the argument is not NAME=VALUE"),
                (("--set", ""), "--set number 1: the argument is not NAME=VALUE"),
                (("--add", "Class=0x01", "--add", "=hunter2"),
                 "--add number 2: the argument is not NAME=VALUE"),
                (("--set", "Class=0x01", "--set", "Class=0x02"),
                 "--set number 2: Class: the attribute is set twice"),
                (("--set", "Class=0x01", "--remove", "Class"),
                 "--remove number 1: Class: the attribute is set as well"),
                (("--remove", ""), "--remove number 1: the argument is not NAME"),
                (("--remove", "Class=0x01"), "--remove number 1: Class: what is removed is a NAME, "
                                             "without a tag or a value"),
                (("--remove", "Message-Authenticator"), "--remove number 1: Message-Authenticator: "
                                                        "it is always kept, and computed anew")):
            with self.subTest(arguments):
                result = edit(REQUEST, *arguments)
                self.assertEqual((result.status, result.text, result.errors),
                                 (64, "", f"radius-packet: {fault}\n"))

    def test_wrong_data(self):
        for arguments, fault in (
                (("--set", "hunter2"),
                 "--set number 1: the dictionary has no attribute of that name"),
                (("--set", "{}"), "--set number 1: the dictionary has no attribute of that name"),
                (("--set", "User-Name=hunter2"),
                 "packet 1 of -: --set number 1: User-Name: text stands in quotes"),
                (("--set", "Message-Authenticator=hunter2"),
                 "packet 1 of -: --set number 1: Message-Authenticator: text stands in quotes"),
                (("--add", "NAS-Port"),
                 "packet 1 of -: --add number 1: NAS-Port: there is no value"),
                (("--add", "Attr-25=0x", "--remove", "Class"),
                 "packet 1 of -: --remove number 1: Class: the attribute stands both in raw form "
                 "and under its name"),
                (("--add", "EAP-Message=0x" + "00" * 4010, "--add", "Class=0x"),
                 "packet 1 of -: --add number 1: EAP-Message: maxPktLengthExceeded: Attribute: 79 "
                 "Length: 217 addition exceeds max packet length 3882")):
            with self.subTest(fault):
                result = edit(REQUEST, *arguments)
                self.assertEqual((result.status, result.text, result.errors),
                                 (65, "", f"radius-packet: {fault}\n"))

    def test_option_takes_one_argument_a_time(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "request"
            path.write_bytes(REQUEST)
            result = run("edit", "--add", "Class=0x03", path, variable=SECRET)
            self.assertEqual((result.status, result.errors), (0, ""))

    def test_standard_input_gives_packets_or_secret(self):
        result = edit(REQUEST, "-s", "-", *NOTHING)
        self.assertEqual((result.status, result.errors), (
            64, "radius-packet: standard input (-) cannot give both the secret and the packets\n"))

    def test_several_packets_are_not_binary(self):
        result = edit(REQUEST + b"\n" + REQUEST, "--binary", *NOTHING)
        self.assertEqual((result.status, result.text, result.errors),
                         (64, "", "radius-packet: --binary writes one packet, and there are 2\n"))

    def test_input_that_cannot_be_read(self):
        self.assertEqual(edit("", *NOTHING).status, 66)
        self.assertEqual(edit("0", *NOTHING).status, 66)
        self.assertEqual(edit("", *NOTHING, "/nonexistent").status, 66)
        result = edit(REQUEST, *NOTHING, "")
        self.assertEqual((result.status, result.text, result.errors),
                         (66, "", "radius-packet: cannot read a file: its name is empty\n"))
        self.assertEqual(edit(REQUEST, *NOTHING, "-d", "/nonexistent").status, 3)


class Hostile(unittest.TestCase):
    def test_random_packets(self):
        random.seed(20240604)
        packet = bytes.fromhex(REQUEST.decode())
        for _ in range(150):
            broken = bytearray(packet)
            for _ in range(random.randrange(1, 6)):
                broken[random.randrange(len(broken))] = random.randrange(256)
            result = edit(bytes(broken), "-f", "binary", "--set", "Class=0x010203", "--remove",
                          "User-Password", "--add", "Message-Authenticator", *A_OPTION)
            self.assertIn(result.status, (0, 1, 2))
            self.assertEqual(result.text == "", result.status != 0)

    def test_random_changes(self):
        random.seed(20240605)
        pieces = ["User-Name", "Tunnel-Type:1", "Attr-26.9.1", "=", "=", "\"", "0x", "\\x", "ff",
                  "\n", "1", "::1/", ":", "Message-Authenticator", "[", "]", "{}", "%%", ",", " "]
        for _ in range(200):
            option = random.choice(("--set", "--add", "--remove"))
            text = "".join(random.choice(pieces) for _ in range(random.randrange(1, 8)))
            result = edit(REQUEST, option, text)
            self.assertIn(result.status, (0, 64, 65))
            self.assertEqual(result.text == "", result.status != 0)

    def test_thousands_of_changes(self):
        many = [word for _ in range(20_000) for word in ("--add", "Class=0x")]
        result = edit(REQUEST, *many)
        self.assertEqual((result.status, result.text), (65, ""))
        self.assertIn("Class: maxPktLengthExceeded", result.errors)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
