// Asks a RADIUS server by packets that the legacy interface makes, edits and checks.
//
//   legacy_client [-e] [-n TRIES] [-t MILLISECONDS]
//                 DICTIONARY SECRET-FILE HOST PORT auth|acct USER [ANSWER-SECRET-FILE]
//
// auth sends an Access-Request with the password that is the first line of standard input; -e edits
// the finished request before it is sent. acct reports the start of a session. The answer is
// checked with the secret of ANSWER-SECRET-FILE, when it is given.
//
// Exit status: 0 accepted or recorded; 1 rejected; 2 no good answer came; 3 a fault on this side;
// 64 wrong usage.

#include <array>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Verda/Escape.h"
#include "ZoCrypto/Random.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPacketParser.h"
#include "RadiusPacketParser/RadiusPktBuilder.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "examples/CommandLine.h"
#include "examples/Exchange.h"
#include "examples/FirstLine.h"
#include "examples/SecretFile.h"
#include "examples/UdpSocket.h"

namespace {

using RadiusPacketParser::Attribute;
using RadiusPacketParser::AttributeConstants;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U32;
using Verda::U8;
using DictPtr = Ptr<const RadiusPacketParser::RadiusDict>;
using LegacyPacket = RadiusPacketParser::RadiusPacketParser;

// ---- Requests ----

/// An object of a packet that is our own.
Ptr<LegacyPacket> objectOf(const DictPtr& dictionary, const Ptr<Zonet::Pkt>& pkt) {
  auto object = RadiusPacketParser::radiusPacketParserFactory(dictionary, pkt);
  if (object->badPkt()) {
    throw std::runtime_error("the packet is bad");
  }
  return object;
}

U8 randomIdentifier() {
  std::array<U8, 1> identifier;
  if (!ZoCrypto::randomBytes(identifier)) {
    throw std::runtime_error("no random bytes");
  }
  return identifier.front();
}

/// An object of a packet without attributes, with the authenticator that a builder draws.
Ptr<LegacyPacket> newPacket(const DictPtr& dictionary, U8 code) {
  const RadiusPktParserBase::RadiusPktBuilder builder(dictionary);
  const auto made = builder.createRadiusHdr(code, randomIdentifier());
  if (made->errorMsg() != RadiusPktParserBase::ErrorMsg::success) {
    throw std::runtime_error("no header");
  }
  const auto header = RadiusPacketParser::radiusHdrFactory();
  header->codeIs(made->hdr()->code());
  header->idIs(made->hdr()->id());
  header->authenticatorIs(made->hdr()->authenticator());
  return objectOf(dictionary, RadiusPacketParser::radiusPacketNewFactory(header)->createPacket());
}

/// Hides and signs what is to be sent. Its header is then what the answer is checked with.
void finish(LegacyPacket& request, const String& secret) {
  request.encryptPacket(secret, Bytes());
  if (request.msgAuthPresent()) {
    request.setMessageAuthenticator(secret, Bytes());
  }
  if (request.header()->code() != RadiusCode::ACCESS_REQUEST) {
    request.setRequestAuthenticator(secret);
  }
  request.setHeader();
}

Ptr<LegacyPacket> accessRequest(const DictPtr& dictionary, const String& secret, const char* user) {
  const auto empty = newPacket(dictionary, RadiusCode::ACCESS_REQUEST);
  empty->attributesToAddIs(RadiusAttributeId::MESSAGE_AUTHENTICATOR, String());
  empty->attributesToAddIs(RadiusAttributeId::USER_NAME, user);
  empty->attributesToAddIs(RadiusAttributeId::USER_PASSWORD,
                           Example::firstLine(stdin, "standard input"));
  empty->attributesToAddIs(RadiusAttributeId::NAS_IDENTIFIER, "legacy-nas");
  auto request = objectOf(dictionary, empty->addAttribute());
  finish(*request, secret);
  return request;
}

/// Of a finished request the same without NAS-Identifier and with a Proxy-State, finished anew
/// under another identifier and authenticator.
Ptr<LegacyPacket> edited(LegacyPacket& request, const DictPtr& dictionary, const String& secret) {
  request.decryptPacket(secret, Bytes());
  request.attributesToRemoveIs(Attribute(RadiusAttributeId::NAS_IDENTIFIER, 0, 0));
  const auto shorter = objectOf(dictionary, request.removeAttribute());
  shorter->attributesToAddIs(RadiusAttributeId::PROXY_STATE, "by proxy");
  auto longer = objectOf(dictionary, shorter->addAttribute());
  longer->setPacketIdentifier(randomIdentifier());
  longer->setRequestAuthenticator(secret);
  longer->setHeader();
  finish(*longer, secret);
  return longer;
}

Ptr<LegacyPacket> accountingRequest(const DictPtr& dictionary, const String& secret,
                                    const char* user) {
  constexpr U32 cisco = 9;
  constexpr U8 avPair = 1;
  const auto empty = newPacket(dictionary, RadiusCode::ACCOUNTING_REQUEST);
  empty->attributesToAddIs(RadiusAttributeId::ACCT_STATUS_TYPE, "1");
  empty->attributesToAddIs(RadiusAttributeId::ACCT_SESSION_ID, "session-1");
  empty->attributesToAddIs(RadiusAttributeId::USER_NAME, user);
  empty->attributesToAddIs(RadiusAttributeId::NAS_IP_ADDRESS, "192.0.2.16");
  empty->vsaToAddIs(0, RadiusPacketParser::VsaValueType(cisco, avPair, "shell:priv-lvl=15"));
  auto request = objectOf(dictionary, empty->addAttribute());
  finish(*request, secret);
  return request;
}

// ---- Answers ----

/// Why a packet is no good answer; empty for a good one.
std::string faultOfAnswer(LegacyPacket& answer, const String& secret, const LegacyPacket& request) {
  if (answer.badPkt()) {
    return "a bad packet";
  }
  if (!RadiusPktParserBase::canAnswer(answer.header()->code(), request.header()->code()) ||
      !answer.validatePacketId(request.header())) {
    return "not an answer to this request";
  }
  const Bytes reqAuth(request.header()->authenticator().bytes());
  if (!answer.validateAuthenticator(secret, reqAuth)) {
    return "wrong authenticator";
  }
  return answer.validateMessageAuthenticator(secret, reqAuth) ? "" : "wrong Message-Authenticator";
}

/// What is printed of an answer, if it is there: the kind, how it is called, and whether its text
/// stands behind salt and length byte.
struct Shown {
  Attribute kind;
  const char* name;
  bool isSalted = false;
};

constexpr U32 microsoft = 311;

const std::array shown{
    Shown{Attribute(18, 0, 0), "18"},
    Shown{Attribute(33, 0, 0), "33"},
    Shown{Attribute(64, 0, 0), "64"},
    Shown{Attribute(67, 0, 0), "67"},
    Shown{Attribute(69, 0, 0), "69", true},
    Shown{Attribute(95, 0, 0), "95"},
    Shown{Attribute(96, 0, 0), "96"},
    Shown{Attribute(RadiusAttributeId::VENDOR_SPECIFIC, 16, microsoft), "26.311.16", true},
};

std::string_view withoutSalt(std::string_view text) {
  const std::size_t front = AttributeConstants::saltLength();
  if (text.size() <= front) {
    throw std::runtime_error("a salted value is too short");
  }
  return text.substr(front + 1, static_cast<U8>(text[front]));
}

void print(LegacyPacket& answer, const String& secret, const Bytes& reqAuth) {
  std::cout << RadiusCode::RadiusCodeEnum{answer.header()->code()} << '\n';
  answer.decryptPacket(secret, reqAuth);
  for (const Shown& one : shown) {
    answer.getValueOfAttributesListIs(one.kind);
  }
  answer.getValuesOfAttributesFromAttributeList();
  for (const Shown& one : shown) {
    const auto info = answer.attrInfo(one.kind);
    for (const auto& [index, text] : info->value()) {
      const auto tag = info->tag(index);
      std::cout << one.name << (tag ? ":" + std::to_string(*tag) : "") << " = "
                << Verda::escaped(one.isSalted ? withoutSalt(text.view()) : text.view()) << '\n';
    }
  }
}

int run(const Example::CommandLine& line) {
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const String secret = Example::readSecret(line[1]);
  const String answerSecret =
      Example::readSecret(line.arguments().size() > 6 ? line.arguments().back() : line[1]);
  const auto socket = Example::UdpSocket::connectedTo(line[2], line[3]);
  auto request = std::string_view(line[4]) == "acct"
                     ? accountingRequest(dictionary, secret, line[5])
                     : accessRequest(dictionary, secret, line[5]);
  if (line.has('e')) {
    request = edited(*request, dictionary, secret);
  }
  int exitCode = Example::exitNoAnswer;
  Example::exchange(socket, *request->pkt(), line.tries(), [&](const Ptr<Zonet::Pkt>& pkt) {
    const auto answer = RadiusPacketParser::radiusPacketParserFactory(dictionary, pkt);
    if (const std::string fault = faultOfAnswer(*answer, answerSecret, *request); !fault.empty()) {
      std::cerr << "ignored: " << fault << '\n';
      return false;
    }
    print(*answer, answerSecret, Bytes(request->header()->authenticator().bytes()));
    exitCode = answer->header()->code() == RadiusCode::ACCESS_REJECT ? Example::exitRefused
                                                                     : Example::exitGood;
    return true;
  });
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "en:t:", {6, 7},
                           "legacy_client [-e] [-n TRIES] [-t MILLISECONDS] "
                           "DICTIONARY SECRET-FILE HOST PORT auth|acct USER [ANSWER-SECRET-FILE]",
                           run);
}
