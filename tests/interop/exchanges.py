"""What the peers are told to send, and what `radius-packet` must say of it.

Each value stands here once: a peer is told it in the peer's own words, and the tool's report is
compared with it.
"""

import collections

SECRET = "interop secret"
OTHER_SECRET = "interop Secret"

ATTRIBUTE_FIELDS = ["kind", "name", "key", "value", "tag"]


class Attribute(collections.namedtuple("Attribute", ATTRIBUTE_FIELDS, defaults=[None])):
    """`kind` says how a peer must be told the value; `key` is the number, 26.VENDOR.NUMBER for a
    vendor's attribute; `value` is that of the tool's JSON, or the bytes on the wire."""

    @property
    def peer_name(self):
        return self.name if self.tag is None else f"{self.name}:{self.tag}"


class Made(str):
    """A value that the peer makes up: it is not compared."""


# A name, the codes of the two packets, and their attributes in wire order.
Exchange = collections.namedtuple(
    "Exchange", ["name", "request_code", "request", "answer_code", "answer"])

ACCESS_REQUEST, ACCESS_ACCEPT, ACCESS_REJECT = 1, 2, 3
ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE = 4, 5
ACCESS_CHALLENGE = 11
DISCONNECT_REQUEST, DISCONNECT_ACK, DISCONNECT_NAK = 40, 41, 42
COA_REQUEST, COA_ACK, COA_NAK = 43, 44, 45

MESSAGE_AUTHENTICATOR = Attribute("octets", "Message-Authenticator", "80", Made("00"))


def user_name(name):
    return Attribute("text", "User-Name", "1", name)


def password(value):
    return Attribute("password", "User-Password", "2", value)


def reply_message(value):
    return Attribute("text", "Reply-Message", "18", value)


def tunnel_password(tag, value):
    return Attribute("text", "Tunnel-Password", "69", value, tag)


def mppe_key(name, number, value):
    return Attribute("octets", name, f"26.311.{number}", value.hex())


def password_exchange(length):
    value = ("Passwörter sind lang. " * 7).encode()[:length].decode()
    return Exchange(f"password of {length}", ACCESS_REQUEST, [password(value)], ACCESS_ACCEPT, [])


NAS = [
    Attribute("address", "NAS-IP-Address", "4", "192.0.2.16"),
    Attribute("number", "NAS-Port", "5", 0xFFFFFFFF),
    Attribute("number", "Service-Type", "6", 2),
    Attribute("number", "Framed-Protocol", "7", 1),
    Attribute("address", "Framed-IP-Address", "8", "255.255.255.254"),
    Attribute("text", "Calling-Station-Id", "31", "02-00-5E-10-00-00:höhle"),
    Attribute("number", "NAS-Port-Type", "61", 19),
]

VENDORS = [
    Attribute("octets", "MS-CHAP-Challenge", "26.311.11", bytes(range(16)).hex()),
    Attribute("octets", "MS-CHAP2-Response", "26.311.25", bytes(range(200, 250)).hex()),
    Attribute("number", "MS-RAS-Vendor", "26.311.9", 311),
    Attribute("address", "MS-Primary-DNS-Server", "26.311.28", "198.51.100.53"),
    Attribute("text", "Cisco-AVPair", "26.9.1", b"shell:priv-lvl=15"),
    Attribute("text", "Cisco-AVPair", "26.9.1", b"ip:inacl#1=deny ip any any"),
]

IPV6 = [
    Attribute("address", "NAS-IPv6-Address", "95", "2001:db8::16"),
    Attribute("interface", "Framed-Interface-Id", "96", "0200:5eff:fe10:0001"),
    Attribute("prefix", "Framed-IPv6-Prefix", "97", "2001:db8:1200::/40"),
    Attribute("address", "Login-IPv6-Host", "98", "2001:db8:ffff::1"),
    Attribute("text", "Framed-IPv6-Route", "99", "2001:db8:2::/48 2001:db8::1 1"),
    Attribute("text", "Framed-IPv6-Pool", "100", "pool-6"),
]

ACCOUNTING = [
    Attribute("number", "Acct-Status-Type", "40", 2),
    Attribute("text", "Acct-Session-Id", "44", "session-0001"),
    Attribute("number", "Acct-Session-Time", "46", 86400),
    Attribute("number", "Acct-Input-Octets", "42", 0x80000001),
    Attribute("number", "Acct-Input-Gigawords", "52", 3),
    Attribute("number", "Acct-Terminate-Cause", "49", 1),
    Attribute("number", "Event-Timestamp", "55", 1700000000),
    Attribute("octets", "Class", "25", "00ff10"),
]

