#!/usr/bin/env python3
"""Installs what a build made, and uses it as others do: through CMake, pkg-config, as a part of
another build, and from Debian packages. `--write-symbols` writes the list of exported symbols anew,
`--write-abi` what abidiff compares the library with.
"""
import lzma
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent
CONSUMER = HERE / "consumer"
SYMBOLS = HERE / "exported_symbols.txt"
ABI = HERE / "abi.xml.xz"
BUILD = SOURCE = LIBRARY = None
EXPECTED = "success 26 good\n"  # what the consumer prints
# A packet whose attributes only a dictionary can name.
DECODE = ["decode", "--secret", "xyzzy5461",
          HERE.parent / "data" / "packets" / "rfc2865-7.1-access-request.txt"]
DECODED = 'User-Name = "nemo"'


def run(*command, **options):
    """What a command prints; its whole output when it fails."""
    result = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True, check=False, **options)
    if result.returncode != 0:
        raise AssertionError(f"{command} gave {result.returncode}:\n{result.stdout}")
    return result.stdout


def exported_symbols():
    """The names that the library exports, but for those of the standard library, of which each
    compiler leaves others."""
    foreign = re.compile(r"((vtable|typeinfo|typeinfo name) for )?std::")
    names = set()
    for line in run("nm", "--dynamic", "--demangle", "--defined-only", LIBRARY).splitlines():
        _, kind, name = line.split(" ", 2)
        if kind in "TDBRV" and not foreign.match(name):
            names.add(name)
    return sorted(names)


def write_abi(path):
    """Writes the binary interface of the library, which was built with debug information."""
    headers = [word for folder in ("RadiusPacketParser", "Platform")
               for word in ("--headers-dir", SOURCE / folder)]
    run("abidw", *headers, "--drop-private-types", "--exported-interfaces-only", "--no-show-locs",
        "--no-corpus-path", "--no-comp-dir-path", "--no-elf-needed", "--out-file", path, LIBRARY)


def consume(*options, library_path=None):
    """Builds the consumer with CMake and gives what it prints."""
    with tempfile.TemporaryDirectory() as folder:
        run("cmake", "-S", CONSUMER, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
            *options)
        run("cmake", "--build", folder, "--target", "consumer")
        return run(pathlib.Path(folder) / "consumer", SOURCE / "dictionaries" / "dictionary",
                   env=environment(library_path))


def install(packages, root):
    """Has dpkg install packages into a root of its own, where nothing is. What they depend on is
    the system's."""
    database = root / "var" / "lib" / "dpkg"
    (database / "updates").mkdir(parents=True)
    (database / "info").mkdir()
    (database / "status").touch()
    (root / "etc").mkdir()  # where the loader's cache goes
    run("dpkg", f"--root={root}", "--force-not-root", "--force-depends", "--force-bad-path",
        "--force-script-chrootless", "--log=/dev/null", "--install", *packages)


def environment(library_path):
    return dict(os.environ, **({"LD_LIBRARY_PATH": str(library_path)} if library_path else {}))


