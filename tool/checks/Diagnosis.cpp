#include "tool/checks/Diagnosis.h"

#include "tool/checks/FailingPacket.h"
#include "tool/checks/Hypothesis.h"

namespace RadiusPacketTool {

std::vector<NamedSecret> namedSecrets(const Secrets& secrets) {
  std::vector<NamedSecret> named;
  for (const KnownSecret& known : secrets.all()) {
    if (known.clients.has_value()) {
      named.push_back(
          {.client = std::string(known.clients->text().view()), .secret = known.secret});
    }
  }
  return named;
}

Diagnosis diagnose(const InputPacket& packet, const PacketContext& context,
                   std::span<const NamedSecret> secrets, const EarlierRequests& requests) {
  Diagnosis diagnosis;
  const std::optional<FailingPacket> failing =
      FailingPacket::of(packet, context, secrets, requests);
  if (!failing.has_value()) {
    return diagnosis;
  }
  for (const std::span<const Hypothesis> hypotheses :
       {secretHypotheses(), requestHypotheses(), computationHypotheses(), layoutHypotheses()}) {
    for (const Hypothesis& hypothesis : hypotheses) {
      if (!hypothesis.applies(*failing)) {
        continue;
      }
      diagnosis.finding = hypothesis.finding(*failing);
      if (diagnosis.finding.has_value()) {
        return diagnosis;
      }
      diagnosis.ruledOut.emplace_back(hypothesis.name);
    }
  }
  return diagnosis;
}

}  // namespace RadiusPacketTool
