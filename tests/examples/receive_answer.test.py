"""The example agent takes good answers and refuses everything else, whatever a stranger sends.

    receive_answer.test.py AGENTS DICTIONARY
"""

import sys
import unittest

from agents import DICTIONARY, SECRET_FILE, Agent, file_with

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

    def test_refuses_what_has_no_good_header(self):
        for answer in ("", "02", ANSWER[:38], "0200ffff" + ANSWER[8:]):
            with self.subTest(answer=answer):
                self.check(answer, 1, "refused: invalidPktLength\n")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
