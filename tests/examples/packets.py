"""Packets as a server makes and checks them, written a second time from RFC 2865, 2866, 2869 and
5176: nothing here knows the library."""

import hashlib
import hmac

SECRET = b"xyzzy5461"

ACCESS_REQUEST, ACCESS_ACCEPT, ACCESS_REJECT = 1, 2, 3
ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE = 4, 5
ACCESS_CHALLENGE, STATUS_SERVER = 11, 12
DISCONNECT_REQUEST, DISCONNECT_ACK, DISCONNECT_NAK = 40, 41, 42
COA_REQUEST, COA_ACK, COA_NAK = 43, 44, 45

USER_NAME, USER_PASSWORD, CHAP_PASSWORD = 1, 2, 3
FILTER_ID, REPLY_MESSAGE, SESSION_TIMEOUT = 11, 18, 27
NAS_IDENTIFIER, PROXY_STATE = 32, 33
ACCT_STATUS_TYPE, ACCT_INPUT_OCTETS, ACCT_OUTPUT_OCTETS = 40, 42, 43
ACCT_SESSION_ID, ACCT_SESSION_TIME, ACCT_TERMINATE_CAUSE = 44, 46, 49
ACCT_INPUT_GIGAWORDS, ACCT_OUTPUT_GIGAWORDS, EVENT_TIMESTAMP = 52, 53, 55
CHAP_CHALLENGE, MESSAGE_AUTHENTICATOR, ERROR_CAUSE = 60, 80, 101

HEADER = 20
ZEROS = bytes(16)
RANDOM = bytes(range(0x30, 0x40))  # the authenticator of what `random_request` makes


def attribute(number, value):
    return bytes([number, 2 + len(value)]) + value


def number(value):
    return value.to_bytes(4, "big")


MESSAGE_AUTHENTICATOR_PLACE = attribute(MESSAGE_AUTHENTICATOR, ZEROS)


def authenticator(packet):
    return packet[4:HEADER]


def attributes(packet):
    """(number, value) of each attribute, in order."""
    found, at = [], HEADER
    while at < len(packet):
        length = packet[at + 1]
        found.append((packet[at], packet[at + 2:at + length]))
        at += length
    assert at == len(packet) == int.from_bytes(packet[2:4], "big"), packet.hex()
    return found


def signed(code, identifier, content, covered, secret):
    """A packet whose authenticator is a digest; its Message-Authenticator is filled in. `covered`
    stands in the place of the authenticator while digests are taken."""
    head = bytes([code, identifier]) + (HEADER + len(content)).to_bytes(2, "big")
    packet = bytearray(head + covered + content)
    place = packet.find(MESSAGE_AUTHENTICATOR_PLACE, HEADER)
    if place >= 0:
        packet[place + 2:place + 18] = hmac.digest(secret, bytes(packet), "md5")
    packet[4:HEADER] = hashlib.md5(bytes(packet) + secret).digest()
    return bytes(packet)


def answer(code, request, *content, secret=SECRET):
    """An answer to `request`."""
    return signed(code, request[1], b"".join(content), authenticator(request), secret)


def dynauth_request(code, identifier, *content, secret=SECRET):
    return signed(code, identifier, b"".join(content), ZEROS, secret)


def random_request(code, identifier, *content, secret=SECRET):
    """A request whose authenticator is no digest; its Message-Authenticator is filled in."""
    packet = bytearray(bytes([code, identifier]) + bytes(2) + RANDOM + b"".join(content))
    packet[2:4] = len(packet).to_bytes(2, "big")
    place = packet.find(MESSAGE_AUTHENTICATOR_PLACE, HEADER)
    if place >= 0:
        packet[place + 2:place + 18] = hmac.digest(secret, bytes(packet), "md5")
    return bytes(packet)


def has_good_authenticator(packet, covered=ZEROS, secret=SECRET):
    digest = hashlib.md5(packet[:4] + covered + packet[HEADER:] + secret).digest()
    return authenticator(packet) == digest


def has_good_message_authenticator(packet, covered=None, secret=SECRET):
    """Whether there is one and it is good; `covered` as in `signed`, where it is not the packet's
    own authenticator."""
    value = dict(attributes(packet)).get(MESSAGE_AUTHENTICATOR)
    if value is None:
        return False
    place = packet.index(bytes([MESSAGE_AUTHENTICATOR, 18]) + value, HEADER) + 2
    zeroed = packet[:place] + ZEROS + packet[place + 16:]
    zeroed = zeroed[:4] + (covered or authenticator(packet)) + zeroed[HEADER:]
    return hmac.digest(secret, zeroed, "md5") == value


def crossed(text, secret, start, hides):
    """The text, hidden or revealed block by block (RFC 2865 section 5.2)."""
    result, previous = b"", start
    for at in range(0, len(text), 16):
        block = text[at:at + 16]
        stream = hashlib.md5(secret + previous).digest()
        result += bytes(left ^ right for left, right in zip(block, stream))
        previous = result[-16:] if hides else block
    return result


def padded(text):
    return text + bytes(-len(text) % 16)


def hidden_password(password, secret=SECRET):
    """The value of a User-Password in what `random_request` makes."""
    return crossed(padded(password), secret, RANDOM, hides=True)


def revealed_password(request, secret=SECRET):
    """User-Password with its padding (RFC 2865 section 5.2)."""
    hidden = dict(attributes(request))[USER_PASSWORD]
    return crossed(hidden, secret, authenticator(request), hides=False)


def salted(text, salt, request_authenticator, secret=SECRET):
    """Salt and hidden text (RFC 2868 section 3.5)."""
    plain = padded(bytes([len(text)]) + text)
    return salt + crossed(plain, secret, request_authenticator + salt, hides=True)


def revealed_salted(value, request_authenticator, secret=SECRET):
    """The text behind the salt and the length byte."""
    plain = crossed(value[2:], secret, request_authenticator + value[:2], hides=False)
    return plain[1:1 + plain[0]]
