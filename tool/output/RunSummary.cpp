#include "tool/output/RunSummary.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "tool/text/JsonLine.h"

namespace RadiusPacketTool {

using Json = nlohmann::ordered_json;

namespace {

/// Why a packet is refused, in a word: the fault's name, or what is missing for a verdict.
std::string refusalName(const PacketReport& report) {
  if (report.error.has_value()) {
    return std::string(stringValue(*report.error).view());
  }
  switch (report.missing) {
    case Missing::requestAuthenticator:
      return "noRequestAuthenticator";
    case Missing::secret:
      return "noSharedSecret";
    case Missing::bytes:
      return "cutShort";
    case Missing::nothing:
      break;
  }
  return "unknown";
}

}  // namespace

void RunSummary::take(const PacketReport& report) {
  ++packets_;
  if (!isAccepted(report)) {
    ++refused_[refusalName(report)];
  }
}

std::string RunSummary::text(const ExchangeCounts& exchanges, const CaptureCounts& frames) const {
  std::string text = fmt::format(
      "# packets: {}\n"
      "# exchanges: {} answered, {} unanswered\n"
      "# retransmissions: {}\n"
      "# refused: {}\n",
      packets_, exchanges.answered, exchanges.requests - exchanges.answered,
      exchanges.retransmissions, refusedCount());
  for (const auto& [name, count] : refused_) {
    text += fmt::format("#   {}: {}\n", name, count);
  }
  return text + fmt::format(
                    "# frames without a packet: {}\n"
                    "# frames cut short: {}\n"
                    "# datagrams with fragments that are missing or overlap: {}\n",
                    frames.skipped, frames.cut, frames.incomplete);
}

std::string RunSummary::json(const ExchangeCounts& exchanges, const CaptureCounts& frames) const {
  Json refused = Json::object();
  for (const auto& [name, count] : refused_) {
    refused[name] = count;
  }
  return jsonLine({{"schema", jsonSchema},
                   {"kind", "summary"},
                   {"packets", packets_},
                   {"answered", exchanges.answered},
                   {"unanswered", exchanges.requests - exchanges.answered},
                   {"retransmissions", exchanges.retransmissions},
                   {"refused", refused},
                   {"skippedFrames", frames.skipped},
                   {"cutFrames", frames.cut},
                   {"incompleteDatagrams", frames.incomplete}});
}

std::size_t RunSummary::refusedCount() const {
  std::size_t sum = 0;
  for (const auto& [name, count] : refused_) {
    sum += count;
  }
  return sum;
}

}  // namespace RadiusPacketTool