SESSION = [
    Attribute("text", "Acct-Session-Id", "44", "session-0001"),
    Attribute("number", "Session-Timeout", "27", 600),
    Attribute("text", "Filter-Id", "11", "quarantine"),
]

TWO_TUNNELS = [
    Attribute("number", "Tunnel-Type", "64", 13, 1),
    Attribute("number", "Tunnel-Type", "64", 3, 2),
    Attribute("number", "Tunnel-Medium-Type", "65", 6, 1),
    Attribute("number", "Tunnel-Preference", "83", 0xFFFFFF, 31),
    Attribute("text", "Tunnel-Server-Endpoint", "67", "192.0.2.1", 2),
    Attribute("text", "Tunnel-Private-Group-Id", "81", "100", 1),
]

SEVERAL_MESSAGES = [reply_message("first"), reply_message("the second"), reply_message("drítte")]

SESSION_NOT_FOUND = [Attribute("number", "Error-Cause", "101", 503)]

# Every peer makes these.
EXCHANGES = [
    *map(password_exchange, (1, 15, 16, 17, 32, 48, 127, 128)),
    Exchange("nas", ACCESS_REQUEST, NAS, ACCESS_ACCEPT, SEVERAL_MESSAGES),
    Exchange("vendors", ACCESS_REQUEST, VENDORS, ACCESS_ACCEPT, VENDORS),
    Exchange("ipv6", ACCESS_REQUEST, IPV6, ACCESS_ACCEPT, IPV6),
    Exchange("tunnels", ACCESS_REQUEST, [], ACCESS_ACCEPT, TWO_TUNNELS),
    Exchange("rejected", ACCESS_REQUEST, [], ACCESS_REJECT, SEVERAL_MESSAGES),
    Exchange("challenged", ACCESS_REQUEST, [], ACCESS_CHALLENGE,
             [Attribute("octets", "State", "24", "5374617465"), reply_message("code?")]),
    Exchange("accounted", ACCOUNTING_REQUEST, ACCOUNTING, ACCOUNTING_RESPONSE,
             [Attribute("octets", "Class", "25", "0102")]),
    Exchange("changed", COA_REQUEST, SESSION, COA_ACK, SESSION),
    Exchange("not changed", COA_REQUEST, SESSION, COA_NAK, SESSION_NOT_FOUND),
    Exchange("disconnected", DISCONNECT_REQUEST, SESSION, DISCONNECT_ACK, []),
    Exchange("not disconnected", DISCONNECT_REQUEST, SESSION, DISCONNECT_NAK, SESSION_NOT_FOUND),
]

EAP_IDENTITY = Attribute("octets", "EAP-Message", "79", "0201000a01616c696365")
EAP_SUCCESS = Attribute("octets", "EAP-Message", "79", "03010004")

# Those with values that only some peers hide or sign.
HIDDEN_AND_SIGNED_EXCHANGES = [
    Exchange("tunnel passwords", ACCESS_REQUEST, [], ACCESS_ACCEPT,
             [tunnel_password(tag, ("salt and pepper " * 6)[:length])
              for tag, length in ((1, 1), (2, 15), (3, 16), (31, 96))]),
    Exchange("mppe keys", ACCESS_REQUEST, [], ACCESS_ACCEPT,
             [mppe_key("MS-MPPE-Send-Key", 16, bytes(range(32))),
              mppe_key("MS-MPPE-Recv-Key", 17, bytes(range(64, 80)))]),
    Exchange("signed", ACCESS_REQUEST, [*NAS, MESSAGE_AUTHENTICATOR], ACCESS_ACCEPT,
             [MESSAGE_AUTHENTICATOR, *TWO_TUNNELS]),
    Exchange("signed reject", ACCESS_REQUEST, [password("wrong"), MESSAGE_AUTHENTICATOR],
             ACCESS_REJECT, [MESSAGE_AUTHENTICATOR]),
    Exchange("eap", ACCESS_REQUEST, [EAP_IDENTITY, MESSAGE_AUTHENTICATOR], ACCESS_ACCEPT,
             [EAP_SUCCESS, MESSAGE_AUTHENTICATOR]),
    # The answers to these stay unsigned: FreeRADIUS 3.2 signs them over zeros, where RFC 5176
    # (section 3.4) has the Request Authenticator.
    Exchange("signed change", COA_REQUEST, [*SESSION, MESSAGE_AUTHENTICATOR], COA_ACK, []),
    Exchange("signed disconnect", DISCONNECT_REQUEST, [*SESSION, MESSAGE_AUTHENTICATOR],
             DISCONNECT_NAK, SESSION_NOT_FOUND),
]
