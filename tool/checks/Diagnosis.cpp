#include "tool/checks/Diagnosis.h"

#include "tool/checks/FailingPacket.h"
#include "tool/checks/Hypothesis.h"

namespace RadiusPacketTool {

namespace {

/// A prefix as an operator writes it: of one address, without its length.
std::string clientsText(const Zonet::IpGenPrefix& clients) {
  const bool isOneAddress = clients == Zonet::IpGenPrefix(clients.address());
  return std::string(isOneAddress ? clients.address().text().view() : clients.text().view());
}

}  // namespace

std::vector<NamedSecret> namedSecrets(const Secrets& secrets) {
  std::vector<NamedSecret> named;
  for (const KnownSecret& known : secrets.all()) {
    if (known.clients.has_value()) {
      named.push_back({.client = clientsText(*known.clients), .secret = known.secret});
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
