"""The server of CoA and Disconnect requests, and a test as its client.

    dynauth_server.test.py AGENTS DICTIONARY
"""

import re
import sys
import time
import unittest

from agents import (DICTIONARY, EXIT_FAULT, EXIT_USAGE, HOST, SECRET_FILE, Agent, udp_socket)
from packets import (ACCT_SESSION_ID, COA_ACK, COA_NAK, COA_REQUEST, DISCONNECT_ACK, DISCONNECT_NAK,
                     DISCONNECT_REQUEST, ERROR_CAUSE, EVENT_TIMESTAMP, FILTER_ID,
                     MESSAGE_AUTHENTICATOR, MESSAGE_AUTHENTICATOR_PLACE, PROXY_STATE,
                     SESSION_TIMEOUT, USER_NAME, attribute, attributes, authenticator,
                     dynauth_request, has_good_authenticator, has_good_message_authenticator,
                     number)

SUCCESS = 200
UNSUPPORTED_ATTRIBUTE, MISSING_ATTRIBUTE, INVALID_REQUEST = 401, 402, 404
SESSION_CONTEXT_NOT_FOUND = 503
NAMES = {COA_ACK: "COA_ACK", COA_NAK: "COA_NAK", DISCONNECT_ACK: "DISCONNECT_ACK",
         DISCONNECT_NAK: "DISCONNECT_NAK", SUCCESS: "SUCCESS",
         UNSUPPORTED_ATTRIBUTE: "UNSUPPORTED_ATTRIBUTE", MISSING_ATTRIBUTE: "MISSING_ATTRIBUTE",
         INVALID_REQUEST: "INVALID_REQUEST", SESSION_CONTEXT_NOT_FOUND: "SESSION_CONTEXT_NOT_FOUND"}
SESSION = attribute(ACCT_SESSION_ID, b"session-1")
OTHER_SESSION = attribute(ACCT_SESSION_ID, b"session-2")
UNKNOWN_SESSION = attribute(ACCT_SESSION_ID, b"session-3")
FILTER = attribute(FILTER_ID, b"quarantine")
TIMEOUT = attribute(SESSION_TIMEOUT, number(600))
VENDOR = attribute(26, number(9) + attribute(1, b"ip:inacl#1=deny ip any any"))


