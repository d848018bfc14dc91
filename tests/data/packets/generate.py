#!/usr/bin/env python3
"""Writes the golden packets of this folder, one annotated hex file each (README.md tells the format).

    generate.py           write every file
    generate.py --check   write nothing; exit 1 when a file is missing, stale or not described here

Each packet is described by its attributes in clear; golden.py hides, signs and prints it. Everything that is random on
the wire (authenticators, salts, keys) is fixed here, so the same description always gives the same file. The names,
numbers, types and flags of attributes come from the dictionary set of the project.
"""

from __future__ import annotations

import argparse
import sys

sys.dont_write_bytecode = True  # the tests run this program, and the source tree stays as it is

from golden import (  # noqa: E402
    ENTRIES,
    HERE,
    PACKETS,
    VENDOR_SPECIFIC,
    WITH_SIGNED_AUTHENTICATOR,
    Attribute,
    Packet,
    Stray,
    attribute,
    eap_message,
    golden,
    message_authenticator,
    password,
    pattern,
    salted,
    tagged,
    unit,
    unknown,
    unknown_vendor,
)

# ---------------------------------------------------------------------------------------------------------------------
# RFC 2865 section 7 and RFC 5997 section 6: the printed exchanges

RFC_SECRET = b"xyzzy5461"


def rfc2865_section_7_1() -> None:
    origin = {"source": "RFC 2865 section 7.1", "secret": RFC_SECRET}
    request = golden(
        "rfc2865-7.1-access-request", "Access-Request", 0,
        "Access-Request of the RFC 2865 section 7.1 exchange: user logging in with PAP",
        [
            attribute("User-Name", "nemo"),
            password("arctangent"),
            attribute("NAS-IP-Address", "192.168.1.16"),
            attribute("NAS-Port", 3),
        ],
        authenticator=bytes.fromhex("0f403f9473978057bd83d5cb98f4227a"),
        printed="""01 00 00 38 0f 40 3f 94 73 97 80 57 bd 83 d5 cb 98 f4 22 7a 01 06 6e 65 6d 6f 02 12 0d be 70 8d 93 d4
            13 ce 31 96 e4 3f 78 2a 0a ee 04 06 c0 a8 01 10 05 06 00 00 00 03""",
        **origin,
    )
    golden(
        "rfc2865-7.1-access-accept", "Access-Accept", 0, "Access-Accept of the RFC 2865 section 7.1 exchange",
        [
            attribute("Service-Type", 1, "Login"),
            attribute("Login-Service", 0, "Telnet"),
            attribute("Login-IP-Host", "192.168.1.3"),
        ],
        request=request,
        printed="""02 00 00 26 86 fe 22 0e 76 24 ba 2a 10 05 f6 bf 9b 55 e0 b2 06 06 00 00 00 01 0f 06 00 00 00 00 0e 06
            c0 a8 01 03""",
        **origin,
    )


def rfc2865_section_7_2() -> None:
    origin = {"source": "RFC 2865 section 7.2", "secret": RFC_SECRET}
    request = golden(
        "rfc2865-7.2-access-request", "Access-Request", 1,
        "Access-Request of the RFC 2865 section 7.2 exchange: framed user authenticating with CHAP",
        [
            attribute("User-Name", "flopsy"),
            attribute("CHAP-Password", bytes.fromhex("16e97557c316185895f293ff6344077275"), "CHAP Identifier 22"),
            attribute("NAS-IP-Address", "192.168.1.16"),
            attribute("NAS-Port", 20),
            attribute("Service-Type", 2, "Framed"),
            attribute("Framed-Protocol", 1, "PPP"),
        ],
        authenticator=bytes.fromhex("2aee86f08d0d55969ca5978e0d3367a2"),
        printed="""01 01 00 47 2a ee 86 f0 8d 0d 55 96 9c a5 97 8e 0d 33 67 a2 01 08 66 6c 6f 70 73 79 03 13 16 e9 75 57
            c3 16 18 58 95 f2 93 ff 63 44 07 72 75 04 06 c0 a8 01 10 05 06 00 00 00 14 06 06 00 00 00 02 07 06 00 00 00
            01""",
        **origin,
    )
    golden(
        "rfc2865-7.2-access-accept", "Access-Accept", 1, "Access-Accept of the RFC 2865 section 7.2 exchange",
        [
            attribute("Service-Type", 2, "Framed"),
            attribute("Framed-Protocol", 1, "PPP"),
            attribute("Framed-IP-Address", "255.255.255.254"),
            attribute("Framed-Routing", 2),
            attribute("Framed-Compression", 1, "VJ TCP/IP header compression"),
            attribute("Framed-MTU", 1500),
        ],
        request=request,
        printed="""02 01 00 38 15 ef bc 7d ab 26 cf a3 dc 34 d9 c0 3c 86 01 a4 06 06 00 00 00 02 07 06 00 00 00 01 08 06
            ff ff ff fe 0a 06 00 00 00 02 0d 06 00 00 00 01 0c 06 00 00 05 dc""",
        **origin,
    )


