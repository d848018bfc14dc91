// Judges a Status-Server request, as a server does that is asked whether it is alive.
//
//   guide_status_server DICTIONARY SECRET-FILE REQUEST-HEX
//
// Exit status: 0 to be answered; 1 to be dropped; 3 a fault on this side; 64 wrong usage.

#include <iostream>
#include <string>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktParserTest.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"
#include "examples/SecretFile.h"

namespace {

using RadiusPacketParser::RadiusCode;
using RadiusPktParserBase::ErrorMsg;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Zonet::Pkt;

// [judge]
/// Why a packet is not to be answered as a Status-Server request; empty when it is.
std::string faultOf(RadiusPktParserTest::StatusServerPktParser& parser, const Ptr<Pkt>& pkt,
                    const String& secret) {
  const auto header = parser.getHeader(pkt);
  if (header->errorMsg() != ErrorMsg::success ||
      header->hdr()->code() != RadiusCode::STATUS_SERVER) {
    return "no Status-Server request";
  }
  const auto sink = RadiusPktParserTest::statusServerPktInfoParserFactory();
  const ErrorMsg result = parser.doProcessPkt(pkt, secret, Bytes(), sink);
  if (result != ErrorMsg::success) {  // first: the verdict ends where the fault stands
    return std::string(stringValue(result));
  }
  if (sink->badPkt()) {
    return std::string(stringValue(sink->errorMsg()));
  }
  return sink->msgAuthPresent() ? "" : "no attributes at all";
}
// [/judge]

int run(const Example::CommandLine& line) {
  RadiusPktParserTest::StatusServerPktParser parser(
      RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary());
  const std::string fault =
      faultOf(parser, Example::packetFromHex(line[2]), Example::readSecret(line[1]));
  std::cout << (fault.empty() ? "answer it" : "drop it: " + fault) << '\n';
  return fault.empty() ? Example::exitGood : Example::exitRefused;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {3},
                           "guide_status_server DICTIONARY SECRET-FILE REQUEST-HEX", run);
}
