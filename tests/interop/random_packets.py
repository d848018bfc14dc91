"""Random exchanges of a request and its response, the same ones for the same seed."""

import collections
import ipaddress
import random
from typing import Any, NamedTuple

from attribute_catalogue import (ADDRESS_TYPES, EAP_MESSAGE, EXAMPLE_VENDOR_ID,
                                 MESSAGE_AUTHENTICATOR, MESSAGE_AUTHENTICATOR_KIND, NARROW_BYTES,
                                 PASSWORD_METHOD, SALTED_METHOD, Kind, catalogue, unknown_kind)
from exchanges import (ACCESS_ACCEPT, ACCESS_CHALLENGE, ACCESS_REJECT, ACCESS_REQUEST,
                       ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE, COA_ACK, COA_NAK, COA_REQUEST,
                       DISCONNECT_ACK, DISCONNECT_NAK, DISCONNECT_REQUEST)
from radius_digests import AUTHENTICATOR_LENGTH, BLOCK, HEADER_LENGTH, SALT_LENGTH

STATUS_SERVER = 12
CODE_PAIRS = [
    (ACCESS_REQUEST, ACCESS_ACCEPT), (ACCESS_REQUEST, ACCESS_REJECT),
    (ACCESS_REQUEST, ACCESS_CHALLENGE), (ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE),
    (STATUS_SERVER, ACCESS_ACCEPT), (STATUS_SERVER, ACCOUNTING_RESPONSE),
    (DISCONNECT_REQUEST, DISCONNECT_ACK), (DISCONNECT_REQUEST, DISCONNECT_NAK),
    (COA_REQUEST, COA_ACK), (COA_REQUEST, COA_NAK),
]
# The requests whose authenticator is a digest, and so not there yet when values are hidden.
DIGEST_REQUESTS = frozenset([ACCOUNTING_REQUEST, DISCONNECT_REQUEST, COA_REQUEST])

LONGEST_PACKET, LONGEST_ATTRIBUTE = 4096, 255
ATTRIBUTE_HEADER, VENDOR_HEADER = 2, 6
LONGEST_PIECE = LONGEST_ATTRIBUTE - ATTRIBUTE_HEADER
LONGEST_PASSWORD = 128
LAST_TAG = 0x1F
ATTRIBUTE_COUNTS = [0, 1, 1, 2, 3, 4, 6, 8, 12, 20, 200]
SECRET_LENGTHS = [1, 7, 15, 16, 63, 64, 65, 100]  # around the block of HMAC-MD5


class Given(NamedTuple):
    """An attribute to be put into a packet; the value of the one that signs is none."""

    kind: Kind
    tag: Any = None
    value: Any = None
    is_raw: bool = False  # the tool is told its number instead of its name


class Packet(NamedTuple):
    code: int
    id: int
    authenticator: bytes  # of a request that has a random one
    attributes: list
    flaw: Any = None


class Exchange(NamedTuple):
    request: Packet
    response: Packet


MESSAGE_AUTHENTICATOR_GIVEN = Given(MESSAGE_AUTHENTICATOR_KIND)


def is_signed(packet):
    return MESSAGE_AUTHENTICATOR_GIVEN in packet.attributes


def holds_eap(attributes):
    return any(given.kind.peer_key == EAP_MESSAGE for given in attributes)


def plain_wire(given):
    """The value as it stands in a packet, before it is hidden."""
    kind, value = given.kind, given.value
    front = b"" if given.tag is None else bytes([given.tag])
    if kind.our_type in ("integer", "date"):
        return front + value.to_bytes(4 - len(front), "big")
    if kind.our_type == "integer64":
        return value.to_bytes(8, "big")
    if kind.our_type == "ipv6prefix":
        return bytes([0, value[1]]) + value[0].packed
    if kind.our_type in ("ipaddr", "ipv6addr"):
        return value.packed
    return front + value


