"""FreeRADIUS as a peer on loopback: its client makes requests, its server answers them."""

import collections
import os
import pathlib
import shutil
import socket
import subprocess

from exchanges import (ACCESS_ACCEPT, ACCESS_CHALLENGE, ACCESS_REJECT, ACCESS_REQUEST,
                       ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE, COA_ACK, COA_NAK, COA_REQUEST,
                       DISCONNECT_ACK, DISCONNECT_NAK, DISCONNECT_REQUEST, SECRET, user_name)

HOST = "127.0.0.1"
PATIENCE_SECONDS = 60
STARTS = 5
MAX_DATAGRAM = 65535
READY = "Ready to process requests"
REQUESTS = "requests"

CLIENT_COMMANDS = {ACCESS_REQUEST: "auth", ACCOUNTING_REQUEST: "acct", COA_REQUEST: "coa",
                   DISCONNECT_REQUEST: "disconnect"}
LISTEN_TYPES = {ACCESS_REQUEST: "auth", ACCOUNTING_REQUEST: "acct", COA_REQUEST: "coa",
                DISCONNECT_REQUEST: "coa"}
# A user whom the server lets in by password, and what it says then.
Account = collections.namedtuple("Account", ["name", "password", "answer"])

SECTIONS = {"auth": "authorize", "acct": "accounting", "coa": "recv-coa"}
ANSWER_NAMES = {ACCESS_ACCEPT: "Access-Accept", ACCESS_REJECT: "Access-Reject",
                ACCESS_CHALLENGE: "Access-Challenge", ACCOUNTING_RESPONSE: "Accounting-Response",
                DISCONNECT_ACK: "Disconnect-ACK", DISCONNECT_NAK: "Disconnect-NAK",
                COA_ACK: "CoA-ACK", COA_NAK: "CoA-NAK"}


def programs(unpacked):
    """The paths of client and server, None for one that is missing. The server may be unpacked in a
    folder without being installed."""
    path = os.pathsep.join([os.environ.get("PATH", ""), "/usr/sbin", f"{unpacked}/usr/sbin"])
    return shutil.which("radclient", path=path), shutil.which("freeradius", path=path)


def written(attribute):
    """The value as FreeRADIUS reads it."""
    value = attribute.value
    if isinstance(value, bytes):
        value = value.decode()
    if attribute.kind in ("text", "password"):
        return f'"{value}"'
    return f"0x{value}" if attribute.kind == "octets" else str(value)


def told(attributes):
    """Attributes as the client reads them."""
    return "".join(f"{attribute.peer_name} = {written(attribute)}\n" for attribute in attributes)


def answer_lines(said):
    """The name of the answer that the client has received, and its attributes, line by line."""
    _, found, answer = said.partition("\nReceived ")
    if not found:
        return None
    name, *attributes = answer.splitlines()
    return [name.split()[0], *(line.strip() for line in attributes if line.startswith("\t"))]


