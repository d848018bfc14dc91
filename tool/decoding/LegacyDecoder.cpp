#include "tool/decoding/LegacyDecoder.h"

#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "Zonet/Pkt.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/decoding/LegacyAttributes.h"
#include "tool/decoding/PacketChecks.h"
#include "tool/process/FaultTrace.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;
using RadiusPacketParser::RadiusCode;
using RadiusPacketParser::RadiusDict;
using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserTest::StatusServerErrorMsg;
using Verda::Bytes;
using Verda::Ptr;
using Verda::String;
using Verda::U8;

namespace {

using ByteView = std::span<const U8>;
using LegacyPacket = RadiusPacketParser::RadiusPacketParser;

/// The fault that the basic check traces with a text; all others are lengths of attributes.
ErrorMsg errorOf(std::string_view reason) {
  if (reason == "Received packet with invalid length" ||
      reason == "Received packet with invalid header length") {
    return ErrorMsg::invalidPktLength;
  }
  return reason == "Packet has eap message but doesn't have message authenticator"
             ? ErrorMsg::missingRequiredMsgAuth
             : ErrorMsg::invalidAttrLength;
}

ErrorMsg authenticityOf(LegacyPacket& object, const String& secret, const Bytes& reqAuth) {
  if (!object.validateAuthenticator(secret, reqAuth)) {
    return ErrorMsg::invalidPktAuth;
  }
  return object.validateMessageAuthenticator(secret, reqAuth) ? ErrorMsg::success
                                                              : ErrorMsg::invalidMsgAuth;
}

StatusServerErrorMsg statusServerVerdict(LegacyPacket& object) {
  if (object.validateStatusServerPkt()) {
    return StatusServerErrorMsg::success;
  }
  return object.msgAuthPresent() ? StatusServerErrorMsg::invalidAttributePresent
                                 : StatusServerErrorMsg::msgAuthNotPresent;
}

void warnOfMissingBytes(std::size_t length, std::size_t size, PacketReport& report) {
  if (length > size) {
    report.warnings.push_back(fmt::format(
        "its Length says {}, but there are {} bytes: the others are read as zeros", length, size));
  }
}

}  // namespace

LegacyDecoder::LegacyDecoder(const Ptr<const RadiusDict>& dictionary) : dictionary_(dictionary) {}

PacketReport LegacyDecoder::decode(ByteView packet, const Secret& secret,
                                   const Bytes& requestAuthenticator) const {
  PacketReport report;
  report.header = headerOf(packet);
  FaultTrace trace;
  const auto object =
      RadiusPacketParser::radiusPacketParserFactory(dictionary_, Zonet::pktFactory(packet));
  const ErrorMsg fault =
      object->badPkt() ? errorOf(trace.reason().value_or(std::string())) : ErrorMsg::success;
  if (fault == ErrorMsg::invalidPktLength) {
    report.error = fault;
    report.reason = trace.reason();
    return report;
  }
  const RadiusPacketParser::RadiusHdr& header = *object->header();
  if (lacksRequestAuthenticator(header.code(), requestAuthenticator, report)) {
    return report;
  }
  warnOfMissingBytes(header.length(), packet.size(), report);
  if (fault != ErrorMsg::success) {
    report.error = fault;
    report.reason = trace.reason();
    report.authenticatorCheck = Check::unchecked;
    return report;
  }
  const bool isRequest = RadiusPktParserBase::isRequest(header.code());
  walk(*object, packet, secret, isRequest ? Bytes() : requestAuthenticator, report);
  return report;
}

void LegacyDecoder::walk(LegacyPacket& object, ByteView packet, const Secret& secret,
                         const Bytes& reqAuth, PacketReport& report) const {
  const U8 code = object.header()->code();
  const ErrorMsg error = authenticityOf(object, secret.text(), reqAuth);
  const bool isGood = error == ErrorMsg::success;
  report.error = error;
  reportChecks(code, error, isGood && object.msgAuthPresent(), report);
  if (code == RadiusCode::STATUS_SERVER) {
    report.statusServer = statusServerVerdict(object);
  }
  if (isGood) {
    std::vector<U8> whole(packet.begin(), packet.end());
    whole.resize(object.header()->length());
    readLegacyAttributes(object, ByteView(whole).subspan(PacketConstants::headerLength()),
                         secret.text(), reqAuth, report);
  }
}

}  // namespace RadiusPacketTool
