"""`radius-packet` builds packets from text and says what packets hold, many in one run."""

import ipaddress
import json
import os
import re
import subprocess
from typing import Any, NamedTuple

from attribute_catalogue import MESSAGE_AUTHENTICATOR_KIND, VENDOR_SPECIFIC
from exchanges import ACCESS_REQUEST
from random_packets import STATUS_SERVER, plain_wire

PATIENCE_SECONDS = 600

ESCAPES = {b"\n": b"n", b"\r": b"r", b"\t": b"t", b'"': b'"', b"\\": b"\\"}
ESCAPED = {escape: byte for byte, escape in ESCAPES.items()}


# ---- Text in ----

def quoted(value):
    """Text as the tool reads it: control bytes and what is not UTF-8 stand as escapes."""
    def escaped(character):
        piece = character.encode(errors="surrogateescape")
        if piece in ESCAPES:
            return "\\" + ESCAPES[piece].decode()
        is_bare = character.isascii() and 0x20 <= ord(character) != 0x7f
        return character if is_bare or len(piece) > 1 else f"\\x{piece.hex()}"
    return '"' + "".join(map(escaped, value.decode(errors="surrogateescape"))) + '"'


def value_text(given):
    kind, value = given.kind, given.value
    if kind.our_type == "string":
        return quoted(value)
    if kind.our_type == "octets":
        return "0x" + value.hex()
    if kind.our_type == "ipv6prefix":
        return f"{value[0]}/{value[1]}"
    return value.hex(":", 2) if kind.our_type == "ifid" else str(value)


def attribute_line(given):
    if given.kind is MESSAGE_AUTHENTICATOR_KIND:
        return given.kind.name
    if given.is_raw:
        return f"{given.kind.raw_name} = 0x{plain_wire(given).hex()}"
    tag = "" if given.tag is None else f":{given.tag}"
    return f"{given.kind.name}{tag} = {value_text(given)}"


def packet_text(packet):
    header = f"{packet.code}, id {packet.id}"
    if packet.code in (ACCESS_REQUEST, STATUS_SERVER):
        header += f", authenticator {packet.authenticator.hex()}"
    return "\n".join([header, *map(attribute_line, packet.attributes), ""])


# ---- JSON out ----

class Reported(NamedTuple):
    """An attribute that the tool found, its value in the terms of the one that was given."""

    peer_key: Any
    name: str
    tag: Any
    value: Any


def unescaped(text):
    def byte(match):
        code = match[1]
        return bytes.fromhex(code[1:].decode()) if code[:1] == b"x" else ESCAPED[code]
    return re.sub(rb"\\(x[0-9a-f]{2}|.)", byte, text.encode())


def prefix(text):
    address, length = text.split("/")
    return ipaddress.IPv6Address(address), int(length)


READERS = {"string": unescaped, "octets": bytes.fromhex, "unknown": bytes.fromhex,
           "integer": int, "date": int, "integer64": int, "ipaddr": ipaddress.IPv4Address,
           "ipv6addr": ipaddress.IPv6Address, "ipv6prefix": prefix,
           "ifid": lambda text: bytes.fromhex(text.replace(":", ""))}


def reported(attribute):
    numbers = attribute["vendorId"], attribute["vendorAttrId"]
    is_vendors = attribute["attrId"] == VENDOR_SPECIFIC
    return Reported(numbers if is_vendors else attribute["attrId"], attribute["name"],
                    attribute["tag"], READERS[attribute["type"]](attribute["value"]))


class Tool:
    def __init__(self, program, dictionary):
        self.program, self.dictionary = program, dictionary

    def run(self, command, text, secret):
        return subprocess.run([self.program, *command, "-d", self.dictionary], input=text.encode(),
                              env=os.environb | {b"RADIUS_PACKET_SECRET": secret},
                              capture_output=True, timeout=PATIENCE_SECONDS)

    def build(self, packets, secret):
        """The packets as bytes, and what was said about them."""
        run = self.run(["build"], "\n".join(map(packet_text, packets)), secret)
        if run.returncode:
            raise RuntimeError(f"build says {run.returncode}: {run.stderr.decode()}")
        built = [bytes.fromhex(line) for line in run.stdout.decode().split()]
        return built, run.stderr.decode().splitlines()

    def decode(self, packets, secret):
        """A report for each packet; requests stand in front of their responses."""
        run = self.run(["decode", "--json"], "\n\n".join(packet.hex() for packet in packets), secret)
        return [json.loads(line) for line in run.stdout.splitlines()]
