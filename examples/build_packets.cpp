// Builds an Access-Request, passes it on as a proxy does, and answers it.
//
//   build_packets DICTIONARY SECRET NEXT-SECRET
//
// The three packets are printed as hex, a line each, in place of a socket. Exit status: 0 all are
// built; 3 a fault on this side; 64 wrong usage.
// A dictionary that does not load ends the process by an assertion.

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

#include "ZoCrypto/Random.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "examples/CommandLine.h"
#include "examples/HexPacket.h"

namespace {

using namespace RadiusPktParserBase;
using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using Verda::Ptr;

constexpr Verda::U8 identifier = 1;
constexpr std::string_view password = "a password";
constexpr Attribute tunnelPassword = standardAttribute(69);  // RFC 2868 section 3.5
constexpr std::string_view tunnelPasswordText = "a password of the tunnel";

/// Adds an attribute behind those that the request has.
template <typename Value>
void add(PktInfoBuilder& request, const Attribute& key, const Value& value) {
  const Ptr<AttrWithValue> attribute = attrWithValueFactory(key);
  attribute->attrValuePush(value);
  const auto turn = static_cast<Verda::U16>(request.attributesToAdd().size());
  request.attributesToAddIs(turn)->attrWithValueIs(attribute);
}

/// Adds the place of a Message-Authenticator, which needs no value.
void addMessageAuthenticator(PktInfoBuilder& request) {
  const Attribute key = standardAttribute(RadiusAttributeId::MESSAGE_AUTHENTICATOR);
  const auto turn = static_cast<Verda::U16>(request.attributesToAdd().size());
  request.attributesToAddIs(turn)->attrWithValueIs(attrWithValueFactory(key));
}

// [salted]
/// What the salted method hides (RFC 2868 section 3.5): salt, a length byte, the text, and zeros up
/// to whole blocks. The salt's first bit is set, and no two salts of a packet may be alike.
Verda::String saltedValue(std::string_view text) {
  std::array<Verda::U8, AttributeConstants::saltLength()> salt{};
  if (!ZoCrypto::randomBytes(salt)) {
    throw std::runtime_error("no random bytes");
  }
  salt.front() |= 0x80U;
  std::string value(salt.begin(), salt.end());
  value += static_cast<char>(text.size());
  value += text;
  const std::size_t hidden = value.size() - salt.size();
  constexpr std::size_t block = AttributeConstants::passwdWordSize();
  value.append((block - hidden % block) % block, '\0');
  return Verda::String(value);
}
// [/salted]

/// The packet, or what was wrong as an exception.
Ptr<Zonet::Pkt> packetOf(const Ptr<PktReturn>& built) {
  if (built->errorMsg() != ErrorMsg::success) {
    throw std::runtime_error("not built: " + std::string(stringValue(built->errorMsg())));
  }
  return built->pkt();
}

/// The header of a new packet. That of a request holds its authenticator, which the answer will be
/// checked with: keep it.
Ptr<RadiusHdr> headerOf(const RadiusPktBuilder& builder, Verda::U8 code) {
  const Ptr<RadiusHdrReturn> made = builder.createRadiusHdr(code, identifier);
  if (made->errorMsg() != ErrorMsg::success) {
    throw std::runtime_error("no header: " + std::string(stringValue(made->errorMsg())));
  }
  return made->hdr();
}

Ptr<Zonet::Pkt> buildRequest(const RadiusPktBuilder& builder, const Verda::String& secret,
                             const Ptr<RadiusHdr>& hdr) {
  const Ptr<PktInfoBuilder> request = pktInfoBuilderFactory();
  addMessageAuthenticator(*request);
  add(*request, standardAttribute(RadiusAttributeId::USER_NAME), Verda::String("nemo"));
  add(*request, standardAttribute(RadiusAttributeId::USER_PASSWORD), Verda::String(password));
  add(*request, standardAttribute(RadiusAttributeId::NAS_PORT), 3U);
  return packetOf(builder.createPktFromHdr(secret, Verda::Bytes(), hdr, request));
}

/// The password is hidden anew, since the next server has another secret.
Ptr<Zonet::Pkt> passOn(const RadiusPktBuilder& builder, const Verda::String& nextSecret,
                       const Ptr<Zonet::Pkt>& received) {
  // [modify]
  const Ptr<PktInfoBuilder> changes = pktInfoBuilderFactory();
  changes->attributesToReplaceIs(standardAttribute(RadiusAttributeId::USER_PASSWORD))
      ->attrValuePush(Verda::String(password));
  changes->attributesToRemoveIs(standardAttribute(RadiusAttributeId::NAS_PORT));
  add(*changes, standardAttribute(RadiusAttributeId::PROXY_STATE), Verda::Bytes{0x17});
  return packetOf(builder.modifyPkt(received, nextSecret, Verda::Bytes(), changes));
  // [/modify]
}

Ptr<Zonet::Pkt> buildAnswer(const RadiusPktBuilder& builder, const Verda::String& secret,
                            const Verda::Bytes& requestAuthenticator) {
  const Ptr<PktInfoBuilder> answer = pktInfoBuilderFactory();
  addMessageAuthenticator(*answer);
  add(*answer, tunnelPassword, TaggedStr{.str = saltedValue(tunnelPasswordText), .tag = 1});
  return packetOf(builder.createPktFromHdr(secret, requestAuthenticator,
                                           headerOf(builder, RadiusCode::ACCESS_ACCEPT), answer));
}

void print(const Ptr<Zonet::Pkt>& pkt) {
  std::puts(Example::hexOf(*pkt).c_str());
}

int run(const Example::CommandLine& line) {
  const Ptr<RadiusPktBuilder> builder = radiusPktBuilderFactory(
      RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary());
  const Ptr<RadiusHdr> hdr = headerOf(*builder, RadiusCode::ACCESS_REQUEST);
  const Ptr<Zonet::Pkt> request = buildRequest(*builder, line[1], hdr);
  print(request);
  print(passOn(*builder, line[2], request));
  print(buildAnswer(*builder, line[1], Verda::Bytes(hdr->authenticator().bytes())));
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {3}, "build_packets DICTIONARY SECRET NEXT-SECRET", run);
}
