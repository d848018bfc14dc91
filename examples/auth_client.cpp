// Asks a RADIUS server whether a user may come in, and prints what the server's answer holds.
//
//   auth_client [-c] [-u] [-n TRIES] [-t MILLISECONDS] DICTIONARY SECRET-FILE HOST PORT USER
//
// The user's password is the first line of standard input; -c proves it by CHAP, without it PAP
// hides it. An answer without a Message-Authenticator is refused: whoever sits between agent and
// server can forge one (CVE-2024-3596). -u takes it all the same, for a server that makes none.
//
// Exit status: 0 accepted; 1 rejected or challenged; 2 no good answer came; 3 a fault on this side;
// 64 wrong usage.
// A dictionary that does not load ends the process by an assertion.

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "ZoCrypto/Random.h"

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "examples/Answer.h"
#include "examples/AttributeLines.h"
#include "examples/CommandLine.h"
#include "examples/Exchange.h"
#include "examples/FirstLine.h"
#include "examples/NewPacket.h"
#include "examples/SecretFile.h"
#include "examples/UdpSocket.h"

namespace {

using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using Verda::Bytes;
using Verda::String;
using Verda::U8;

using Digest = std::array<U8, RadiusPacketParser::PacketConstants::authLength()>;

template <typename Array>
Array randomBytes() {
  Array bytes;
  if (!ZoCrypto::randomBytes(bytes)) {
    throw std::runtime_error("no random bytes");
  }
  return bytes;
}

/// CHAP (RFC 2865 section 5.3): an identifier, and the MD5 of identifier, password and challenge.
/// The challenge is usually one that the user was sent before; here it is made up.
void addChapPassword(const std::string& password, Example::AttributesToAdd& attributes) {
  const auto identifier = randomBytes<std::array<U8, 1>>();
  const auto challenge = randomBytes<Digest>();
  std::vector<U8> digested(identifier.begin(), identifier.end());
  digested.insert(digested.end(), password.begin(), password.end());
  digested.insert(digested.end(), challenge.begin(), challenge.end());
  Digest digest;
  if (RadiusPktParserBase::md5Calculator(digested.data(), static_cast<Verda::U32>(digested.size()),
                                         digest.data()) != RadiusPktParserBase::ErrorMsg::success) {
    throw std::runtime_error("no digest");
  }
  std::vector<U8> response(identifier.begin(), identifier.end());
  response.insert(response.end(), digest.begin(), digest.end());
  attributes.add(RadiusAttributeId::CHAP_PASSWORD, Bytes(response));
  attributes.add(RadiusAttributeId::CHAP_CHALLENGE, Bytes(challenge));
}

/// PAP: the build fills the password up to whole blocks and hides it. Of one that is too long it
/// would take the front part, and an empty one it would leave empty, where a block of zeros
/// belongs.
void addPassword(std::string password, Example::AttributesToAdd& attributes) {
  if (password.size() > AttributeConstants::maxPasswdSize()) {
    throw std::runtime_error("the password is too long");
  }
  if (password.empty()) {
    password.assign(AttributeConstants::minPasswdSize(), '\0');
  }
  attributes.addText(RadiusAttributeId::USER_PASSWORD, password);
}

Example::AttributesToAdd accessRequest(const Example::CommandLine& line) {
  const std::string password = Example::firstLine(stdin, "standard input");
  Example::AttributesToAdd attributes;
  attributes.addMessageAuthenticator();  // first, so that nobody can put anything in front of it
  attributes.addText(RadiusAttributeId::USER_NAME, line[4]);
  if (line.has('c')) {
    addChapPassword(password, attributes);
  } else {
    addPassword(password, attributes);
  }
  attributes.addText(RadiusAttributeId::NAS_IDENTIFIER, "example-nas");
  return attributes;
}

int run(const Example::CommandLine& line) {
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const String secret = Example::readSecret(line[1]);
  const auto socket = Example::UdpSocket::connectedTo(line[2], line[3]);
  const RadiusPktParserBase::RadiusPktBuilder builder(dictionary);
  Example::DescribingParser parser(dictionary);

  const U8 id = randomBytes<std::array<U8, 1>>().front();
  const Example::NewPacket request = Example::newPacket(builder, RadiusCode::ACCESS_REQUEST, id,
                                                        secret, Bytes(), accessRequest(line));
  int exitCode = Example::exitNoAnswer;
  Example::exchange(socket, *request.pkt, line.tries(), [&](const Verda::Ptr<Zonet::Pkt>& pkt) {
    const auto sink = Example::AttributeLines::make();
    std::string fault = Example::faultOfAnswer(parser, pkt, secret, *request.hdr, sink);
    if (fault.empty() && !sink->msgAuthPresent() && !line.has('u')) {
      fault = "no Message-Authenticator";
    }
    if (!fault.empty()) {
      std::cerr << "ignored: " << fault << '\n';
      return false;
    }
    const U8 code = parser.getHeader(pkt)->hdr()->code();
    std::cout << RadiusCode::RadiusCodeEnum{code} << '\n';
    for (const std::string& attribute : sink->lines) {
      std::cout << "  " << attribute << '\n';
    }
    exitCode = code == RadiusCode::ACCESS_ACCEPT ? Example::exitGood : Example::exitRefused;
    return true;
  });
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "cun:t:", {5},
                           "auth_client [-c] [-u] [-n TRIES] [-t MILLISECONDS] "
                           "DICTIONARY SECRET-FILE HOST PORT USER",
                           run);
}