def rfc2865_section_7_3() -> None:
    origin = {"source": "RFC 2865 section 7.3", "secret": RFC_SECRET}
    request = golden(
        "rfc2865-7.3-access-request", "Access-Request", 2,
        "Access-Request of the RFC 2865 section 7.3 exchange: user with a challenge-response card",
        [
            attribute("User-Name", "mopsy"),
            password("challenge"),
            attribute("NAS-IP-Address", "192.168.1.16"),
            attribute("NAS-Port", 7),
        ],
        authenticator=bytes.fromhex("f3a47a1f6a6d76710b947ab93041a039"),
        printed="""01 02 00 39 f3 a4 7a 1f 6a 6d 76 71 0b 94 7a b9 30 41 a0 39 01 07 6d 6f 70 73 79 02 12 33 65 75 73 77
            82 89 b5 70 88 5e 15 08 48 25 c5 04 06 c0 a8 01 10 05 06 00 00 00 07""",
        **origin,
    )
    golden(
        "rfc2865-7.3-access-challenge", "Access-Challenge", 2, "Access-Challenge of the RFC 2865 section 7.3 exchange",
        [
            attribute("Reply-Message", "Challenge 32769430.  Enter response at prompt."),
            attribute("State", b"32769430"),
        ],
        request=request,
        printed="""0b 02 00 4e 36 f3 c8 76 4a e8 c7 11 57 40 3c 0c 71 ff 9c 45 12 30 43 68 61 6c 6c 65 6e 67 65 20 33 32
            37 36 39 34 33 30 2e 20 20 45 6e 74 65 72 20 72 65 73 70 6f 6e 73 65 20 61 74 20 70 72 6f 6d 70 74 2e 18 0a
            33 32 37 36 39 34 33 30""",
        **origin,
    )


def rfc2865_section_7_3_answer_to_the_challenge() -> None:
    origin = {"source": "RFC 2865 section 7.3", "secret": RFC_SECRET}
    known = [
        attribute("User-Name", "mopsy"),
        password("99101462"),
        attribute("NAS-IP-Address", "192.168.1.16"),
        attribute("NAS-Port", 7),
    ]
    authenticator = bytes.fromhex("b122556d428a13d0d6253807c457ecf0")
    golden(
        "refused-rfc2865-7.3-second-access-request-as-printed", "Access-Request", 3,
        "Second Access-Request of the RFC 2865 section 7.3 exchange as printed: State's Length is 0x10 for 0x0a",
        known + [attribute("State", b"32769430", "Length printed 0x10", length=0x10)],
        authenticator=authenticator,
        result="invalidAttrLength",
        reason="Invalid attribute: 24 attrLength: 16, remainingPktLen: 10",
        delivered=4,
        printed="""01 03 00 43 b1 22 55 6d 42 8a 13 d0 d6 25 38 07 c4 57 ec f0 01 07 6d 6f 70 73 79 02 12 69 2c 1f 20 5f
            c0 81 b9 19 b9 51 95 f5 61 a5 81 04 06 c0 a8 01 10 05 06 00 00 00 07 18 10 33 32 37 36 39 34 33 30""",
        **origin,
    )
    request = golden(
        "rfc2865-7.3-second-access-request", "Access-Request", 3,
        "Second Access-Request of the RFC 2865 section 7.3 exchange, State's Length corrected to 0x0a",
        known + [attribute("State", b"32769430")],
        authenticator=authenticator, **origin,
    )
    golden(
        "rfc2865-7.3-access-reject", "Access-Reject", 3,
        "Access-Reject of the RFC 2865 section 7.3 exchange: a packet without attributes",
        [],
        request=request, printed="03 03 00 14 a4 2f 4f ca 45 91 6c 4e 09 c8 34 0f 9e 74 6a a0", **origin,
    )


def rfc5997_section_6_1() -> None:
    origin = {"source": "RFC 5997 section 6.1", "secret": RFC_SECRET}
    request = golden(
        "rfc5997-6.1-status-server", "Status-Server", 218,
        "Status-Server of the RFC 5997 section 6.1 exchange: is the authentication port alive",
        [message_authenticator()],
        authenticator=bytes.fromhex("8a54f4686fb394c52866e302185d0623"),
        printed="""0c da 00 26 8a 54 f4 68 6f b3 94 c5 28 66 e3 02 18 5d 06 23 50 12 5a 66 5e 2e 1e 84 11 f3 e2 43 82 20
            97 c8 4f a3""",
        **origin,
    )
    golden(
        "rfc5997-6.1-access-accept", "Access-Accept", 218, "Access-Accept of the RFC 5997 section 6.1 exchange",
        [],
        request=request, printed="02 da 00 14 ef 0d 55 2a 4b f2 d6 93 ec 2b 6f e8 b5 41 1d 66", **origin,
    )


def rfc5997_section_6_2() -> None:
    origin = {"source": "RFC 5997 section 6.2", "secret": RFC_SECRET}
    request = golden(
        "rfc5997-6.2-status-server", "Status-Server", 179,
        "Status-Server of the RFC 5997 section 6.2 exchange: is the accounting port alive",
        [message_authenticator()],
        authenticator=bytes.fromhex("925f6b66dd5fed571fcb1db7ad388260"),
        printed="""0c b3 00 26 92 5f 6b 66 dd 5f ed 57 1f cb 1d b7 ad 38 82 60 50 12 e8 d6 ea bd a9 10 87 5c d9 1f da de
            26 36 78 58""",
        **origin,
    )
    response = golden(
        "rfc5997-6.2-accounting-response", "Accounting-Response", 179,
        "Accounting-Response of the RFC 5997 section 6.2 exchange, its Code corrected to 5",
        [],
        request=request, **origin,
    )
    golden(
        "refused-rfc5997-6.2-reply-as-printed", "Access-Accept", 179,
        "Reply of the RFC 5997 section 6.2 exchange as printed: Code 2, signed with Code 5",
        [],
        request=request,
        authenticator=response.authenticator,
        result="invalidPktAuth",
        reason="Packet's authenticator field is invalid",
        printed="02 b3 00 14 0f 6f 92 14 5f 10 7e 2f 50 4e 86 0a 48 60 66 9c",
        **origin,
    )


