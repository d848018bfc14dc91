"""How a golden packet is described, hidden, signed and printed; generate.py holds the descriptions."""

from __future__ import annotations

import hashlib
import hmac
import ipaddress
from dataclasses import dataclass, field
from pathlib import Path

HERE = Path(__file__).resolve().parent
DICTIONARIES = HERE.parents[2] / "dictionaries"

HEADER_LENGTH = 20
AUTHENTICATOR_LENGTH = 16
BLOCK = 16
SALT_LENGTH = 2
VENDOR_SPECIFIC = 26
BYTES_PER_LINE = 20

CODES = {
    "Access-Request": 1,
    "Access-Accept": 2,
    "Access-Reject": 3,
    "Accounting-Request": 4,
    "Accounting-Response": 5,
    "Password-Ack": 8,
    "Access-Challenge": 11,
    "Status-Server": 12,
    "Disconnect-Request": 40,
    "Disconnect-ACK": 41,
    "Disconnect-NAK": 42,
    "CoA-Request": 43,
    "CoA-ACK": 44,
    "CoA-NAK": 45,
    "Code-99": 99,
}
WITH_RANDOM_AUTHENTICATOR = ("Access-Request", "Status-Server")
WITH_SIGNED_AUTHENTICATOR = ("Accounting-Request", "Disconnect-Request", "CoA-Request")


# ---------------------------------------------------------------------------------------------------------------------
# The dictionary


@dataclass(frozen=True)
class Entry:
    """One ATTRIBUTE line; key is (attribute, vendor, vendor's attribute)."""

    key: tuple[int, int, int]
    name: str = "-"
    type: str = "unknown"
    flags: frozenset[str] = frozenset()

    @property
    def tagged(self) -> bool:
        return "has_tag" in self.flags

    @property
    def hidden(self) -> bool:
        return not self.flags.isdisjoint(("encrypt=1", "encrypt=2"))


def load_dictionary() -> dict[str, Entry]:
    entries = {}
    for include in words_of(DICTIONARIES / "dictionary"):
        vendor = 0
        for word in words_of(DICTIONARIES / include[1]):
            if word[0] == "VENDOR":
                vendor = int(word[2])
            elif word[0] == "ATTRIBUTE":
                key = (VENDOR_SPECIFIC, vendor, int(word[2])) if vendor else (int(word[2]), 0, 0)
                flags = frozenset(word[4].split(",")) if len(word) > 4 else frozenset()
                entries[word[1]] = Entry(key, word[1], word[3], flags)
    return entries


def words_of(path: Path) -> list[list[str]]:
    lines = (line.split("#")[0].split() for line in path.read_text().splitlines())
    return [words for words in lines if words]


ENTRIES = load_dictionary()


# ---------------------------------------------------------------------------------------------------------------------
# Attributes


@dataclass(frozen=True)
class Attribute:
    """One attribute with its value in clear: tag, salt, length byte and padding are part of it.

    length and sub_length replace the true Length bytes; signed marks the Message-Authenticator that is to be computed.
    """

    entry: Entry
    value: bytes
    comment: str
    length: int | None = None
    sub_length: int | None = None
    signed: bool = False

    def wire(self, secret: bytes, authenticator: bytes) -> bytes:
        value = hide(self.value, self.entry, secret, authenticator)
        attribute, vendor, vendor_attribute = self.entry.key
        if attribute == VENDOR_SPECIFIC:
            value = vendor.to_bytes(4, "big") + unit(vendor_attribute, value, self.sub_length)
        return unit(attribute, value, self.length)

    def delivered(self) -> str:
        """What follows "# attribute: ": key, name, type and the value as the walk hands it on."""
        key = ".".join(str(number) for number in self.entry.key)
        return f"{key} {self.entry.name} {self.entry.type} {text_of(self.entry.type, self.value)}".rstrip()


@dataclass(frozen=True)
class Stray:
    """Bytes in the attribute area that are no whole attribute of the walk."""

    value: bytes
    comment: str
    entry = Entry((0, 0, 0))
    signed = False

    def wire(self, secret: bytes, authenticator: bytes) -> bytes:
        return self.value


def unit(code: int, value: bytes, length: int | None) -> bytes:
    return bytes([code, len(value) + 2 if length is None else length]) + value


def hide(value: bytes, entry: Entry, secret: bytes, authenticator: bytes) -> bytes:
    """RFC 2865 section 5.2 (encrypt=1), RFC 2868 section 3.5 (encrypt=2): the tag and the salt stay in clear."""
    if not entry.hidden:
        return value
    salt_at = 1 if entry.tagged else 0
    hidden_at = salt_at + (SALT_LENGTH if "encrypt=2" in entry.flags else 0)
    out = value[:hidden_at]
    block = authenticator + value[salt_at:hidden_at]
    for at in range(hidden_at, len(value), BLOCK):
        key = hashlib.md5(secret + block).digest()
        block = bytes(a ^ b for a, b in zip(value[at : at + BLOCK], key))
        out += block
    return out


