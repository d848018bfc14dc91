"""The example agents against FreeRADIUS, over loopback: its server answers the clients, its client
asks the server of CoA and Disconnect requests.

    agents.test.py AGENTS DICTIONARY UNPACKED

UNPACKED is a folder where the server may lie unpacked.
"""

import ipaddress
import pathlib
import sys
import tempfile
import unittest

from exchanges import (ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE, COA_REQUEST,
                       DISCONNECT_REQUEST, IPV6, MESSAGE_AUTHENTICATOR, OTHER_SECRET, SECRET,
                       TWO_TUNNELS, VENDORS, Attribute, Exchange, Made, mppe_key, reply_message,
                       tunnel_password)
from freeradius import Account, Client, Server, programs
from peer_packets import skip

sys.path.append(str(pathlib.Path(__file__).parents[1] / "examples"))
from agents import (DICTIONARY, EXIT_GOOD, EXIT_NO_ANSWER, EXIT_REFUSED, HOST, ONE_TRY, SHORT_WAIT,
                    Agent, file_with, without_signature)

CLIENT, SERVER = programs(sys.argv[3])
if not CLIENT:
    skip("radclient of freeradius-utils is not installed")
if not SERVER:
    skip("the server of freeradius is not there")

SECRET_FILE = file_with(SECRET.encode() + b"\n")
OTHER_SECRET_FILE = file_with(OTHER_SECRET.encode() + b"\n")
PASSWORD = "open sesame"

ANSWER = [
    MESSAGE_AUTHENTICATOR,
    *TWO_TUNNELS,
    *(tunnel_password(tag, ("salt and pepper " * 6)[:length])
      for tag, length in ((1, 1), (2, 15), (3, 16), (31, 96))),
    mppe_key("MS-MPPE-Send-Key", 16, bytes(range(32))),
    mppe_key("MS-MPPE-Recv-Key", 17, bytes(range(64, 80))),
    *IPV6,
    *VENDORS,
    reply_message("drítte"),
]
SIGNED = Account("alice", PASSWORD, ANSWER)
UNSIGNED = Account("bob", PASSWORD, [reply_message("hello")])
RECORDED = Exchange(SIGNED.name, ACCOUNTING_REQUEST, [], ACCOUNTING_RESPONSE, [])
SESSION = Attribute("text", "Acct-Session-Id", "44", "session-1")
TIMEOUT = Attribute("number", "Session-Timeout", "27", 600)
PROXY_STATE = Attribute("octets", "Proxy-State", "33", "00ff10")


def shown(attribute):
    """The line that the authentication client prints of an attribute."""
    value = attribute.value.decode() if isinstance(attribute.value, bytes) else attribute.value
    if isinstance(value, Made):
        return f"  {attribute.name}"
    if attribute.kind == "text":
        value = f'"{value}"'
    elif attribute.kind == "octets":
        value = f"0x{value}"
    elif attribute.kind == "prefix":
        value = value.partition("/")[0]
    elif attribute.kind == "interface":
        value = ipaddress.IPv6Address(bytes(8) + bytes.fromhex(value.replace(":", "")))
    tag = "" if attribute.tag is None else f" (tag {attribute.tag})"
    return f"  {attribute.name} = {value}{tag}"


def temporary_folder(test_class):
    folder = tempfile.TemporaryDirectory()
    test_class.addClassCleanup(folder.cleanup)
    return pathlib.Path(folder.name)


