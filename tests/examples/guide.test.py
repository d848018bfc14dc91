"""The programs that docs/GUIDE.md cuts its code out of do what the guide says.

    guide.test.py AGENTS DICTIONARY
"""

import sys
import unittest

from agents import (DICTIONARY, EXIT_GOOD, EXIT_REFUSED, EXIT_USAGE, SECRET_FILE, Agent, file_with)
from packets import (ACCESS_ACCEPT, ACCESS_REQUEST, FILTER_ID, HEADER, MESSAGE_AUTHENTICATOR,
                     MESSAGE_AUTHENTICATOR_PLACE, NAS_IDENTIFIER, PROXY_STATE, REPLY_MESSAGE,
                     SECRET, SESSION_TIMEOUT, STATUS_SERVER, USER_NAME, USER_PASSWORD, answer,
                     attribute, attributes, authenticator, has_good_authenticator,
                     has_good_message_authenticator, hidden_password, number, random_request,
                     revealed_password, revealed_salted, salted)

NAS_PORT, FRAMED_IPV6_PREFIX, VENDOR_SPECIFIC, TUNNEL_PASSWORD = 5, 97, 26, 69
NEXT_SECRET = b"the next secret"
TRACE = "RadiusPacketParser::RadiusPktParser"


def run(name, *arguments, stdin=b""):
    """Exit status and output."""
    with Agent(f"guide_{name}", DICTIONARY, *arguments, stdin=stdin) as program:
        return program.result()[:2]


def login(*more, code=ACCESS_REQUEST, secret=SECRET):
    """An Access-Request with Message-Authenticator, User-Name and User-Password."""
    return random_request(code, 7, MESSAGE_AUTHENTICATOR_PLACE, attribute(USER_NAME, b"nemo"),
                          attribute(USER_PASSWORD, hidden_password(b"arctangent", secret)), *more,
                          secret=secret)


def with_wrong_byte(packet):
    return packet[:-1] + bytes([packet[-1] ^ 1])


class First(unittest.TestCase):
    def test_prints_the_texts_of_a_good_answer(self):
        request = login()
        response = answer(ACCESS_ACCEPT, request, attribute(REPLY_MESSAGE, b"come\x1b in"))
        self.assertEqual(run("first_parse", SECRET_FILE, request.hex(), response.hex()),
                         (EXIT_GOOD, "18 = come\\x1b in\nsuccess"))

    def test_says_what_is_wrong_with_an_answer_and_nothing_of_what_is_none(self):
        request = login()
        forged = answer(ACCESS_ACCEPT, request, secret=b"a stranger's")
        for packet, output in ((forged, "invalidPktAuth"), (request, ""), (forged[:19], ""),
                               (answer(ACCESS_ACCEPT, b"\1\1" + request[2:]), "")):
            with self.subTest(packet.hex()):
                self.assertEqual(run("first_parse", SECRET_FILE, request.hex(), packet.hex()),
                                 (EXIT_GOOD, output))

    def test_builds_a_request(self):
        status, output = run("first_build", SECRET_FILE)
        request = bytes.fromhex(output)
        self.assertEqual((status, request[:2]), (EXIT_GOOD, bytes([ACCESS_REQUEST, 1])))
        self.assertTrue(has_good_message_authenticator(request))
        self.assertEqual(attributes(request)[1:], [(USER_NAME, b"nemo")])


class Parse(unittest.TestCase):
    def test_collects_what_a_request_holds(self):
        request = login()
        signature = dict(attributes(request))[MESSAGE_AUTHENTICATOR].hex()
        self.assertEqual(run("parse", SECRET_FILE, request.hex()), (
            EXIT_GOOD, f'80 = 0x{signature}\n1 = "nemo"\n'
            '2 = "arctangent\\x00\\x00\\x00\\x00\\x00\\x00"\nthe user is nemo\n'))

    def test_drops_what_is_no_proven_request(self):
        request = login()
        for what, packet in {
                "cut": request[:30], "changed on the way": with_wrong_byte(request),
                "a response": answer(ACCESS_ACCEPT, request),
                "nothing that proves it": random_request(ACCESS_REQUEST, 7,
                                                         attribute(USER_NAME, b"nemo"))}.items():
            with self.subTest(what):
                self.assertEqual(run("parse", SECRET_FILE, packet.hex()),
                                 (EXIT_REFUSED, "dropped\n"))


