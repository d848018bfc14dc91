"""The example agent takes good answers and refuses everything else, whatever a stranger sends.

    receive_answer.test.py AGENTS DICTIONARY
"""

import sys
import unittest

from agents import DICTIONARY, EXIT_FAULT, EXIT_USAGE, SECRET_FILE, Agent, file_with

REQUEST = (
    "010000380f403f9473978057bd83d5cb98f4227a01066e656d6f02120dbe708d93d4"
    "13ce3196e43f782a0aee0406c0a80110050600000003"
)
ANSWER = "0200002686fe220e7624ba2a1005f6bf9b55e0b20606000000010f06000000000e06c0a80103"


class ReceiveAnswer(unittest.TestCase):
    def check(self, answer, status, output, secret_file=SECRET_FILE):
        with Agent("receive_answer", DICTIONARY, secret_file, REQUEST, answer) as example:
            self.assertEqual(example.result()[:2], (status, output))

    def test_prints_every_attribute_of_a_good_answer(self):
        self.check(ANSWER, 0, "accepted\n  Service-Type = 1\n  Login-Service = 0\n"
                              "  Login-IP-Host = 192.168.1.3\n")

    def test_refuses_an_answer_under_another_secret(self):
        self.check(ANSWER, 1, "refused: invalidPktAuth\n", file_with(b"another"))

    def test_refuses_codes_that_cannot_answer_before_the_library_sees_them(self):
        for code in (1, 12, 4, 40, 43, 6, 99):
            with self.subTest(code=code):
                self.check(f"{code:02x}" + ANSWER[2:], 1,
                           "refused: not an answer to this request\n")

    def test_refuses_the_answer_to_another_request(self):
        self.check("0201" + ANSWER[4:], 1, "refused: not an answer to this request\n")

    def test_says_what_is_wrong_on_its_own_side(self):
        no_hex = "a packet is no hex: two digits a byte and nothing else\n"
        for request, answer, fault in (
                (REQUEST, ANSWER[:-1], no_hex), (REQUEST, "0x" + ANSWER, no_hex),
                (REQUEST, "zz", no_hex), (REQUEST, "1 ", no_hex), (REQUEST, "+1", no_hex),
                ("1", ANSWER, no_hex),
                ("", ANSWER, "the request has no good header: invalidPktLength\n")):
            with self.subTest(request=request, answer=answer):
                with Agent("receive_answer", DICTIONARY, SECRET_FILE, request, answer) as example:
                    status, output, errors = example.result()
                self.assertEqual((status, output), (EXIT_FAULT, ""))
                self.assertEqual(errors.splitlines(True)[-1], fault)

    def test_says_how_it_is_used(self):
        for arguments, fault in (("", "too few"), ("123", "too few"), ("12345", "too many")):
            with self.subTest(fault), Agent("receive_answer", *arguments) as example:
                self.assertEqual(example.result(), (
                    EXIT_USAGE, "", f"{fault} arguments\nusage: receive_answer "
                    "DICTIONARY SECRET-FILE REQUEST-HEX ANSWER-HEX\n"))

    def test_refuses_what_has_no_good_header(self):
        for answer in ("", "02", ANSWER[:38], "0200ffff" + ANSWER[8:]):
            with self.subTest(answer=answer):
                self.check(answer, 1, "refused: invalidPktLength\n")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
