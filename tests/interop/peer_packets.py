"""What `radius-packet decode` says of a peer's packets, compared with what the peer was told."""

import json
import subprocess
import sys
import unittest

from exchanges import ACCESS_REQUEST, OTHER_SECRET, SECRET, Made, password, user_name

SKIPPED = 77

ACCEPTED, CHECK_FAILED = 0, 1
MESSAGE_AUTHENTICATOR_KEY = "80"


def skip(reason):
    """Ends the program as one that could not test anything."""
    print(f"SKIPPED: {reason} (scripts/setup test installs it)", file=sys.stderr)
    sys.exit(SKIPPED)


def decode(program, packet, secret=SECRET, request_authenticator=b""):
    """The exit status, and the tool's report on the packet."""
    given = ["-a", request_authenticator.hex()] if request_authenticator else []
    completed = subprocess.run([program, "decode", "--json", "--secret", secret, *given],
                               input=packet.hex().encode(), stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, timeout=60)
    if not completed.stdout:
        raise RuntimeError(f"{program} reports nothing: {completed.stderr.decode()}")
    return completed.returncode, json.loads(completed.stdout)


def authenticator(packet):
    return packet[4:20]


def key(attribute):
    numbers = [attribute["attrId"], attribute["vendorId"], attribute["vendorAttrId"]]
    return ".".join(map(str, numbers if attribute["vendorId"] else numbers[:1]))


def seen(attribute, expected):
    """Key, tag and value of a reported attribute, the value in the terms that it is expected in."""
    if isinstance(expected.value, Made):
        value = expected.value
    elif isinstance(expected.value, bytes):
        value = bytes.fromhex(attribute["hex"])
    else:
        value = attribute["value"]
    return key(attribute), attribute["tag"], value


def told(expected):
    """The same of what the peer was told."""
    return expected.key, expected.tag, expected.value


class PeerPacketsTest(unittest.TestCase):
    """Checks a peer's packets; `program` is the tool's."""

    program = None

    def check_request(self, packet, code, expected):
        self.check_decodes(packet, code, expected)
        if code == ACCESS_REQUEST and not self.is_signed(expected):
            self.check_other_secret_reveals_other_passwords(packet, expected)
            return
        # An Access-Request's own authenticator is random: only the Message-Authenticator can fail.
        error = "invalidMsgAuth" if code == ACCESS_REQUEST else "invalidPktAuth"
        self.check_refused(packet, error, secret=OTHER_SECRET)

    def check_answer(self, packet, code, expected, request):
        own = authenticator(request)
        self.check_decodes(packet, code, expected, own)
        self.check_refused(packet, "invalidPktAuth", secret=OTHER_SECRET, request_authenticator=own)
        another = bytes([own[0] ^ 1]) + own[1:]
        self.check_refused(packet, "invalidPktAuth", request_authenticator=another)

    def check_decodes(self, packet, code, expected, request_authenticator=b""):
        status, report = decode(self.program, packet, request_authenticator=request_authenticator)
        self.assertEqual((status, report["error"], report["code"]), (ACCEPTED, "success", code))
        attributes = report["attributes"]
        self.assertEqual([key(attribute) for attribute in attributes],
                         [attribute.key for attribute in expected])
        self.assertEqual([seen(*both) for both in zip(attributes, expected)],
                         [told(attribute) for attribute in expected])
        self.assertEqual(report["messageAuthenticator"], self.is_signed(expected))

    def check_refused(self, packet, error, **keys):
        status, report = decode(self.program, packet, **keys)
        self.assertEqual((status, report["error"]), (CHECK_FAILED, error))

    def check_other_secret_reveals_other_passwords(self, packet, expected):
        """Nothing in an unsigned Access-Request tells that a secret is wrong: it decodes, with
        another password."""
        status, report = decode(self.program, packet, secret=OTHER_SECRET)
        self.assertEqual((status, report["error"]), (ACCEPTED, "success"))
        for attribute, sent in zip(report["attributes"], expected, strict=True):
            same = seen(attribute, sent) == told(sent)
            self.assertEqual(same, sent.kind != "password", sent.name)

    @staticmethod
    def is_signed(expected):
        return any(attribute.key == MESSAGE_AUTHENTICATOR_KEY for attribute in expected)

    def check_exchange(self, exchange, request, answer):
        """`request` and `answer` are the packets that the peer made of the exchange."""
        named = [user_name(exchange.name), *exchange.request]
        self.check_request(request, exchange.request_code, named)
        self.check_answer(answer, exchange.answer_code, exchange.answer, request)
