"""Checks that includes run one way, from the ground floor up."""

import re
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]

LIBRARY = "RadiusPacketParser"

# What each layer stands on directly. A layer may include itself and all that it stands on, at any
# depth; everything else is against the direction. Inside the library each unit is a layer.
STANDS_ON = {
    "Verda": [],
    "Tyl": ["Verda"],
    "Zonet": ["Tyl"],
    "ZoCrypto": ["Tyl"],
    "RadiusPacketConstants": ["Zonet", "ZoCrypto"],
    "RadiusDictionaryParser": ["RadiusPacketConstants"],
    "RadiusPktTypes": ["RadiusDictionaryParser"],
    "RadiusPktCommon": ["RadiusPktTypes"],
    "RadiusPktBuilder": ["RadiusPktCommon"],
    # A source of RadiusPktCommon that reads what a build is asked for; no header knows it.
    "RadiusPktCommon.assembly": ["RadiusPktBuilder"],
    "RadiusPktParser": ["RadiusPktCommon"],
    "RadiusPktParserTest": ["RadiusPktParser"],
    "RadiusPacketParser": ["RadiusPktCommon"],
    # The tool: what concerns the process, what is written and read, what is done with packets, and
    # what the command line offers of it. Each folder is a layer.
    "tool/process": ["RadiusPktBuilder", "RadiusPktParserTest", "RadiusPacketParser"],
    "tool/text": ["tool/process"],
    "tool/capture": ["tool/text"],
    "tool/input": ["tool/capture"],
    "tool/dictionary": ["tool/text"],
    "tool/decoding": ["tool/input"],
    "tool/checks": ["tool/decoding"],
    "tool/output": ["tool/checks"],
    "tool/anatomy": ["tool/output"],
    "tool/making": ["tool/decoding"],
    "tool/options": ["tool/dictionary", "tool/anatomy", "tool/making"],
    "tool/commands": ["tool/options"],
    "tool": ["tool/commands"],
    "examples": ["RadiusPktBuilder", "RadiusPktParserTest", "RadiusPacketParser"],
    "tests": ["tool", "examples"],
    "bench": ["tests"],
    "fuzz": ["tests"],
}

GROUND_FLOOR = ("Verda", "Tyl", "Zonet", "ZoCrypto")
TOP_FOLDERS = ("Platform", LIBRARY, "tool", "examples", "tests", "bench", "fuzz")

# Whose headers are kept to one place: the layers that may include them.
KEPT_APART = {
    "openssl": ("ZoCrypto", "tests", "bench"),
    "CLI": ("tool/options", "tool/commands", "tool", "tests"),
    "nlohmann": ("tool/text", "tool/dictionary", "tool/output", "tool/anatomy", "tests"),
    "pcap": ("tool/capture",),
    "gtest": ("tests", "fuzz"),
    "gmock": ("tests", "fuzz"),
    "benchmark": ("bench",),
}

QUOTED = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
BRACKETED = re.compile(r"^\s*#\s*include\s*<([^>]+)>", re.MULTILINE)


def reach(layer):
    """All layers that `layer` may include, itself too."""
    layers = {layer}
    for below in STANDS_ON[layer]:
        layers |= reach(below)
    return layers


def layer_of_file(path):
    """The layer of a source, named from the root of the project; None when it has none."""
    parts = path.parts
    if parts[0] == "Platform":
        return layer_of_include("/".join(parts[1:]))
    return layer_of_include("/".join(parts))


def layer_of_include(name):
    """The layer of a quoted include; None when it names none."""
    first, _, rest = name.partition("/")
    if not rest:
        return None
    source = rest.rpartition(".")[0]
    layer = first
    if first == LIBRARY:
        layer = source if source in STANDS_ON else rest.split(".")[0]
    elif first == "tool" and "/" in rest:
        layer = name.rpartition("/")[0]
    return layer if layer in STANDS_ON else None


def faults_of(path, text):
    layer = layer_of_file(path)
    if layer is None:
        return [f"{path}: belongs to no layer"]
    faults = []
    for name in QUOTED.findall(text):
        target = layer_of_include(name)
        if target is None:
            faults.append(f'{path}: "{name}" names no layer')
        elif target not in reach(layer):
            faults.append(f'{path}: "{name}" is against the direction')
    for name in BRACKETED.findall(text):
        owners = KEPT_APART.get(name.partition("/")[0])
        if layer_of_include(name) is not None:
            faults.append(f"{path}: <{name}> is ours, and quoted")
        elif owners is not None and layer not in owners:
            faults.append(f"{path}: <{name}> is kept to {', '.join(owners)}")
    return faults


def sources_of(root):
    return sorted(
        path
        for folder in TOP_FOLDERS
        for pattern in ("*.h", "*.cpp")
        for path in (root / folder).rglob(pattern)
    )


def faults_in(root):
    """All faults of the tree at `root`, in order of path and line."""
    return [
        fault
        for path in sources_of(root)
        for fault in faults_of(path.relative_to(root), path.read_text(encoding="utf-8"))
    ]


class TheProject(unittest.TestCase):
    def test_includes_run_one_way(self):
        self.assertEqual(faults_in(ROOT), [])

    def test_every_layer_of_the_ground_floor_was_read(self):
        layers = {layer_of_file(path.relative_to(ROOT)) for path in sources_of(ROOT)}
        self.assertLessEqual({*GROUND_FLOOR, "RadiusPacketConstants", "tests"}, layers)