def rfc5997_section_6_3() -> None:
    origin = {"source": "RFC 5997 section 6.3", "secret": RFC_SECRET}
    request = golden(
        "rfc5997-6.3-status-server", "Status-Server", 71,
        "Status-Server of the RFC 5997 section 6.3 exchange, with NAS-IP-Address before the Message-Authenticator",
        [attribute("NAS-IP-Address", "192.0.2.16"), message_authenticator()],
        authenticator=bytes.fromhex("bf58de56ae408ad3b70c8513f9b03fbe"),
        printed="""0c 47 00 2c bf 58 de 56 ae 40 8a d3 b7 0c 85 13 f9 b0 3f be 04 06 c0 00 02 10 50 12 85 2d 6f ec 61 e7
            ed 74 b8 e3 2d ac 2f 2a 5f b2""",
        **origin,
    )
    golden(
        "rfc5997-6.3-access-accept", "Access-Accept", 71,
        "Access-Accept of the RFC 5997 section 6.3 exchange, with Reply-Message",
        [attribute("Reply-Message", "RADIUS Server up 2 days, 18:40")],
        request=request,
        printed="""02 47 00 34 46 f4 3e 62 fd 03 54 42 4c bb eb fd 6d 21 4e 06 12 20 52 41 44 49 55 53 20 53 65 72 76 65
            72 20 75 70 20 32 20 64 61 79 73 2c 20 31 38 3a 34 30""",
        **origin,
    )


# ---------------------------------------------------------------------------------------------------------------------
# Exchanges of our own

NOON = 1735732800  # 2025-01-01 12:00:00 UTC


def accounting() -> None:
    request = golden(
        "accounting-request-start", "Accounting-Request", 16, "Accounting-Request of an accounting exchange: Start",
        [
            attribute("Acct-Status-Type", 1, "Start"),
            attribute("Acct-Session-Id", "00000010"),
            attribute("User-Name", "alice"),
            attribute("NAS-IP-Address", "192.0.2.1"),
            attribute("NAS-Port", 4294967295),
            attribute("NAS-Port-Type", 15, "Ethernet"),
            attribute("NAS-Identifier", "switch-1.example.com"),
            attribute("Calling-Station-Id", "00-00-5E-00-53-01"),
            attribute("Framed-IP-Address", "198.51.100.7"),
            attribute("Event-Timestamp", NOON, "2025-01-01 12:00:00 UTC"),
            attribute("Acct-Delay-Time", 0),
        ],
    )
    golden(
        "accounting-response", "Accounting-Response", 16,
        "Accounting-Response of an accounting exchange, with the Proxy-State of a proxy",
        [attribute("Proxy-State", pattern(0xC0, 8))],
        request=request,
    )
    golden(
        "accounting-request-message-authenticator-unchecked", "Accounting-Request", 17,
        "Accounting-Request with a Message-Authenticator of zeros, which accounting does not check",
        [
            attribute("Acct-Status-Type", 3, "Interim-Update"),
            attribute("Acct-Session-Id", "00000010"),
            attribute("Acct-Input-Octets", 3735928559),
            attribute("Acct-Input-Gigawords", 1),
            attribute("Message-Authenticator", bytes(16), "all zero"),
        ],
    )
    golden(
        "accounting-response-empty-secret", "Accounting-Response", 18,
        "Accounting-Response signed with an empty secret",
        [],
        request=pattern(0x40), secret=b"",
    )


def change_of_authorization() -> None:
    request = golden(
        "coa-request", "CoA-Request", 32, "CoA-Request of a CoA exchange that ends in an ACK",
        [
            message_authenticator(),
            attribute("User-Name", "alice"),
            attribute("Acct-Session-Id", "00000010"),
            attribute("Filter-Id", "guests"),
            attribute("Session-Timeout", 3600),
            attribute("Event-Timestamp", NOON, "2025-01-01 12:00:00 UTC"),
        ],
    )
    golden(
        "coa-ack", "CoA-ACK", 32, "CoA-ACK of a CoA exchange",
        [message_authenticator(), attribute("Event-Timestamp", NOON + 1, "2025-01-01 12:00:01 UTC")],
        request=request,
    )
    request = golden(
        "coa-request-unknown-session", "CoA-Request", 33,
        "CoA-Request of a CoA exchange that ends in a NAK, without a Message-Authenticator",
        [attribute("Acct-Session-Id", "no-such-session"), attribute("Filter-Id", "guests")],
    )
    golden(
        "coa-nak", "CoA-NAK", 33, "CoA-NAK of a CoA exchange, with Error-Cause",
        [attribute("Error-Cause", 503, "Session Context Not Found"), message_authenticator()],
        request=request,
    )


