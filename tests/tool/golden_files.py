"""The golden packets, read from their annotated files."""

import pathlib
import re


class Golden:
    def __init__(self, path):
        self.path, self.attributes, digits = path, [], ""
        for line in path.read_text().splitlines():
            directive = re.fullmatch(r"# ([a-z-]+):(?: (.*))?", line)
            if directive and not digits:
                key, value = directive[1], directive[2] or ""
                if key == "attribute":
                    self.attributes.append(value)
                else:
                    setattr(self, key.replace("-", "_"), value)
            digits += line.split("#")[0]
        self.packet = bytes.fromhex(digits)

    def options(self, folder):
        """The secret and the Request Authenticator as the program takes them."""
        secret = pathlib.Path(folder) / "secret"
        secret.write_bytes(bytes.fromhex(self.secret) + b"\n")
        given = ("-a", self.request_authenticator) if self.request_authenticator else ()
        return "-s", secret, *given


def golden_packets(data):
    """All of them. How many there should be stands beside the C++ tests."""
    return [Golden(path) for path in sorted((data / "packets").glob("*.txt"))]


def golden_count(data):
    text = (data.parent / "support" / "GoldenPackets.h").read_text()
    return int(re.search(r"goldenPacketCount = (\d+);", text)[1])
