#include "tool/checks/PacketVerifier.h"

#include <array>
#include <cstddef>
#include <utility>

#include "tool/checks/AttributeChecks.h"
#include "tool/checks/CheckedPacket.h"
#include "tool/checks/DigestChecks.h"
#include "tool/checks/SaltChecks.h"
#include "tool/checks/StructureCheck.h"

namespace RadiusPacketTool {
namespace {

/// The checks behind that of the structure.
constexpr auto laterChecks = std::to_array<const char*>(
    {authenticatorCheck, presentCheck, firstCheck, uniqueCheck, validCheck, uniqueSaltsCheck,
     saltBitCheck, allowedCheck, requiredCheck});

std::vector<CheckResult> resultsWithoutHeader(const PacketReport& structure, std::size_t size) {
  std::vector<CheckResult> results{headerFault(structure, size)};
  for (const char* const check : laterChecks) {
    results.push_back({.check = check,
                       .verdict = Verdict::cannotTell,
                       .reason = "the header is not in order",
                       .place = std::nullopt});
  }
  return results;
}

void append(std::vector<CheckResult>& results, std::vector<CheckResult> more) {
  results.insert(results.end(), std::make_move_iterator(more.begin()),
                 std::make_move_iterator(more.end()));
}

}  // namespace

PacketVerifier::PacketVerifier(const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary)
    : dictionary_(dictionary), names_(dictionary), decoder_(dictionary) {}

std::vector<CheckResult> PacketVerifier::verify(const InputPacket& packet,
                                                const PacketContext& context) const {
  const PacketReport structure = structureReport(decoder_, packet.bytes, context);
  if (!hasGoodHeader(structure)) {
    return resultsWithoutHeader(structure, packet.bytes.size());
  }
  const ByteView bytes = ByteView(packet.bytes).first(*context.header.length);
  const CheckedPacket checked{.bytes = bytes,
                              .attributes = attributePlaces(bytes),
                              .context = context,
                              .structure = structure};
  std::vector<CheckResult> results{structureResult(checked), authenticatorResult(checked),
                                   presentResult(checked),   firstResult(checked),
                                   uniqueResult(checked),    validResult(checked)};
  append(results, uniqueSaltsResults(checked, names_));
  append(results, saltBitResults(checked, names_));
  append(results, allowedResults(checked, *dictionary_));
  append(results, requiredResults(checked, *dictionary_));
  return results;
}

}  // namespace RadiusPacketTool
