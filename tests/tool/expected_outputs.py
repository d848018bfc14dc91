"""Whole outputs of the program on golden packets, in files named for the packet."""

from golden_files import golden_packets
from program import run


class ExpectedOutputs:
    """Those of one folder below `tests/data/outputs`. They were read line by line before they were
    committed; after a change on purpose they are read and committed again."""

    def __init__(self, data, folder, *arguments):
        self.packets = data / "packets"
        self.files = sorted((data / "outputs" / folder).glob("*.txt"))
        self.golden = {golden.path.stem: golden for golden in golden_packets(data)}
        self.arguments = arguments

    def cases(self):
        """Golden packet and expected output of each file."""
        return [(self.golden[path.stem], path.read_text()) for path in self.files]

    def result(self, golden, *arguments):
        return run(*self.arguments, *arguments, golden.path.name, cwd=self.packets)