class Client:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        (folder / "dictionary").touch()

    def request(self, code, attributes):
        """The datagram that the client sends."""
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as listener:
            listener.bind((HOST, 0))
            listener.settimeout(PATIENCE_SECONDS)
            with subprocess.Popen(
                    [self.program, "-d", self.folder, "-r", "1", "-t", str(2 * PATIENCE_SECONDS),
                     "%s:%d" % listener.getsockname(), CLIENT_COMMANDS[code], SECRET],
                    stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as client:
                client.stdin.write(told(attributes).encode())
                client.stdin.close()
                try:
                    return listener.recv(MAX_DATAGRAM)
                finally:
                    client.kill()

    def exchange(self, port, code, attributes, secret=SECRET, until=None):
        """Sends a request to that port: the exit status, and the lines on the answer that the
        client takes, None when it takes none. It waits for an answer, or until the function
        `until` returns."""
        process = subprocess.Popen(
            [self.program, "-x", "-d", self.folder, "-r", "1", "-t", str(PATIENCE_SECONDS),
             f"{HOST}:{port}", CLIENT_COMMANDS[code], secret],
            text=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        with process:
            process.stdin.write(told(attributes))
            process.stdin.close()
            process.stdin = None
            if until:
                until()
                process.kill()
            said = process.communicate()[0]
        return process.returncode, answer_lines(said)


def rule(name, answer, controls, modules):
    """What the server does with requests that carry a name."""
    lines = [f"reply:{attribute.peer_name} += {written(attribute)}" for attribute in answer]
    return "\n".join([f'case "{name}" {{', "update {", *lines, *controls, "}", *modules, "}"])


def answering(exchange):
    """The server's rule for one exchange."""
    verdict = "Reject" if exchange.answer_code == ACCESS_REJECT else "Accept"
    return rule(exchange.name, exchange.answer,
                [f"control:Auth-Type := {verdict}",
                 f"control:Response-Packet-Type := {ANSWER_NAMES[exchange.answer_code]}"], ["ok"])


def letting_in(account):
    """The server's rule for one user."""
    return rule(account.name, account.answer,
                [f'control:Cleartext-Password := "{account.password}"'], ["chap", "pap"])


def configuration(exchanges, accounts, ports, folder, modules):
    """A whole configuration: who may ask, where, and what is answered. Where users prove
    themselves, so must requests. Every request is written down, in words."""
    signed = "yes" if accounts else "no"
    lines = ["name = peer", f"run_dir = {folder}", f"libdir = {modules}",
             "log {", "destination = stdout", "}",
             "security {", "allow_core_dumps = no", "reject_delay = 0", "status_server = yes", "}",
             "modules {", "always ok {", "rcode = ok", "}", "pap {", "}", "chap {", "}",
             "detail {", f"filename = {folder / REQUESTS}", 'header = "%I"', "}", "}",
             "client test {", f"ipaddr = {HOST}", f'secret = "{SECRET}"',
             f"require_message_authenticator = {signed}", "}",
             "server peer {",
             "authenticate {", "pap", "chap", "}"]
    for kind, port in ports.items():
        lines += ["listen {", f"type = {kind}", f"ipaddr = {HOST}", f"port = {port}", "}"]
    for kind, section in SECTIONS.items():
        rules = [answering(exchange) for exchange in exchanges
                 if LISTEN_TYPES[exchange.request_code] == kind]
        if kind == "auth":
            rules += map(letting_in, accounts)
        choice = ["switch &User-Name {", *rules, "}"] if rules else []
        lines += [f"{section} {{", "detail", *choice, "}"]
    return "\n".join([*lines, "}", ""])


def free_ports(kinds):
    sockets = [socket.socket(socket.AF_INET, socket.SOCK_DGRAM) for _ in kinds]
    try:
        for one in sockets:
            one.bind((HOST, 0))
        return {kind: one.getsockname()[1] for kind, one in zip(kinds, sockets)}
    finally:
        for one in sockets:
            one.close()


class Server:
    """Runs the server, with an answer for each exchange and each user, for as long as the block
    lasts."""

    def __init__(self, program, folder, exchanges, accounts=()):
        self.program, self.folder = pathlib.Path(program), folder
        self.exchanges, self.accounts = exchanges, accounts

    def __enter__(self):
        # Another program may take a port between finding it free and the server's start.
        for _ in range(STARTS):
            said = self.start()
            if READY in said:
                return self
            self.stop()
        raise RuntimeError(f"{self.program} does not start:\n{said}")

    def __exit__(self, *_):
        self.stop()

    def start(self):
        """What the server said until it was ready, or until it ended."""
        modules = self.program.parents[1] / "lib" / "freeradius"
        self.ports = free_ports(SECTIONS)
        (self.folder / "peer.conf").write_text(
            configuration(self.exchanges, self.accounts, self.ports, self.folder, modules))
        self.process = subprocess.Popen(
            [self.program, "-d", self.folder, "-n", "peer", "-f", "-l", "stdout"],
            env={**os.environ, "LD_LIBRARY_PATH": str(modules)}, text=True, errors="replace",
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        said = ""
        for line in self.process.stdout:
            said += line
            if READY in line:
                break
        return said

    def stop(self):
        self.process.kill()
        self.process.communicate()

    def requests(self):
        """Each request that the server has not refused, as the lines that say what it holds."""
        path = self.folder / REQUESTS
        if not path.exists():
            return []
        return [[line.strip() for line in request.splitlines()[1:]]
                for request in path.read_text().split("\n\n") if request]

    def answer(self, code, request):
        """The datagram that the server answers a request of that code with."""
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as client:
            client.settimeout(PATIENCE_SECONDS)
            client.connect((HOST, self.ports[LISTEN_TYPES[code]]))
            client.send(request)
            return client.recv(MAX_DATAGRAM)
