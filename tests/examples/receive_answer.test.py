"""The example agent takes good answers and refuses everything else, whatever a stranger sends.

    receive_answer.test.py EXAMPLE DICTIONARY
"""

import subprocess
import sys
import unittest

EXAMPLE, DICTIONARY = sys.argv[1:3]
SECRET = "xyzzy5461"
REQUEST = (
    "010000380f403f9473978057bd83d5cb98f4227a01066e656d6f02120dbe708d93d4"
    "13ce3196e43f782a0aee0406c0a80110050600000003"
)
ANSWER = "0200002686fe220e7624ba2a1005f6bf9b55e0b20606000000010f06000000000e06c0a80103"


def receive(answer, secret=SECRET):
    return subprocess.run(
        [EXAMPLE, DICTIONARY, secret, REQUEST, answer], capture_output=True, text=True, timeout=60
    )


class ReceiveAnswer(unittest.TestCase):
    def test_prints_every_attribute_of_a_good_answer(self):
        result = receive(ANSWER)
        self.assertEqual(
            result.stdout,
            "  SERVICE_TYPE = 1\n  LOGIN_SERVICE = 0\n  LOGIN_IP_HOST = 192.168.1.3\n"
            "accepted: success\n",
        )
        self.assertEqual(result.returncode, 0)

    def test_refuses_an_answer_under_another_secret(self):
        result = receive(ANSWER, "another")
        self.assertEqual(result.stdout, "refused: invalidPktAuth\n")
        self.assertEqual(result.returncode, 1)

    def test_refuses_codes_that_cannot_answer_before_the_library_sees_them(self):
        for code in (1, 12, 4, 40, 43, 6, 99):
            with self.subTest(code=code):
                result = receive(f"{code:02x}" + ANSWER[2:])
                self.assertEqual(result.stdout, "refused: not an answer to this request\n")
                self.assertEqual(result.returncode, 1)

    def test_refuses_the_answer_to_another_request(self):
        result = receive("0201" + ANSWER[4:])
        self.assertEqual(result.stdout, "refused: not an answer to this request\n")
        self.assertEqual(result.returncode, 1)

    def test_refuses_what_has_no_good_header(self):
        for answer in ("", "02", ANSWER[:38], "0200ffff" + ANSWER[8:]):
            with self.subTest(answer=answer):
                result = receive(answer)
                self.assertEqual(result.stdout, "refused: invalidPktLength\n")
                self.assertEqual(result.returncode, 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
