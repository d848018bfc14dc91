// The shortest way to verify and decode an answer.
//
//   guide_first_parse DICTIONARY SECRET-FILE REQUEST-HEX ANSWER-HEX
//
// Exit status: 0, good answer or not; 3 a fault on this side; 64 wrong usage.

#include <iostream>
#include <variant>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"
#include "examples/SecretFile.h"

namespace {

using namespace RadiusPktParserBase;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;

// [hook]
class Printer : public RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;
  void doProcessAttribute(const Attribute& attribute, const AttrValue& value, AttrInfo /*info*/,
                          const Ptr<PktInfoParser>& /*sink*/) override {
    if (const auto* text = std::get_if<String>(&value)) {
      std::cout << int{attribute.attrId} << " = " << Verda::escaped(*text) << '\n';
    }
  }
};
// [/hook]

int run(const Example::CommandLine& line) {
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const String secret = Example::readSecret(line[1]);
  Printer parser(dictionary);
  const auto request = parser.getHeader(Example::packetFromHex(line[2]))->hdr();
  const auto pkt = Example::packetFromHex(line[3]);
  // [check]
  const auto header = parser.getHeader(pkt);
  if (header->errorMsg() == ErrorMsg::success && header->hdr()->id() == request->id() &&
      canAnswer(header->hdr()->code(), request->code())) {
    const Bytes requestAuthenticator(request->authenticator().bytes());
    std::cout << parser.doProcessPkt(pkt, secret, requestAuthenticator, pktInfoParserFactory());
  }
  // [/check]
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {4},
                           "guide_first_parse DICTIONARY SECRET-FILE REQUEST-HEX ANSWER-HEX", run);
}