def disconnect() -> None:
    request = golden(
        "disconnect-request", "Disconnect-Request", 48,
        "Disconnect-Request of a Disconnect exchange that ends in an ACK",
        [
            attribute("NAS-IP-Address", "192.0.2.1"),
            attribute("Acct-Session-Id", "00000010"),
            attribute("Acct-Terminate-Cause", 6, "Admin Reset"),
            message_authenticator(),
        ],
    )
    golden(
        "disconnect-ack", "Disconnect-ACK", 48, "Disconnect-ACK of a Disconnect exchange",
        [attribute("Acct-Terminate-Cause", 6, "Admin Reset"), message_authenticator()],
        request=request,
    )
    request = golden(
        "disconnect-request-unknown-session", "Disconnect-Request", 49,
        "Disconnect-Request of a Disconnect exchange that ends in a NAK",
        [attribute("Acct-Session-Id", "no-such-session"), message_authenticator()],
    )
    golden(
        "disconnect-nak", "Disconnect-NAK", 49, "Disconnect-NAK of a Disconnect exchange, with Error-Cause",
        [message_authenticator(), attribute("Error-Cause", 503, "Session Context Not Found")],
        request=request,
    )


EAP_IDENTITY = bytes.fromhex("0201000a01") + b"alice"
EAP_LONG_REQUEST = bytes.fromhex("01020258ff") + pattern(0, 595)
EAP_RESPONSE = bytes.fromhex("0202000cff") + pattern(0xF0, 7)
EAP_SUCCESS = bytes.fromhex("03020004")


def eap() -> None:
    state = attribute("State", pattern(0x70, 8))
    request = golden(
        "eap-access-request-identity", "Access-Request", 64,
        "Access-Request of an EAP exchange: the identity, with the Message-Authenticator at the end",
        [
            attribute("User-Name", "alice"),
            attribute("NAS-Port-Id", "Ethernet7"),
            attribute("Framed-MTU", 1400),
            *eap_message(EAP_IDENTITY, "Response, Identity"),
            message_authenticator(),
        ],
        authenticator=pattern(0x50),
    )
    golden(
        "eap-access-challenge-three-fragments", "Access-Challenge", 64,
        "Access-Challenge of an EAP exchange: an EAP packet of 600 bytes in three attributes",
        [message_authenticator(), *eap_message(EAP_LONG_REQUEST, "Request, Experimental"), state],
        request=request,
    )
    request = golden(
        "eap-access-request-response", "Access-Request", 65,
        "Access-Request of an EAP exchange: the answer to the challenge, with its State",
        [
            message_authenticator(),
            attribute("User-Name", "alice"),
            *eap_message(EAP_RESPONSE, "Response, Experimental"),
            state,
        ],
        authenticator=pattern(0x60),
    )
    golden(
        "eap-access-accept", "Access-Accept", 65, "Access-Accept of an EAP exchange",
        [
            *eap_message(EAP_SUCCESS, "Success"),
            message_authenticator(),
            attribute("User-Name", "alice"),
        ],
        request=request,
    )


# ---------------------------------------------------------------------------------------------------------------------
# Accepted packets, each for one thing

REQUEST = pattern(0xA0)  # the authenticator of the request that the single responses answer


def accepted(name: str, title: str, attributes: list, **options) -> Packet:
    return golden(name, "Access-Accept", 1, title, attributes, request=REQUEST, **options)


def tagged_and_salted() -> None:
    accepted(
        "access-accept-tunnel", "Access-Accept that puts the user into a VLAN: tagged attributes and a salted password",
        [
            tagged("Tunnel-Type", 1, 13, "VLAN"),
            tagged("Tunnel-Medium-Type", 1, 6, "IEEE-802"),
            tagged("Tunnel-Private-Group-Id", 1, "100"),
            salted("Tunnel-Password", b"\x80\x01", b"tunnel-password", "tunnel-password, salted", tag=1),
        ],
    )
    accepted(
        "access-accept-two-tunnels",
        "Access-Accept with two tunnels, told apart by their tags, and a password of two blocks",
        [
            tagged("Tunnel-Type", 1, 3, "L2TP"),
            tagged("Tunnel-Server-Endpoint", 1, "192.0.2.33"),
            tagged("Tunnel-Preference", 1, 16777215, "the largest 24-bit number"),
            tagged("Tunnel-Type", 31, 3, "L2TP"),
            tagged("Tunnel-Server-Endpoint", 31, "192.0.2.34"),
            tagged("Tunnel-Preference", 31, 2),
            salted("Tunnel-Password", b"\xff\xfe", b"sixteen byte key", "sixteen byte key, salted", tag=31),
        ],
    )
    accepted(
        "access-accept-tunnel-group-without-tag",
        "Access-Accept with a Tunnel-Private-Group-Id that starts with its text: the first byte is no tag",
        [
            tagged("Tunnel-Type", 0, 13, "VLAN"),
            tagged("Tunnel-Medium-Type", 0, 6, "IEEE-802"),
            attribute("Tunnel-Private-Group-Id", b"100", "100, no tag"),
        ],
    )
    accepted(
        "access-accept-salted-values-too-short",
        "Access-Accept with salted values that end before, in or right behind their salt: nothing to reveal",
        [
            attribute("Tunnel-Password", b"\x01", "tag alone"),
            attribute("Tunnel-Password", b"\x01\x80", "tag and half a salt"),
            attribute("Tunnel-Password", b"\x01\x80\x02", "tag and salt"),
            attribute("MS-MPPE-Send-Key", b"", "empty"),
            attribute("MS-MPPE-Send-Key", b"\x80", "half a salt"),
            attribute("MS-MPPE-Recv-Key", b"\x80\x03", "salt"),
        ],
    )
    accepted(
        "access-accept-salted-value-of-part-blocks",
        "Access-Accept with a salted value of 20 hidden bytes: the last block is short",
        [attribute("Tunnel-Password", b"\x02\x80\x04\x13nineteen bytes long", "nineteen bytes long, salted")],
    )


