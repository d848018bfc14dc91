"""Packets that FreeRADIUS makes decode to the values that went in, and are refused under another
secret. Its client makes the requests, its server the answers, over loopback.

    freeradius.test.py PROGRAM UNPACKED

UNPACKED is a folder where the server may lie unpacked.
"""

import hashlib
import pathlib
import sys
import tempfile
import unittest

from exchanges import (ACCESS_REQUEST, EXCHANGES, HIDDEN_AND_SIGNED_EXCHANGES,
                       MESSAGE_AUTHENTICATOR, Attribute, Made, user_name)
from freeradius import Client, Server, programs
from peer_packets import PeerPacketsTest, authenticator, decode, skip

CLIENT, SERVER = programs(sys.argv[2])
if not CLIENT:
    skip("radclient of freeradius-utils is not installed")
if not SERVER:
    skip("the server of freeradius is not there")

PeerPacketsTest.program = sys.argv[1]

FRAGMENT = 253


def temporary_folder(test_class):
    folder = tempfile.TemporaryDirectory()
    test_class.addClassCleanup(folder.cleanup)
    return pathlib.Path(folder.name)


class Exchanges(PeerPacketsTest):
    @classmethod
    def setUpClass(cls):
        folder = temporary_folder(cls)
        cls.exchanges = [*EXCHANGES, *HIDDEN_AND_SIGNED_EXCHANGES]
        cls.client = Client(CLIENT, folder)
        cls.server = cls.enterClassContext(Server(SERVER, folder, cls.exchanges))

    def test_exchanges(self):
        for exchange in self.exchanges:
            with self.subTest(exchange.name):
                code = exchange.request_code
                request = self.client.request(code, [user_name(exchange.name), *exchange.request])
                self.check_exchange(exchange, request, self.server.answer(code, request))


class Requests(PeerPacketsTest):
    @classmethod
    def setUpClass(cls):
        cls.client = Client(CLIENT, temporary_folder(cls))

    def test_chap_password(self):
        challenge = bytes(range(100, 120))
        for given, covered in (([], None),
                               ([Attribute("octets", "CHAP-Challenge", "60", challenge.hex())],
                                challenge)):
            with self.subTest(given):
                told = [Attribute("text", "CHAP-Password", "3", Made("open sesame")), *given]
                request = self.client.request(ACCESS_REQUEST, told)
                self.check_request(request, ACCESS_REQUEST, told)
                report = decode(self.program, request)[1]
                value = bytes.fromhex(report["attributes"][0]["value"])
                digest = hashlib.md5(value[:1] + b"open sesame" +
                                     (covered or authenticator(request))).digest()
                self.assertEqual(value[1:], digest)

    def test_long_eap_message_comes_in_fragments(self):
        message = bytes([2, 1]) + (500).to_bytes(2, "big") + bytes([13]) + bytes(range(99)) * 5
        self.assertEqual(len(message), 500)
        whole = Attribute("octets", "EAP-Message", "79", message.hex())
        request = self.client.request(ACCESS_REQUEST, [whole, MESSAGE_AUTHENTICATOR])
        fragments = [whole._replace(value=message[at:at + FRAGMENT].hex())
                     for at in range(0, len(message), FRAGMENT)]
        self.check_request(request, ACCESS_REQUEST, [*fragments, MESSAGE_AUTHENTICATOR])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
