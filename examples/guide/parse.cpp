// Verifies and decodes a request, as a server does, and prints what it has collected.
//
//   guide_parse DICTIONARY SECRET-FILE REQUEST-HEX
//
// Exit status: 0 a good request; 1 one that is to be dropped; 3 a fault on this side; 64 wrong
// usage.

#include <iostream>
#include <utility>
#include <variant>
#include <vector>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"
#include "examples/AttributeLines.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"
#include "examples/SecretFile.h"

// [names]
using namespace RadiusPktParserBase;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Zonet::Pkt;
// [/names]

namespace {

// [collector]
/// The sink of one packet: what the hook keeps.
class Collected : public PktInfoParser {
 public:
  struct Value {
    Attribute attribute;
    AttrInfo info;
    AttrValue value;
  };
  std::vector<Value> values;
};

class CollectingParser : public RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;

  void doProcessAttribute(const Attribute& attribute, const AttrValue& value, AttrInfo info,
                          const Ptr<PktInfoParser>& sink) override {
    static_cast<Collected&>(*sink).values.push_back({attribute, info, value});
  }
};
// [/collector]

// [request]
/// What a request holds; null when it is to be dropped.
Ptr<Collected> collected(CollectingParser& parser, const Ptr<Pkt>& pkt, const String& secret) {
  const auto header = parser.getHeader(pkt);
  if (header->errorMsg() != ErrorMsg::success || !isRequest(header->hdr()->code())) {
    return nullptr;
  }
  const Ptr<Collected> sink(new Collected);
  if (parser.doProcessPkt(pkt, secret, Bytes(), sink) != ErrorMsg::success) {
    return nullptr;
  }
  const bool isProven =
      header->hdr()->code() != RadiusCode::ACCESS_REQUEST || sink->msgAuthPresent();
  return isProven ? sink : nullptr;
}
// [/request]

int run(const Example::CommandLine& line) {
  // [load]
  const auto loader = RadiusPacketParser::radiusDictionaryParserFactory(line[0]);
  const Ptr<const RadiusPacketParser::RadiusDict> dictionary = loader->dictionary();
  // [/load]
  CollectingParser parser(dictionary);
  const Ptr<Collected> request =
      collected(parser, Example::packetFromHex(line[2]), Example::readSecret(line[1]));
  if (!request) {
    std::cout << "dropped\n";
    return Example::exitRefused;
  }
  for (const auto& [attribute, info, value] : request->values) {
    std::cout << int{attribute.attrId} << " = " << std::visit(Example::ValueText{info}, value)
              << '\n';
  }
  // [one]
  for (const Collected::Value& one : request->values) {
    if (one.attribute == standardAttribute(RadiusAttributeId::USER_NAME)) {
      std::cout << "the user is " << Verda::escaped(std::get<String>(one.value)) << '\n';
    }
  }
  // [/one]
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {3}, "guide_parse DICTIONARY SECRET-FILE REQUEST-HEX",
                           run);
}
