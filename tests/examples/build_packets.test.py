"""The example's packets are what they should be, read with digests of Python's own.

    build_packets.test.py FOLDER-OF-EXAMPLES DICTIONARY
"""

import hashlib
import hmac
import subprocess
import sys
import unittest

FOLDER, DICTIONARY = sys.argv[1:3]
SECRET, NEXT_SECRET = b"the client's", b"the next server's"
HEADER = 20
USER_NAME, USER_PASSWORD, NAS_PORT, PROXY_STATE = 1, 2, 5, 33
TUNNEL_PASSWORD, MESSAGE_AUTHENTICATOR = 69, 80
PASSWORD = b"a password" + bytes(6)


def build(secret=SECRET, next_secret=NEXT_SECRET, dictionary=DICTIONARY):
    return subprocess.run(
        [f"{FOLDER}/build_packets", dictionary, secret, next_secret],
        capture_output=True, text=True, timeout=60,
    )


def attributes(packet):
    found, at = [], HEADER
    while at < len(packet):
        length = packet[at + 1]
        found.append((packet[at], packet[at + 2:at + length]))
        at += length
    assert at == len(packet) == int.from_bytes(packet[2:4], "big"), packet.hex()
    return found


def revealed(hidden, secret, authenticator, salt=b""):
    plain, previous = b"", authenticator + salt
    for at in range(0, len(hidden), 16):
        block = hidden[at:at + 16]
        plain += bytes(a ^ b for a, b in zip(block, hashlib.md5(secret + previous).digest()))
        previous = block
    return plain


def message_authenticator(packet, secret, authenticator):
    """What it should be, where the packet begins with one."""
    zeroed = packet[:4] + authenticator + bytes([MESSAGE_AUTHENTICATOR, 18]) + bytes(16)
    return hmac.digest(secret, zeroed + packet[HEADER + 18:], "md5")


class BuildPackets(unittest.TestCase):
    def setUp(self):
        result = build()
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.request, self.passed_on, self.answer = map(bytes.fromhex, result.stdout.split())
        self.authenticator = self.request[4:HEADER]

    def test_builds_a_request_whose_password_is_hidden(self):
        self.assertEqual(self.request[:2], bytes([1, 1]))
        found = attributes(self.request)
        password = dict(found)[USER_PASSWORD]
        digest = message_authenticator(self.request, SECRET, self.authenticator)
        self.assertEqual(
            found,
            [(MESSAGE_AUTHENTICATOR, digest), (USER_NAME, b"nemo"), (USER_PASSWORD, password),
             (NAS_PORT, bytes([0, 0, 0, 3]))],
        )
        self.assertEqual(revealed(password, SECRET, self.authenticator), PASSWORD)

    def test_passes_the_request_on_under_the_next_secret(self):
        self.assertEqual(self.passed_on[:2], bytes([1, 1]))
        self.assertEqual(self.passed_on[4:HEADER], self.authenticator)
        found = attributes(self.passed_on)
        password = dict(found)[USER_PASSWORD]
        digest = message_authenticator(self.passed_on, NEXT_SECRET, self.authenticator)
        self.assertEqual(
            found,
            [(MESSAGE_AUTHENTICATOR, digest), (USER_NAME, b"nemo"), (USER_PASSWORD, password),
             (PROXY_STATE, b"\x17")],
        )
        self.assertEqual(revealed(password, NEXT_SECRET, self.authenticator), PASSWORD)

    def test_answers_with_a_tunnel_password(self):
        self.assertEqual(self.answer[:2], bytes([2, 1]))
        covered = self.answer[:4] + self.authenticator + self.answer[HEADER:]
        self.assertEqual(self.answer[4:HEADER], hashlib.md5(covered + SECRET).digest())
        digest = message_authenticator(self.answer, SECRET, self.authenticator)
        (number, value), (tunnel, hidden) = attributes(self.answer)
        self.assertEqual((number, value, tunnel), (MESSAGE_AUTHENTICATOR, digest, TUNNEL_PASSWORD))
        tag, salt = hidden[0], hidden[1:3]
        self.assertEqual((tag, salt[0] & 0x80), (1, 0x80))
        text = b"a password of the tunnel"
        self.assertEqual(
            revealed(hidden[3:], SECRET, self.authenticator, salt),
            bytes([len(text)]) + text + bytes(7),
        )

    def test_makes_an_authenticator_and_a_salt_of_its_own_each_time(self):
        _, _, answer = map(bytes.fromhex, build().stdout.split())
        self.assertNotEqual(answer, self.answer)

    def test_says_how_it_is_used(self):
        for arguments, fault in (("", "too few"), ("12", "too few"), ("1234", "too many")):
            with self.subTest(fault):
                result = subprocess.run([f"{FOLDER}/build_packets", *arguments],
                                        capture_output=True, text=True, timeout=60)
                self.assertEqual((result.returncode, result.stdout, result.stderr), (
                    64, "", f"{fault} arguments\nusage: build_packets "
                    "DICTIONARY SECRET NEXT-SECRET\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