def mppe_keys() -> None:
    accepted(
        "access-accept-mppe-keys", "Access-Accept with MPPE keys, as at the end of an EAP method",
        [
            message_authenticator(),
            attribute("MS-MPPE-Encryption-Policy", 1, "allowed"),
            attribute("MS-MPPE-Encryption-Type", 6, "40 or 128 bits"),
            salted("MS-MPPE-Send-Key", b"\x90\x01", pattern(0x10), "key 10 to 1f, salted"),
            salted("MS-MPPE-Recv-Key", b"\x90\x02", pattern(0x20, 32), "key 20 to 3f, salted"),
        ],
    )
    accepted(
        "access-accept-ms-chap-mppe-keys", "Access-Accept with a vendor attribute that is hidden as a User-Password is",
        [
            attribute("MS-CHAP-MPPE-Keys", pattern(0x40, 24) + bytes(8), "keys 40 to 57, hidden"),
            attribute("MS-Primary-DNS-Server", "192.0.2.53"),
            attribute("MS-CHAP-Domain", b"\x01EXAMPLE", "EXAMPLE"),
        ],
    )


def ipv6() -> None:
    request = golden(
        "ipv6-access-request", "Access-Request", 80, "Access-Request of a NAS that is reached over IPv6",
        [
            attribute("User-Name", "alice"),
            password("opensesame"),
            attribute("NAS-IPv6-Address", "2001:db8::1"),
            attribute("Framed-Interface-Id", "200:5eff:fe00:5301"),
        ],
        authenticator=pattern(0xB0),
    )
    golden(
        "ipv6-access-accept", "Access-Accept", 80, "Access-Accept with the attributes of RFC 3162",
        [
            attribute("Framed-Interface-Id", "200:5eff:fe00:5301"),
            attribute("Framed-IPv6-Prefix", "2001:db8:1:2::/64"),
            attribute("Login-IPv6-Host", "2001:db8:0:1:1:1:1:1"),
            attribute("Login-IPv6-Host", "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", "the user selects"),
            attribute("Framed-IPv6-Route", "2001:db8:3::/48 2001:db8::2 1"),
            attribute("Framed-IPv6-Pool", "customers"),
        ],
        request=request,
    )
    accepted(
        "access-accept-ipv6-prefix-lengths", "Access-Accept with IPv6 prefixes of no, some and all 16 bytes",
        [
            attribute("Framed-IPv6-Prefix", "::/0"),
            attribute("Framed-IPv6-Prefix", "2001:db8::/29", "5 bits of the fourth byte"),
            attribute("Framed-IPv6-Prefix", "2001:db8::cafe/128"),
            attribute("Framed-IPv6-Prefix", bytes.fromhex("0020 20010db8").ljust(18, b"\0"), "/32 in 16 bytes"),
            attribute("Framed-IPv6-Prefix", bytes.fromhex("0010 20010db8 ffff"), "/16, the bits behind it set"),
            attribute("Framed-IPv6-Prefix", bytes.fromhex("ff80 2001"), "/128 in 2 bytes, reserved byte set"),
        ],
    )


def not_in_the_dictionary() -> None:
    golden(
        "access-request-unknown-attribute", "Access-Request", 2,
        "Access-Request with an attribute that no dictionary names",
        [attribute("User-Name", "alice"), unknown(240, pattern(0xD0, 5)), unknown(0, b""), attribute("NAS-Port", 1)],
        authenticator=pattern(0x80),
    )
    accepted(
        "access-accept-unknown-vendor", "Access-Accept with an unknown vendor, and an unknown attribute of a known one",
        [
            unknown_vendor(4294967295, 1, b"hello"),
            unknown_vendor(311, 255, pattern(0xE0, 3)),
            unknown_vendor(0, 0, b""),
            attribute("Session-Timeout", 60),
        ],
    )
    accepted(
        "access-accept-vendor-types-2-79-80",
        "Access-Accept with vendor attributes numbered as User-Password, EAP-Message and Message-Authenticator are",
        [
            unknown_vendor(4294967295, 79, b"\x01"),
            unknown_vendor(4294967295, 80, b"\x02"),
            unknown_vendor(4294967295, 80, b"\x03"),
            unknown_vendor(4294967295, 2, b"\x04"),
        ],
    )
    golden(
        "code-99-response", "Code-99", 3, "Response of a Code that has no name",
        [attribute("Reply-Message", "who am I")],
        request=REQUEST,
    )


