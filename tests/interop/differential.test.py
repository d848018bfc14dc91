"""Random packets that we build mean the same to pyrad, and those that pyrad makes to us.

    differential.test.py PROGRAM [COUNT [SEED]]

COUNT packets are made by each side, half of them requests and half the responses to them; from 500
on every known disagreement must be met. The same SEED gives the same packets, but for the salts that
the tool draws.
"""

import collections
import contextlib
import pathlib
import random
import re
import sys
import tempfile
import unittest

from peer_packets import skip

try:
    import pyrad.dictionary
    import pyrad.packet
    import pyrad.tools
except ImportError:
    skip("python3-pyrad is not installed")

import disagreements
import pyrad_packets
from attribute_catalogue import (MESSAGE_AUTHENTICATOR, MESSAGE_AUTHENTICATOR_KIND, SALTED_METHOD,
                                 TESTS, catalogue, peer_dictionary, write_our_dictionary)
from disagreements import (BUILT, FLAWS, MADE, OF_BUILT_VALUES, OF_MADE_VALUES, ORDER, Found,
                           agree_on_built, grouped, pieces)
from exchanges import ACCESS_REQUEST
from radius_digests import (BLOCK, NO_AUTHENTICATOR, SALT_LENGTH, authenticator,
                            message_authenticator, padded)
from random_packets import (DIGEST_REQUESTS, STATUS_SERVER, OurPackets, PeerPackets,
                            is_signed)
from tool_packets import Tool, packet_text, reported

LEAST_COUNT = 500
PROGRAM = sys.argv[1]
COUNT = int(sys.argv[2]) if len(sys.argv) > 2 else LEAST_COUNT
SEED = sys.argv[3] if len(sys.argv) > 3 else "1"

EXCHANGES_A_BATCH = 50
CODE_OFFSET, IDENTIFIER_OFFSET, LENGTH_OFFSETS = 0, 1, (2, 3)
RANDOM_AUTHENTICATORS = frozenset([ACCESS_REQUEST, STATUS_SERVER])
DOCUMENT = TESTS.parent / "docs" / "INTEROP.md"


