// Takes CoA and Disconnect requests (RFC 5176) for the sessions of an access server and answers
// each with ACK or NAK.
//
//   dynauth_server DICTIONARY SECRET-FILE HOST PORT SESSION-ID...
//
// HOST is the address to listen at, PORT may be 0 for any. The server says where it listens and
// what it answers, and runs until it is stopped. Exit status: 3 a fault on this side; 64 wrong
// usage.
// A dictionary that does not load ends the process by an assertion.

#include <iostream>
#include <map>
#include <string>
#include <utility>

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "examples/CommandLine.h"
#include "examples/DynAuthRequest.h"
#include "examples/NewPacket.h"
#include "examples/SecretFile.h"
#include "examples/Sessions.h"
#include "examples/UdpSocket.h"

namespace {

using Example::DynAuthRequest;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using RadiusPacketParser::RadiusDynAuthErrorCode;
using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserBase::RadiusHdr;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U8;

using ErrorCause = RadiusDynAuthErrorCode::RadiusDynAuthErrorCodeEnum;

U8 answerCode(U8 requestCode, bool isAck) {
  if (requestCode == RadiusCode::COA_REQUEST) {
    return isAck ? RadiusCode::COA_ACK : RadiusCode::COA_NAK;
  }
  return isAck ? RadiusCode::DISCONNECT_ACK : RadiusCode::DISCONNECT_NAK;
}

class Server {
 public:
  Server(const Ptr<const RadiusPacketParser::RadiusDict>& dictionary, const String& secret,
         const Example::Sessions& sessions)
      : parser_(dictionary), builder_(dictionary), secret_(secret), sessions_(sessions) {}

  /// The answer to a datagram. One that does not prove the secret, or is too old, deserves none:
  /// that throws.
  Ptr<Zonet::Pkt> answer(const Ptr<Zonet::Pkt>& pkt, const Example::Peer& peer) {
    const auto header = parser_.getHeader(pkt);
    check(header->errorMsg());
    const RadiusHdr& hdr = *header->hdr();
    if (hdr.code() != RadiusCode::COA_REQUEST && hdr.code() != RadiusCode::DISCONNECT_REQUEST) {
      throw std::runtime_error("not a request for this server");
    }
    const auto request = DynAuthRequest::make();
    check(parser_.doProcessPkt(pkt, secret_, Bytes(), request));
    if (!request->isCurrent()) {
      throw std::runtime_error("too old");
    }
    // A client that has not seen the answer sends its request again: it gets the same answer, and
    // nothing is done twice.
    Answered& last = answered_[{peer.bytes(), hdr.id()}];
    if (last.requestAuthenticator != hdr.authenticator()) {
      last = {hdr.authenticator(), newAnswer(hdr, *request)};
    }
    return last.pkt;
  }

 private:
  static void check(ErrorMsg result) {
    if (result != ErrorMsg::success) {
      throw std::runtime_error(stringValue(result).cStr());
    }
  }

  Ptr<Zonet::Pkt> newAnswer(const RadiusHdr& hdr, const DynAuthRequest& request) {
    const ErrorCause cause = sessions_.obey(hdr.code(), request);
    const bool isAck = cause == RadiusDynAuthErrorCode::SUCCESS;
    Example::AttributesToAdd attributes;
    if (request.msgAuthPresent()) {
      attributes.addMessageAuthenticator();
    }
    if (!isAck && request.leavesRoomForErrorCause()) {
      attributes.add(RadiusAttributeId::ERROR_CAUSE, Verda::U32{cause});
    }
    for (const RadiusPktParserBase::AttrValue& state : request.proxyStates) {
      attributes.add(RadiusAttributeId::PROXY_STATE, state);
    }
    const U8 code = answerCode(hdr.code(), isAck);
    const Bytes requestAuthenticator(hdr.authenticator().bytes());
    const auto answer =
        Example::newPacket(builder_, code, hdr.id(), secret_, requestAuthenticator, attributes);
    std::cout << RadiusCode::RadiusCodeEnum{code} << ' ' << cause << std::endl;
    return answer.pkt;
  }

  /// The last answer that a client was given under an Identifier.
  struct Answered {
    String requestAuthenticator;
    Ptr<Zonet::Pkt> pkt;
  };

  Example::DynAuthRequestParser parser_;
  const RadiusPktParserBase::RadiusPktBuilder builder_;
  const String secret_;
  Example::Sessions sessions_;
  std::map<std::pair<std::string, U8>, Answered> answered_;
};

[[noreturn]] int run(const Example::CommandLine& line) {
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const auto sessions = line.arguments().subspan(4);
  Server server(dictionary, Example::readSecret(line[1]),
                Example::Sessions({sessions.begin(), sessions.end()}));
  const auto socket = Example::UdpSocket::boundTo(line[2], line[3]);
  std::cout << "listening at port " << socket.port() << std::endl;
  for (;;) {
    Example::Peer peer;
    const auto pkt = socket.receiveFrom(peer);
    try {
      socket.sendTo(peer, *server.answer(pkt, peer));
    } catch (const std::exception& fault) {
      std::cerr << "ignored: " << fault.what() << std::endl;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "", {4, Example::anyNumber},
                           "dynauth_server DICTIONARY SECRET-FILE HOST PORT SESSION-ID...", run);
}
