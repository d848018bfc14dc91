"""The authentication client against a server that a test plays.

    auth_client.test.py AGENTS DICTIONARY
"""

import hashlib
import os
import subprocess
import sys
import unittest

from agents import (AGENTS, DICTIONARY, EXIT_FAULT, EXIT_GOOD, EXIT_NO_ANSWER, EXIT_REFUSED,
                    EXIT_USAGE, HOST, MANY_TRIES, ONE_TRY, PATIENCE_SECONDS, SECRET_FILE,
                    SHORT_WAIT, Agent, Server, file_with, folder, ignored, udp_socket,
                    without_signature)
from packets import (ACCESS_ACCEPT, ACCESS_CHALLENGE, ACCESS_REJECT, ACCESS_REQUEST, CHAP_CHALLENGE,
                     CHAP_PASSWORD, MESSAGE_AUTHENTICATOR, MESSAGE_AUTHENTICATOR_PLACE,
                     NAS_IDENTIFIER, REPLY_MESSAGE, SESSION_TIMEOUT, USER_NAME, USER_PASSWORD,
                     answer, attribute, attributes, authenticator, has_good_message_authenticator,
                     number, revealed_password)
from wrong_answers import wrong_answers

HELLO = attribute(REPLY_MESSAGE, b"hello")
LONGEST_LINE = 65536
TOO_LONG = f"{{}}: the first line is longer than {LONGEST_LINE} bytes\n"
FORGED = attribute(MESSAGE_AUTHENTICATOR, b"sixteen bytes...")


