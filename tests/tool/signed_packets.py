"""Packets, signed as their code asks for."""

import hashlib
import hmac

SECRET = "golden-packets"
REQUEST_AUTHENTICATOR = bytes(range(0xA0, 0xB0))
REQUEST_CODES = (1, 4, 12, 40, 43)


def attribute(number, value):
    return bytes([number, len(value) + 2]) + value


def vendor_attribute(vendor, number, value):
    return attribute(26, vendor.to_bytes(4, "big") + attribute(number, value))


def packet(code, *attributes, request_authenticator=REQUEST_AUTHENTICATOR, secret=SECRET):
    """A packet of that code, signed as its code asks for."""
    content = b"".join(attributes)
    head = bytes([code, 7]) + (20 + len(content)).to_bytes(2, "big")
    if code in (1, 12):
        return head + bytes(range(16)) + content
    covered = bytes(16) if code in REQUEST_CODES else request_authenticator
    digest = hashlib.md5(head + covered + content + secret.encode()).digest()
    return head + digest + content


def signed_request(*attributes, code=1):
    """A request, an Access-Request unless said, that ends with a Message-Authenticator."""
    unsigned = packet(code, *attributes, attribute(80, bytes(16)))
    return unsigned[:-16] + hmac.digest(SECRET.encode(), unsigned, "md5")


def hidden(value, salt, authenticator=REQUEST_AUTHENTICATOR):
    """A value hidden as RFC 2868 section 3.5 says, behind its salt."""
    value += bytes(-len(value) % 16)
    result, block = b"", authenticator + salt
    for at in range(0, len(value), 16):
        keystream = hashlib.md5(SECRET.encode() + block).digest()
        block = bytes(a ^ b for a, b in zip(value[at:at + 16], keystream))
        result += block
    return salt + result
