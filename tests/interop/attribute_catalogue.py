"""The attributes that random packets hold: those of our dictionary set, and some for tests.

Both dictionaries, the tool's and pyrad's, are written from these.
"""

import csv
import io
import pathlib
import shutil
from typing import NamedTuple

import pyrad.dictionary

TESTS = pathlib.Path(__file__).resolve().parents[1]
FACTS = TESTS / "data" / "vectors"
OUR_SET = TESTS.parent / "dictionaries"

VENDOR_SPECIFIC, MESSAGE_AUTHENTICATOR, EAP_MESSAGE, USER_PASSWORD = 26, 80, 79, 2
PASSWORD_METHOD, SALTED_METHOD = 1, 2

# Of the vendors, the number that RFC 5612 keeps for documentation.
EXAMPLE_VENDOR, EXAMPLE_VENDOR_ID = "Example", 32473

ADDRESS_TYPES = frozenset(["ipaddr", "ipv6addr", "ipv6prefix", "ifid"])
# Containers of other attributes, which our set leaves out.
CONTAINERS = frozenset(["vsa", "tlv", "extended", "long-extended"])
OUR_TYPES = ADDRESS_TYPES | {"string", "octets", "integer", "date", "integer64"}
# pyrad has numbers of one and two bytes besides.
NARROW_BYTES = {"byte": 1, "short": 2}
PEER_TYPES = (OUR_TYPES - {"ifid", "integer64"}) | set(NARROW_BYTES)


class Kind(NamedTuple):
    """One attribute of a dictionary."""

    name: str
    number: int
    vendor_id: int
    our_type: str
    peer_type: str
    is_tagged: bool = False
    method: int = 0
    is_concat: bool = False

    @property
    def is_vendors(self):
        return self.vendor_id != 0

    @property
    def peer_key(self):
        return (self.vendor_id, self.number) if self.is_vendors else self.number

    @property
    def raw_name(self):
        return (f"Attr-{VENDOR_SPECIFIC}.{self.vendor_id}.{self.number}" if self.is_vendors
                else f"Attr-{self.number}")

    @property
    def is_user_password(self):
        return self.peer_key == USER_PASSWORD

    @property
    def family(self):
        """What tells the attribute from others of the same family is its name alone."""
        return (self.is_vendors, self.our_type, self.peer_type, self.is_tagged, self.method,
                self.is_concat, self.is_user_password)


def kind(name, number, data_type, flags="", vendor_id=0):
    bare_type = data_type.split("[")[0]
    words = flags.split(",")
    method = [int(word.removeprefix("encrypt=")) for word in words if word.startswith("encrypt=")]
    return Kind(name, int(number), int(vendor_id),
                our_type=bare_type if bare_type in OUR_TYPES else "octets",
                peer_type=bare_type if bare_type in PEER_TYPES else "octets",
                is_tagged="has_tag" in words, method=sum(method), is_concat="concat" in words)


def unknown_kind(number, vendor_id=0):
    """An attribute that no dictionary has."""
    named = Kind("", number, vendor_id, "unknown", "octets")
    return named._replace(name=named.raw_name)


# Of the numbers that are free for local use (RFC 2865 section 5).
STANDARD_EXAMPLES = [
    kind("Example-Key", 224, "octets", "encrypt=1"),
    kind("Example-Salted-Tagged-Octets", 225, "octets", "has_tag,encrypt=2"),
    kind("Example-Hidden-Address", 226, "ipaddr", "encrypt=1"),
    kind("Example-Hidden-Chain", 227, "octets", "concat,encrypt=1"),
    kind("Example-Tagged-Octets", 228, "octets", "has_tag"),
]

VENDORS_EXAMPLES = [
    kind(f"Example-{name}", number, data_type, flags, EXAMPLE_VENDOR_ID)
    for number, (name, data_type, flags) in enumerate([
        ("Tagged-Text", "string", "has_tag"),
        ("Tagged-Number", "integer", "has_tag"),
        ("Secret", "string", "encrypt=1"),
        ("Tagged-Secret", "string", "has_tag,encrypt=1"),
        ("Salted-Text", "string", "encrypt=2"),
        ("Salted-Tagged-Text", "string", "has_tag,encrypt=2"),
        ("Tagged-Bytes", "octets", "has_tag"),
        ("Tagged-Key", "octets", "has_tag,encrypt=1"),
        ("Salted-Tagged-Key", "octets", "has_tag,encrypt=2"),
        ("Date", "date", ""),
        ("Hidden-Number", "integer", "encrypt=1"),
        ("Unused", "octets", ""),
    ], start=1)
]

# In the tool's dictionary alone: no packet can be built with it.
TAGGED_DATE = kind("Example-Tagged-Date", 13, "date", "has_tag", EXAMPLE_VENDOR_ID)

MESSAGE_AUTHENTICATOR_KIND = kind("Message-Authenticator", MESSAGE_AUTHENTICATOR, "octets")


def rows(name):
    with open(FACTS / name, newline="") as file:
        return [row for row in csv.DictReader(file) if row["type"] not in CONTAINERS]


def catalogue():
    standard = [kind(row["name"], row["code"], row["type"], row["flags"])
                for row in rows("standard_attributes.csv")]
    vendors = [kind(row["name"], row["code"], row["type"], row["flags"], row["vendor_id"])
               for row in rows("vendor_attributes.csv")]
    return standard + vendors + STANDARD_EXAMPLES + VENDORS_EXAMPLES


def dictionary_line(of_kind, data_type, flags):
    return f"ATTRIBUTE {of_kind.name} {of_kind.number} {data_type} {flags}".rstrip()


def vendor_block(name, number, lines):
    return [f"VENDOR {name} {number}", f"BEGIN-VENDOR {name}", *lines, f"END-VENDOR {name}"]


def our_flags(of_kind):
    flags = ["has_tag"] * of_kind.is_tagged + ["concat"] * of_kind.is_concat
    return ",".join(flags + [f"encrypt={of_kind.method}"] * bool(of_kind.method))


def our_lines(kinds):
    return [dictionary_line(one, one.our_type, our_flags(one)) for one in kinds]


def write_our_dictionary(folder):
    """Our set with the examples added; returns the top file."""
    shutil.copytree(OUR_SET, folder, dirs_exist_ok=True)
    vendors = [*VENDORS_EXAMPLES, TAGGED_DATE]
    files = {"dictionary.standard-examples": our_lines(STANDARD_EXAMPLES),
             "dictionary.vendors-examples": vendor_block(
                 EXAMPLE_VENDOR, EXAMPLE_VENDOR_ID, our_lines(vendors))}
    top = folder / "dictionary"
    with open(top, "a") as includes:
        for name, lines in files.items():
            (folder / name).write_text("\n".join(lines) + "\n")
            includes.write(f"$INCLUDE {name}\n")
    return top


def peer_dictionary(kinds):
    """pyrad's dictionary. It is not told of hiding: the salted method of pyrad 2.1 does not run,
    and it reveals nothing by itself."""
    lines = []
    for vendor_id in sorted({one.vendor_id for one in kinds}):
        block = [dictionary_line(one, one.peer_type, "has_tag" if one.is_tagged else "")
                 for one in kinds if one.vendor_id == vendor_id]
        lines += vendor_block(f"Vendor-{vendor_id}", vendor_id, block) if vendor_id else block
    return pyrad.dictionary.Dictionary(io.StringIO("\n".join(lines) + "\n"))
