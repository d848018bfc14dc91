"""The status probe against a server that a test plays.

    status_probe.test.py AGENTS DICTIONARY
"""

import sys
import unittest

from agents import (EXIT_GOOD, EXIT_NO_ANSWER, EXIT_USAGE, MANY_TRIES, ONE_TRY, SHORT_WAIT, Agent,
                    Server, ignored)
from packets import (ACCESS_ACCEPT, ACCOUNTING_RESPONSE, MESSAGE_AUTHENTICATOR,
                     MESSAGE_AUTHENTICATOR_PLACE, NAS_IDENTIFIER, REPLY_MESSAGE, STATUS_SERVER,
                     USER_NAME, answer, attribute, attributes, authenticator,
                     has_good_message_authenticator)
from wrong_answers import NO_ANSWER, wrong_answers

UPTIME = attribute(REPLY_MESSAGE, b"up 3 days")
ALICE = attribute(USER_NAME, b"alice")


class StatusProbe(unittest.TestCase):
    def exchange(self, answers):
        """What the probe makes of the answers made to its request."""
        with Server() as server:
            with server.client("status_probe", *ONE_TRY) as probe:
                server.send(*answers(server.receive()))
                return probe.result()

    def test_asks_with_a_message_authenticator_in_front(self):
        with Server() as server, server.client("status_probe", *ONE_TRY):
            request = server.receive()
        self.assertEqual(request[0], STATUS_SERVER)
        self.assertTrue(has_good_message_authenticator(request))
        self.assertEqual([key for key, _ in attributes(request)],
                         [MESSAGE_AUTHENTICATOR, NAS_IDENTIFIER])

    def test_takes_what_an_authentication_or_accounting_server_answers(self):
        for code, *content in ((ACCESS_ACCEPT, MESSAGE_AUTHENTICATOR_PLACE),
                               (ACCESS_ACCEPT, MESSAGE_AUTHENTICATOR_PLACE, UPTIME),
                               (ACCESS_ACCEPT, UPTIME, MESSAGE_AUTHENTICATOR_PLACE),
                               (ACCESS_ACCEPT,), (ACCOUNTING_RESPONSE,)):
            with self.subTest(code=code, content=content):
                self.assertEqual(
                    self.exchange(lambda request, code=code, content=content: [
                        answer(code, request, *content)]),
                    (EXIT_GOOD, "alive\n", ""))

    def test_takes_the_right_answer_behind_all_wrong_ones(self):
        faults = []

        def answers(request):
            signature = MESSAGE_AUTHENTICATOR_PLACE
            cases = wrong_answers(ACCESS_ACCEPT, request, signature)
            cases += [(answer(ACCESS_ACCEPT, request, UPTIME), "msgAuthNotPresent"),
                      (answer(ACCESS_ACCEPT, request, signature, ALICE), "invalidAttributePresent"),
                      (answer(ACCESS_ACCEPT, request, signature, signature), "invalidMsgAuth")]
            faults.extend(fault for _, fault in cases)
            return [*(datagram for datagram, _ in cases),
                    answer(ACCESS_ACCEPT, request, signature, UPTIME)]

        status, output, errors = self.exchange(answers)
        self.assertEqual((status, output), (EXIT_GOOD, "alive\n"))
        self.assertEqual(ignored(errors), faults)

    def test_asks_anew_with_each_try_and_takes_no_late_answer(self):
        with Server() as server:
            with server.client("status_probe", *MANY_TRIES) as probe:
                requests = [server.receive() for _ in range(3)]
                server.send(answer(ACCESS_ACCEPT, requests[0], MESSAGE_AUTHENTICATOR_PLACE))
                # By now that comes too late. One of the answers that follow comes in time.
                for request in server.requests_until_ended(probe):
                    requests.append(request)
                    server.send(answer(ACCESS_ACCEPT, request, MESSAGE_AUTHENTICATOR_PLACE))
                status, output, errors = probe.result()
        self.assertEqual((status, output), (EXIT_GOOD, "alive\n"))
        self.assertEqual(ignored(errors)[0], NO_ANSWER)
        self.assertEqual(len({request[1] for request in requests}), len(requests))
        self.assertEqual(len({authenticator(request) for request in requests}), len(requests))

    def test_gives_up_after_its_tries(self):
        with Server() as server:
            with server.client("status_probe", "-n", "3", *SHORT_WAIT) as probe:
                self.assertEqual(probe.result(), (EXIT_NO_ANSWER, "", ""))
            self.assertEqual(len({request[1] for request in server.requests_left()}), 3)

    def test_says_how_it_is_used(self):
        for arguments, fault in (("", "too few"), ("123", "too few"), ("12345", "too many")):
            with self.subTest(fault), Agent("status_probe", *arguments) as probe:
                self.assertEqual(probe.result(), (
                    EXIT_USAGE, "", f"{fault} arguments\nusage: status_probe [-n TRIES] "
                    "[-t MILLISECONDS] DICTIONARY SECRET-FILE HOST PORT\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
