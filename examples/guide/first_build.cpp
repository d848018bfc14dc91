// The shortest way to build a request, which is printed as hex.
//
//   guide_first_build DICTIONARY SECRET-FILE
//
// Exit status: 0; 3 a fault on this side; 64 wrong usage.

#include <iostream>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"
#include "examples/SecretFile.h"

namespace {

using namespace RadiusPktParserBase;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using Verda::Bytes;
using Verda::String;

void send(const Zonet::Pkt& pkt) {
  std::cout << Example::hexOf(pkt) << '\n';
}

int run(const Example::CommandLine& line) {
  constexpr Verda::U8 identifier = 1;
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const String secret = Example::readSecret(line[1]);
  // [build]
  const auto builder = radiusPktBuilderFactory(dictionary);
  const auto header = builder->createRadiusHdr(RadiusCode::ACCESS_REQUEST, identifier)->hdr();

  const auto place =
      attrWithValueFactory(standardAttribute(RadiusAttributeId::MESSAGE_AUTHENTICATOR));
  const auto name = attrWithValueFactory(standardAttribute(RadiusAttributeId::USER_NAME));
  name->attrValuePush(String("nemo"));

  const auto content = pktInfoBuilderFactory();
  content->attributesToAddIs(0)->attrWithValueIs(place);  // its value: computed by the build
  content->attributesToAddIs(1)->attrWithValueIs(name);

  const auto built = builder->createPktFromHdr(secret, Bytes(), header, content);
  if (built->errorMsg() == ErrorMsg::success) {
    send(*built->pkt());
  }
  // [/build]
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {2}, "guide_first_build DICTIONARY SECRET-FILE", run);
}
