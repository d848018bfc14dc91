#include "tool/anatomy/Explanation.h"

#include <algorithm>
#include <string_view>

#include "tool/anatomy/CheckFaults.h"
#include "tool/anatomy/PacketAnatomy.h"
#include "tool/anatomy/Revealing.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusDict;
using RadiusPktParserBase::ErrorMsg;
using Verda::Ptr;

namespace {

/// The field at `index`, with what is wrong with it.
std::optional<Field> blamed(const Anatomy& anatomy, const std::optional<std::size_t>& index,
                            const FieldFault& fault) {
  if (!index.has_value()) {
    return std::nullopt;
  }
  Field field = anatomy.fields[*index];
  field.fault = fault;
  return field;
}

/// The first fault of the structure, when it is the one that the packet is refused for.
std::optional<Field> structuralCulprit(const Anatomy& anatomy, ErrorMsg error) {
  const Field* first = anatomy.firstFaulty();
  return first != nullptr && first->fault->error == error ? std::optional(*first) : std::nullopt;
}

/// Whether the packet is refused for having two of them, which needs no secret to see.
bool isForSecondMessageAuthenticator(const PacketReport& report) {
  return report.error == ErrorMsg::invalidMsgAuth &&
         report.reason == "Message authenticator present more than once";
}

std::optional<Field> culpritOf(const PacketReport& report, const Anatomy& anatomy) {
  if (isAccepted(report)) {
    return std::nullopt;
  }
  if (!report.error.has_value()) {
    return report.reason == noRequestAuthenticator
               ? blamed(anatomy, anatomy.authenticator, missingRequestFault())
               : std::nullopt;
  }
  if (report.error == ErrorMsg::invalidPktAuth) {
    return blamed(anatomy, anatomy.authenticator, wrongAuthenticatorFault(report.header));
  }
  if (report.error == ErrorMsg::invalidMsgAuth && !isForSecondMessageAuthenticator(report)) {
    return blamed(anatomy, anatomy.messageAuthenticator,
                  wrongMessageAuthenticatorFault(report.header));
  }
  return structuralCulprit(anatomy, *report.error);
}

}  // namespace

bool hasWrongDigest(const PacketReport& report) {
  return report.error == ErrorMsg::invalidPktAuth ||
         (report.error == ErrorMsg::invalidMsgAuth && !isForSecondMessageAuthenticator(report));
}

Explanation explained(const InputPacket& packet, const PacketContext& context,
                      const Ptr<const RadiusDict>& dictionary, const Decoder& decoder) {
  Explanation explanation;
  explanation.report = reportOf(decoder, packet, context);
  explanation.packet = packet.bytes;
  if (isAccepted(explanation.report)) {
    return explanation;
  }
  const Anatomy anatomy =
      anatomyOf(packet.bytes, dictionary, revealingOf(explanation.report, context));
  explanation.culprit = culpritOf(explanation.report, anatomy);
  for (const std::size_t index : anatomy.faulty) {
    const Field& field = anatomy.fields[index];
    if (!explanation.culprit.has_value() || field.path != explanation.culprit->path) {
      explanation.others.push_back(field);
    }
  }
  return explanation;
}

}  // namespace RadiusPacketTool
