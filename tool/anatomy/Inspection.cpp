#include "tool/anatomy/Inspection.h"

#include <span>

#include "RadiusPacketParser/RadiusPktCommon.h"
#include "tool/anatomy/PacketAnatomy.h"
#include "tool/output/TextOutput.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusDict;
using RadiusPktParserBase::ErrorMsg;
using Verda::Bytes;
using Verda::Ptr;
using Verda::U8;

namespace {

/// Whether it is known that what the secret reveals is not what was hidden.
bool isForged(const PacketReport& report) {
  return report.error == ErrorMsg::invalidPktAuth || report.error == ErrorMsg::invalidMsgAuth;
}

void addCheck(Field& field, Check check) {
  field.meaning += ", ";
  field.meaning += checkText(check == Check::absent ? Check::unchecked : check);
}

/// Adds to the authenticators what is known of them.
void addChecks(const PacketReport& report, Anatomy& anatomy) {
  if (anatomy.authenticator.has_value() && !hasRandomAuthenticator(*report.header.code)) {
    addCheck(anatomy.fields[*anatomy.authenticator], report.authenticatorCheck);
  }
  if (anatomy.messageAuthenticator.has_value()) {
    addCheck(anatomy.fields[*anatomy.messageAuthenticator], report.messageAuthenticatorCheck);
  }
}

}  // namespace

Revealing revealingOf(const PacketContext& context) {
  if (context.secret == nullptr || !context.header.authenticator.has_value()) {
    return {};
  }
  Revealing revealing{.secret = context.secret, .authenticator = context.request.bytes};
  if (RadiusPktParserBase::isRequest(*context.header.code)) {
    revealing.authenticator = Bytes(std::span<const U8>(*context.header.authenticator));
  }
  return revealing.authenticator.empty() ? Revealing() : revealing;
}

Inspection inspected(const InputPacket& packet, const PacketContext& context,
                     const Ptr<const RadiusDict>& dictionary, const Decoder& decoder) {
  Inspection inspection{.place = packet.place,
                        .datagram = packet.datagram,
                        .header = context.header,
                        .anatomy = {},
                        .report = std::nullopt};
  if (context.secret == nullptr) {
    inspection.anatomy = anatomyOf(packet.bytes, dictionary);
    return inspection;
  }
  const PacketReport& report = inspection.report.emplace(reportOf(decoder, packet, context));
  inspection.anatomy =
      anatomyOf(packet.bytes, dictionary, isForged(report) ? Revealing() : revealingOf(context));
  addChecks(report, inspection.anatomy);
  return inspection;
}

ExitCode exitCodeOf(const Inspection& inspection) {
  if (inspection.report.has_value()) {
    return exitCodeOf(*inspection.report);
  }
  const Field* faulty = inspection.anatomy.firstFaulty();
  return faulty == nullptr ? ExitCode::success : exitCodeOf(faulty->fault->error);
}

}  // namespace RadiusPacketTool
