"""Runs the example agents on loopback. Every test is given the folder of the agents and the
dictionary."""

import concurrent.futures
import contextlib
import os
import pathlib
import re
import select
import socket
import subprocess
import sys
import tempfile
import threading

from packets import SECRET

AGENTS, DICTIONARY = pathlib.Path(sys.argv[1]), sys.argv[2]

HOST = "127.0.0.1"
PATIENCE_SECONDS = 60
POLL_SECONDS = 0.01
ONE_TRY = ("-n", "1", "-t", str(PATIENCE_SECONDS * 1000))
SHORT_WAIT = ("-t", "20")
# So many, each longer than the one before, that also a slow machine answers one of them in time.
MANY_TRIES = ("-n", "12", *SHORT_WAIT)

EXIT_GOOD, EXIT_REFUSED, EXIT_NO_ANSWER, EXIT_FAULT, EXIT_USAGE = 0, 1, 2, 3, 64

folder = tempfile.TemporaryDirectory()


def file_with(content):
    """The path of a new file."""
    descriptor, path = tempfile.mkstemp(dir=folder.name)
    with os.fdopen(descriptor, "wb") as file:
        file.write(content)
    return path


SECRET_FILE = file_with(SECRET + b"\n")


def udp_socket():
    opened = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    opened.bind((HOST, 0))
    opened.settimeout(PATIENCE_SECONDS)
    return opened


class Agent:
    """A running agent. It ends with the block, or when patience does. One whose standard input is
    kept open is sent lines of it as it runs."""

    def __init__(self, name, *arguments, stdin=b"", keep_stdin=False):
        self.process = subprocess.Popen([AGENTS / name, *map(str, arguments)],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE)
        self.watchdog = threading.Timer(2 * PATIENCE_SECONDS, self.process.kill)
        self.watchdog.start()
        if keep_stdin:
            return
        with contextlib.suppress(BrokenPipeError):  # one that does not read may have ended
            self.process.stdin.write(stdin)
            self.process.stdin.close()
        self.process.stdin = None  # what communicate() would close once more

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.watchdog.cancel()
        self.process.kill()
        self.process.communicate()

    def send_line(self, text):
        self.process.stdin.write(text.encode() + b"\n")
        self.process.stdin.flush()

    def output_line(self):
        return self.process.stdout.readline().decode()

    def fault_line(self):
        """The next line in which the agent says why it ignores a datagram; the library traces its
        own reasons in between."""
        for line in self.process.stderr:
            if line.startswith(b"ignored: "):
                return line.decode()
        raise RuntimeError("the agent has ended")

    def result(self):
        """Exit status, output and errors, once it has ended."""
        output, errors = self.process.communicate()
        return self.process.returncode, output.decode(), errors.decode()


def without_signature(output):
    """What the authentication client prints, without the digest, which no test can know
    beforehand."""
    return re.sub(r"^  Message-Authenticator = 0x[0-9a-f]{32}$", "  Message-Authenticator", output,
                  flags=re.MULTILINE)


def ignored(errors):
    """What a client says of the datagrams that it did not take."""
    return [line.removeprefix("ignored: ") for line in errors.splitlines()
            if line.startswith("ignored: ")]


class Server:
    """The other side of a client: a socket that a test answers from."""

    def __init__(self):
        self.socket = udp_socket()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()

    @property
    def port(self):
        return self.socket.getsockname()[1]

    def client(self, name, *options, arguments=(), stdin=b""):
        return Agent(name, *options, DICTIONARY, SECRET_FILE, HOST, self.port, *arguments,
                     stdin=stdin)

    def receive(self):
        """The next request; answers go to its sender."""
        request, self.sender = self.socket.recvfrom(65535)
        return request

    def requests_until_ended(self, client):
        """The requests that follow, until the client has had enough."""
        while client.process.poll() is None:
            if select.select([self.socket], [], [], POLL_SECONDS)[0]:
                yield self.receive()

    def send(self, *answers):
        for one in answers:
            self.socket.sendto(one, self.sender)

    def result_under_flood(self, client, datagram):
        """What becomes of a client to which the datagram is sent again and again."""
        with concurrent.futures.ThreadPoolExecutor() as pool:
            result = pool.submit(client.result)
            while not result.done():
                self.send(datagram)
            return result.result()

    def requests_left(self):
        """What lies in the socket when nobody sends any more."""
        self.socket.setblocking(False)
        left = []
        try:
            while True:
                left.append(self.socket.recv(65535))
        except BlockingIOError:
            return left
