// Reports a user's session to a RADIUS accounting server: its start, what it has used so far, and
// its end.
//
//   acct_client [-n TRIES] [-t MILLISECONDS] DICTIONARY SECRET-FILE HOST PORT USER SESSION-ID
//
// Exit status: 0 all records are with the server; 2 no good answer came to one; 3 a fault on this
// side; 64 wrong usage.
// A dictionary that does not load ends the process by an assertion.

#include <ctime>
#include <iostream>
#include <limits>
#include <string>

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "examples/Answer.h"
#include "examples/CommandLine.h"
#include "examples/Exchange.h"
#include "examples/NewPacket.h"
#include "examples/SecretFile.h"
#include "examples/UdpSocket.h"

namespace {

using RadiusPacketParser::RadiusAccountingStatus;
using RadiusPacketParser::RadiusAttributeId;
using RadiusPacketParser::RadiusCode;
using Verda::Bytes;
using Verda::String;
using Verda::U32;
using Verda::U64;
using Verda::U8;

/// What a session has used, as counted where it runs.
struct Usage {
  U32 seconds;
  U64 inputOctets;
  U64 outputOctets;
};

/// A counter of 64 bits takes two attributes (RFC 2869 sections 5.1 and 5.2); the dictionary knows
/// the second, which the enumeration does not name.
constexpr U8 acctInputGigawords = 52;
constexpr U8 acctOutputGigawords = 53;

void addCounter(U8 octets, U8 gigawords, U64 count, Example::AttributesToAdd& attributes) {
  attributes.add(octets, static_cast<U32>(count));
  attributes.add(gigawords, static_cast<U32>(count >> std::numeric_limits<U32>::digits));
}

/// The time of the event goes into the record, and not how late it is sent (Acct-Delay-Time), which
/// another try would have to correct, in a new packet.
Example::AttributesToAdd record(U32 status, const Usage& usage, const char* user,
                                const char* sessionId) {
  Example::AttributesToAdd attributes;
  attributes.add(RadiusAttributeId::ACCT_STATUS_TYPE, status);
  attributes.addText(RadiusAttributeId::ACCT_SESSION_ID, sessionId);
  attributes.addText(RadiusAttributeId::USER_NAME, user);
  attributes.addText(RadiusAttributeId::NAS_IDENTIFIER, "example-nas");
  attributes.add(RadiusAttributeId::EVENT_TIMESTAMP, static_cast<U32>(std::time(nullptr)));
  if (status == RadiusAccountingStatus::START) {
    return attributes;
  }
  attributes.add(RadiusAttributeId::ACCT_SESSION_TIME, usage.seconds);
  addCounter(RadiusAttributeId::ACCT_INPUT_OCTETS, acctInputGigawords, usage.inputOctets,
             attributes);
  addCounter(RadiusAttributeId::ACCT_OUTPUT_OCTETS, acctOutputGigawords, usage.outputOctets,
             attributes);
  if (status == RadiusAccountingStatus::STOP) {
    constexpr U32 userRequest = 1;
    attributes.add(RadiusAttributeId::ACCT_TERMINATE_CAUSE, userRequest);
  }
  return attributes;
}

int run(const Example::CommandLine& line) {
  const auto dictionary = RadiusPacketParser::radiusDictionaryParserFactory(line[0])->dictionary();
  const String secret = Example::readSecret(line[1]);
  const auto socket = Example::UdpSocket::connectedTo(line[2], line[3]);
  const RadiusPktParserBase::RadiusPktBuilder builder(dictionary);
  RadiusPktParserBase::RadiusPktParser parser(dictionary);

  const struct {
    RadiusAccountingStatus::RadiusAccountingStatusEnum status;
    Usage usage;
  } records[] = {
      {RadiusAccountingStatus::START, {}},
      {RadiusAccountingStatus::INTERIM_UPDATE, {300, 1'500'000, 4'300'000'000}},
      {RadiusAccountingStatus::STOP, {480, 2'000'000, 9'000'000'000}},
  };
  U8 id = 0;  // each record's own; 256 requests to one server, from one port, can be on their way
  for (const auto& [status, usage] : records) {
    const Example::NewPacket request =
        Example::newPacket(builder, RadiusCode::ACCOUNTING_REQUEST, id++, secret, Bytes(),
                           record(status, usage, line[4], line[5]));
    const bool recorded = Example::exchange(
        socket, *request.pkt, line.tries(), [&](const Verda::Ptr<Zonet::Pkt>& pkt) {
          const std::string fault = Example::faultOfAnswer(
              parser, pkt, secret, *request.hdr, RadiusPktParserBase::pktInfoParserFactory());
          if (!fault.empty()) {
            std::cerr << "ignored: " << fault << '\n';
          }
          return fault.empty();
        });
    std::cout << status << (recorded ? ": recorded\n" : ": no answer\n") << std::flush;
    if (!recorded) {
      return Example::exitNoAnswer;
    }
  }
  return Example::exitGood;
}

}  // namespace

int main(int argc, char** argv) {
  return Example::runAgent(argc, argv, "n:t:", {6},
                           "acct_client [-n TRIES] [-t MILLISECONDS] "
                           "DICTIONARY SECRET-FILE HOST PORT USER SESSION-ID",
                           run);
}
