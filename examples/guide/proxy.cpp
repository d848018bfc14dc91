// Passes a request on to the next server, and that server's answer back to the client.
//
//   guide_proxy DICTIONARY CLIENT-SECRET-FILE SERVER-SECRET-FILE REQUEST-HEX
//
// Prints the request as it goes to the server, reads the server's answer as a line of hex from
// standard input, and prints the answer as it goes to the client. Exit status: 0 both went on; 1 a
// packet was dropped; 3 a fault on this side; 64 wrong usage.

#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "RadiusPacketParser/RadiusPktParser.h"
#include "examples/Answer.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"
#include "examples/NewPacket.h"
#include "examples/SecretFile.h"

namespace {

using namespace RadiusPktParserBase;
using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusAttributeId;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U8;
using Zonet::Pkt;

constexpr U8 ownIdentifier = 200;
const Bytes ownState{0x17};

// [kept]
/// What of a packet cannot be copied as it is when the packet is passed on.
class Kept : public PktInfoParser {
 public:
  std::vector<std::pair<Attribute, AttrValue>> hidden;
  std::vector<AttrValue> proxyStates;
};

/// A value as the builder takes it: a tag apart from what it leads.
AttrValue toBuild(const AttrValue& delivered) {
  if (const auto* text = std::get_if<TaggedStr>(&delivered)) {
    return separateTag(*text);
  }
  if (const auto* number = std::get_if<TaggedInt>(&delivered)) {
    return separateTag(*number);
  }
  return delivered;
}

class KeepingParser : public RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;

  void doProcessAttribute(const Attribute& attribute, const AttrValue& value, AttrInfo info,
                          const Ptr<PktInfoParser>& sink) override {
    auto& kept = static_cast<Kept&>(*sink);
    if (isHidden(info)) {
      kept.hidden.emplace_back(attribute, toBuild(value));
    } else if (attribute == standardAttribute(RadiusAttributeId::PROXY_STATE)) {
      kept.proxyStates.push_back(value);
    }
  }
};
// [/kept]

// [changes]
/// Has the hidden values of a packet hidden anew: taken out as they came, and added in clear.
Example::AttributesToAdd hiddenAnew(const Kept& kept) {
  Example::AttributesToAdd changes;
  for (const auto& [attribute, value] : kept.hidden) {
    changes.toBuild()->attributesToRemoveIs(attribute);
    changes.add(attribute, value);
  }
  return changes;
}
// [/changes]

Ptr<Pkt> modified(const RadiusPktBuilder& builder, const Ptr<Pkt>& pkt, const String& secret,
                  const Bytes& reqAuth, const Example::AttributesToAdd& changes) {
  const auto result = builder.modifyPkt(pkt, secret, reqAuth, changes.toBuild());
  if (result->errorMsg() != ErrorMsg::success) {
    throw std::runtime_error(std::string(stringValue(result->errorMsg())));
  }
  return result->pkt();
}

// [identifier]
/// The packet under another identifier; `modifyPkt` signs it again.
Ptr<Pkt> withIdentifier(const Pkt& pkt, U8 identifier) {
  auto copy = Zonet::pktFactory(pkt.span());
  copy->data()[PacketConstants::idOffset()] = identifier;
  return copy;
}
// [/identifier]

int run(const Example::CommandLine& line) {
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const String clientSecret = Example::readSecret(line[1]);
  const String serverSecret = Example::readSecret(line[2]);
  KeepingParser parser(dictionary);
  const RadiusPktBuilder builder(dictionary);

  const Ptr<Pkt> received = Example::packetFromHex(line[3]);
  const auto request = parser.getHeader(received);
  const Ptr<Kept> asked(new Kept);
  if (request->errorMsg() != ErrorMsg::success || !isRequest(request->hdr()->code()) ||
      parser.doProcessPkt(received, clientSecret, Bytes(), asked) != ErrorMsg::success) {
    std::cout << "dropped\n";
    return Example::exitRefused;
  }

  // [forward]
  Example::AttributesToAdd forward = hiddenAnew(*asked);
  forward.add(RadiusAttributeId::PROXY_STATE, ownState);  // behind those that the request has
  const Ptr<Pkt> toServer =
      modified(builder, withIdentifier(*received, ownIdentifier), serverSecret, Bytes(), forward);
  const Ptr<RadiusHdr> sent = parser.getHeader(toServer)->hdr();  // until its answer is there
  // [/forward]
  std::cout << Example::hexOf(*toServer) << std::endl;

  std::string digits;
  std::getline(std::cin, digits);
  const Ptr<Pkt> answer = Example::packetFromHex(digits);
  const Ptr<Kept> answered(new Kept);
  const std::string fault = Example::faultOfAnswer(parser, answer, serverSecret, *sent, answered);
  if (!fault.empty()) {
    std::cout << "dropped: " << fault << '\n';
    return Example::exitRefused;
  }

  // [back]
  Example::AttributesToAdd back = hiddenAnew(*answered);
  back.toBuild()->attributesToRemoveIs(standardAttribute(RadiusAttributeId::PROXY_STATE));
  for (const AttrValue& state : asked->proxyStates) {  // the client's own, and not ours
    back.add(RadiusAttributeId::PROXY_STATE, state);
  }
  const Bytes requestAuthenticator(request->hdr()->authenticator().bytes());
  const Ptr<Pkt> toClient = modified(builder, withIdentifier(*answer, request->hdr()->id()),
                                     clientSecret, requestAuthenticator, back);
  // [/back]
  std::cout << Example::hexOf(*toClient) << '\n';
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(
      argc, argv, "", {4},
      "guide_proxy DICTIONARY CLIENT-SECRET-FILE SERVER-SECRET-FILE REQUEST-HEX", run);
}