class AViolation(unittest.TestCase):
    """The rules themselves, on trees of one file."""

    def faults_of_tree(self, name, text):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / name
            path.parent.mkdir(parents=True)
            path.write_text(text, encoding="utf-8")
            return faults_in(Path(folder))

    def test_is_an_include_against_the_direction(self):
        cases = [
            ("Platform/Verda/Bad.h", "Tyl/Enumeration.h"),
            ("Platform/Verda/Bad.h", "Zonet/Pkt.h"),
            ("Platform/Tyl/Bad.cpp", "Zonet/Pkt.h"),
            ("Platform/Zonet/Bad.h", "ZoCrypto/Random.h"),
            ("Platform/ZoCrypto/Bad.h", "Zonet/Pkt.h"),
            ("Platform/Zonet/Bad.h", "RadiusPacketParser/RadiusPacketConstants.h"),
            ("RadiusPacketParser/RadiusPacketConstants.h", "RadiusPacketParser/RadiusPktTypes.h"),
            ("RadiusPacketParser/RadiusDictionaryParser.h", "RadiusPacketParser/RadiusPktTypes.h"),
            ("RadiusPacketParser/RadiusPktTypes.cpp", "RadiusPacketParser/RadiusPktCommon.h"),
            ("RadiusPacketParser/RadiusPktCommon.cpp", "RadiusPacketParser/RadiusPktParser.h"),
            ("RadiusPacketParser/RadiusPktBuilder.cpp", "RadiusPacketParser/RadiusPktParser.h"),
            ("RadiusPacketParser/RadiusPktParser.cpp", "RadiusPacketParser/RadiusPktBuilder.h"),
            ("RadiusPacketParser/RadiusPktParser.h", "RadiusPacketParser/RadiusPktParserTest.h"),
            ("RadiusPacketParser/RadiusPacketParser.h", "RadiusPacketParser/RadiusPktParser.h"),
            ("RadiusPacketParser/RadiusPktCommon.h", "RadiusPacketParser/RadiusPacketParser.h"),
            ("RadiusPacketParser/RadiusPktCommon.h", "tool/decoding/PacketDecoder.h"),
            ("tool/commands/Bad.cpp", "tests/support/Hex.h"),
            ("tool/commands/Bad.cpp", "examples/Agent.h"),
            ("examples/Bad.cpp", "tool/decoding/PacketDecoder.h"),
            ("tool/text/Bad.h", "tool/decoding/PacketReport.h"),
            ("tool/commands/Bad.h", "tool/CommandLine.h"),
        ]
        for path, include in cases:
            with self.subTest(path=path, include=include):
                self.assertEqual(
                    self.faults_of_tree(path, f'#pragma once\n\n#include "{include}"\n'),
                    [f'{path}: "{include}" is against the direction'],
                )

    def test_is_an_include_that_names_no_layer(self):
        for include in ("Ptr.h", "../Tyl/Entity.h", "RadiusPacketParser/Elsewhere.h"):
            with self.subTest(include=include):
                self.assertEqual(
                    self.faults_of_tree("Platform/Verda/Bad.h", f'#include "{include}"\n'),
                    [f'Platform/Verda/Bad.h: "{include}" names no layer'],
                )

    def test_is_a_source_that_belongs_to_no_layer(self):
        paths = ("RadiusPacketParser/Elsewhere.cpp", "Platform/Elsewhere/Bad.h", "tool/new/Bad.h")
        for path in paths:
            with self.subTest(path=path):
                self.assertEqual(self.faults_of_tree(path, ""), [f"{path}: belongs to no layer"])

    def test_is_a_header_of_ours_in_angle_brackets(self):
        self.assertEqual(
            self.faults_of_tree("Platform/Verda/Bad.h", "  #  include <Tyl/Entity.h>\n"),
            ["Platform/Verda/Bad.h: <Tyl/Entity.h> is ours, and quoted"],
        )

    def test_is_a_foreign_header_outside_its_place(self):
        self.assertEqual(
            self.faults_of_tree("RadiusPacketParser/RadiusPktCommon.cpp", "#include <openssl/md5.h>"),
            ["RadiusPacketParser/RadiusPktCommon.cpp: <openssl/md5.h> is kept to ZoCrypto, tests, bench"],
        )
        self.assertEqual(
            self.faults_of_tree("tool/main.cpp", "#include <gtest/gtest.h>"),
            ["tool/main.cpp: <gtest/gtest.h> is kept to tests, fuzz"],
        )

    def test_is_found_behind_includes_that_are_right(self):
        text = '#include <vector>\n#include "Verda/Ptr.h"\n#include "Tyl/Entity.h"\n'
        self.assertEqual(
            self.faults_of_tree("Platform/Verda/Bad.h", text),
            ['Platform/Verda/Bad.h: "Tyl/Entity.h" is against the direction'],
        )


class RightIncludes(unittest.TestCase):
    def path_in(self, layer):
        if layer in GROUND_FLOOR:
            return Path("Platform") / layer / "Good.h"
        if layer.split("/")[0] in TOP_FOLDERS[2:]:
            return Path(layer) / "Good.h"
        return Path(LIBRARY) / f"{layer}.h"

    def test_from_every_layer_below_are_no_faults(self):
        for layer in STANDS_ON:
            names = (self.path_in(below).as_posix() for below in reach(layer))
            text = "".join(f'#include "{name.removeprefix("Platform/")}"\n' for name in names)
            with self.subTest(layer=layer):
                self.assertEqual(faults_of(self.path_in(layer), text), [])


if __name__ == "__main__":
    unittest.main()
