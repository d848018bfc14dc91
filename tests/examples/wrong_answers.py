"""What a stranger, or a broken server, may send a client in place of an answer, and what the client
says of it."""

from packets import answer

# Those with a name, and a few without.
CODES = [*range(14), *range(39, 47), 255]
RIGHT_CODES = {1: (2, 3, 11), 4: (5,), 12: (2, 5)}
NO_ANSWER = "not an answer to this request"


def changed(packet, at):
    return packet[:at] + bytes([packet[at] ^ 1]) + packet[at + 1:]


def wrong_answers(code, request, *content):
    """(datagram, the fault) for answers of that code and content."""
    good = answer(code, request, *content)
    cases = [
        (b"", "invalidPktLength"),
        (b"\x02", "invalidPktLength"),
        (b"not a packet", "invalidPktLength"),
        (b"\xff" * 5000, "invalidPktLength"),
        (good[:2] + b"\x00\x13" + good[4:], "invalidPktLength"),
        (good[:-1], "invalidPktLength"),
        (answer(code, request, *content, secret=b"another"), "invalidPktAuth"),
        (answer(code, changed(request, 4), *content), "invalidPktAuth"),
        (changed(good, 4), "invalidPktAuth"),
        (answer(code, request, *content, b"\x12\x01"), "invalidAttrLength"),
        (answer(code, request, *content, b"\x12\xff"), "invalidAttrLength"),
        (answer(code, request, *content, b"\x12"), "invalidAttrLength"),
        (answer(code, changed(request, 1), *content), NO_ANSWER),
        (request, NO_ANSWER),
    ]
    cases += [(answer(other, request, *content), NO_ANSWER)
              for other in CODES if other not in RIGHT_CODES[request[0]]]
    return cases
