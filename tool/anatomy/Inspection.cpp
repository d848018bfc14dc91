#include "tool/anatomy/Inspection.h"

#include "tool/anatomy/PacketAnatomy.h"
#include "tool/anatomy/Revealing.h"
#include "tool/output/TextOutput.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusDict;
using Verda::Ptr;

namespace {

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
  inspection.anatomy = anatomyOf(packet.bytes, dictionary, revealingOf(report, context));
  addChecks(report, inspection.anatomy);
  return inspection;
}

PacketReport verdictOf(const Inspection& inspection) {
  if (inspection.report.has_value()) {
    return *inspection.report;
  }
  const Field* faulty = inspection.anatomy.firstFaulty();
  PacketReport report;
  report.header = inspection.header;
  report.error = faulty == nullptr ? RadiusPktParserBase::ErrorMsg::success : faulty->fault->error;
  return report;
}

ExitCode exitCodeOf(const Inspection& inspection) {
  return exitCodeOf(verdictOf(inspection));
}

}  // namespace RadiusPacketTool
