#!/usr/bin/env python3
"""Writes the seeds that come from elsewhere in the project: golden packets, the dictionary set, and
captures.

A seed of fuzz_packet is what the target reads: a byte of choices, the secret's length, the secret,
the packet; a seed of fuzz_legacy the secret's length, the secret, a byte of choices, the length of
the operations in two bytes, the operations, the packet. A seed of fuzz_dictionary is a dictionary file as it is,
and one of fuzz_capture a capture.
"""

import pathlib
import re

HERE = pathlib.Path(__file__).parent
GOLDEN = HERE.parent / "tests" / "data" / "packets"
CAPTURES = HERE.parent / "tests" / "data" / "captures"
DICTIONARIES = HERE.parent / "dictionaries"
# What to read, set, add and remove, then each way to look at the packet, change it and edit it.
REQUESTS = b"".join(bytes([4, kind, kind % 5, 0, kind]) for kind in range(1, 12))
LOOKS = b"".join(bytes([2, look]) for look in range(8))
CHANGES = b"".join(bytes([1, change]) for change in range(6))
EDITS = b"".join(bytes([2, edit]) for edit in (6, 7, 15))
STEPS = REQUESTS + LOOKS + CHANGES + EDITS + LOOKS
OPERATIONS = len(STEPS).to_bytes(2, "big") + STEPS
SIGNED = 1  # the target signs the packet anew, so that every seed reaches the walk


def write_packet_seeds():
    for source in sorted(GOLDEN.glob("*.txt")):
        text = source.read_text()
        secret = bytes.fromhex(re.search(r"^# secret:(.*)$", text, re.M)[1])
        packet = bytes.fromhex(re.sub(r"#.*", "", text))
        seed = bytes([SIGNED, len(secret)]) + secret + packet
        (HERE / "fuzz_packet.corpus" / source.stem).write_bytes(seed)
        legacy = bytes([len(secret)]) + secret + bytes([0]) + OPERATIONS + packet
        (HERE / "fuzz_legacy.corpus" / source.stem).write_bytes(legacy)


def write_dictionary_seeds():
    for source in sorted(DICTIONARIES.iterdir()):
        (HERE / "fuzz_dictionary.corpus" / source.name).write_bytes(source.read_bytes())


def write_capture_seeds():
    for source in sorted(CAPTURES.rglob("*.pcap*")):
        (HERE / "fuzz_capture.corpus" / source.name).write_bytes(source.read_bytes())


if __name__ == "__main__":
    write_packet_seeds()
    write_dictionary_seeds()
    write_capture_seeds()