class AuthClient(unittest.TestCase):
    def exchange(self, *options, answers, password=b"open sesame\n"):
        """The request, and what the client makes of the answers made to it."""
        with Server() as server:
            with server.client("auth_client", *ONE_TRY, *options, arguments=["alice"],
                               stdin=password) as client:
                request = server.receive()
                server.send(*answers(request))
                status, output, errors = client.result()
        return request, status, without_signature(output), errors

    def accepted(self, *options, password):
        request, status, output, errors = self.exchange(
            *options, password=password,
            answers=lambda request: [answer(ACCESS_ACCEPT, request, MESSAGE_AUTHENTICATOR_PLACE)])
        self.assertEqual((status, output, errors),
                         (EXIT_GOOD, "ACCESS_ACCEPT\n  Message-Authenticator\n", ""))
        self.assertEqual(request[0], ACCESS_REQUEST)
        self.assertTrue(has_good_message_authenticator(request))
        self.assertEqual(attributes(request)[0][0], MESSAGE_AUTHENTICATOR)
        return request

    def test_hides_the_password_by_pap(self):
        for length, blocks in ((0, 1), (1, 1), (15, 1), (16, 1), (17, 2), (128, 8)):
            with self.subTest(length=length):
                password = bytes(range(0x21, 0xA1))[:length]
                request = self.accepted(password=password + b"\nnot this line\n")
                self.assertEqual([key for key, _ in attributes(request)],
                                 [MESSAGE_AUTHENTICATOR, USER_NAME, USER_PASSWORD, NAS_IDENTIFIER])
                self.assertEqual(dict(attributes(request))[USER_NAME], b"alice")
                self.assertEqual(revealed_password(request), password.ljust(16 * blocks, b"\0"))

    def test_proves_the_password_by_chap(self):
        request = self.accepted("-c", password=b"open sesame")
        values = dict(attributes(request))
        self.assertEqual(list(values), [MESSAGE_AUTHENTICATOR, USER_NAME, CHAP_PASSWORD,
                                        CHAP_CHALLENGE, NAS_IDENTIFIER])
        identifier, digest = values[CHAP_PASSWORD][:1], values[CHAP_PASSWORD][1:]
        self.assertEqual(len(values[CHAP_CHALLENGE]), 16)
        self.assertEqual(
            digest, hashlib.md5(identifier + b"open sesame" + values[CHAP_CHALLENGE]).digest())

    def test_makes_an_authenticator_and_a_challenge_for_each_request(self):
        requests = [self.accepted("-c", password=b"open sesame") for _ in range(2)]
        self.assertEqual(len({authenticator(request) for request in requests}), 2)
        challenges = {dict(attributes(request))[CHAP_CHALLENGE] for request in requests}
        self.assertEqual(len(challenges), 2)

    def test_takes_the_right_answer_behind_all_wrong_ones(self):
        faults = []

        def answers(request):
            cases = wrong_answers(ACCESS_ACCEPT, request, HELLO, MESSAGE_AUTHENTICATOR_PLACE)
            cases += [(answer(ACCESS_ACCEPT, request, HELLO), "no Message-Authenticator"),
                      (answer(ACCESS_ACCEPT, request, HELLO, FORGED), "invalidMsgAuth")]
            faults.extend(fault for _, fault in cases)
            return [*(datagram for datagram, _ in cases),
                    answer(ACCESS_ACCEPT, request, HELLO, MESSAGE_AUTHENTICATOR_PLACE)]

        _, status, output, errors = self.exchange(answers=answers)
        self.assertEqual(output, 'ACCESS_ACCEPT\n  Reply-Message = "hello"\n'
                                 "  Message-Authenticator\n")
        self.assertEqual(status, EXIT_GOOD)
        self.assertEqual(ignored(errors), faults)

    def test_takes_an_unsigned_answer_when_told_so(self):
        _, status, output, errors = self.exchange(
            "-u", answers=lambda request: [answer(ACCESS_ACCEPT, request, HELLO)])
        self.assertEqual((status, output, errors),
                         (EXIT_GOOD, 'ACCESS_ACCEPT\n  Reply-Message = "hello"\n', ""))

    def test_still_refuses_a_wrong_message_authenticator_when_told_so(self):
        _, status, output, errors = self.exchange(
            "-u", answers=lambda request: [answer(ACCESS_ACCEPT, request, FORGED),
                                           answer(ACCESS_REJECT, request)])
        self.assertEqual((status, output, errors),
                         (EXIT_REFUSED, "ACCESS_REJECT\n", "ignored: invalidMsgAuth\n"))

    def test_says_what_else_the_server_says(self):
        for code, name in ((ACCESS_REJECT, "ACCESS_REJECT"),
                           (ACCESS_CHALLENGE, "ACCESS_CHALLENGE")):
            with self.subTest(name):
                _, status, output, errors = self.exchange(
                    answers=lambda request, code=code: [
                        answer(code, request, MESSAGE_AUTHENTICATOR_PLACE,
                               attribute(SESSION_TIMEOUT, number(600)))])
                self.assertEqual(
                    (status, output, errors),
                    (EXIT_REFUSED,
                     f"{name}\n  Message-Authenticator\n  Session-Timeout = 600\n", ""))

    def test_does_not_let_an_answer_drive_the_terminal(self):
        hostile = attribute(REPLY_MESSAGE, b'\x1b[2J"\\\n\xff')
        _, status, output, _ = self.exchange(
            "-u", answers=lambda request: [answer(ACCESS_ACCEPT, request, hostile)])
        self.assertEqual((status, output),
                         (EXIT_GOOD,
                          'ACCESS_ACCEPT\n  Reply-Message = "\\x1b[2J\\"\\\\\\n\\xff"\n'))

    def test_hears_nobody_but_the_server(self):
        with Server() as server, udp_socket() as stranger:
            with server.client("auth_client", *ONE_TRY, arguments=["alice"]) as client:
                request = server.receive()
                stranger.sendto(answer(ACCESS_REJECT, request, MESSAGE_AUTHENTICATOR_PLACE),
                                server.sender)
                server.send(answer(ACCESS_ACCEPT, request, MESSAGE_AUTHENTICATOR_PLACE))
                status, output, errors = client.result()
        self.assertEqual((status, without_signature(output), errors),
                         (EXIT_GOOD, "ACCESS_ACCEPT\n  Message-Authenticator\n", ""))

    def test_sends_the_same_packet_until_it_is_answered(self):
        with Server() as server:
            with server.client("auth_client", *MANY_TRIES,
                               arguments=["alice"], stdin=b"open sesame") as client:
                requests = [server.receive() for _ in range(3)]
                server.send(answer(ACCESS_ACCEPT, requests[0], MESSAGE_AUTHENTICATOR_PLACE))
                status = client.result()[0]
        self.assertEqual(status, EXIT_GOOD)
        self.assertEqual(set(requests), {requests[0]})

    def test_gives_up_after_its_tries(self):
        with Server() as server:
            with server.client("auth_client", "-n", "3", *SHORT_WAIT,
                               arguments=["alice"]) as client:
                self.assertEqual(client.result(), (EXIT_NO_ANSWER, "", ""))
            requests = server.requests_left()
        self.assertEqual(len(requests), 3)
        self.assertEqual(set(requests), {requests[0]})

    def test_gives_up_in_time_however_much_a_stranger_sends(self):
        with Server() as server:
            with server.client("auth_client", "-n", "2", *SHORT_WAIT,
                               arguments=["alice"]) as client:
                server.receive()
                status, output, _ = server.result_under_flood(client, b"not a packet")
        self.assertEqual((status, output), (EXIT_NO_ANSWER, ""))

    def test_does_not_believe_that_the_port_is_closed(self):
        with Server() as server:
            port = server.port
        with Agent("auth_client", "-n", "2", *SHORT_WAIT, DICTIONARY, SECRET_FILE, HOST, port,
                   "alice") as client:
            self.assertEqual(client.result(), (EXIT_NO_ANSWER, "", ""))

    def test_sends_nothing_that_does_not_fit(self):
        for user, password, fault in (("alice", b"x" * 129, "the password is too long\n"),
                                      ("a" * 254, b"", "no packet: invalidAttrLength\n")):
            with self.subTest(fault), Server() as server:
                with server.client("auth_client", arguments=[user], stdin=password) as client:
                    status, output, errors = client.result()
                self.assertEqual((status, output), (EXIT_FAULT, ""))
                self.assertEqual(errors.splitlines(True)[-1], fault)
                self.assertEqual(server.requests_left(), [])

    def test_needs_a_secret(self):
        empty = "{}: the first line is to be the secret, and is empty\n"
        for path, fault in (
                (file_with(b""), empty), (file_with(b"\nsecond line\n"), empty),
                ("/nonexistent", "cannot read {}: No such file or directory\n"),
                (folder.name, "cannot read {}: Is a directory\n"),
                (file_with(b"x" * (LONGEST_LINE + 1)), TOO_LONG), ("/dev/zero", TOO_LONG)):
            with self.subTest(path):
                with Agent("auth_client", DICTIONARY, path, HOST, 1812, "alice") as client:
                    self.assertEqual(client.result(), (EXIT_FAULT, "", fault.format(path)))

    def test_takes_the_longest_secret(self):
        secret = b"x" * LONGEST_LINE
        for content in (secret, secret + b"\n", secret + b"\nsecond line\n"):
            with Server() as server:
                with Agent("auth_client", *ONE_TRY, DICTIONARY, file_with(content), HOST,
                           server.port, "alice") as client:
                    server.send(answer(ACCESS_ACCEPT, server.receive(),
                                       MESSAGE_AUTHENTICATOR_PLACE, secret=secret))
                    self.assertEqual(client.result()[0], EXIT_GOOD)

    def test_says_what_is_wrong_with_the_password(self):
        arguments = [AGENTS / "auth_client", DICTIONARY, SECRET_FILE, HOST, "1812", "alice"]
        too_long = TOO_LONG.format("standard input")
        for path, fault in ((folder.name, "cannot read standard input: Is a directory\n"),
                            (file_with(b"x" * (LONGEST_LINE + 1)), too_long),
                            (file_with(b"x" * LONGEST_LINE), "the password is too long\n"),
                            ("/dev/zero", too_long)):
            with self.subTest(path):
                descriptor = os.open(path, os.O_RDONLY)
                self.addCleanup(os.close, descriptor)
                client = subprocess.run(arguments, stdin=descriptor, capture_output=True, text=True,
                                        timeout=PATIENCE_SECONDS)
                self.assertEqual((client.returncode, client.stdout, client.stderr),
                                 (EXIT_FAULT, "", fault))

    def test_takes_no_port_for_another(self):
        for port in ("65536", "99999", "1812x", "", "radius"):
            with self.subTest(port):
                with Agent("auth_client", DICTIONARY, SECRET_FILE, HOST, port, "alice") as client:
                    self.assertEqual(
                        client.result(),
                        (EXIT_FAULT, "", f'port "{port}" is no number up to 65535\n'))

    def test_says_how_it_is_used(self):
        usage = ("usage: auth_client [-c] [-u] [-n TRIES] [-t MILLISECONDS] "
                 "DICTIONARY SECRET-FILE HOST PORT USER\n")
        four = [DICTIONARY, SECRET_FILE, HOST, "1812"]
        for arguments, fault in (([], "too few arguments"), (four, "too few arguments"),
                                 ([*four, "alice", "bob"], "too many arguments"),
                                 (["-x", *four, "alice"], "wrong option"),
                                 (["-n"], "wrong option"),
                                 (["-n", "0", *four, "alice"], "no number"),
                                 (["-t", "1s", *four, "alice"], "no number"),
                                 (["-t", "99999999999", *four, "alice"], "no number")):
            with self.subTest(arguments):
                with Agent("auth_client", *arguments) as client:
                    self.assertEqual(client.result(), (EXIT_USAGE, "", f"{fault}\n{usage}"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
