"""Records the captures that the example agents and a live server make, on loopback.

    record.py AGENTS DICTIONARY FOLDER

AGENTS is the folder of the built example agents, DICTIONARY the top file of our set, FOLDER where
the captures go. Needs root, tcpdump, freeradius and radclient, and the ports 1812, 1813 and 3799.
"""

import contextlib
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

TESTS = pathlib.Path(__file__).resolve().parents[2]
sys.path += [str(TESTS / "interop"), str(TESTS / "examples")]

import freeradius
from agents import DICTIONARY, HOST, ONE_TRY, Agent, file_with
from exchanges import (ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE, COA_REQUEST, DISCONNECT_REQUEST,
                       IPV6, MESSAGE_AUTHENTICATOR, OTHER_SECRET, SECRET, TWO_TUNNELS, Attribute,
                       Exchange, mppe_key, reply_message, tunnel_password)
from freeradius import Account, Client, Server

AUTHENTICATION, ACCOUNTING, DYNAMIC_AUTHORIZATION = 1812, 1813, 3799
UNUSED = 3800
FOLDER = pathlib.Path(sys.argv[3])
PASSWORD = "open sesame"
SECRET_FILE = file_with(SECRET.encode() + b"\n")
OTHER_SECRET_FILE = file_with(OTHER_SECRET.encode() + b"\n")
ANSWER = [MESSAGE_AUTHENTICATOR, *TWO_TUNNELS, tunnel_password(1, "salt and pepper"),
          mppe_key("MS-MPPE-Send-Key", 16, bytes(range(32))), *IPV6, reply_message("welcome")]
USER = Account("alice", PASSWORD, ANSWER)
RECORDED = Exchange(USER.name, ACCOUNTING_REQUEST, [], ACCOUNTING_RESPONSE, [])
SESSION = Attribute("text", "Acct-Session-Id", "44", "session-1")
TIMEOUT = Attribute("number", "Session-Timeout", "27", 600)
SHORT_WAITS = ("-n", "3", "-t", "100")

freeradius.free_ports = lambda kinds: {"auth": AUTHENTICATION, "acct": ACCOUNTING, "coa": UNUSED}


@contextlib.contextmanager
def recording(name, *options):
    """Records what goes over loopback for as long as the block lasts."""
    ports = f"udp port {AUTHENTICATION} or {ACCOUNTING} or {DYNAMIC_AUTHORIZATION}"
    with subprocess.Popen(["tcpdump", "-U", "-n", "-w", FOLDER / name, *options, ports],
                          stderr=subprocess.PIPE, text=True) as process:
        while "listening on" not in process.stderr.readline():
            pass
        yield
        time.sleep(1)  # what is on its way is written
        process.send_signal(signal.SIGINT)


def run_client(name, port, *options, arguments=(), secret_file=SECRET_FILE, password=PASSWORD):
    with Agent(name, *options, DICTIONARY, secret_file, HOST, port, *arguments,
               stdin=password.encode()) as client:
        print(name, *client.result())


def authentication():
    run_client("auth_client", AUTHENTICATION, *ONE_TRY, arguments=[USER.name])
    run_client("auth_client", AUTHENTICATION, *ONE_TRY, "-c", arguments=[USER.name])
    run_client("auth_client", AUTHENTICATION, *ONE_TRY, arguments=[USER.name], password="wrong")
    run_client("status_probe", AUTHENTICATION, *ONE_TRY)


def accounting():
    run_client("acct_client", ACCOUNTING, *ONE_TRY, arguments=[USER.name, "session-1"])
    run_client("status_probe", ACCOUNTING, *ONE_TRY)


def unanswered():
    """A client whose secret is another: the server keeps silent, the client repeats itself."""
    run_client("auth_client", AUTHENTICATION, *SHORT_WAITS, arguments=[USER.name],
               secret_file=OTHER_SECRET_FILE)


def dynamic_authorization(folder):
    client = Client(freeradius.programs("")[0], folder)
    with Agent("dynauth_server", DICTIONARY, SECRET_FILE, HOST, DYNAMIC_AUTHORIZATION,
               SESSION.value) as server:
        print(server.output_line())
        for code, attributes in ((COA_REQUEST, [SESSION, TIMEOUT]), (COA_REQUEST, [SESSION]),
                                 (DISCONNECT_REQUEST, [SESSION, MESSAGE_AUTHENTICATOR])):
            print(*client.exchange(DYNAMIC_AUTHORIZATION, code, attributes))


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "dictionary").touch()
        with Server(freeradius.programs("")[1], folder, [RECORDED], [USER]):
            with recording("agents.pcap", "-i", "lo"):
                authentication()
                accounting()
                unanswered()
            with recording("agents-any.pcap", "-i", "any"):
                authentication()
            with recording("agents-cut.pcap", "-i", "lo", "-s", "96"):
                authentication()
        with recording("dynauth.pcap", "-i", "lo"):
            dynamic_authorization(folder)


if __name__ == "__main__":
    main()
