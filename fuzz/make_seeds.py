#!/usr/bin/env python3
"""Writes the seeds that come from elsewhere in the project: golden packets and the dictionary set.

A seed of fuzz_packet is what the target reads: a byte of choices, the secret's length, the secret,
the packet. A seed of fuzz_dictionary is a dictionary file as it is.
"""

import pathlib
import re

HERE = pathlib.Path(__file__).parent
GOLDEN = HERE.parent / "tests" / "data" / "packets"
DICTIONARIES = HERE.parent / "dictionaries"
SIGNED = 1  # the target signs the packet anew, so that every seed reaches the walk


def write_packet_seeds():
    for source in sorted(GOLDEN.glob("*.txt")):
        text = source.read_text()
        secret = bytes.fromhex(re.search(r"^# secret:(.*)$", text, re.M)[1])
        packet = bytes.fromhex(re.sub(r"#.*", "", text))
        seed = bytes([SIGNED, len(secret)]) + secret + packet
        (HERE / "fuzz_packet.corpus" / source.stem).write_bytes(seed)


def write_dictionary_seeds():
    for source in sorted(DICTIONARIES.iterdir()):
        (HERE / "fuzz_dictionary.corpus" / source.name).write_bytes(source.read_bytes())


if __name__ == "__main__":
    write_packet_seeds()
    write_dictionary_seeds()
