"""Where we and pyrad read the same bytes, or the same wish, differently: docs/INTEROP.md says why.

A disagreement applies to a value or packet by what was given, and holds when both sides did exactly
what is known of them. Where none applies they agree.
"""

import binascii
from typing import Any, Callable, NamedTuple

from attribute_catalogue import (EAP_MESSAGE, MESSAGE_AUTHENTICATOR, NARROW_BYTES, PASSWORD_METHOD,
                                 USER_PASSWORD, VENDOR_SPECIFIC)
from pyrad_packets import hidden_password, password_of, value_of
from radius_digests import BLOCK, NO_AUTHENTICATOR, reveal, salt_reveal
from random_packets import DIGEST_REQUESTS, LONGEST_PASSWORD, LONGEST_PIECE, Given, plain_wire


class Piece(NamedTuple):
    """A value that we were told to send, or what of it goes into one attribute."""

    given: Given
    plain: bytes  # with the tag
    is_last: bool


class Found(NamedTuple):
    """What pyrad finds in the packet in the place of a piece."""

    wire: bytes
    code: int
    secret: bytes
    vector: bytes  # the authenticator that values are hidden with

    def revealed(self, kind, vector):
        """The value in clear, by our own means; raises ValueError when it was not hidden so."""
        tag, rest = (self.wire[:1], self.wire[1:]) if kind.is_tagged else (b"", self.wire)
        method = reveal if kind.method == PASSWORD_METHOD else salt_reveal
        plain = tag + method(rest, self.secret, vector)
        return plain.rstrip(b"\0") if kind.is_user_password else plain


class Disagreement(NamedTuple):
    name: str
    applies: Callable[..., Any]  # a truth value
    holds: Callable[..., bool]


def pieces(given):
    """The attributes that a value becomes: what a concat attribute holds is split when it is
    long."""
    plain = plain_wire(given)
    if not given.kind.is_concat:
        return [Piece(given, plain, True)]
    starts = range(0, len(plain), LONGEST_PIECE)
    return [Piece(given, plain[at:at + LONGEST_PIECE], at == starts[-1]) for at in starts]


def failure(action, *arguments):
    """The exception that an action ends with."""
    try:
        action(*arguments)
    except Exception as fault:
        return type(fault)
    return None


# ---- What we build, pyrad reads ----

def is_peers_password(piece):
    """Text that pyrad's own method for passwords can be asked to reveal."""
    kind = piece.given.kind
    return kind.method == PASSWORD_METHOD and kind.our_type == "string" and not kind.is_tagged


def read_with_tag(piece, found):
    kind = piece.given.kind
    expected = int.from_bytes(piece.plain, "big") if kind.our_type == "integer" else piece.plain
    return value_of(kind, found.wire) == expected


def fails_to_reveal(piece, found, fault):
    return (found.revealed(piece.given.kind, found.vector) == piece.plain
            and failure(password_of, found.wire, found.secret, found.vector) is fault)


def is_utf8(value):
    return failure(value.decode) is None


OF_BUILT_VALUES = [
    Disagreement(
        "concat-hidden-last-only",
        lambda piece, found: piece.given.kind.is_concat and piece.given.kind.method
        and not piece.is_last,
        lambda piece, found: found.wire == piece.plain),
    Disagreement(
        "hidden-under-header-bytes",
        lambda piece, found: found.code in DIGEST_REQUESTS and piece.given.kind.method
        and len(found.wire) > piece.given.kind.is_tagged,
        lambda piece, found: found.revealed(piece.given.kind, NO_AUTHENTICATOR) == piece.plain),
    Disagreement(
        "tag-kept-in-value",
        lambda piece, found: piece.given.kind.is_tagged and not piece.given.kind.method,
        read_with_tag),
    Disagreement(
        "narrow-number-built",
        lambda piece, found: piece.given.kind.peer_type in NARROW_BYTES,
        lambda piece, found: value_of(piece.given.kind, found.wire)
        == int.from_bytes(piece.plain, "big")),
    Disagreement(
        "hidden-not-padded",
        lambda piece, found: is_peers_password(piece) and not piece.given.kind.is_user_password
        and len(piece.plain) % BLOCK != 0,
        lambda piece, found: fails_to_reveal(piece, found, IndexError)),
    Disagreement(
        "password-not-utf8",
        lambda piece, found: is_peers_password(piece) and not is_utf8(piece.plain),
        lambda piece, found: fails_to_reveal(piece, found, UnicodeDecodeError)),
]


