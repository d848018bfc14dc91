"""What tshark says of the RADIUS packets of a capture."""

import io
import re
import subprocess
import xml.etree.ElementTree as ElementTree
from typing import Any, NamedTuple

PATIENCE_SECONDS = 300
# What tshark copies out of text values without escaping it; XML has no place for it.
NOT_XML = re.compile("[^\t\n\r\x20-\ud7ff\ue000-\ufffd\U00010000-\U0010ffff]")
FRAMING = frozenset(f"radius.avp{part}" for part in
                    ("", ".type", ".length", ".vendor_id", ".vendor_type", ".vendor_len"))


class Field(NamedTuple):
    """What the dissector makes of a value, or of a part of one."""

    name: str
    kind: str  # FT_UINT32, FT_IPv4, ...
    shown: str
    wire: bytes


class Attribute(NamedTuple):
    offset: int
    length: int
    numbers: tuple  # as the tool's attrId, vendorId and vendorAttrId
    fields: list


class Packet(NamedTuple):
    code: int
    id: int
    length: int
    authenticator: bytes
    is_authentic: Any  # None where the dissector does not check
    attributes: list
    is_malformed: bool  # the dissector gave up behind the last attribute


def tshark(*arguments):
    return subprocess.run(["tshark", *arguments], check=True, capture_output=True,
                          timeout=PATIENCE_SECONDS).stdout.decode(errors="replace")


def field_kinds():
    """The data type of every RADIUS field that the dissector knows."""
    rows = (line.split("\t") for line in tshark("-G", "fields").splitlines())
    return {row[2]: row[3] for row in rows if row[0] == "F" and row[2].startswith("radius.")}


def number(fields, name):
    return int(fields[name].get("show")) if name in fields else 0


def wire_of(field):
    """The bytes of a field; of bits within a byte, the number that they are."""
    digits = field.get("value", "")
    return bytes.fromhex(digits.zfill(len(digits) + len(digits) % 2))


def attribute_of(element, start, kinds):
    elements = [field for field in element.iter("field") if field.get("name").startswith("radius.")]
    framing = {field.get("name"): field for field in elements if field.get("name") in FRAMING}
    fields = [Field(field.get("name"), kinds.get(field.get("name")), field.get("show"),
                    wire_of(field))
              for field in elements if field.get("name") not in FRAMING]
    numbers = tuple(number(framing, f"radius.avp.{part}")
                    for part in ("type", "vendor_id", "vendor_type"))
    return Attribute(int(element.get("pos")) - start, int(element.get("size")), numbers, fields)


def packet_of(frame, kinds):
    radius = next(proto for proto in frame.iter("proto") if proto.get("name") == "radius")
    start = int(radius.get("pos"))
    fields = {field.get("name"): field for field in radius.iter("field")}
    verdict = fields.get("radius.authenticator.valid")
    return Packet(number(fields, "radius.code"), number(fields, "radius.id"),
                  number(fields, "radius.length"),
                  bytes.fromhex(fields["radius.authenticator"].get("value")),
                  None if verdict is None else verdict.get("show") == "1",
                  [attribute_of(field, start, kinds) for field in radius.iter("field")
                   if field.get("name") == "radius.avp"],
                  any(proto.get("name") == "_ws.malformed" for proto in frame.iter("proto")))


def dissected(capture, secret):
    """The RADIUS packets of a capture, in its order."""
    kinds = field_kinds()
    text = tshark("-n", "-r", capture, "-Y", "radius", "-T", "pdml", "-o",
                  f"radius.shared_secret:{secret}", "-o", "radius.validate_authenticator:TRUE")
    frames = ElementTree.iterparse(io.BytesIO(NOT_XML.sub("?", text).encode()))
    for _, frame in frames:
        if frame.tag == "packet":
            yield packet_of(frame, kinds)
            frame.clear()