def most_wire_bytes(given):
    """At least as many bytes as the attribute takes in the packet."""
    value = BLOCK if given.value is None else len(plain_wire(given))
    headers = (value // LONGEST_PIECE + 1) * (ATTRIBUTE_HEADER + VENDOR_HEADER)
    return headers + value + (SALT_LENGTH + BLOCK if given.kind.method else 0)


class RandomPackets:
    """What both directions have in common."""

    def __init__(self, seed):
        self.seed = seed
        self.families = collections.defaultdict(list)
        for kind in catalogue():
            if kind.peer_key != MESSAGE_AUTHENTICATOR:
                self.families[kind.family].append(kind)
        self.random = None

    def secret(self, batch):
        self.random = random.Random(f"secret {self.seed} {batch}")
        return bytes(self.random.randrange(1, 256)
                     for _ in range(self.random.choice(SECRET_LENGTHS)))

    def exchange(self, index):
        self.random = random.Random(f"{type(self).__name__} {self.seed} {index}")
        request_code, response_code = self.random.choice(CODE_PAIRS)
        identifier = index % 256
        return Exchange(self.packet(request_code, identifier),
                        self.packet(response_code, identifier))

    def packet(self, code, identifier):
        return Packet(code, identifier, self.random.randbytes(AUTHENTICATOR_LENGTH),
                      self.attributes(code))

    def attributes(self, code):
        """Groups stay together: the pieces of a value that may be split must be neighbours."""
        groups, seen = [], set()
        left = LONGEST_PACKET - HEADER_LENGTH - most_wire_bytes(MESSAGE_AUTHENTICATOR_GIVEN)
        for _ in range(self.random.choice(ATTRIBUTE_COUNTS)):
            kind = self.kind(code)
            group = [self.given(kind) for _ in range(self.random.choice([1, 1, 1, 2, 3]))]
            left -= sum(map(most_wire_bytes, group))
            if left < 0:
                break
            if not (kind.is_concat and kind in seen):
                groups.append(group)
            seen.add(kind)
        if any(map(holds_eap, groups)) or self.random.random() < 0.4:
            groups.insert(self.random.randint(0, len(groups)), [MESSAGE_AUTHENTICATOR_GIVEN])
        return [given for group in groups for given in group]

    def kind(self, code):
        if self.random.random() < 0.04:
            return self.unknown_kind()
        family = self.random.choice(list(self.families.values()))
        kind = self.random.choice(family)
        return kind if self.may_hold(code, kind) else self.kind(code)

    def may_hold(self, code, kind):
        return True

    def unknown_kind(self):
        if self.random.random() < 0.5:
            return unknown_kind(self.random.choice([191, 200, 229, 255]))
        return unknown_kind(self.random.randrange(256),
                            self.random.choice([1, EXAMPLE_VENDOR_ID + 1, 2**32 - 1]))

    def given(self, kind):
        tag = self.random.randint(0, LAST_TAG) if kind.is_tagged else None
        return Given(kind, tag, self.value(kind, tag))

    # ---- Values ----

    def room(self, kind):
        """How many bytes a value may have."""
        if kind.is_user_password:
            return LONGEST_PASSWORD
        left = LONGEST_PIECE - VENDOR_HEADER * kind.is_vendors - kind.is_tagged
        if kind.method == SALTED_METHOD:
            return (left - SALT_LENGTH) // BLOCK * BLOCK - 1
        return left

    def value(self, kind, tag):
        if kind.our_type == "string":
            return self.text(kind)
        if kind.our_type in ("octets", "unknown"):
            return self.octets(kind)
        if kind.our_type in ADDRESS_TYPES:
            return self.address(kind.our_type)
        bits = {"integer": 32, "date": 32, "integer64": 64}[kind.our_type]
        return self.number(24 if tag is not None else bits)

    def number(self, bits):
        return self.random.choice([0, 1, 2**bits - 1, self.random.getrandbits(bits),
                                   self.random.randrange(20)])

    def address(self, data_type):
        if data_type == "ipaddr":
            return ipaddress.IPv4Address(self.number(32))
        if data_type == "ifid":
            return self.random.randbytes(8)
        address = ipaddress.IPv6Address(self.number(128))
        return address if data_type == "ipv6addr" else (address, self.random.randint(0, 128))

    def length(self, most):
        draw = self.random.random()
        if draw < 0.2:
            return min(most, self.random.choice([0, 1, 15, 16, 17, 32, most - 1, most]))
        return self.random.randint(0, min(most, 32) if draw < 0.95 else most)

    def octets(self, kind):
        return self.random.randbytes(NARROW_BYTES.get(kind.peer_type) or self.length(self.room(kind)))

    def text(self, kind):
        """Mostly UTF-8, sometimes any bytes. The password method's padding is zeros, so that text
        which ends with one cannot be told from shorter text."""
        length = self.length(self.room(kind))
        draw = self.random.random()
        if draw < 0.25:
            value = self.random.randbytes(length)
        else:
            letters = "abcXYZ 0189-=\"\\'#:,%\n\t\r\x01\x7fäß€😀\u2028" if draw < 0.6 else "abc09.-@"
            value = "".join(self.random.choices(letters, k=length)).encode()[:length]
            value = value.decode(errors="ignore").encode().ljust(length, b"x")
        return value.rstrip(b"\0") if kind.method == PASSWORD_METHOD else value


class OurPackets(RandomPackets):
    """Packets that `radius-packet build` can be told."""

    def attributes(self, code):
        attributes = super().attributes(code)
        # One attribute cannot be told both by its number and by its name.
        raw = {given.kind: self.told_by_number(given.kind) for given in attributes}
        return [given._replace(is_raw=raw[given.kind]) for given in attributes]

    def told_by_number(self, kind):
        if kind.our_type in ("unknown", "integer64") or (kind.is_vendors and
                                                         kind.our_type in ADDRESS_TYPES):
            return True
        return (not kind.method and not kind.is_concat and kind is not MESSAGE_AUTHENTICATOR_KIND
                and self.random.random() < 0.1)

    def octets(self, kind):
        if kind.is_concat:
            return self.random.randbytes(self.random.choice(
                [1, LONGEST_PIECE, LONGEST_PIECE + 1, 2 * LONGEST_PIECE,
                 self.random.randint(1, 1000)]))
        return super().octets(kind)


class PeerPackets(RandomPackets):
    """Packets that pyrad can be told, and some that it should not make."""

    HIDDEN_FLAWS = ["empty-password", "long-password"]
    CLEAR_FLAWS = ["unsigned-eap", "several-in-one-vsa"]

    def may_hold(self, code, kind):
        """No peer hides values in the requests whose authenticator is a digest, nor those that it
        splits."""
        return not kind.method or (code not in DIGEST_REQUESTS and not kind.is_concat)

    def packet(self, code, identifier):
        packet = super().packet(code, identifier)
        return packet if self.random.random() < 0.8 else self.flawed(packet)

    def flawed(self, packet):
        """The flaw is the last attribute; what pyrad tells of the same kind it moves together, so
        that none of that kind may stand in front."""
        can_hide = packet.code not in DIGEST_REQUESTS
        flaw = self.random.choice(self.CLEAR_FLAWS + self.HIDDEN_FLAWS * can_hide)
        if flaw == "unsigned-eap":
            eap = next(kind for kinds in self.families.values() for kind in kinds
                       if kind.peer_key == EAP_MESSAGE)
            unsigned = [given for given in packet.attributes
                        if given.kind not in (eap, MESSAGE_AUTHENTICATOR_KIND)]
            return packet._replace(flaw=flaw, attributes=[*unsigned, self.given(eap)])
        attributes = [given for given in packet.attributes if not given.kind.is_user_password]
        # The flaw needs room of its own.
        while sum(map(most_wire_bytes, attributes)) > LONGEST_PACKET // 2:
            attributes.pop()
        if holds_eap(attributes) and MESSAGE_AUTHENTICATOR_GIVEN not in attributes:
            attributes.insert(0, MESSAGE_AUTHENTICATOR_GIVEN)
        return packet._replace(flaw=flaw, attributes=attributes)

    def given(self, kind):
        if (kind.is_tagged and not kind.method and kind.our_type == "string"
                and self.random.random() < 0.3):
            first = bytes([self.random.randint(LAST_TAG + 1, 255)])
            return Given(kind, None, first + self.text(kind))
        return super().given(kind)

    def room(self, kind):
        """What the password method hides is padded to whole blocks."""
        most = super().room(kind)
        return most // BLOCK * BLOCK if kind.method == PASSWORD_METHOD else most

    def octets(self, kind):
        if kind.method == PASSWORD_METHOD:
            return self.random.randbytes(self.random.randint(0, self.room(kind) // BLOCK) * BLOCK)
        if not kind.method and self.random.random() < 0.05 and kind.peer_type == "octets":
            return b"0x" + self.random.randbytes(self.random.randint(0, 40)).hex().encode()
        value = super().octets(kind)
        return b"0y" + value[2:] if value.startswith(b"0x") else value
