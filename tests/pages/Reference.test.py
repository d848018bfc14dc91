#!/usr/bin/env python3
"""The reference of the interface is whole: every public name is described, the generated ones too.

    Reference.test.py DOXYGEN
"""

import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

DOXYGEN = sys.argv[1]
ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "docs" / "generate"))

from expanded import expanded  # noqa: E402

SETTINGS = (ROOT / "docs" / "Doxyfile").read_text(encoding="utf-8")


def made(folder, **settings):
    """What doxygen says when it writes the reference as XML into a folder, and how it ends."""
    more = {"OUTPUT_DIRECTORY": folder, "GENERATE_HTML": "NO", "GENERATE_XML": "YES",
            "XML_PROGRAMLISTING": "NO", **settings}
    configuration = SETTINGS + "".join(f"{key} = {value}\n" for key, value in more.items())
    done = subprocess.run([DOXYGEN, "-"], input=configuration, cwd=ROOT, capture_output=True,
                          text=True, timeout=300, check=False)
    return done.returncode, done.stdout + done.stderr


class Reference(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.status, cls.said = made(cls.folder.name)

    def described(self, compound):
        """Name -> description of each member of a class or namespace."""
        file = compound.replace("::", "_1_1") + ".xml"
        root = ElementTree.parse(f"{self.folder.name}/xml/{file}")
        return {member.findtext("name"): "".join(member.find("briefdescription").itertext()).strip()
                for member in root.iter("memberdef")}

    def test_describes_every_public_name(self):
        self.assertEqual((self.status, self.said), (0, ""))

    def test_describes_generated_accessors_by_their_attribute(self):
        members = self.described("classRadiusPktParserBase::RadiusHdr")
        self.assertEqual(members["code"], "The value, 0 until set: the packet's code.")
        self.assertEqual(members["codeIs"], "Sets it: the packet's code.")
        members = self.described("classRadiusPktParserBase::PktInfoBuilder")
        self.assertEqual(members["attributesToRemoveHas"], "Whether it is in the set: the attributes "
                                                           "of an existing packet to drop.")

    def test_describes_errors(self):
        root = ElementTree.parse(f"{self.folder.name}/xml/namespaceRadiusPktParserBase.xml")
        errors = {value.findtext("name"): "".join(value.itertext()) for value in
                  root.iter("enumvalue")}
        listed = re.findall(r"^  X\((\w+), ",
                            (ROOT / "RadiusPacketParser" / "RadiusPktTypes.h").read_text(
                                encoding="utf-8"), re.MULTILINE)
        self.assertEqual(list(errors), listed)
        self.assertIn("The authenticator does not verify.", errors["invalidPktAuth"])

    def test_has_the_installed_headers_and_no_others(self):
        files = {ElementTree.parse(path).find("compounddef/location").get("file")
                 for path in Path(self.folder.name, "xml").glob("*_8h.xml")}
        installed = {str(path.relative_to(base)) for base, folder in (
            (ROOT, "RadiusPacketParser"), (ROOT / "Platform", "."))
            for path in (base / folder).rglob("*.h")
            if not path.name.endswith(".detail.h") and path.name != "FaultSeam.h"}
        self.assertGreater(len(installed), 30)
        self.assertEqual(files, installed)


class Faults(unittest.TestCase):
    HEADER = """/// Here for the test.
namespace Here {{

/// An entity.
class VERDA_EXPORT Entity {{
 public:
  {}
  TYL_ATTRIBUTE(int, count, 0)
}};

}}  // namespace Here
"""

    def faults_of(self, comment):
        with tempfile.TemporaryDirectory() as folder:
            headers = Path(folder, "RadiusPacketParser")
            headers.mkdir()
            (headers / "Entity.h").write_text(self.HEADER.format(comment), encoding="utf-8")
            status, said = made(folder, INPUT=headers)
            return status, re.findall(r"error: Member (\w+)\(", said)

    def test_an_attribute_without_a_description_is_one(self):
        self.assertEqual(self.faults_of("/// How many."), (0, []))
        status, undescribed = self.faults_of("")
        self.assertNotEqual(status, 0)
        self.assertEqual(set(undescribed), {"count", "countIs"})

    def test_no_macro_is_left_over(self):
        for path in sorted((ROOT / "RadiusPacketParser").glob("*.h")):
            with self.subTest(path.name):
                header = path.read_text(encoding="utf-8")
                written_out = expanded(header)
                self.assertEqual(re.findall(r"^ *TYL_\w+", written_out, re.MULTILINE), [])
                self.assertEqual(written_out.count("\n"), header.count("\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
