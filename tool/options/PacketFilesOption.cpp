#include "tool/options/PacketFilesOption.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>

#include "tool/input/InputFormat.h"
#include "tool/input/PacketInput.h"
#include "tool/process/ToolError.h"
#include "tool/text/DecimalText.h"

namespace RadiusPacketTool {

using Verda::U16;
using Verda::U32;

namespace {

/// The format of that name, or null.
const InputFormat* formatFind(std::string_view name) {
  const auto found =
      std::ranges::find(inputFormats, name, &decltype(inputFormats)::value_type::first);
  return found == inputFormats.end() ? nullptr : &found->second;
}

/// What is wrong with a format's name, without the name: it may be a secret that went astray.
std::string formatFault(const std::string& name) {
  return formatFind(name) != nullptr
             ? ""
             : "the formats are auto, hex, dump, c, base64, binary and capture";
}

std::optional<U16> portOf(const std::string& text) {
  const std::optional<U32> port = decimalOf(text, std::numeric_limits<U16>::max());
  return port.has_value() && *port > 0 ? std::optional(static_cast<U16>(*port)) : std::nullopt;
}

std::string portFault(const std::string& text) {
  return portOf(text).has_value() ? "" : "a port is a number from 1 to 65535";
}

}  // namespace

PacketFilesOption::PacketFilesOption(CLI::App& command) {
  command.add_option("-f", format_, "Format of the input; auto by default")
      ->type_name("FORMAT")
      ->check(formatFault, "{auto,hex,dump,c,base64,binary,capture}");
  command
      .add_option("--port", portTexts_,
                  "UDP port of the packets in captures; may be given several times, and replaces "
                  "1812, 1813, 1645, 1646 and 3799")
      ->type_name("N")
      ->type_size(1)
      ->expected(-1)
      ->allow_extra_args(false)
      ->take_all()
      ->check(portFault, "");
  command.add_option("FILE", files_, "Files to read")->type_name("");
}

void PacketFilesOption::checkStandardInput(const SecretsOption& secret) const {
  if (secret.readsStandardInput() && readsStandardInput(files_)) {
    throw ToolError(ExitCode::usage,
                    "standard input (-) cannot give both the secret and the packets");
  }
}

UdpPorts PacketFilesOption::ports() const {
  if (portTexts_.empty()) {
    return radiusPorts();
  }
  UdpPorts ports;
  for (const std::string& text : portTexts_) {
    ports.push_back(*portOf(text));
  }
  return ports;
}

PacketStream PacketFilesOption::open() const {
  return {files_, *formatFind(format_), ports()};
}

}  // namespace RadiusPacketTool