class Build(unittest.TestCase):
    def test_makes_a_request_and_its_answer(self):
        status, output = run("build", SECRET_FILE, "nemo", "arctangent")
        self.assertEqual(status, EXIT_GOOD)
        request, response = map(bytes.fromhex, output.split())
        self.assertEqual((request[0], response[0], response[1]),
                         (ACCESS_REQUEST, ACCESS_ACCEPT, request[1]))
        self.assertTrue(has_good_message_authenticator(request))
        self.assertEqual([one[0] for one in attributes(request)],
                         [MESSAGE_AUTHENTICATOR, USER_NAME, USER_PASSWORD])
        self.assertEqual(dict(attributes(request))[USER_NAME], b"nemo")
        self.assertEqual(revealed_password(request), b"arctangent" + bytes(6))

        self.assertTrue(has_good_authenticator(response, authenticator(request)))
        self.assertTrue(has_good_message_authenticator(response, authenticator(request)))
        url = b"https://www.example.com/"
        self.assertEqual(attributes(response)[1:], [
            (REPLY_MESSAGE, b"welcome"), (REPLY_MESSAGE, b"the printer is out of paper"),
            (SESSION_TIMEOUT, number(3600)),
            (FRAMED_IPV6_PREFIX, bytes.fromhex("0040 20010db8") + bytes(12)),
            (VENDOR_SPECIFIC, number(14122) + attribute(4, url))])


class Proxy(unittest.TestCase):
    CLIENTS_STATES = [(PROXY_STATE, b"first"), (PROXY_STATE, b"second")]

    def passed_on(self, request, answer_to):
        """What goes to the server, and, for the answer that `answer_to` makes to it, the rest of
        the output."""
        with Agent("guide_proxy", DICTIONARY, SECRET_FILE, file_with(NEXT_SECRET),
                   request.hex(), keep_stdin=True) as program:
            forwarded = bytes.fromhex(program.output_line())
            program.send_line(answer_to(forwarded).hex())
            status, output, _ = program.result()
        return forwarded, status, output

    def setUp(self):
        self.request = login(*(attribute(*state) for state in self.CLIENTS_STATES))

    def test_hides_anew_under_the_next_secret_and_adds_its_state(self):
        forwarded, _, _ = self.passed_on(self.request,
                                         lambda sent: answer(ACCESS_ACCEPT, sent,
                                                             secret=NEXT_SECRET))
        self.assertEqual(forwarded[:2], bytes([ACCESS_REQUEST, 200]))
        self.assertEqual(authenticator(forwarded), authenticator(self.request))
        self.assertTrue(has_good_message_authenticator(forwarded, secret=NEXT_SECRET))
        found = attributes(forwarded)
        self.assertEqual([one for one in found
                          if one[0] not in (MESSAGE_AUTHENTICATOR, USER_PASSWORD)],
                         [(USER_NAME, b"nemo"), *self.CLIENTS_STATES, (PROXY_STATE, b"\x17")])
        self.assertEqual(revealed_password(forwarded, NEXT_SECRET), b"arctangent" + bytes(6))

    def test_gives_the_answer_back_as_the_client_knows_it(self):
        texts = [b"the first tunnel's", b"the second tunnel's"]

        def accept(sent):
            states = [attribute(*one) for one in attributes(sent) if one[0] == PROXY_STATE]
            tunnels = [attribute(TUNNEL_PASSWORD, bytes([tag]) + salted(
                text, bytes([0x80, tag]), authenticator(sent), NEXT_SECRET))
                for tag, text in enumerate(texts, 1)]
            return answer(ACCESS_ACCEPT, sent, MESSAGE_AUTHENTICATOR_PLACE, *tunnels, *states,
                          attribute(FILTER_ID, b"guests"), secret=NEXT_SECRET)

        _, status, output = self.passed_on(self.request, accept)
        self.assertEqual(status, EXIT_GOOD)
        response = bytes.fromhex(output)
        self.assertEqual(response[:2], bytes([ACCESS_ACCEPT, 7]))
        self.assertTrue(has_good_authenticator(response, authenticator(self.request)))
        self.assertTrue(has_good_message_authenticator(response, authenticator(self.request)))
        found = attributes(response)
        tunnels = [value for key, value in found if key == TUNNEL_PASSWORD]
        self.assertEqual([one for one in found
                          if one[0] not in (MESSAGE_AUTHENTICATOR, TUNNEL_PASSWORD)],
                         [(FILTER_ID, b"guests"), *self.CLIENTS_STATES])
        self.assertEqual([(value[0], revealed_salted(value[1:], authenticator(self.request)))
                          for value in tunnels], list(enumerate(texts, 1)))

    def test_drops_a_forged_answer(self):
        _, status, output = self.passed_on(
            self.request, lambda sent: answer(ACCESS_ACCEPT, sent, secret=b"a stranger's"))
        self.assertEqual((status, output), (EXIT_REFUSED, "dropped: invalidPktAuth\n"))

    def test_drops_a_request_of_another_secret(self):
        self.assertEqual(run("proxy", SECRET_FILE, SECRET_FILE, login(secret=b"another").hex()),
                         (EXIT_REFUSED, "dropped\n"))