class Batch:
    """Exchanges under one secret, each with its number in the run."""

    def __init__(self, packets, number):
        first = number * EXCHANGES_A_BATCH
        self.numbers = range(first, min(first + EXCHANGES_A_BATCH, COUNT // 2))
        self.secret = packets.secret(number)
        self.exchanges = [packets.exchange(at) for at in self.numbers]

    @property
    def wishes(self):
        return [packet for exchange in self.exchanges for packet in exchange]


def batches(packets):
    return (Batch(packets, number)
            for number in range((COUNT // 2 + EXCHANGES_A_BATCH - 1) // EXCHANGES_A_BATCH))


def pairs(flat):
    return list(zip(flat[::2], flat[1::2]))


class Differential(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.tool = Tool(PROGRAM, write_our_dictionary(pathlib.Path(folder.name)))
        cls.peer_dictionary = peer_dictionary(catalogue())

    def setUp(self):
        self.seen = collections.Counter()
        self.values = 0

    @contextlib.contextmanager
    def shown(self, number, exchange, wires, secret):
        """Has a failure say all that is needed to see it again."""
        try:
            yield
        except Exception as fault:
            texts = [f"{packet_text(wish)}# {wish.flaw or 'no flaw'}\n{wire.hex()}\n"
                     for wish, wire in zip(exchange, wires)]
            raise AssertionError("\n".join([
                f"{type(fault).__name__}: {fault}",
                f"seed {SEED}, exchange {number}, secret 0x{secret.hex()}", *texts])) from fault

    def check_all_known(self, known, what):
        """Every known disagreement was met; an unknown one would have failed before."""
        if COUNT >= LEAST_COUNT:
            self.assertEqual(set(self.seen), known, f"seed {SEED}")
        print(f"{what}: {COUNT // 2 * 2} packets, {self.values} values, seed {SEED}; "
              f"disagreements, all of them known: {sum(self.seen.values())}")
        for name, count in sorted(self.seen.items()):
            print(f"  {count:7} {name}")

    def check_known(self, known, *what):
        """Whether one of the known disagreements explains a value; it must then be exact."""
        for one in known:
            if one.applies(*what):
                self.seen[one.name] += 1
                self.assertTrue(one.holds(*what), (one.name, *what))
                return True
        return False

    # ---- What we build, pyrad reads ----

    def test_the_peer_reads_what_we_build(self):
        for batch in batches(OurPackets(SEED)):
            built, warnings = self.tool.build(batch.wishes, batch.secret)
            self.assertEqual(len(built), len(batch.wishes))
            self.check_warnings(batch, warnings)
            for number, exchange, pair in zip(batch.numbers, batch.exchanges, pairs(built)):
                with self.shown(number, exchange, pair, batch.secret):
                    self.check_built(exchange, pair, batch.secret)
        self.check_all_known(BUILT, "built by us")

    def check_warnings(self, batch, warnings):
        hidden = [given for wish in batch.wishes if wish.code in DIGEST_REQUESTS
                  for given in wish.attributes if given.kind.method]
        split = [given for wish in batch.wishes for given in wish.attributes
                 if given.kind.method and len(pieces(given)) > 1]
        said = [warning.partition(": warning: ")[2] for warning in warnings]
        in_part = "only the last piece of the value is hidden: the others stand in clear"
        self.assertEqual(said.count(in_part), len(split))
        self.assertEqual(len([text for text in said if text.startswith(
            "no receiver can reveal a value that is hidden in a packet of ")]), len(hidden))
        self.assertEqual(len(said), len(split) + len(hidden))

    def check_built(self, exchange, built, secret):
        *read, are_genuine = pyrad_packets.read(exchange, *built, secret, self.peer_dictionary)
        self.assertEqual(are_genuine, (True, True))
        vector = authenticator(built[0])
        signing_vectors = (NO_AUTHENTICATOR if exchange.request.code in DIGEST_REQUESTS else vector,
                           vector)
        for wish, wire, packet, signing_vector in zip(exchange, built, read, signing_vectors):
            self.assertEqual((packet.code, packet.id), (wish.code, wish.id))
            found = pyrad_packets.values(packet)
            self.check_signature(wish, wire, found, secret, signing_vector)
            self.check_values(wish, found, secret, vector)

    def check_signature(self, wish, wire, found, secret, vector):
        signatures = found.get(MESSAGE_AUTHENTICATOR, [])
        self.assertEqual(len(signatures), int(is_signed(wish)))
        for signature in signatures:
            self.assertEqual(wire.count(signature), 1)
            unsigned = wire.replace(signature, NO_AUTHENTICATOR)
            self.assertEqual(message_authenticator(unsigned, secret, vector), signature)

    def check_values(self, wish, found, secret, vector):
        expected = collections.defaultdict(list)
        for given in wish.attributes:
            expected[given.kind.peer_key] += (
                [None] if given.kind is MESSAGE_AUTHENTICATOR_KIND else pieces(given))
        self.assertEqual(list(found), list(expected))
        for peer_key, wires in found.items():
            self.assertEqual(len(wires), len(expected[peer_key]))
            for piece, wire in zip(expected[peer_key], wires):
                if piece is not None:
                    self.check_value(piece, Found(wire, wish.code, secret, vector))
        self.check_salts(wish, found)

    def check_value(self, piece, found):
        self.values += 1
        if piece.given.kind.is_user_password:
            # Padded to whole blocks and no further; an empty one is a block of padding.
            self.assertEqual(len(found.wire), len(padded(piece.plain)) or BLOCK)
        if not self.check_known(OF_BUILT_VALUES, piece, found):
            self.assertTrue(agree_on_built(piece, found), (piece, found))

    def check_salts(self, wish, found):
        """No two alike in a packet."""
        kinds = {given.kind for given in wish.attributes if given.kind.method == SALTED_METHOD}
        salts = [wire[kind.is_tagged:][:SALT_LENGTH]
                 for kind in kinds for wire in found[kind.peer_key]]
        self.assertEqual(len(set(salts)), len(salts))

    # ---- What pyrad makes, we read ----

    def made_by_peer(self, batch):
        return [pyrad_packets.make(exchange, batch.secret, self.peer_dictionary,
                                   disagreements.spoil) for exchange in batch.exchanges]

    def test_we_read_what_the_peer_makes(self):
        for batch in batches(PeerPackets(SEED)):
            made = self.made_by_peer(batch)
            reports = self.tool.decode([wire for pair in made for wire in pair], batch.secret)
            self.assertEqual(len(reports), len(batch.wishes))
            for number, exchange, pair, pair_reports in zip(batch.numbers, batch.exchanges, made,
                                                            pairs(reports)):
                with self.shown(number, exchange, pair, batch.secret):
                    for wish, wire, report in zip(exchange, pair, pair_reports):
                        self.check_made(wish, wire, report)
        self.check_all_known(MADE, "made by pyrad")

    def check_made(self, wish, wire, report):
        header = [report[name] for name in ("code", "id", "length", "authenticator")]
        self.assertEqual(header, [wish.code, wish.id, len(wire), authenticator(wire).hex()])
        self.assertEqual(report["messageAuthenticator"], is_signed(wish))
        self.check_error(wish, wire, report)
        sent = grouped(wish.attributes)
        if sent != wish.attributes:
            self.seen[ORDER] += 1
        self.assertEqual(len(report["attributes"]), len(sent))
        for given, attribute in zip(sent, report["attributes"]):
            self.check_reported(given, reported(attribute))

    def check_error(self, wish, wire, report):
        if not wish.flaw:
            self.assertEqual((report["error"], report["reason"]), ("success", None))
            return
        flaw = FLAWS[wish.flaw]
        self.seen[wish.flaw] += 1
        self.assertEqual(report["error"], flaw.error)
        self.assertTrue(flaw.peer_takes(pyrad_packets.values_in(wire)))

    def check_reported(self, given, found):
        self.values += 1
        kind = given.kind
        self.assertEqual((found.peer_key, found.name), (kind.peer_key, kind.name))
        if kind is MESSAGE_AUTHENTICATOR_KIND or self.check_known(OF_MADE_VALUES, given, found):
            return
        self.assertEqual((found.tag, found.value), (given.tag, given.value), given)

    def test_we_refuse_what_was_changed_on_the_way(self):
        """One byte of each packet whose authenticator is a digest."""
        checked = 0
        for batch in batches(PeerPackets(SEED)):
            flat, changes = [], {}
            made = self.made_by_peer(batch)
            for number, exchange, pair in zip(batch.numbers, batch.exchanges, made):
                flat += pair
                for wish, wire in zip(exchange, pair):
                    if wish.code not in RANDOM_AUTHENTICATORS:
                        changed, offset = changed_byte(wire, f"{SEED} {number} {wish.code}")
                        changes[len(flat)] = (number, exchange, pair, offset)
                        flat.append(changed)
            reports = self.tool.decode(flat, batch.secret)
            self.assertEqual(len(reports), len(flat))
            for at, (number, exchange, pair, offset) in changes.items():
                with self.shown(number, exchange, pair, batch.secret):
                    self.assertIn(reports[at]["error"], faults(offset), f"offset {offset}")
            checked += len(changes)
        self.assertGreater(checked, 0)
        print(f"changed on the way: {checked} packets, all refused")

    # ---- What the document lists ----

    def test_the_document_lists_what_is_known(self):
        listed = re.findall(r"^\| `([a-z0-9-]+)` \|", DOCUMENT.read_text(), re.MULTILINE)
        self.assertEqual(sorted(listed), sorted(BUILT | MADE | set(GAPS) | set(REFUSALS)))

    def test_the_peer_still_lacks_what_is_done_for_it(self):
        for name, (action, fault) in GAPS.items():
            with self.subTest(name):
                self.assertIs(disagreements.failure(action), fault)

    def test_the_tool_refuses_what_cannot_be_built(self):
        for name, (attribute, reason) in REFUSALS.items():
            with self.subTest(name):
                run = self.tool.run(["build"], f"1, id 1\n{attribute}\n", b"secret")
                self.assertEqual((run.returncode, run.stdout, run.stderr.decode()),
                                 (65, b"", f"radius-packet: -: line 2: {reason}\n"))


def changed_byte(wire, seed):
    """The packet with a byte changed, and where. What becomes of its code is no request with a
    random authenticator: that one is not checked."""
    draw = random.Random(seed)
    offset = draw.randrange(len(wire))
    others = set(range(256)) - {wire[offset]}
    byte = draw.choice(sorted(others - (RANDOM_AUTHENTICATORS if offset == CODE_OFFSET else set())))
    return wire[:offset] + bytes([byte]) + wire[offset + 1:], offset


def faults(offset):
    """How a packet may be refused that was changed there; none when no request is found that it
    answers."""
    if offset in (CODE_OFFSET, IDENTIFIER_OFFSET):
        return ["invalidPktAuth", None]
    return ["invalidPktAuth", "invalidPktLength"] if offset in LENGTH_OFFSETS else ["invalidPktAuth"]


def peer(**keys):
    return pyrad.packet.AuthPacket(secret=b"secret", authenticator=bytes(16), **keys)


# What pyrad cannot do, and how it fails when asked.
GAPS = {
    "no-salted-method": (lambda: peer().SaltCrypt(b"key"), TypeError),
    "no-message-authenticator": (lambda: peer().add_message_authenticator(), AttributeError),
    "no-interface-identifier": (lambda: pyrad.tools.EncodeAttr("ifid", "::1"), ValueError),
    "no-integer64": (lambda: pyrad.dictionary.Attribute("Name", 1, "integer64"), ValueError),
}

# What the library or the encoder of the tool cannot express, with what the tool says about it.
REFUSALS = {
    "vendor-value-too-long": (
        "Example-Unused = 0x" + "00" * 248,
        "Example-Unused: a value of 248 bytes: there is room for 247"),
    "vendor-address": (
        "MS-Primary-DNS-Server = 192.0.2.1",
        "MS-Primary-DNS-Server: a vendor's address cannot be written: Attr-26.311.28 = 0x... can"),
    "number-of-64-bits": (
        "MIP6-Feature-Vector = 1",
        "MIP6-Feature-Vector: a number of 64 bits cannot be written: Attr-124 = 0x... can"),
    "tagged-date": (
        "Example-Tagged-Date:1 = 1",
        "Example-Tagged-Date: a tagged date cannot be written: Attr-26.32473.13 = 0x... can"),
    "empty-concat": (
        "EAP-Message = 0x",
        "EAP-Message: an attribute that may be split cannot be written empty: "
        "Attr-79 = 0x... can"),
}


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
