"""The accounting client against a server that a test plays.

    acct_client.test.py AGENTS DICTIONARY
"""

import sys
import unittest

from agents import (EXIT_FAULT, EXIT_GOOD, EXIT_NO_ANSWER, EXIT_USAGE, MANY_TRIES, ONE_TRY,
                    SHORT_WAIT, Agent, Server, ignored)
from packets import (ACCOUNTING_REQUEST, ACCOUNTING_RESPONSE, ACCT_INPUT_GIGAWORDS,
                     ACCT_INPUT_OCTETS, ACCT_OUTPUT_GIGAWORDS, ACCT_OUTPUT_OCTETS, ACCT_SESSION_ID,
                     ACCT_SESSION_TIME, ACCT_STATUS_TYPE, ACCT_TERMINATE_CAUSE, EVENT_TIMESTAMP,
                     NAS_IDENTIFIER, USER_NAME, answer, attributes, has_good_authenticator, number)
from wrong_answers import wrong_answers

START, STOP, INTERIM_UPDATE = 1, 2, 3
STATUSES = (START, INTERIM_UPDATE, STOP)
SESSION = ["alice", "session-1"]
ALL_RECORDED = "START: recorded\nINTERIM_UPDATE: recorded\nSTOP: recorded\n"


def event_time(request):
    return int.from_bytes(dict(attributes(request))[EVENT_TIMESTAMP], "big")


def expected(status, *usage):
    return [(ACCT_STATUS_TYPE, number(status)), (ACCT_SESSION_ID, b"session-1"),
            (USER_NAME, b"alice"), (NAS_IDENTIFIER, b"example-nas"),
            *((key, number(value)) for key, value in usage)]


RECORDS = [
    expected(START),
    expected(INTERIM_UPDATE, (ACCT_SESSION_TIME, 300),
             (ACCT_INPUT_OCTETS, 1_500_000), (ACCT_INPUT_GIGAWORDS, 0),
             (ACCT_OUTPUT_OCTETS, 4_300_000_000 - 2**32), (ACCT_OUTPUT_GIGAWORDS, 1)),
    expected(STOP, (ACCT_SESSION_TIME, 480),
             (ACCT_INPUT_OCTETS, 2_000_000), (ACCT_INPUT_GIGAWORDS, 0),
             (ACCT_OUTPUT_OCTETS, 9_000_000_000 - 2 * 2**32), (ACCT_OUTPUT_GIGAWORDS, 2),
             (ACCT_TERMINATE_CAUSE, 1)),
]


class AcctClient(unittest.TestCase):
    def test_reports_start_interim_update_and_stop(self):
        requests = []
        with Server() as server:
            with server.client("acct_client", *ONE_TRY, arguments=SESSION) as client:
                for _ in STATUSES:
                    requests.append(server.receive())
                    server.send(answer(ACCOUNTING_RESPONSE, requests[-1]))
                self.assertEqual(client.result(), (EXIT_GOOD, ALL_RECORDED, ""))
        for request, record in zip(requests, RECORDS, strict=True):
            with self.subTest(record):
                self.assertEqual(request[0], ACCOUNTING_REQUEST)
                self.assertTrue(has_good_authenticator(request))
                self.assertEqual([one for one in attributes(request) if one[0] != EVENT_TIMESTAMP],
                                 record)
        self.assertEqual(len({request[1] for request in requests}), len(requests))
        times = [event_time(request) for request in requests]
        self.assertEqual(times, sorted(times))

    def test_takes_the_right_answers_behind_all_wrong_ones(self):
        faults = []
        with Server() as server:
            with server.client("acct_client", *ONE_TRY, arguments=SESSION) as client:
                for _ in STATUSES:
                    request = server.receive()
                    cases = wrong_answers(ACCOUNTING_RESPONSE, request)
                    faults += [fault for _, fault in cases]
                    server.send(*(datagram for datagram, _ in cases),
                                answer(ACCOUNTING_RESPONSE, request))
                status, output, errors = client.result()
        self.assertEqual((status, output), (EXIT_GOOD, ALL_RECORDED))
        self.assertEqual(ignored(errors), faults)

    def test_sends_each_record_as_it_is_until_it_is_answered(self):
        with Server() as server:
            with server.client("acct_client", *MANY_TRIES, arguments=SESSION) as client:
                seen = []
                while len(seen) < len(STATUSES):
                    first = server.receive()
                    if first in seen:
                        continue  # sent before its answer arrived
                    self.assertEqual(server.receive(), first)
                    seen.append(first)
                    server.send(answer(ACCOUNTING_RESPONSE, first))
                self.assertEqual(client.result()[:2], (EXIT_GOOD, ALL_RECORDED))
        self.assertEqual([attributes(request)[0][1] for request in seen],
                         [number(status) for status in STATUSES])

    def test_stops_at_a_record_that_is_not_answered(self):
        with Server() as server:
            with server.client("acct_client", "-n", "3", *SHORT_WAIT,
                               arguments=SESSION) as client:
                self.assertEqual(client.result(), (EXIT_NO_ANSWER, "START: no answer\n", ""))
            requests = server.requests_left()
        self.assertEqual(len(requests), 3)
        self.assertEqual(set(requests), {requests[0]})

    def test_sends_nothing_that_does_not_fit(self):
        with Server() as server:
            with server.client("acct_client", arguments=["alice", "s" * 254]) as client:
                status, output, errors = client.result()
            self.assertEqual((status, output), (EXIT_FAULT, ""))
            self.assertEqual(errors.splitlines()[-1], "no packet: invalidAttrLength")
            self.assertEqual(server.requests_left(), [])

    def test_says_how_it_is_used(self):
        for arguments, fault in (("", "too few"), ("12345", "too few"), ("1234567", "too many")):
            with self.subTest(fault), Agent("acct_client", *arguments) as client:
                self.assertEqual(client.result(), (
                    EXIT_USAGE, "", f"{fault} arguments\nusage: acct_client [-n TRIES] "
                    "[-t MILLISECONDS] DICTIONARY SECRET-FILE HOST PORT USER SESSION-ID\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
