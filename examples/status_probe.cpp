// Asks a RADIUS server, at its authentication or its accounting port, whether it is alive (RFC
// 5997).
//
//   status_probe [-n TRIES] [-t MILLISECONDS] DICTIONARY SECRET-FILE HOST PORT
//
// Exit status: 0 alive; 2 no good answer came; 3 a fault on this side; 64 wrong usage.
// A dictionary that does not load ends the process by an assertion.

#include <iostream>
#include <string>

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParserTest.h"
#include "examples/Answer.h"
#include "examples/CommandLine.h"
#include "examples/Exchange.h"
#include "examples/NewPacket.h"
#include "examples/SecretFile.h"
#include "examples/UdpSocket.h"

namespace {

using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using RadiusPktParserTest::StatusServerPktParser;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U8;

/// A Status-Server request must have a Message-Authenticator (RFC 5997 section 3): nothing else in
/// it proves the secret.
Example::AttributesToAdd statusServer() {
  Example::AttributesToAdd attributes;
  attributes.addMessageAuthenticator();
  attributes.addText(RadiusAttributeId::NAS_IDENTIFIER, "example-nas");
  return attributes;
}

/// Whether `pkt` is a good answer. Beside what holds for every answer, the Status-Server parser
/// refuses one with attributes but no Message-Authenticator, and one about a user or a session.
bool isGoodAnswer(StatusServerPktParser& parser, const Ptr<Zonet::Pkt>& pkt, const String& secret,
                  const RadiusPktParserBase::RadiusHdr& request) {
  const auto sink = RadiusPktParserTest::statusServerPktInfoParserFactory();
  std::string fault = Example::faultOfAnswer(parser, pkt, secret, request, sink);
  if (fault.empty() && sink->badPkt()) {
    fault = stringValue(sink->errorMsg()).view();
  }
  if (!fault.empty()) {
    std::cerr << "ignored: " << fault << '\n';
  }
  return fault.empty();
}

int run(const Example::CommandLine& line) {
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const String secret = Example::readSecret(line[1]);
  const auto socket = Example::UdpSocket::connectedTo(line[2], line[3]);
  const RadiusPktParserBase::RadiusPktBuilder builder(dictionary);
  StatusServerPktParser parser(dictionary);

  // These requests are not sent twice: each try is a new packet, with an Identifier and an
  // authenticator of its own, and what answers the one before comes too late (RFC 5997
  // section 4.2).
  U8 id = 0;
  for (Example::Tries tries = line.tries(); tries.next();) {
    const Example::NewPacket request = Example::newPacket(builder, RadiusCode::STATUS_SERVER, id++,
                                                          secret, Bytes(), statusServer());
    socket.send(*request.pkt);
    const auto isAnswer = [&](const Ptr<Zonet::Pkt>& pkt) {
      return isGoodAnswer(parser, pkt, secret, *request.hdr);
    };
    if (Example::awaitAnswer(socket, tries.deadline(), isAnswer)) {
      std::cout << "alive\n";
      return Example::exitGood;
    }
  }
  return Example::exitNoAnswer;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(
      argc, argv, "n:t:", {4},
      "status_probe [-n TRIES] [-t MILLISECONDS] DICTIONARY SECRET-FILE HOST PORT", run);
}
