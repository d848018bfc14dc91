#include "tool/commands/ExplainCommand.h"

#include <algorithm>
#include <optional>

#include "tool/anatomy/Explanation.h"
#include "tool/checks/Diagnosis.h"
#include "tool/commands/PacketRun.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/output/Refusal.h"
#include "tool/process/StandardStreams.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* explainFooter =
    "For each packet that is refused: why, its bytes with carets under those to blame, where they\n"
    "are, what was found, what was expected, and the section of the RFC that says so. A packet "
    "that\n"
    "is accepted gets one line. No hidden value is revealed.\n"
    "\n"
    "Packets are read, paired and judged as by decode.\n"
    "\n"
    "Examples:\n"
    "  radius-packet explain -s secret.txt packet.bin              why decode refuses it\n"
    "  radius-packet explain -s secret.txt request.hex answer.hex  an exchange\n"
    "  radius-packet explain -s secret.txt -a HEX answer.bin       an answer alone\n"
    "  radius-packet explain -s secret.txt --json x.hex | jq -r '.fault.section'\n"
    "\n"
    "Exit status: that of decode. 0 all packets are good; 1 a check of authenticity failed or "
    "could\n"
    "not be made; 2 a packet is refused for another fault; 3 the dictionary does not load; 64 "
    "wrong\n"
    "usage; 66 unreadable input; 74 standard output cannot be written.";

/// Prints explanations one behind the other, with blank lines around the long ones.
class ExplanationPrinter {
 public:
  explicit ExplanationPrinter(bool json) : json_(json) {}

  void print(const Explanation& explanation) {
    if (json_) {
      writeOutput(jsonOf(explanation));
      return;
    }
    const bool isLong = !isAccepted(explanation.report);
    if (!isFirst_ && (isLong || wasLong_)) {
      writeOutput("\n");
    }
    writeOutput(textOf(explanation));
    isFirst_ = false;
    wasLong_ = isLong;
  }

 private:
  bool json_;
  bool isFirst_ = true;
  bool wasLong_ = false;
};

}  // namespace

ExplainCommand::ExplainCommand(CLI::App& program)
    : Command(program, "explain", "Says why packets are refused, and which bytes are to blame"),
      packets_(app()) {
  app().add_flag("--json", json_, "Print one JSON object per packet and line");
  app().footer(explainFooter);
}

ExitCode ExplainCommand::run() {
  OpenedInput input(packets_);
  const PacketDecoder decoder(input.dictionary());
  ExplanationPrinter printer(json_);
  ExitCode exitCode = ExitCode::success;
  const auto explain = [&](const InputPacket& packet, const PacketContext& context,
                           const Exchanges& exchanges) {
    Explanation explanation = explained(packet, context, input.dictionary(), decoder);
    if (hasWrongDigest(explanation.report)) {
      explanation.diagnosis =
          diagnose(packet, context, namedSecrets(input.secrets()), exchanges.requests());
    }
    printer.print(explanation);
    complainIfTakenAsBinary(packet, explanation.report.error);
    exitCode = std::max(exitCode, exitCodeOf(explanation.report));
    return explanation.report;
  };
  visitPackets(input, json_, explain);
  return exitCode;
}

}  // namespace RadiusPacketTool
