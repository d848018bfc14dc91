"""The legacy interface against FreeRADIUS, over loopback: its server takes the requests that the
interface makes and edits, and the interface checks and reads the answers.

    legacy.test.py FOLDER DICTIONARY UNPACKED

FOLDER holds the client, UNPACKED is a folder where the server may lie unpacked.
"""

import pathlib
import sys
import tempfile
import unittest

from exchanges import (ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE, IPV6, MESSAGE_AUTHENTICATOR,
                       OTHER_SECRET, SECRET, TWO_TUNNELS, Exchange, mppe_key, reply_message,
                       tunnel_password)
from freeradius import Account, Server, programs
from peer_packets import skip

sys.path.append(str(pathlib.Path(__file__).parents[1] / "examples"))
from agents import (DICTIONARY, EXIT_GOOD, EXIT_NO_ANSWER, EXIT_REFUSED, HOST, ONE_TRY, SHORT_WAIT,
                    Agent, file_with)

_, SERVER = programs(sys.argv[3])
if not SERVER:
    skip("the server of freeradius is not there")

SECRET_FILE = file_with(SECRET.encode() + b"\n")
OTHER_SECRET_FILE = file_with(OTHER_SECRET.encode() + b"\n")
PASSWORD = "open sesame"
LONG_PASSWORD = "more than one block of sixteen bytes"
LONG_TUNNEL_PASSWORD = ("salt and pepper " * 6)[:90]

ANSWER = [
    MESSAGE_AUTHENTICATOR,
    *TWO_TUNNELS,
    tunnel_password(1, "s"),
    tunnel_password(31, LONG_TUNNEL_PASSWORD),
    mppe_key("MS-MPPE-Send-Key", 16, b"a key of 23 clear bytes"),
    *IPV6[:2],
    reply_message("drítte"),
]
ANSWER_LINES = [
    "18 = drítte",
    "64:1 = 13",
    "64:2 = 3",
    "67:2 = 192.0.2.1",
    "69:1 = s",
    f"69:31 = {LONG_TUNNEL_PASSWORD}",
    "95 = 2001:db8:0:0:0:0:0:16",
    "96 = 200:5eff:fe10:1",
    "26.311.16 = a key of 23 clear bytes",
]
SIGNED = Account("alice", PASSWORD, ANSWER)
UNSIGNED = Account("bob", LONG_PASSWORD, [reply_message("hello")])
RECORDED = Exchange(SIGNED.name, ACCOUNTING_REQUEST, [], ACCOUNTING_RESPONSE, [])


class LegacyClient(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        folder = pathlib.Path(folder.name)
        (folder / "dictionary").touch()
        cls.server = cls.enterClassContext(
            Server(SERVER, folder, [RECORDED], [SIGNED, UNSIGNED]))

    def client(self, kind, name, *options, secret_file=SECRET_FILE, password=PASSWORD,
               answer_secret=()):
        return Agent("legacy_client", *options, DICTIONARY, secret_file, HOST,
                     self.server.ports[kind], kind, name, *answer_secret, stdin=password.encode())

    def ask(self, *arguments, **options):
        """Exit status, lines of output, errors, and the requests that the server has let through,
        each as its sorted lines, without what the server adds and the digest."""
        before = len(self.server.requests())
        with self.client(*arguments, **options) as client:
            status, output, errors = client.result()
        requests = [sorted(line for line in request
                           if not line.startswith(("Timestamp", "Packet-Type",
                                                  "Message-Authenticator")))
                    for request in self.server.requests()[before:]]
        return status, output.splitlines(), errors, requests

    def test_access_request(self):
        for account, lines in ((SIGNED, ANSWER_LINES), (UNSIGNED, ["18 = hello"])):
            with self.subTest(account.name):
                self.assertEqual(
                    self.ask("auth", account.name, *ONE_TRY, password=account.password),
                    (EXIT_GOOD, ["ACCESS_ACCEPT", *lines], "",
                     [['NAS-Identifier = "legacy-nas"', f'User-Name = "{account.name}"',
                       f'User-Password = "{account.password}"']]))

    def test_edited_access_request(self):
        self.assertEqual(
            self.ask("auth", UNSIGNED.name, "-e", *ONE_TRY, password=LONG_PASSWORD),
            (EXIT_GOOD, ["ACCESS_ACCEPT", "18 = hello", "33 = by proxy"], "",
             [["Proxy-State = 0x" + b"by proxy".hex(), f'User-Name = "{UNSIGNED.name}"',
               f'User-Password = "{LONG_PASSWORD}"']]))

    def test_another_password(self):
        for options in ((), ("-e",)):
            with self.subTest(options):
                status, output, errors, _ = self.ask("auth", SIGNED.name, *options, *ONE_TRY,
                                                     password="open Sesame")
                self.assertEqual((status, output[0], errors), (EXIT_REFUSED, "ACCESS_REJECT", ""))

    def test_accounting_request(self):
        self.assertEqual(
            self.ask("acct", SIGNED.name, *ONE_TRY),
            (EXIT_GOOD, ["ACCOUNTING_RESPONSE"], "",
             [["Acct-Session-Id = \"session-1\"", "Acct-Status-Type = Start",
               'Cisco-AVPair = "shell:priv-lvl=15"', "NAS-IP-Address = 192.0.2.16",
               f'User-Name = "{SIGNED.name}"']]))

    def test_the_server_refuses_another_secret(self):
        """It takes its requests in turn: what it has not let through before the last is refused."""
        for kind, *options in (("auth",), ("auth", "-e"), ("acct",)):
            with self.subTest(kind=kind, options=options):
                refused = self.ask(kind, SIGNED.name, *options, "-n", "2", *SHORT_WAIT,
                                   secret_file=OTHER_SECRET_FILE)
                self.assertEqual(refused, (EXIT_NO_ANSWER, [], "", []))
                *_, requests = self.ask(kind, SIGNED.name, *ONE_TRY)
                self.assertEqual(len(requests), 1)

    def test_answers_under_another_secret_are_refused(self):
        for kind in ("auth", "acct"):
            with self.subTest(kind):
                with self.client(kind, SIGNED.name, *ONE_TRY,
                                 answer_secret=[OTHER_SECRET_FILE]) as client:
                    self.assertEqual(client.fault_line(), "ignored: wrong authenticator\n")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
