"""pyrad makes packets and reads them, helped where it lacks something.

pyrad 2.1 does attributes, authenticators and the User-Password method. The salted method and
Message-Authenticators are computed here (radius_digests.py), as is the User-Password method for
values that are no text.
"""

import ipaddress

import pyrad.packet
import pyrad.tools

from attribute_catalogue import (MESSAGE_AUTHENTICATOR, MESSAGE_AUTHENTICATOR_KIND, NARROW_BYTES,
                                 PASSWORD_METHOD)
from exchanges import (ACCESS_REQUEST, ACCOUNTING_REQUEST, COA_REQUEST, DISCONNECT_REQUEST)
from radius_digests import (AUTHENTICATOR_LENGTH, NO_AUTHENTICATOR, authenticator, hide,
                            message_authenticator, padded, salt_hide)
from random_packets import DIGEST_REQUESTS, STATUS_SERVER, plain_wire

PACKETS = {
    ACCESS_REQUEST: pyrad.packet.AuthPacket,
    STATUS_SERVER: pyrad.packet.AuthPacket,
    ACCOUNTING_REQUEST: pyrad.packet.AcctPacket,
    COA_REQUEST: pyrad.packet.CoAPacket,
    DISCONNECT_REQUEST: pyrad.packet.CoAPacket,
}


def values(packet):
    """The values as they stand in the packet, by number."""
    return dict(dict.items(packet))


# ---- Reading ----

def value_of(kind, wire):
    """A value as pyrad decodes it, in the terms of the one that was given."""
    value = pyrad.tools.DecodeAttr(kind.peer_type, wire)
    if kind.peer_type == "string":
        return value.encode() if isinstance(value, str) else value
    if kind.peer_type == "ipv6prefix":
        address, length = value.split("/")
        return ipaddress.IPv6Address(address), int(length)
    if kind.peer_type in ("ipaddr", "ipv6addr"):
        return ipaddress.ip_address(value)
    # Types that pyrad lacks are octets to it.
    return int.from_bytes(value, "big") if kind.our_type == "integer64" else value


def password_of(hidden, secret, vector):
    """Raises what pyrad does when it cannot reveal a password."""
    packet = pyrad.packet.AuthPacket(secret=secret, authenticator=vector)
    return packet.PwDecrypt(hidden).encode()


def values_in(wire):
    return values(pyrad.packet.Packet(packet=wire))


def read(exchange, request, response, secret, dictionary):
    """Both packets, and whether pyrad finds their authenticators in order."""
    code = exchange.request.code
    read_request = PACKETS[code](secret=secret, dict=dictionary, packet=request)
    read_response = PACKETS[code](secret=secret, dict=dictionary, packet=response)
    if code == ACCOUNTING_REQUEST:
        is_genuine = read_request.VerifyAcctRequest()
    elif code in DIGEST_REQUESTS:
        is_genuine = read_request.VerifyCoARequest()
    else:
        is_genuine = read_request.authenticator == exchange.request.authenticator
    return (read_request, read_response,
            (is_genuine, read_request.VerifyReply(read_response, response)))


# ---- Making ----

def peer_value(given):
    """The value as pyrad is told it."""
    value, peer_type = given.value, given.kind.peer_type
    if peer_type == "string":
        try:
            return value.decode()
        except UnicodeDecodeError:
            return value
    if peer_type in NARROW_BYTES:
        return int.from_bytes(value, "big")
    if peer_type == "ipv6prefix":
        return f"{value[0]}/{value[1]}"
    return str(value) if peer_type in ("ipaddr", "ipv6addr") else value


def hidden(given, secret, vector, salt):
    plain = plain_wire(given)
    tag, content = (plain[:1], plain[1:]) if given.kind.is_tagged else (b"", plain)
    if given.kind.method != PASSWORD_METHOD:
        return tag + salt_hide(content, secret, vector, salt)
    if given.kind.our_type != "string":
        return tag + hide(content, secret, vector)
    if given.kind.is_user_password:
        return hidden_password(content or bytes(AUTHENTICATOR_LENGTH), secret, vector)
    return tag + hide(padded(content), secret, vector)


def hidden_password(password, secret, vector):
    return pyrad.packet.AuthPacket(secret=secret, authenticator=vector).PwCrypt(password)


def add(packet, given, secret, vector, salt):
    kind = given.kind
    if kind is MESSAGE_AUTHENTICATOR_KIND:
        packet.AddAttribute(MESSAGE_AUTHENTICATOR, NO_AUTHENTICATOR)
    elif kind.method:
        packet.AddAttribute(kind.peer_key, hidden(given, secret, vector, salt))
    elif kind.our_type in ("unknown", "ifid", "integer64"):
        packet.AddAttribute(kind.peer_key, plain_wire(given))
    else:
        tag = "" if given.tag is None else f":{given.tag}"
        packet.AddAttribute(kind.name + tag, peer_value(given))


def fill(packet, attributes, secret, vector):
    for place, given in enumerate(attributes):
        # Salts differ within a packet, and their first bit is set.
        add(packet, given, secret, vector, (0x8000 + place * 7).to_bytes(2, "big"))


def signed(packet, wire, secret, vector):
    """The packet's bytes with the Message-Authenticator that it asks for, if it asks."""
    if MESSAGE_AUTHENTICATOR in values(packet):
        packet[MESSAGE_AUTHENTICATOR] = [message_authenticator(wire(), secret, vector)]
    return wire()


def make(exchange, secret, dictionary, spoil):
    """The bytes of both packets. `spoil` adds the flaw of a packet that has one."""
    code = exchange.request.code
    vector = NO_AUTHENTICATOR if code in DIGEST_REQUESTS else exchange.request.authenticator
    request = PACKETS[code](code=code, id=exchange.request.id, secret=secret,
                            authenticator=vector, dict=dictionary)
    fill(request, exchange.request.attributes, secret, vector)
    spoil(request, exchange.request, secret, vector)
    sent = signed(request, request.RequestPacket, secret, vector)

    response = request.CreateReply()
    response.code = exchange.response.code
    vector = authenticator(sent)
    fill(response, exchange.response.attributes, secret, vector)
    spoil(response, exchange.response, secret, vector)
    return sent, signed(response, response.ReplyPacket, secret, vector)
