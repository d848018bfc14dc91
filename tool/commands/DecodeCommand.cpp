#include "tool/commands/DecodeCommand.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "tool/commands/PacketRun.h"
#include "tool/decoding/Exchanges.h"
#include "tool/decoding/LegacyDecoder.h"
#include "tool/decoding/PacketDecoder.h"
#include "tool/output/JsonOutput.h"
#include "tool/output/Refusal.h"
#include "tool/output/TextOutput.h"
#include "tool/process/StandardStreams.h"

namespace RadiusPacketTool {
namespace {

constexpr const char* decodeFooter =
    R"(Hex text: any spacing, `:` and `0x` accepted, `#` begins a comment, a blank line separates
packets. Dump: hex dumps with offsets, as xxd, hexdump -C, tcpdump -x and Wireshark write them. C:
arrays and \x strings. Base64. Binary: one packet per FILE. Capture: pcap or pcapng. With -f auto, a
FILE is a capture by its first bytes, else the first of the others that fits. Without FILE, and for
the FILE `-`, standard input is read.

Captures: of the datagrams from and to the ports of --port, responses are paired with requests by
addresses, ports and Identifier. A summary stands at the end.

A line of the FILE of --secrets: address or prefix of the client, white space, its secret, in quotes
where it has white space itself; # begins a comment. The longest prefix counts.

Requests (codes 1, 4, 12, 40, 43) are decoded without a Request Authenticator, even if one is given.
Every other packet needs that of the request which it answers: the one of -a, else that of the nearest
request in front of it that has its Identifier and that its code can answer.

With --legacy, the packet is checked and read through the library's legacy interface: of a refused
packet no attributes are shown, addresses are not shortened, and what the interface does not read is
shown as its bytes, with a warning. A Length field that says more than there is, is warned of, and
zeros are read.

With --json, text values are escaped as in the text form (\n, \xNN, \", \\) and bytes are hex digits
without 0x; `hex` is the value as on the wire, still hidden.

Examples:
  radius-packet decode -s secret.txt request.hex answer.hex   an exchange
  radius-packet decode --secrets clients.txt radius.pcapng    clients with secrets of their own
  tcpdump -i eth0 -U -w - udp port 1812 | radius-packet decode -s secret.txt

Exit status: 0 all packets are good; 1 a check of authenticity failed or could not be made; 2 a packet
is refused for another fault; 3 the dictionary does not load; 64 wrong usage; 66 unreadable input; 74
standard output cannot be written.)";

/// Prints reports one behind the other.
class ReportPrinter {
 public:
  ReportPrinter(bool json, const OutputOptions& options) : json_(json), options_(options) {}

  void print(const PacketReport& report) {
    if (json_) {
      writeOutput(jsonOf(report, options_));
    } else {
      if (!isFirst_) {
        writeOutput("\n");
      }
      writeOutput(textOf(report, options_));
    }
    isFirst_ = false;
    exitCode_ = std::max(exitCode_, exitCodeOf(report));
  }

  ExitCode exitCode() const { return exitCode_; }

 private:
  bool json_;
  OutputOptions options_;
  bool isFirst_ = true;
  ExitCode exitCode_ = ExitCode::success;
};

std::unique_ptr<Decoder> newDecoder(
    bool isLegacy, const Verda::Ptr<const RadiusPacketParser::RadiusDict>& dictionary) {
  if (isLegacy) {
    return std::make_unique<LegacyDecoder>(dictionary);
  }
  return std::make_unique<PacketDecoder>(dictionary);
}

}  // namespace

DecodeCommand::DecodeCommand(CLI::App& program)
    : Command(program, "decode", "Decodes received packets and prints what they hold"),
      packets_(app()),
      redact_(app()) {
  app().add_flag("--legacy", legacy_, "Decode through the legacy interface");
  app().add_flag("--json", json_, "Print one JSON object per packet and line");
  app().add_flag("--status-server", outputOptions_.statusServer,
                 "Add the verdict of the Status-Server rules on packets of code 12");
  app().footer(decodeFooter);
}

/// Where a capture was read, a summary is printed at the end, and where it cannot be read on.
ExitCode DecodeCommand::run() {
  outputOptions_.redact = redact_.redacts();
  OpenedInput input(packets_);
  const std::unique_ptr<Decoder> decoder = newDecoder(legacy_, input.dictionary());
  ReportPrinter printer(json_, outputOptions_);
  visitPackets(input, json_, [&](const InputPacket& packet, const PacketContext& context, auto&) {
    PacketReport report = reportOf(*decoder, packet, context);
    printer.print(report);
    complainIfRefused(packet, report);
    complainOfWarnings(report);
    return report;
  });
  return printer.exitCode();
}

}  // namespace RadiusPacketTool