class Clients(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = temporary_folder(cls)
        (folder / "dictionary").touch()
        cls.server = cls.enterClassContext(
            Server(SERVER, folder, [RECORDED], [SIGNED, UNSIGNED]))

    def client(self, name, kind, *options, arguments=(), secret_file=SECRET_FILE,
               password=PASSWORD):
        return Agent(name, *options, DICTIONARY, secret_file, HOST, self.server.ports[kind],
                     *arguments, stdin=password.encode())

    def run_client(self, *arguments, **options):
        """Exit status, output and errors, and the requests that the server has let through."""
        before = len(self.server.requests())
        with self.client(*arguments, **options) as client:
            status, output, errors = client.result()
        return status, without_signature(output), errors, self.server.requests()[before:]

    def test_authentication_by_pap_and_chap(self):
        accepted = "\n".join(["ACCESS_ACCEPT", *map(shown, ANSWER), ""])
        for options, proof in (((), f'User-Password = "{PASSWORD}"'), (("-c",), "CHAP-Password")):
            with self.subTest(proof):
                status, output, errors, requests = self.run_client(
                    "auth_client", "auth", *ONE_TRY, *options, arguments=[SIGNED.name])
                self.assertEqual((status, output, errors), (EXIT_GOOD, accepted, ""))
                self.assertEqual(len(requests), 1)
                self.assertTrue(any(line.startswith(proof) for line in requests[0]), requests)
                self.assertIn(f'User-Name = "{SIGNED.name}"', requests[0])

    def test_authentication_with_another_password(self):
        for options in ((), ("-c",)):
            with self.subTest(options):
                status, output, errors, _ = self.run_client(
                    "auth_client", "auth", *ONE_TRY, *options, arguments=[SIGNED.name],
                    password="open Sesame")
                self.assertEqual((status, output.splitlines()[0], errors),
                                 (EXIT_REFUSED, "ACCESS_REJECT", ""))

    def test_authentication_with_an_empty_password(self):
        *_, requests = self.run_client("auth_client", "auth", *ONE_TRY, arguments=[SIGNED.name],
                                       password="")
        self.assertIn('User-Password = ""', requests[0])

    def test_authentication_without_a_message_authenticator_in_the_answer(self):
        with self.client("auth_client", "auth", *ONE_TRY, arguments=[UNSIGNED.name]) as client:
            self.assertEqual(client.fault_line(), "ignored: no Message-Authenticator\n")
        status, output, errors, _ = self.run_client("auth_client", "auth", *ONE_TRY, "-u",
                                                    arguments=[UNSIGNED.name])
        self.assertEqual((status, output, errors),
                         (EXIT_GOOD, 'ACCESS_ACCEPT\n  Reply-Message = "hello"\n', ""))

    def test_accounting(self):
        status, output, errors, requests = self.run_client(
            "acct_client", "acct", *ONE_TRY, arguments=[SIGNED.name, "session-1"])
        self.assertEqual(
            (status, output, errors),
            (EXIT_GOOD, "START: recorded\nINTERIM_UPDATE: recorded\nSTOP: recorded\n", ""))
        common = ['Acct-Session-Id = "session-1"', f'User-Name = "{SIGNED.name}"',
                  'NAS-Identifier = "example-nas"']
        expected = [
            ["Acct-Status-Type = Start", *common],
            ["Acct-Status-Type = Interim-Update", *common, "Acct-Session-Time = 300",
             "Acct-Input-Octets = 1500000", "Acct-Input-Gigawords = 0",
             "Acct-Output-Octets = 5032704", "Acct-Output-Gigawords = 1"],
            ["Acct-Status-Type = Stop", *common, "Acct-Session-Time = 480",
             "Acct-Input-Octets = 2000000", "Acct-Input-Gigawords = 0",
             "Acct-Output-Octets = 410065408", "Acct-Output-Gigawords = 2",
             "Acct-Terminate-Cause = User-Request"]]
        self.assertEqual([[line for line in request if "Timestamp" not in line]
                          for request in requests], expected)
        for request in requests:
            self.assertTrue(any(line.startswith("Event-Timestamp = ") for line in request), request)

    def test_status(self):
        for kind in ("auth", "acct"):
            with self.subTest(kind):
                self.assertEqual(self.run_client("status_probe", kind, *ONE_TRY)[:3],
                                 (EXIT_GOOD, "alive\n", ""))

    def test_the_server_refuses_another_secret(self):
        """It takes its requests in turn: what it has not let through before the last is refused."""
        for name, kind, *arguments in (("auth_client", "auth", SIGNED.name),
                                       ("acct_client", "acct", SIGNED.name, "session-1"),
                                       ("status_probe", "auth"), ("status_probe", "acct")):
            with self.subTest(name, kind=kind):
                refused = self.run_client(name, kind, "-n", "2", *SHORT_WAIT, arguments=arguments,
                                          secret_file=OTHER_SECRET_FILE)
                self.assertEqual((refused[0], refused[2], refused[3]), (EXIT_NO_ANSWER, "", []))
                last, *arguments, count = (("auth_client", SIGNED.name, 1) if kind == "auth" else
                                           ("acct_client", SIGNED.name, "the last", 3))
                *_, requests = self.run_client(last, kind, *ONE_TRY, arguments=arguments)
                self.assertEqual(len(requests), count)


class DynAuthServer(unittest.TestCase):
    def setUp(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        self.client = Client(CLIENT, pathlib.Path(folder))
        self.server = self.enterContext(
            Agent("dynauth_server", DICTIONARY, SECRET_FILE, HOST, 0, SESSION.value))
        self.port = int(self.server.output_line().split()[-1])

    def exchange(self, *arguments, **options):
        return self.client.exchange(self.port, *arguments, **options)

    def test_answers(self):
        unknown = SESSION._replace(value="session-2")
        for code, given, status, answer in (
                (COA_REQUEST, [SESSION, TIMEOUT, PROXY_STATE], 0,
                 ["CoA-ACK", "Proxy-State = 0x00ff10"]),
                (COA_REQUEST, [SESSION], 1, ["CoA-NAK", "Error-Cause = Missing-Attribute"]),
                (COA_REQUEST, [unknown, TIMEOUT], 1,
                 ["CoA-NAK", "Error-Cause = Session-Context-Not-Found"]),
                (DISCONNECT_REQUEST, [SESSION, TIMEOUT], 1,
                 ["Disconnect-NAK", "Error-Cause = Unsupported-Attribute"]),
                (DISCONNECT_REQUEST, [SESSION], 0, ["Disconnect-ACK"]),
                (DISCONNECT_REQUEST, [SESSION], 1,
                 ["Disconnect-NAK", "Error-Cause = Session-Context-Not-Found"])):
            with self.subTest(code=code, given=given):
                self.assertEqual(self.exchange(code, given), (status, answer))

    def test_answers_to_signed_requests(self):
        for code, given, status, name, *rest in (
                (COA_REQUEST, [SESSION, TIMEOUT], 0, "CoA-ACK"),
                (COA_REQUEST, [SESSION], 1, "CoA-NAK", "Error-Cause = Missing-Attribute"),
                (DISCONNECT_REQUEST, [SESSION], 0, "Disconnect-ACK"),
                (DISCONNECT_REQUEST, [SESSION], 1, "Disconnect-NAK",
                 "Error-Cause = Session-Context-Not-Found")):
            with self.subTest(code=code, given=given):
                exit_status, answer = self.exchange(code, [*given, MESSAGE_AUTHENTICATOR])
                self.assertEqual((exit_status, answer[0], answer[2:]), (status, name, rest))
                self.assertRegex(answer[1], "^Message-Authenticator = 0x[0-9a-f]{32}$")

    def test_refuses_another_secret(self):
        for code in (COA_REQUEST, DISCONNECT_REQUEST):
            for given in ([SESSION, TIMEOUT], [SESSION, TIMEOUT, MESSAGE_AUTHENTICATOR]):
                with self.subTest(code=code, given=given):
                    faults = []
                    _, answer = self.exchange(
                        code, given, secret=OTHER_SECRET,
                        until=lambda: faults.append(self.server.fault_line()))
                    self.assertEqual(faults, ["ignored: invalidPktAuth\n"])
                    self.assertIsNone(answer)
        self.assertEqual(self.exchange(DISCONNECT_REQUEST, [SESSION]), (0, ["Disconnect-ACK"]))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
