// Loads a dictionary, builds a request, parses it on both roads, and prints its length.
#include <iostream>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktParser.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: consumer DICTIONARY\n";
    return 64;
  }
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(argv[1])->dictionary();
  const auto name = RadiusPktParserBase::attrWithValueFactory(
      RadiusPktParserBase::standardAttribute(RadiusPacketParser::RadiusAttributeId::USER_NAME));
  name->attrValuePush(Verda::String("nemo"));
  const auto request = RadiusPktParserBase::pktInfoBuilderFactory();
  request->attributesToAddIs(0)->attrWithValueIs(name);
  const auto builder = RadiusPktParserBase::radiusPktBuilderFactory(dictionary);
  const auto hdr =
      builder->createRadiusHdr(RadiusPacketParser::RadiusCode::ACCESS_REQUEST, 7)->hdr();
  const auto pkt = builder->createPktFromHdr("secret", {}, hdr, request)->pkt();
  const auto parser = RadiusPktParserBase::radiusPktParserFactory(dictionary);
  const auto error =
      parser->doProcessPkt(pkt, "secret", {}, RadiusPktParserBase::pktInfoParserFactory());
  const bool isBad = RadiusPacketParser::radiusPacketParserFactory(dictionary, pkt)->badPkt();
  std::cout << error << ' ' << pkt->bytes() << ' ' << (isBad ? "bad" : "good") << '\n';
}
