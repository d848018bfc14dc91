// Builds an Access-Request and the Access-Accept that answers it, and prints them as hex, a line
// each.
//
//   guide_build DICTIONARY SECRET-FILE USER PASSWORD
//
// Exit status: 0 both are built; 3 a fault on this side; 64 wrong usage.

#include <iostream>
#include <stdexcept>
#include <string>

#include "Zonet/IpGenPrefix.h"
#include "Zonet/Pkt.h"

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
using Verda::Ptr;
using Verda::String;
using Verda::U8;
using Zonet::Pkt;

// [header]
/// A header for one packet.
Ptr<RadiusHdr> newHeader(const RadiusPktBuilder& builder, U8 code, U8 identifier) {
  const auto made = builder.createRadiusHdr(code, identifier);
  if (made->errorMsg() != ErrorMsg::success) {  // no random bytes
    throw std::runtime_error(std::string(stringValue(made->errorMsg())));
  }
  return made->hdr();
}
// [/header]

// [attributes]
/// What an Access-Request is to hold, in this order.
Ptr<PktInfoBuilder> loginOf(const String& user, const String& password) {
  auto content = pktInfoBuilderFactory();

  content->attributesToAddIs(0)->attrWithValueIs(  // a place: the build computes the value
      attrWithValueFactory(standardAttribute(RadiusAttributeId::MESSAGE_AUTHENTICATOR)));

  const auto name = attrWithValueFactory(standardAttribute(RadiusAttributeId::USER_NAME));
  name->attrValuePush(user);
  content->attributesToAddIs(1)->attrWithValueIs(name);

  const auto secretWord = attrWithValueFactory(standardAttribute(RadiusAttributeId::USER_PASSWORD));
  secretWord->attrValuePush(password);  // in clear: the build hides it
  content->attributesToAddIs(2)->attrWithValueIs(secretWord);
  return content;
}
// [/attributes]

// [values]
/// What an Access-Accept is to hold: texts, a number, an address with its length, and a vendor's
/// attribute under its enterprise number and vendor type.
Ptr<PktInfoBuilder> welcome() {
  const auto place =
      attrWithValueFactory(standardAttribute(RadiusAttributeId::MESSAGE_AUTHENTICATOR));

  const auto lines = attrWithValueFactory(standardAttribute(RadiusAttributeId::REPLY_MESSAGE));
  lines->attrValuePush(String("welcome"));  // two values: two attributes
  lines->attrValuePush(String("the printer is out of paper"));

  const auto timeout = attrWithValueFactory(standardAttribute(RadiusAttributeId::SESSION_TIMEOUT));
  timeout->attrValuePush(3600U);

  const auto prefix =
      attrWithValueFactory(standardAttribute(RadiusAttributeId::FRAMED_IPV6_PREFIX));
  prefix->attrValuePush(Zonet::IpGenPrefix("2001:db8::/64"));

  constexpr Verda::U32 wispr = 14122;
  constexpr U8 redirectionUrl = 4;
  const auto url = attrWithValueFactory(vendorAttribute(wispr, redirectionUrl));
  url->attrValuePush(String("https://www.example.com/"));

  auto content = pktInfoBuilderFactory();
  Verda::U16 turn = 0;
  for (const auto& attribute : {place, lines, timeout, prefix, url}) {
    content->attributesToAddIs(turn++)->attrWithValueIs(attribute);
  }
  return content;
}
// [/values]

// [build]
/// A packet of the header's code and identifier, signed.
/// @param reqAuth  empty for a request; the authenticator of the request that a response answers
Ptr<Pkt> built(const RadiusPktBuilder& builder, const Ptr<RadiusHdr>& header, const String& secret,
               const Bytes& reqAuth, const Ptr<PktInfoBuilder>& content) {
  const auto result = builder.createPktFromHdr(secret, reqAuth, header, content);
  if (result->errorMsg() != ErrorMsg::success) {
    throw std::runtime_error(std::string(stringValue(result->errorMsg())));
  }
  return result->pkt();  // pkt->data(), pkt->bytes(): what goes into the socket
}
// [/build]

int run(const Example::CommandLine& line) {
  const String secret = Example::readSecret(line[1]);
  const auto builder = radiusPktBuilderFactory(
      RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary());

  // [both]
  constexpr U8 identifier = 1;
  const auto request = newHeader(*builder, RadiusCode::ACCESS_REQUEST, identifier);
  const auto requestPkt = built(*builder, request, secret, Bytes(), loginOf(line[2], line[3]));

  const Bytes requestAuthenticator(request->authenticator().bytes());
  const auto response = newHeader(*builder, RadiusCode::ACCESS_ACCEPT, request->id());
  const auto responsePkt = built(*builder, response, secret, requestAuthenticator, welcome());
  // [/both]
  std::cout << Example::hexOf(*requestPkt) << '\n' << Example::hexOf(*responsePkt) << '\n';
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {4}, "guide_build DICTIONARY SECRET-FILE USER PASSWORD",
                           run);
}
