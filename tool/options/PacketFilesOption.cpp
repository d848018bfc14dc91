#include "tool/options/PacketFilesOption.h"

#include <algorithm>
#include <string_view>

#include "tool/input/InputFormat.h"
#include "tool/input/PacketInput.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

/// The format of that name, or null.
const InputFormat* formatFind(std::string_view name) {
  const auto found =
      std::ranges::find(inputFormats, name, &decltype(inputFormats)::value_type::first);
  return found == inputFormats.end() ? nullptr : &found->second;
}

/// What is wrong with a format's name, without the name: it may be a secret that went astray.
std::string formatFault(const std::string& name) {
  return formatFind(name) != nullptr ? "" : "the formats are auto, hex, binary and capture";
}

}  // namespace

PacketFilesOption::PacketFilesOption(CLI::App& command) {
  command.add_option("-f", format_, "Format of the input; auto by default")
      ->type_name("FORMAT")
      ->check(formatFault, "{auto,hex,binary,capture}");
  command.add_option("FILE", files_, "Files to read")->type_name("");
}

void PacketFilesOption::checkStandardInput(const SecretOption& secret) const {
  if (secret.readsStandardInput() && readsStandardInput(files_)) {
    throw ToolError(ExitCode::usage,
                    "standard input (-) cannot give both the secret and the packets");
  }
}

PacketStream PacketFilesOption::open() const {
  return {files_, *formatFind(format_)};
}

}  // namespace RadiusPacketTool
