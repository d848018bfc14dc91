"""Packets that pyrad makes decode to the values that went in, and are refused under another secret.

    pyrad.test.py PROGRAM
"""

import io
import sys
import unittest

from exchanges import (ACCESS_REQUEST, ACCOUNTING_REQUEST, COA_REQUEST, DISCONNECT_REQUEST,
                       EXCHANGES, SECRET, user_name)
from peer_packets import PeerPacketsTest, skip

try:
    import pyrad.dictionary
    import pyrad.packet
except ImportError:
    skip("python3-pyrad is not installed")

PeerPacketsTest.program = sys.argv[1]

VENDORS = {"311": "Microsoft", "9": "Cisco"}
# An interface identifier is a type that pyrad can name but not write.
DATA_TYPES = {"text": "string", "password": "string", "octets": "octets", "number": "integer",
              "prefix": "ipv6prefix", "interface": "octets"}
MAKERS = {
    ACCESS_REQUEST: pyrad.packet.AuthPacket,
    ACCOUNTING_REQUEST: pyrad.packet.AcctPacket,
    COA_REQUEST: pyrad.packet.CoAPacket,
    DISCONNECT_REQUEST: pyrad.packet.CoAPacket,
}


def data_type(attribute):
    if attribute.kind == "address":
        return "ipv6addr" if ":" in attribute.value else "ipaddr"
    return DATA_TYPES[attribute.kind]


def dictionary_of(attributes):
    """A dictionary for pyrad, of the attributes that it is told to send."""
    lines = [f"VENDOR {name} {number}" for number, name in VENDORS.items()]
    for attribute in attributes:
        number = attribute.key.split(".")
        vendor = VENDORS[number[1]] if len(number) > 1 else ""
        lines.append(f"ATTRIBUTE {attribute.name} {number[-1]} {data_type(attribute)} {vendor}")
    return pyrad.dictionary.Dictionary(io.StringIO("\n".join(dict.fromkeys(lines)) + "\n"))


DICTIONARY = dictionary_of(attribute for exchange in EXCHANGES for attribute in
                           [user_name(""), *exchange.request, *exchange.answer])


def add(packet, attributes):
    for attribute in attributes:
        value = attribute.value
        if attribute.kind == "password":
            value = packet.PwCrypt(value)
        elif attribute.kind == "octets":
            value = bytes.fromhex(value)
        elif attribute.kind == "interface":
            value = bytes.fromhex(value.replace(":", ""))
        packet.AddAttribute(attribute.peer_name, value)


class Pyrad(PeerPacketsTest):
    def test_exchanges(self):
        for exchange in EXCHANGES:
            with self.subTest(exchange.name):
                request = MAKERS[exchange.request_code](
                    code=exchange.request_code, secret=SECRET.encode(), dict=DICTIONARY)
                add(request, [user_name(exchange.name), *exchange.request])
                sent = request.RequestPacket()
                answer = request.CreateReply()
                answer.code = exchange.answer_code
                add(answer, exchange.answer)
                self.check_exchange(exchange, sent, answer.ReplyPacket())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