def limits() -> None:
    golden(
        "access-request-padding-behind-length", "Access-Request", 4,
        "Access-Request with ten bytes of padding behind its Length",
        [attribute("User-Name", "alice"), message_authenticator()],
        authenticator=pattern(0x90), padding=pattern(0, 10),
    )
    accepted(
        "access-accept-padding-behind-length", "Access-Accept with a single byte behind its Length",
        [attribute("Session-Timeout", 60)],
        padding=b"\x01",
    )
    golden(
        "access-request-user-password-128-bytes", "Access-Request", 5,
        "Access-Request with the longest User-Password: eight blocks without padding",
        [attribute("User-Name", "alice"), password("0123456789abcdef" * 8)],
        authenticator=pattern(0x30),
    )
    accepted(
        "access-accept-empty-values", "Access-Accept with values of no bytes, a vendor's too",
        [
            attribute("Reply-Message", b"", "empty"),
            attribute("Class", b"", "empty"),
            attribute("MS-RAS-Version", b"", "empty"),
        ],
    )
    accepted(
        "access-accept-longest-attributes", "Access-Accept with attributes of 255 bytes, a vendor's too",
        [
            attribute("Reply-Message", pattern(0x20, 95) * 2 + pattern(0x20, 63), "253 bytes of text"),
            attribute("Class", pattern(1, 253), "253 bytes"),
            attribute("MS-Filter", pattern(1, 247), "247 bytes"),
        ],
    )
    accepted(
        "access-accept-text-of-any-bytes",
        "Access-Accept with text that holds a zero byte, control bytes, quotes and what is no UTF-8",
        [
            attribute("Reply-Message", b"a\x00b\n\x1b[31m", "a, NUL, b, LF, ESC [31m"),
            attribute("Reply-Message", b"\"\\\xc3\xa9\xff", "quote, backslash, e acute, ff"),
        ],
    )
    accepted(
        "access-accept-secret-with-zero-byte",
        "Access-Accept whose secret holds a zero byte: only what stands before it counts",
        [attribute("Session-Timeout", 60), message_authenticator()],
        secret=b"ab\0cd",
    )


# ---------------------------------------------------------------------------------------------------------------------
# Refused packets

WRONG_AUTHENTICATOR = {"result": "invalidPktAuth", "reason": "Packet's authenticator field is invalid", "delivered": 0}
RANDOM = {"request": None, "authenticator": pattern(0x10)}  # of an Access-Request or a Status-Server
BEFORE = attribute("Session-Timeout", 60)
BEHIND = attribute("Idle-Timeout", 30)


def refused(name: str, title: str, attributes: list, result: str, reason: str, delivered: int, **options) -> Packet:
    """A validly signed Access-Accept, unless the options say otherwise, so that the fault named is the first one."""
    options = {"code": "Access-Accept", "identifier": 1, "request": REQUEST, **options}
    fault = {"result": result, "reason": reason, "delivered": delivered}
    return golden("refused-" + name, title=title, attributes=attributes, **fault, **options)


def refused_headers() -> None:
    def header(name: str, title: str, reason: str, **options) -> None:
        attributes = [attribute("User-Name", "alice"), attribute("NAS-Port", 1)]
        refused(name, title, attributes, "invalidPktLength", reason, 0, code="Access-Request", **RANDOM, **options)

    header("packet-of-19-bytes", "Packet one byte shorter than a header", "Packet has invalid length: 19", kept=19)
    header("packet-of-1-byte", "Packet of its Code alone", "Packet has invalid length: 1", kept=1)
    header("length-field-0", "Length field 0", "Invalid packet header length: 0", length=0)
    header("length-field-19", "Length field one less than a header", "Invalid packet header length: 19", length=19)
    header("length-field-4097", "Length field over the maximum", "Invalid packet header length: 4097", length=4097)
    header(
        "packet-shorter-than-length", "Packet of 30 bytes whose Length field says 33",
        "Packet's Length: 30 and header length: 33 mismatch", kept=30,
    )


def refused_authenticators() -> None:
    wrong = pattern(0x10)
    golden(
        "refused-wrong-response-authenticator", "Access-Accept", 1, "Access-Accept with a wrong Response Authenticator",
        [BEFORE],
        request=REQUEST, authenticator=wrong, **WRONG_AUTHENTICATOR,
    )
    golden(
        "refused-wrong-response-authenticator-before-broken-attribute", "Access-Accept", 1,
        "Access-Accept with a wrong Response Authenticator and a broken attribute: the authenticator is checked first",
        [attribute("Session-Timeout", 60, "Length 0", length=0)],
        request=REQUEST, authenticator=wrong, **WRONG_AUTHENTICATOR,
    )
    for code in WITH_SIGNED_AUTHENTICATOR:
        golden(
            f"refused-wrong-{code.lower()}-authenticator", code, 1, f"{code} with a wrong Request Authenticator",
            [attribute("Acct-Session-Id", "00000010")],
            authenticator=wrong, **WRONG_AUTHENTICATOR,
        )


def refused_framing() -> None:
    def framing(name: str, title: str, attributes: list, reason: str, delivered: int) -> None:
        refused(name, title, attributes, "invalidAttrLength", reason, delivered)

    lone = Stray(b"\x18", "State, its Length byte missing")
    framing("lone-byte-first", "Attribute area of one byte", [lone], "Invalid attribute: 24 length: 1", 0)
    framing("lone-byte-last", "One byte behind an attribute", [BEFORE, lone], "Invalid attribute: 24 length: 1", 1)
    for length in (0, 1):
        broken = attribute("Class", b"class", f"Length {length}", length=length)
        framing(
            f"attribute-length-{length}-first", f"First attribute of Length {length}",
            [broken, BEHIND],
            f"Invalid attribute: 25 attrLength: {length}, remainingPktLen: 13", 0,
        )
        framing(
            f"attribute-length-{length}-later", f"Second attribute of Length {length}",
            [BEFORE, broken, BEHIND],
            f"Invalid attribute: 25 attrLength: {length}, remainingPktLen: 13", 1,
        )
    framing(
        "attribute-beyond-packet-first", "First attribute one byte longer than the packet",
        [attribute("Class", b"class", "Length 8", length=8)],
        "Invalid attribute: 25 attrLength: 8, remainingPktLen: 7", 0,
    )
    framing(
        "attribute-beyond-packet-later", "Second attribute of Length 255, far beyond the packet",
        [BEFORE, attribute("Class", b"class", "Length 255", length=255)],
        "Invalid attribute: 25 attrLength: 255, remainingPktLen: 7", 1,
    )
    refused(
        "attribute-beyond-length-inside-packet",
        "Access-Request whose last attribute ends behind Length but inside the buffer",
        [BEFORE, attribute("Class", b"class", "its last byte behind Length")],
        "invalidAttrLength", "Invalid attribute: 25 attrLength: 7, remainingPktLen: 6", 1,
        code="Access-Request", length=32, **RANDOM,
    )


