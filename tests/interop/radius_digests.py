"""What RADIUS computes with MD5, for what pyrad lacks or gets wrong, and as a check of our own."""

import hashlib
import hmac

AUTHENTICATOR_LENGTH = 16
HEADER_LENGTH = 20
BLOCK = 16
SALT_LENGTH = 2
NO_AUTHENTICATOR = bytes(AUTHENTICATOR_LENGTH)


def authenticator(packet):
    return packet[4:HEADER_LENGTH]


def with_authenticator(packet, value):
    return packet[:4] + value + packet[HEADER_LENGTH:]


def padded(value):
    """The value with zeros up to a whole block."""
    return value + bytes(-len(value) % BLOCK)


def xored(left, right):
    return bytes(a ^ b for a, b in zip(left, right))


def blocks(value):
    return [value[at:at + BLOCK] for at in range(0, len(value), BLOCK)]


def hide(plain, secret, vector):
    """RFC 2865 section 5.2; with the salt behind the authenticator in `vector`, RFC 2868
    section 3.5. A short last block is hidden as it is."""
    hidden, last = b"", vector
    for block in blocks(plain):
        last = xored(block, hashlib.md5(secret + last).digest())
        hidden += last
    return hidden


def reveal(hidden, secret, vector):
    last = [vector, *blocks(hidden)]
    return b"".join(xored(block, hashlib.md5(secret + before).digest())
                    for block, before in zip(blocks(hidden), last))


def salt_hide(plain, secret, vector, salt):
    return salt + hide(padded(bytes([len(plain)]) + plain), secret, vector + salt)


def salt_reveal(hidden, secret, vector):
    """Raises ValueError when the length byte or the padding is not as RFC 2868 has it."""
    salt, rest = hidden[:SALT_LENGTH], hidden[SALT_LENGTH:]
    if len(rest) % BLOCK or not rest or not salt[0] & 0x80:
        raise ValueError("salt or length of a salted value")
    revealed = reveal(rest, secret, vector + salt)
    plain = revealed[1:1 + revealed[0]]
    if padded(revealed[:1] + plain) != revealed:
        raise ValueError("length byte or padding of a salted value")
    return plain


def message_authenticator(packet, secret, vector):
    """RFC 3579 section 3.2, of a packet whose Message-Authenticator is zeroed; `vector` stands in
    the place of the authenticator."""
    return hmac.new(secret, with_authenticator(packet, vector), "md5").digest()
