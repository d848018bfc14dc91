#!/usr/bin/env python3
"""Writes the samples of pasted packets, by the programs that people paste from.

    ./generate.py

Needs xxd, hexdump, od, base64, python3, text2pcap, tshark and tcpdump.
"""

import pathlib
import subprocess
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
GOLDEN = HERE.parent / "packets"

# Short and long, with a whole line at the end and with a part of one.
PACKETS = ("access-accept-tunnel", "accounting-request-message-authenticator-unchecked",
           "rfc2865-7.1-access-accept", "access-accept-longest-attributes")
# Text that looks like hex; equal lines, which some programs leave out.
OWN = {
    "hexlike": bytes.fromhex("0107002a") + bytes(16) + b"\x01\x16" + b"de ad be ef 00 11  c",
    "zeros": bytes.fromhex("01080066") + bytes(16) + b"\x18\x52" + bytes(80),
}


def golden(name):
    lines = (GOLDEN / f"{name}.txt").read_text().splitlines()
    return bytes.fromhex("".join(line.split("#")[0] for line in lines))


def run(*command, stdin=None):
    return subprocess.run(command, input=stdin, stdout=subprocess.PIPE, check=True).stdout.decode()


def last_dump(text):
    """tcpdump dumps a link type that it does not know once more of itself, in front of what it is asked
    for."""
    title = text[: text.index("\t0x0000:")]
    return title + text[text.rindex("\t0x0000:"):]


def samples(packet, folder):
    binary = folder / "packet.bin"
    binary.write_bytes(packet)
    yield "xxd", run("xxd", binary)
    yield "xxd-g1-c32", run("xxd", "-g1", "-c32", binary)
    yield "xxd-i", run("xxd", "-i", "-n", "packet", binary)
    yield "xxd-p", run("xxd", "-p", binary)
    yield "hexdump-C", run("hexdump", "-C", binary)
    yield "od", run("od", "-A", "x", "-t", "x1z", binary)
    yield "base64", run("base64", binary)
    yield "base64-url", run("python3", "-c", "import base64, sys; print(base64.urlsafe_b64encode("
                            "open(sys.argv[1], 'rb').read()).decode().rstrip('='))", binary)
    yield "python", run("python3", "-c", "import sys; print(open(sys.argv[1], 'rb').read())", binary)
    # The link type USER0: the frame is the packet, with nothing in front of it.
    capture = folder / "packet.pcap"
    dump = run("od", "-A", "x", "-t", "x1", "-v", binary)
    run("text2pcap", "-q", "-l", "147", "-", capture, stdin=dump.encode())
    yield "tshark-x", run("tshark", "-r", capture, "-x")
    yield "tcpdump-x", last_dump(run("tcpdump", "-x", "-t", "-r", capture))
    yield "tcpdump-text", last_dump(run("tcpdump", "-X", "-t", "-r", capture))


def main():
    for name in (*PACKETS, *OWN):
        packet = OWN[name] if name in OWN else golden(name)
        with tempfile.TemporaryDirectory() as folder:
            for form, text in samples(packet, pathlib.Path(folder)):
                (HERE / f"{name}.{form}.txt").write_text(text)
        (HERE / f"{name}.hex.txt").write_text(packet.hex() + "\n")


if __name__ == "__main__":
    main()