class StatusServer(unittest.TestCase):
    def test_judges(self):
        good = random_request(STATUS_SERVER, 1, attribute(NAS_IDENTIFIER, b"nas"),
                              MESSAGE_AUTHENTICATOR_PLACE)
        for packet, fault in (
                (good, None),
                (login(), "no Status-Server request"),
                (good[:19], "no Status-Server request"),
                (with_wrong_byte(good), "invalidMsgAuth"),
                (random_request(STATUS_SERVER, 1, attribute(NAS_IDENTIFIER, b"nas")),
                 "msgAuthNotPresent"),
                (login(code=STATUS_SERVER), "invalidAttributePresent"),
                (random_request(STATUS_SERVER, 1), "no attributes at all")):
            with self.subTest(fault):
                expected = (EXIT_REFUSED, f"drop it: {fault}\n") if fault else (EXIT_GOOD,
                                                                                "answer it\n")
                self.assertEqual(run("status_server", SECRET_FILE, packet.hex()), expected)


class Legacy(unittest.TestCase):
    def test_reads_and_edits(self):
        request = login(attribute(NAS_PORT, number(3)), attribute(USER_NAME, b"ne\x1bmo"))
        status, output = run("legacy", SECRET_FILE, request.hex())
        *names, edited = output.splitlines()
        self.assertEqual((status, names), (EXIT_GOOD, ["0: nemo", "1: ne\\x1bmo"]))
        edited = bytes.fromhex(edited)
        self.assertEqual(edited[4:HEADER], authenticator(request))
        self.assertTrue(has_good_message_authenticator(edited, secret=NEXT_SECRET))
        self.assertEqual([one for one in attributes(edited)
                          if one[0] not in (MESSAGE_AUTHENTICATOR, USER_PASSWORD)],
                         [(USER_NAME, b"nemo"), (USER_NAME, b"ne\x1bmo"),
                          (NAS_IDENTIFIER, b"example-nas")])
        self.assertEqual(revealed_password(edited, NEXT_SECRET), b"arctangent" + bytes(6))

    def test_says_what_is_bad(self):
        for what, packet in {"cut": login()[:19],
                             "another secret": login(secret=b"another")}.items():
            with self.subTest(what):
                self.assertEqual(run("legacy", SECRET_FILE, packet.hex()), (EXIT_REFUSED, "bad\n"))


class Trace(unittest.TestCase):
    def test_goes_where_and_as_far_as_it_is_told(self):
        error = f"{TRACE} getHeader 0: Packet has invalid length: 2\n"
        entries = [f"{TRACE} {name} 2: entry\n" for name in ("getHeader", "invalidHdr")]
        verbose = entries[0] + error + entries[1]
        asserted = "asserted: pktInfoParser\n"
        with Agent("guide_trace", DICTIONARY) as program:
            self.assertEqual(program.result(),
                             (EXIT_GOOD, error + verbose + error + asserted, ""))


class Threads(unittest.TestCase):
    def test_share_parser_builder_and_content(self):
        self.assertEqual(run("threads", 4, 25), (EXIT_GOOD, "100\n"))


class Usage(unittest.TestCase):
    def test_is_told(self):
        for name, usage in {
                "first_parse": "DICTIONARY SECRET-FILE REQUEST-HEX ANSWER-HEX",
                "first_build": "DICTIONARY SECRET-FILE",
                "parse": "DICTIONARY SECRET-FILE REQUEST-HEX",
                "build": "DICTIONARY SECRET-FILE USER PASSWORD",
                "proxy": "DICTIONARY CLIENT-SECRET-FILE SERVER-SECRET-FILE REQUEST-HEX",
                "status_server": "DICTIONARY SECRET-FILE REQUEST-HEX",
                "legacy": "DICTIONARY SECRET-FILE REQUEST-HEX",
                "trace": "DICTIONARY",
                "threads": "DICTIONARY THREADS PACKETS"}.items():
            with self.subTest(name), Agent(f"guide_{name}") as program:
                self.assertEqual(program.result(), (
                    EXIT_USAGE, "", f"too few arguments\nusage: guide_{name} {usage}\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
