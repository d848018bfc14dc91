// The legacy interface: reads the attributes of an Access-Request as text, and makes an edited copy
// of it.
//
//   guide_legacy DICTIONARY SECRET-FILE REQUEST-HEX
//
// Prints User-Name and User-Password, then the copy as hex. Exit status: 0 a good request; 1 a bad
// one; 3 a fault on this side; 64 wrong usage.

#include <iostream>

#include "Verda/Escape.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"
#include "examples/SecretFile.h"

namespace {

using namespace RadiusPacketParser;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Zonet::Pkt;

// [read]
const Attribute userName(RadiusAttributeId::USER_NAME, 0, 0);

/// Whether a request is good; prints the users that it names. Its hidden values are then in clear.
bool read(RadiusPacketParserBase& packet, const String& secret) {
  if (packet.badPkt() || !packet.validateAuthenticator(secret, Bytes()) ||
      !packet.validateMessageAuthenticator(secret, Bytes())) {
    return false;  // level 0 of the trace says what is bad; the validators say nothing
  }
  packet.decryptPacket(secret, Bytes());  // in the packet itself
  packet.getValueOfAttributesListIs(userName);
  packet.getValuesOfAttributesFromAttributeList();
  if (const auto names = packet.attrInfo(userName)) {
    for (const auto& [index, text] : names->value()) {  // the first is number 0
      std::cout << index << ": " << Verda::escaped(text) << '\n';
    }
  }
  return true;
}
// [/read]

// [edit]
/// A copy for a server with another secret: without NAS-Port, and with a NAS-Identifier.
/// @param pkt  its hidden values in clear
Ptr<Pkt> edited(const Ptr<const RadiusDict>& dictionary, const Ptr<Pkt>& pkt,
                const String& nextSecret) {
  const auto first = radiusPacketParserFactory(dictionary, pkt);
  first->attributesToRemoveIs(Attribute(RadiusAttributeId::NAS_PORT, 0, 0));
  const auto second = radiusPacketParserFactory(dictionary, first->removeAttribute());
  second->attributesToAddIs(RadiusAttributeId::NAS_IDENTIFIER, "example-nas");
  const auto third = radiusPacketParserFactory(dictionary, second->addAttribute());
  third->encryptPacket(nextSecret, Bytes());
  third->setMessageAuthenticator(nextSecret, Bytes());  // where the packet has one
  return third->pkt();
}
// [/edit]

int run(const Example::CommandLine& line) {
  const auto dictionary = radiusDictionaryParserFactory(line[0])->dictionary();
  const auto packet = radiusPacketParserFactory(dictionary, Example::packetFromHex(line[2]));
  if (!read(*packet, Example::readSecret(line[1]))) {
    std::cout << "bad\n";
    return Example::exitRefused;
  }
  std::cout << Example::hexOf(*edited(dictionary, packet->pkt(), "the next secret")) << '\n';
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {3}, "guide_legacy DICTIONARY SECRET-FILE REQUEST-HEX",
                           run);
}