def agree_on_built(piece, found):
    kind = piece.given.kind
    if is_peers_password(piece):
        return password_of(found.wire, found.secret, found.vector) == piece.plain
    plain = found.revealed(kind, found.vector) if kind.method else found.wire
    if kind.is_tagged:
        return plain == piece.plain
    expected = piece.plain if kind.is_concat else piece.given.value
    return value_of(kind, plain) == expected


# ---- What pyrad makes, we read ----

OF_MADE_VALUES = [
    Disagreement(
        "tagged-without-tag",
        lambda given, reported: given.kind.is_tagged and given.tag is None,
        lambda given, reported: (reported.tag, reported.value) == (given.value[0],
                                                                   given.value[1:])),
    Disagreement(
        "octets-as-hex",
        lambda given, reported: given.kind.our_type == given.kind.peer_type == "octets"
        and not given.kind.method and given.value.startswith(b"0x"),
        lambda given, reported: reported.value == binascii.unhexlify(given.value[2:])),
    Disagreement(
        "narrow-number-made",
        lambda given, reported: given.kind.peer_type in NARROW_BYTES,
        lambda given, reported: reported.value == given.value),
]
ORDER = "order-across-types"


def grouped(attributes):
    """The order that pyrad sends: attributes of one type stand where the first of them stood."""
    groups = {}
    for given in attributes:
        groups.setdefault(given.kind.peer_key, []).append(given)
    return [given for group in groups.values() for given in group]


# ---- Packets that pyrad makes and we refuse ----

class Flaw(NamedTuple):
    error: str  # what we refuse the packet with
    spoil: Callable[..., Any]
    peer_takes: Callable[..., bool]  # whether pyrad finds the flaw and takes it


def add_password(packet, password, secret, vector):
    packet.AddAttribute(USER_PASSWORD, hidden_password(password, secret, vector))


VSA_OF_TWO = bytes.fromhex("00000001" "0103aa" "0203bb")

FLAWS = {
    "empty-password": Flaw(
        "invalidAttrLength",
        lambda packet, *keys: add_password(packet, b"", *keys),
        lambda found: found[USER_PASSWORD] == [b""]),
    "long-password": Flaw(
        "invalidAttrLength",
        lambda packet, *keys: add_password(packet, b"p" * (LONGEST_PASSWORD + 1), *keys),
        lambda found: len(found[USER_PASSWORD][0]) == LONGEST_PASSWORD + BLOCK),
    "several-in-one-vsa": Flaw(
        "invalidAttrLength",
        lambda packet, *_: packet.AddAttribute(VENDOR_SPECIFIC, VSA_OF_TWO),
        lambda found: (found[(1, 1)][-1], found[(1, 2)][-1]) == (b"\xaa", b"\xbb")),
    "unsigned-eap": Flaw(
        "missingRequiredMsgAuth",
        lambda *_: None,
        lambda found: EAP_MESSAGE in found and MESSAGE_AUTHENTICATOR not in found),
}


def spoil(packet, wish, secret, vector):
    if wish.flaw:
        FLAWS[wish.flaw].spoil(packet, secret, vector)


BUILT = frozenset(one.name for one in OF_BUILT_VALUES)
MADE = frozenset(one.name for one in OF_MADE_VALUES) | {ORDER} | set(FLAWS)