class DynAuthServer(unittest.TestCase):
    def setUp(self):
        self.server = self.enterContext(Agent("dynauth_server", DICTIONARY, SECRET_FILE, HOST, 0,
                                              "session-1", "session-2"))
        self.client = self.enterContext(udp_socket())
        listening = re.fullmatch(r"listening at port (\d+)\n", self.server.output_line())
        self.client.connect((HOST, int(listening[1])))
        self.identifier = 0

    def exchange(self, request):
        self.client.send(request)
        return self.client.recv(65535)

    def request(self, code, *content):
        self.identifier += 1
        return dynauth_request(code, self.identifier, *content)

    def check(self, request, code, *content):
        """`content` is (number, value) of each attribute that is expected."""
        answer = self.exchange(request)
        self.assertEqual((answer[0], answer[1]), (code, request[1]))
        self.assertTrue(has_good_authenticator(answer, authenticator(request)))
        self.assertEqual(attributes(answer), list(content))
        cause = int.from_bytes(dict(content).get(ERROR_CAUSE, number(SUCCESS)), "big")
        self.assertEqual(self.server.output_line(), f"{NAMES[code]} {NAMES[cause]}\n")
        return answer

    def check_nak(self, request, code, cause):
        self.check(request, code, (ERROR_CAUSE, number(cause)))

    def check_session_is_there(self, session=SESSION):
        """The server still answers, and what came before has ended no session."""
        self.check(self.request(COA_REQUEST, session, FILTER), COA_ACK)

    def test_changes_a_session(self):
        for content in ([SESSION, FILTER], [TIMEOUT, SESSION], [SESSION, FILTER, TIMEOUT]):
            with self.subTest(content):
                self.check(self.request(COA_REQUEST, *content), COA_ACK)

    def test_ends_a_session_once(self):
        self.check(self.request(DISCONNECT_REQUEST, SESSION), DISCONNECT_ACK)
        self.check_nak(self.request(DISCONNECT_REQUEST, SESSION), DISCONNECT_NAK,
                       SESSION_CONTEXT_NOT_FOUND)
        self.check_nak(self.request(COA_REQUEST, SESSION, FILTER), COA_NAK,
                       SESSION_CONTEXT_NOT_FOUND)
        self.check_session_is_there(OTHER_SESSION)

    def test_says_why_not(self):
        for code, nak, *content, cause in (
                (COA_REQUEST, COA_NAK, UNKNOWN_SESSION, FILTER, SESSION_CONTEXT_NOT_FOUND),
                (DISCONNECT_REQUEST, DISCONNECT_NAK, UNKNOWN_SESSION, SESSION_CONTEXT_NOT_FOUND),
                (COA_REQUEST, COA_NAK, FILTER, MISSING_ATTRIBUTE),
                (COA_REQUEST, COA_NAK, SESSION, MISSING_ATTRIBUTE),
                (DISCONNECT_REQUEST, DISCONNECT_NAK, MISSING_ATTRIBUTE),
                (DISCONNECT_REQUEST, DISCONNECT_NAK, SESSION, FILTER, UNSUPPORTED_ATTRIBUTE),
                (DISCONNECT_REQUEST, DISCONNECT_NAK, SESSION, attribute(USER_NAME, b"alice"),
                 UNSUPPORTED_ATTRIBUTE),
                (COA_REQUEST, COA_NAK, SESSION, FILTER, VENDOR, UNSUPPORTED_ATTRIBUTE),
                (COA_REQUEST, COA_NAK, SESSION, FILTER, attribute(250, b"?"),
                 UNSUPPORTED_ATTRIBUTE)):
            with self.subTest(code=code, content=content):
                self.check_nak(self.request(code, *content), nak, cause)
        self.check_session_is_there()

    def test_takes_no_request_for_one_of_two_sessions(self):
        for other in (SESSION, OTHER_SESSION, UNKNOWN_SESSION):
            for content in ([SESSION, other], [other, SESSION]):
                with self.subTest(content):
                    self.check_nak(self.request(DISCONNECT_REQUEST, *content), DISCONNECT_NAK,
                                   INVALID_REQUEST)
                    self.check_nak(self.request(COA_REQUEST, *content, FILTER), COA_NAK,
                                   INVALID_REQUEST)
        now = attribute(EVENT_TIMESTAMP, number(int(time.time())))
        self.check_nak(self.request(DISCONNECT_REQUEST, now, SESSION, now), DISCONNECT_NAK,
                       INVALID_REQUEST)
        self.check_session_is_there()
        self.check_session_is_there(OTHER_SESSION)

    def test_signs_as_the_request_was_signed(self):
        for code, answer_code, *content in ((COA_REQUEST, COA_ACK, SESSION, FILTER),
                                            (COA_REQUEST, COA_NAK, SESSION),
                                            (DISCONNECT_REQUEST, DISCONNECT_ACK, SESSION),
                                            (DISCONNECT_REQUEST, DISCONNECT_NAK)):
            with self.subTest(code=code, answer_code=answer_code):
                request = self.request(code, *content, MESSAGE_AUTHENTICATOR_PLACE)
                answer = self.exchange(request)
                self.assertEqual((answer[0], answer[1]), (answer_code, request[1]))
                self.assertEqual(attributes(answer)[0][0], MESSAGE_AUTHENTICATOR)
                own = authenticator(request)
                self.assertTrue(has_good_authenticator(answer, own))
                self.assertTrue(has_good_message_authenticator(answer, own))

    def test_gives_back_what_proxies_left(self):
        states = [(PROXY_STATE, b"second hop"), (PROXY_STATE, b"\x00\xff"), (PROXY_STATE, b"")]
        encoded = [attribute(*state) for state in states]
        self.check(self.request(COA_REQUEST, encoded[0], SESSION, encoded[1], FILTER, encoded[2]),
                   COA_ACK, *states)
        self.check(self.request(COA_REQUEST, SESSION, *encoded),
                   COA_NAK, (ERROR_CAUSE, number(MISSING_ATTRIBUTE)), *states)

    def test_answers_a_request_that_comes_again_with_the_same_packet(self):
        request = self.request(DISCONNECT_REQUEST, SESSION)
        answer = self.check(request, DISCONNECT_ACK)
        self.assertEqual([self.exchange(request) for _ in range(3)], [answer] * 3)
        again = self.request(DISCONNECT_REQUEST, SESSION)
        self.check_nak(again, DISCONNECT_NAK, SESSION_CONTEXT_NOT_FOUND)

    def test_takes_another_packet_under_the_same_identifier_for_another_request(self):
        self.check(dynauth_request(DISCONNECT_REQUEST, 7, SESSION), DISCONNECT_ACK)
        self.check(dynauth_request(DISCONNECT_REQUEST, 7, OTHER_SESSION), DISCONNECT_ACK)

    def test_takes_the_same_packet_of_another_client_for_another_request(self):
        request = self.request(DISCONNECT_REQUEST, SESSION)
        self.check(request, DISCONNECT_ACK)
        with udp_socket() as other:
            other.sendto(request, self.client.getpeername())
            self.assertEqual(other.recv(65535)[0], DISCONNECT_NAK)

    def test_takes_a_current_request_only(self):
        now = int(time.time())
        self.check(self.request(COA_REQUEST, SESSION, FILTER,
                                attribute(EVENT_TIMESTAMP, number(now))), COA_ACK)
        for seconds in (0, 1_000_000_000, now - 3600, now + 3600, 2**32 - 1):
            with self.subTest(seconds):
                self.client.send(self.request(DISCONNECT_REQUEST, SESSION,
                                              attribute(EVENT_TIMESTAMP, number(seconds))))
                self.assertEqual(self.server.fault_line(), "ignored: too old\n")
        self.check_session_is_there()

    def test_answers_no_stranger(self):
        good = dynauth_request(DISCONNECT_REQUEST, 200, SESSION)
        forged = attribute(MESSAGE_AUTHENTICATOR, b"sixteen bytes...")
        for datagram, fault in (
                (b"", "invalidPktLength"),
                (b"not a packet", "invalidPktLength"),
                (b"\xff" * 5000, "invalidPktLength"),
                (good[:-1], "invalidPktLength"),
                (good[:4] + bytes([good[4] ^ 1]) + good[5:], "invalidPktAuth"),
                (dynauth_request(DISCONNECT_REQUEST, 200, SESSION, secret=b"another"),
                 "invalidPktAuth"),
                (dynauth_request(DISCONNECT_REQUEST, 200, SESSION, forged), "invalidMsgAuth"),
                (dynauth_request(DISCONNECT_REQUEST, 200, SESSION, b"\x2c\x01"),
                 "invalidAttrLength"),
                (dynauth_request(DISCONNECT_REQUEST, 200, SESSION, b"\x2c"), "invalidAttrLength"),
                *((dynauth_request(code, 200, SESSION), "not a request for this server")
                  for code in (0, 1, 2, 3, 4, 5, 11, 12, 41, 42, 44, 45, 255))):
            with self.subTest(datagram.hex()):
                self.client.send(datagram)
                self.assertEqual(self.server.fault_line(), f"ignored: {fault}\n")
        self.check_session_is_there()

    def test_leaves_out_the_cause_for_which_there_is_no_room(self):
        for signature, room in ((b"", 0), (b"", 5), (b"", 6), (MESSAGE_AUTHENTICATOR_PLACE, 0),
                                (MESSAGE_AUTHENTICATOR_PLACE, 5), (MESSAGE_AUTHENTICATOR_PLACE, 6)):
            with self.subTest(signature=signature, room=room):
                states = [attribute(PROXY_STATE, bytes(253))] * 15
                left = 4096 - 20 - len(signature) - sum(map(len, states)) - room
                states.append(attribute(PROXY_STATE, bytes(left - 2)))
                request = self.request(DISCONNECT_REQUEST, signature, *states)
                answer = self.exchange(request)
                self.assertEqual((answer[0], answer[1]), (DISCONNECT_NAK, request[1]))
                self.assertEqual(len(answer), 4096 if room == 6 else 4096 - room)
                self.assertTrue(has_good_authenticator(answer, authenticator(request)))
                self.assertEqual([value for key, value in attributes(answer) if key == ERROR_CAUSE],
                                 [number(MISSING_ATTRIBUTE)] if room == 6 else [])
                self.assertEqual([key for key, _ in attributes(answer)].count(PROXY_STATE), 16)
                self.assertEqual(self.server.output_line(), "DISCONNECT_NAK MISSING_ATTRIBUTE\n")
        self.check_session_is_there()


class CommandLine(unittest.TestCase):
    def test_says_how_it_is_used(self):
        with Agent("dynauth_server") as server:
            self.assertEqual(server.result(), (
                EXIT_USAGE, "", "too few arguments\nusage: dynauth_server "
                "DICTIONARY SECRET-FILE HOST PORT SESSION-ID...\n"))

    def test_says_when_the_port_is_taken(self):
        with udp_socket() as taken:
            port = taken.getsockname()[1]
            with Agent("dynauth_server", DICTIONARY, SECRET_FILE, HOST, port) as server:
                self.assertEqual(server.result(), (
                    EXIT_FAULT, "", f"{HOST} port {port}: Address already in use\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