def bytes_of(data_type: str, value: int | str) -> bytes:
    if data_type in ("integer", "date"):
        return value.to_bytes(4, "big")
    if data_type in ("ipaddr", "ipv6addr"):
        return ipaddress.ip_address(value).packed
    if data_type == "ipv6prefix":
        network = ipaddress.IPv6Network(value)
        return bytes([0, network.prefixlen]) + network.network_address.packed[: (network.prefixlen + 7) // 8]
    if data_type == "ifid":
        return ipaddress.IPv6Address("::" + value).packed[8:]
    return value.encode()


def text_of(data_type: str, value: bytes) -> str:
    if data_type in ("integer", "date"):
        return str(int.from_bytes(value, "big"))
    if data_type == "ipaddr":
        return str(ipaddress.IPv4Address(value))
    if data_type == "ipv6addr":
        return str(ipaddress.IPv6Address(value))
    if data_type == "ipv6prefix":
        return str(ipaddress.IPv6Address(value[2:].ljust(16, b"\0")))
    if data_type == "ifid":
        return str(ipaddress.IPv6Address(bytes(8) + value))
    return value.hex()


def attribute(name: str, value: int | str | bytes, note: str = "", **lengths: int) -> Attribute:
    """An attribute of the dictionary. A value given as bytes is taken as it is, whatever the type."""
    entry = ENTRIES[name]
    if isinstance(value, bytes):
        return Attribute(entry, value, annotated(name, "", note), **lengths)
    return Attribute(entry, bytes_of(entry.type, value), annotated(name, str(value), note), **lengths)


def tagged(name: str, tag: int, value: int | str, note: str = "") -> Attribute:
    """RFC 2868: the tag is the first byte of a string, and replaces the first byte of an integer."""
    entry = ENTRIES[name]
    data = bytes_of(entry.type, value)
    data = bytes([tag]) + (data[1:] if entry.type == "integer" else data)
    return Attribute(entry, data, annotated(f"{name}:{tag}", str(value), note))


def salted(name: str, salt: bytes, plain: bytes, note: str, tag: int | None = None) -> Attribute:
    """RFC 2868 section 3.5: tag, salt, then length byte, text and padding to whole blocks, which are hidden."""
    entry = ENTRIES[name]
    prefix = bytes([tag]) if entry.tagged else b""
    label = name if tag is None else f"{name}:{tag}"
    return Attribute(entry, prefix + salt + padded(bytes([len(plain)]) + plain), annotated(label, "", note))


def password(text: str) -> Attribute:
    return Attribute(ENTRIES["User-Password"], padded(text.encode()), annotated("User-Password", text, "hidden"))


def message_authenticator() -> Attribute:
    """The one that verifies: its value is computed when the packet is built."""
    entry = ENTRIES["Message-Authenticator"]
    return Attribute(entry, bytes(AUTHENTICATOR_LENGTH), entry.name, signed=True)


def eap_message(packet: bytes, note: str) -> list[Attribute]:
    """RFC 3579 section 3.1: as many consecutive attributes as the EAP packet needs."""
    pieces = [packet[at : at + 253] for at in range(0, len(packet), 253)]
    many = len(pieces) > 1
    return [
        attribute("EAP-Message", piece, f"{note}, fragment {number} of {len(pieces)}" if many else note)
        for number, piece in enumerate(pieces, 1)
    ]


def unknown(code: int, value: bytes) -> Attribute:
    return Attribute(Entry((code, 0, 0)), value, f"attribute {code}, in no dictionary")


def unknown_vendor(vendor: int, code: int, value: bytes) -> Attribute:
    comment = f"vendor {vendor}, attribute {code}, in no dictionary"
    return Attribute(Entry((VENDOR_SPECIFIC, vendor, code)), value, comment)


def padded(data: bytes) -> bytes:
    return data + bytes(-len(data) % BLOCK)


def annotated(name: str, value: str, note: str) -> str:
    return " ".join(part for part in (name, value, f"({note})" if note else "") if part)


# ---------------------------------------------------------------------------------------------------------------------
# Packets


@dataclass
class Packet:
    """One packet and what its decoding gives.

    request: the request that this one answers, or its authenticator. authenticator: a fixed one instead of the computed
    one. length: a wrong Length field. kept: how many bytes of the packet are there. padding: bytes behind Length.
    delivered: how many attributes are handed on before the fault (all when left out). printed: the packet as its source
    prints it, to which the computed one must be equal.
    """

    name: str
    code: str
    identifier: int
    title: str
    attributes: list[Attribute | Stray]
    request: Packet | bytes | None = None
    authenticator: bytes | None = None
    source: str = "made for these tests"
    secret: bytes = b"golden-packets"
    result: str = "success"
    reason: str = ""
    delivered: int | None = None
    length: int | None = None
    kept: int | None = None
    padding: bytes = b""
    printed: str = ""
    rows: list[tuple[bytes, str]] = field(init=False, default_factory=list)

    def __post_init__(self) -> None:
        self.key = self.secret.split(b"\0")[0]
        units = [one.wire(self.key, self.hiding_authenticator()) for one in self.attributes]
        self.header = self.head(units)
        self.sign_message(units)
        if self.authenticator is None:
            self.authenticator = self.digest(units)
        self.rows = self.layout(units)
        if self.printed and bytes.fromhex(self.printed) != self.wire():
            raise ValueError(f"{self.name}: not the packet that is printed, but {self.wire().hex()}")

    def request_authenticator(self) -> bytes:
        if isinstance(self.request, Packet):
            return self.request.authenticator
        return self.request or b""

    def hiding_authenticator(self) -> bytes:
        """What values are hidden with; not the authenticator of a request that is itself computed from them."""
        if self.code in WITH_SIGNED_AUTHENTICATOR and any(one.entry.hidden for one in self.attributes):
            raise ValueError(f"{self.name}: {self.code} with a hidden value")
        return self.authenticator if self.code in WITH_RANDOM_AUTHENTICATOR else self.request_authenticator()

    def head(self, units: list[bytes]) -> bytes:
        length = HEADER_LENGTH + sum(map(len, units)) if self.length is None else self.length
        return bytes([CODES[self.code], self.identifier]) + length.to_bytes(2, "big")

    def signing_field(self) -> bytes:
        """What stands in the authenticator's place while the packet is signed."""
        if self.code in WITH_RANDOM_AUTHENTICATOR:
            return self.authenticator
        return self.request_authenticator() or bytes(AUTHENTICATOR_LENGTH)

    def sign_message(self, units: list[bytes]) -> None:
        data = self.header + self.signing_field() + b"".join(units)
        signature = hmac.new(self.key, data, hashlib.md5).digest()
        for index, one in enumerate(self.attributes):
            if one.signed:
                units[index] = units[index][:2] + signature
                self.attributes[index] = Attribute(one.entry, signature, one.comment)

    def digest(self, units: list[bytes]) -> bytes:
        return hashlib.md5(self.header + self.signing_field() + b"".join(units) + self.key).digest()

    def layout(self, units: list[bytes]) -> list[tuple[bytes, str]]:
        length = int.from_bytes(self.header[2:], "big")
        rows = [(self.header, f"{self.code}, Identifier {self.identifier}, Length {length}")]
        rows.append((self.authenticator, "Response Authenticator" if self.request else "Request Authenticator"))
        rows += [(data, one.comment) for data, one in zip(units, self.attributes)]
        if self.padding:
            rows.append((self.padding, "behind Length: padding"))
        return rows if self.kept is None else cut_short(rows, self.kept)

    def wire(self) -> bytes:
        return b"".join(data for data, _ in self.rows)

    def directives(self) -> list[str]:
        handed_on = self.attributes[: self.delivered]
        pairs = [
            ("title", self.title),
            ("source", self.source),
            ("secret", self.secret.hex()),
            ("request-authenticator", self.request_authenticator().hex()),
            ("result", self.result),
            ("reason", self.reason),
        ]
        pairs += [("attribute", one.delivered()) for one in handed_on]
        return [f"# {key}: {value}".rstrip() for key, value in pairs]

    def text(self) -> str:
        lines = []
        for data, comment in self.rows:
            chunks = [data[at : at + BYTES_PER_LINE].hex(" ") for at in range(0, len(data), BYTES_PER_LINE)]
            lines += [(chunks[0], "# " + comment)] + [(chunk, "") for chunk in chunks[1:]]
        width = max(len(chunk) for chunk, _ in lines)
        hex_lines = [f"{chunk:<{width}}  {comment}".rstrip() for chunk, comment in lines]
        return "\n".join(self.directives() + ["#"] + hex_lines) + "\n"


def cut_short(rows: list[tuple[bytes, str]], kept: int) -> list[tuple[bytes, str]]:
    out = []
    for data, comment in rows:
        if kept <= 0:
            break
        out.append((data[:kept], comment if len(data) <= kept else f"{comment} (cut short)"))
        kept -= len(data)
    return out


PACKETS: list[Packet] = []


def golden(name: str, code: str, identifier: int, title: str, attributes: list, **options) -> Packet:
    packet = Packet(name, code, identifier, title, list(attributes), **options)
    PACKETS.append(packet)
    return packet


def pattern(first: int, count: int = AUTHENTICATOR_LENGTH) -> bytes:
    """Bytes that stand for random ones and are easily known again in a dump: they count up from the first."""
    return bytes((first + index) % 256 for index in range(count))
