#!/usr/bin/env python3
"""Writes the seeds of fuzz_packet from the golden packets.

A seed is what the target reads: a byte of choices, the secret's length, the secret, the packet.
"""

import pathlib
import re

HERE = pathlib.Path(__file__).parent
GOLDEN = HERE.parent / "tests" / "data" / "packets"
SIGNED = 1  # the target signs the packet anew, so that every seed reaches the walk


def main():
    for source in sorted(GOLDEN.glob("*.txt")):
        text = source.read_text()
        secret = bytes.fromhex(re.search(r"^# secret:(.*)$", text, re.M)[1])
        packet = bytes.fromhex(re.sub(r"#.*", "", text))
        seed = bytes([SIGNED, len(secret)]) + secret + packet
        (HERE / "fuzz_packet.corpus" / source.stem).write_bytes(seed)


if __name__ == "__main__":
    main()