def refused_vendor_specific() -> None:
    def vendor(name: str, title: str, broken: Attribute | Stray, reason: str) -> None:
        refused(name, title, [BEFORE, broken, BEHIND], "invalidAttrLength", reason, 1)

    microsoft = (311).to_bytes(4, "big")
    for length in (2, 7):
        value = (microsoft + b"\x07")[: length - 2]
        vendor(
            f"vsa-shorter-than-8-length-{length}", f"Vendor-Specific of Length {length}",
            Stray(unit(VENDOR_SPECIFIC, value, None), f"Vendor-Specific, Length {length}"),
            f"Invalid Vsa length: {length}",
        )
    for sub_length in (0, 1, 5, 7, 255):
        vendor(
            f"vsa-lengths-differ-{sub_length}",
            f"Vendor-Specific of Length 12 whose vendor attribute says {sub_length} instead of 6",
            attribute("MS-MPPE-Encryption-Policy", 1, f"vendor Length {sub_length}", sub_length=sub_length),
            f"Attribute length: 12 and Vendor attribute length: {sub_length + 6} differ",
        )
    two = unit(7, pattern(0, 4), None) + unit(8, pattern(0, 4), None)
    vendor(
        "vsa-of-two-vendor-attributes", "Vendor-Specific that packs two vendor attributes",
        Stray(unit(VENDOR_SPECIFIC, microsoft + two, None), "Vendor-Specific, Microsoft 7 and 8"),
        "Attribute length: 18 and Vendor attribute length: 12 differ",
    )


def refused_message_authenticators() -> None:
    def second(name: str, title: str, last: Attribute) -> None:
        reason = "Message authenticator present more than once"
        refused(name, title, [message_authenticator(), BEFORE, last], "invalidMsgAuth", reason, 2)

    wrong = attribute("Message-Authenticator", pattern(0), "wrong")
    second("second-message-authenticator", "Access-Accept with a second Message-Authenticator", wrong)
    second(
        "second-message-authenticator-of-length-2",
        "Access-Accept with a second, empty Message-Authenticator: that it is the second is said first",
        attribute("Message-Authenticator", b"", "empty"),
    )
    for length in (2, 17, 19):
        refused(
            f"message-authenticator-length-{length}", f"Message-Authenticator of Length {length}",
            [BEFORE, attribute("Message-Authenticator", pattern(0, length - 2), f"Length {length}"), BEHIND],
            "invalidAttrLength", f"Invalid length of message authenticator: {length}", 1,
        )
    for code, options in (
        ("Access-Request", RANDOM),
        ("Status-Server", RANDOM),
        ("Access-Accept", {}),
        ("Access-Reject", {}),
        ("Access-Challenge", {}),
        ("CoA-Request", {"request": None}),
        ("CoA-ACK", {}),
        ("CoA-NAK", {}),
        ("Disconnect-Request", {"request": None}),
        ("Disconnect-ACK", {}),
        ("Disconnect-NAK", {}),
    ):
        name = f"wrong-message-authenticator-{code.lower()}"
        title = f"{code} with a wrong Message-Authenticator"
        refused(name, title, [BEFORE, wrong, BEHIND], "invalidMsgAuth", "", 1, code=code, **options)
    refused(
        "wrong-message-authenticator-before-broken-attribute",
        "Access-Accept with a wrong Message-Authenticator before a broken attribute: each is checked when it is met",
        [wrong, attribute("Class", b"class", "Length 0", length=0)],
        "invalidMsgAuth", "", 0,
    )
    refused(
        "message-authenticator-on-unsupported-code",
        "Password-Ack, a Code that has no rule for its Message-Authenticator",
        [BEFORE, message_authenticator()],
        "unsupportedPktType", "", 1, code="Password-Ack",
    )


def refused_passwords() -> None:
    for length in (2, 17, 19, 146):
        refused(
            f"user-password-length-{length}", f"User-Password of Length {length}",
            [attribute("User-Name", "alice"), attribute("User-Password", pattern(0, length - 2), f"Length {length}")],
            "invalidAttrLength", f"Received password with invalid length: {length}", 1,
            code="Access-Request", **RANDOM,
        )