class Installed(unittest.TestCase):
    """What `cmake --install` puts into a folder of its own."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.prefix = pathlib.Path(cls.folder.name)
        run("cmake", "--install", BUILD, "--prefix", cls.prefix)
        cls.libraries = next(cls.prefix.glob("lib*/**/libRadiusPacketParser.so")).parent

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_serves_a_cmake_project(self):
        self.assertEqual(
            consume(f"-DCMAKE_PREFIX_PATH={self.prefix}", library_path=self.libraries), EXPECTED)

    def test_serves_pkg_config(self):
        search = dict(os.environ, PKG_CONFIG_PATH=str(self.libraries / "pkgconfig"))
        flags = run("pkg-config", "--cflags", "--libs", "radius-packet-parser", env=search).split()
        program = self.prefix / "consumer"
        run("g++", "-std=c++20", CONSUMER / "main.cpp", "-o", program, *flags)
        self.assertEqual(run(program, SOURCE / "dictionaries" / "dictionary",
                             env=environment(self.libraries)), EXPECTED)

    def test_has_the_tool_with_its_dictionaries(self):
        self.assertIn(DECODED, run(self.prefix / "bin" / "radius-packet", *DECODE))

    def test_has_the_manual_page(self):
        page = self.prefix / "share" / "man" / "man1" / "radius-packet.1"
        self.assertTrue(page.read_text(encoding="utf-8").startswith(".Dd "))

    def test_keeps_to_itself_what_is_not_the_interface(self):
        headers = [path.name for path in self.prefix.glob("include/**/*.h")]
        self.assertIn("RadiusPktParser.h", headers)
        self.assertEqual([name for name in headers if name.endswith(".detail.h")], [])
        self.assertNotIn("FaultSeam.h", headers)


class Library(unittest.TestCase):
    def test_has_a_versioned_name(self):
        dynamic = run("readelf", "--dynamic", LIBRARY)
        self.assertEqual(re.search(r"SONAME.*\[(.*)\]", dynamic)[1],
                         "libRadiusPacketParser.so.0.1")

    def test_depends_on_libcrypto_and_fmt_alone(self):
        needed = re.findall(r"NEEDED.*\[(.*)\]", run("readelf", "--dynamic", LIBRARY))
        runtime = {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6"}
        own = sorted(name.split(".so")[0] for name in set(needed) - runtime)
        self.assertEqual([name for name in own if not name.startswith("ld-")],
                         ["libcrypto", "libfmt"])

    def test_exports_what_the_list_says(self):
        self.assertEqual(exported_symbols(), SYMBOLS.read_text(encoding="utf-8").splitlines())


    @unittest.skipUnless(shutil.which("abidiff"), "abidiff is not installed")
    def test_has_the_binary_interface_of_the_baseline(self):
        with tempfile.TemporaryDirectory() as folder:
            baseline, built = pathlib.Path(folder) / "baseline.xml", pathlib.Path(folder) / "built.xml"
            baseline.write_bytes(lzma.decompress(ABI.read_bytes()))
            write_abi(built)
            run("abidiff", baseline, built)


class Subproject(unittest.TestCase):
    def test_builds_as_a_part_of_another_project(self):
        self.assertEqual(consume(f"-DRADIUS_SOURCE={SOURCE}"), EXPECTED)


class DebianPackages(unittest.TestCase):
    def test_work_in_an_empty_root(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder) / "root"
            run("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", folder)
            packages = sorted(pathlib.Path(folder).glob("*.deb"))
            self.assertEqual([package.name.split("_")[0] for package in packages],
                             ["libradiuspacketparser-dev", "libradiuspacketparser0.1",
                              "radius-packet"])
            install(packages, root)
            depends = run("dpkg-deb", "--field", packages[1], "Depends")
            self.assertRegex(depends, "libssl3")
            self.assertRegex(depends, "libfmt9")
            self.assertRegex(run("dpkg-deb", "--field", packages[2], "Depends"), "libpcap0.8")
            self.assertIn(DECODED, run(root / "usr" / "bin" / "radius-packet", *DECODE))
            libraries = next(root.glob("usr/lib/**/libRadiusPacketParser.so")).parent
            self.assertEqual(
                consume(f"-DCMAKE_PREFIX_PATH={root / 'usr'}", library_path=libraries), EXPECTED)


if __name__ == "__main__":
    BUILD, SOURCE, LIBRARY = (
        pathlib.Path(argument) for argument in sys.argv[1:] if not argument.startswith("--"))
    if "--write-abi" in sys.argv:
        with tempfile.NamedTemporaryFile(suffix=".xml") as plain:
            write_abi(plain.name)
            ABI.write_bytes(lzma.compress(pathlib.Path(plain.name).read_bytes(), preset=9))
        sys.exit()
    if "--write-symbols" in sys.argv:
        SYMBOLS.write_text("".join(f"{name}\n" for name in exported_symbols()), encoding="utf-8")
        sys.exit()
    unittest.main(argv=sys.argv[:1])