def refused_eap() -> None:
    first = attribute("EAP-Message", pattern(0, 8))
    last = attribute("EAP-Message", pattern(8, 8), "not consecutive")
    state = attribute("State", pattern(0x70, 8))
    reason = "Concat attribute: 79 not consecutive"

    def apart(name: str, title: str, attributes: list, code: str = "Access-Challenge", **options) -> None:
        everything = [message_authenticator(), *attributes, last]
        refused(name, title, everything, "concatAttrNotConsecutive", reason, len(everything) - 1, code=code, **options)

    apart("eap-message-not-consecutive", "Access-Challenge whose EAP-Message continues behind State", [first, state])
    apart(
        "eap-message-not-consecutive-after-two", "Access-Challenge whose third EAP-Message stands behind State",
        [first, first, state],
    )
    apart(
        "eap-message-around-vendor-attribute", "Access-Challenge whose EAP-Message continues behind a vendor attribute",
        [first, attribute("MS-RAS-Version", "5.2")],
    )
    apart(
        "eap-message-not-consecutive-request", "Access-Request whose EAP-Message continues behind State",
        [first, state],
        code="Access-Request", **RANDOM,
    )
    refused(
        "eap-message-without-message-authenticator",
        "Access-Request with an EAP-Message and no Message-Authenticator: all attributes are handed on",
        [attribute("User-Name", "alice"), *eap_message(EAP_IDENTITY, "Response, Identity"), attribute("NAS-Port", 1)],
        "missingRequiredMsgAuth", "", 3, code="Access-Request", **RANDOM,
    )
    refused(
        "eap-message-without-message-authenticator-response",
        "Access-Accept with an EAP-Message and no Message-Authenticator",
        eap_message(EAP_SUCCESS, "Success"),
        "missingRequiredMsgAuth", "", 1,
    )


def refused_values() -> None:
    for name in ("Tunnel-Private-Group-Id", "Tunnel-Password"):
        refused(
            f"tag-byte-missing-{name.lower()}", f"{name} without its tag byte",
            [BEFORE, attribute(name, b"", "empty"), BEHIND],
            "tagByteMissing", "Invalid attribute length: 2, tag byte missing", 1,
        )
    for stem, name, label, lengths in (
        ("ipaddr", "Framed-IP-Address", "Ipaddr", (0, 3, 5, 16)),
        ("date", "Event-Timestamp", "Date", (0, 3, 5)),
        ("integer", "Session-Timeout", "Integer", (0, 3, 5, 8)),
        ("tagged-integer", "Tunnel-Type", "Integer", (0, 3, 5)),
        ("ipv6addr", "Login-IPv6-Host", "Ipv6addr", (0, 4, 15, 17)),
        ("ipv6prefix", "Framed-IPv6-Prefix", "Ipv6Prefix", (0, 1, 19)),
        ("ifid", "Framed-Interface-Id", "Ifid", (0, 7, 9)),
        ("vendor-integer", "MS-MPPE-Encryption-Policy", "Integer", (0, 3, 5)),
        ("vendor-ipaddr", "MS-Primary-DNS-Server", "Ipaddr", (3,)),
        ("vendor-ipv6addr", "MS-User-IPv6-Address", "Ipv6addr", (15,)),
    ):
        code, vendor, vendor_code = ENTRIES[name].key
        for length in lengths:
            refused(
                f"{stem}-of-{length}-bytes", f"{name}, of type {ENTRIES[name].type}, with a value of {length} bytes",
                [BEFORE, attribute(name, pattern(0, length), f"{length} bytes"), BEHIND],
                "invalidAttrLength",
                f"Attribute: {code}, VendorId: {vendor}, VendorAttrId: {vendor_code}, Data Type: {label}, "
                f"Invalid length: {length}",
                1,
            )
    for bits in (129, 255):
        refused(
            f"ipv6prefix-of-{bits}-bits", f"Framed-IPv6-Prefix with a prefix length of {bits}",
            [BEFORE, attribute("Framed-IPv6-Prefix", bytes([0, bits]) + pattern(0x20), f"/{bits}"), BEHIND],
            "invalidAttrLength",
            f"Attribute: 97, VendorId: 0, VendorAttrId: 0, Data Type: Ipv6Prefix, Invalid prefix length: {bits}",
            1,
        )


# ---------------------------------------------------------------------------------------------------------------------


def describe_all() -> None:
    for describe in (
        rfc2865_section_7_1,
        rfc2865_section_7_2,
        rfc2865_section_7_3,
        rfc2865_section_7_3_answer_to_the_challenge,
        rfc5997_section_6_1,
        rfc5997_section_6_2,
        rfc5997_section_6_3,
        accounting,
        change_of_authorization,
        disconnect,
        eap,
        tagged_and_salted,
        mppe_keys,
        ipv6,
        not_in_the_dictionary,
        limits,
        refused_headers,
        refused_authenticators,
        refused_framing,
        refused_vendor_specific,
        refused_message_authenticators,
        refused_passwords,
        refused_eap,
        refused_values,
    ):
        describe()
    if len({packet.name for packet in PACKETS}) != len(PACKETS):
        raise ValueError("two packets of one name")


def check(wanted: dict[str, str]) -> int:
    present = {path.name: path.read_text() for path in HERE.glob("*.txt")}
    wrong = sorted(name for name in wanted.keys() | present.keys() if wanted.get(name) != present.get(name))
    for name in wrong:
        state = "missing" if name not in present else "stale" if name in wanted else "not described"
        print(f"{name}: {state}", file=sys.stderr)
    return 1 if wrong else 0


def main() -> int:
    arguments = argparse.ArgumentParser(description="Writes the golden packets of this folder.")
    arguments.add_argument("--check", action="store_true", help="write nothing, say which files are not up to date")
    options = arguments.parse_args()
    describe_all()
    wanted = {packet.name + ".txt": packet.text() for packet in PACKETS}
    if options.check:
        return check(wanted)
    for name, text in wanted.items():
        (HERE / name).write_text(text)
    return 0


if __name__ == "__main__":
    sys.exit(main())
