#include "tool/options/RequestAuthenticatorOption.h"

#include <span>

#include <fmt/format.h>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "tool/input/HexInput.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using RadiusPacketParser::PacketConstants;

RequestAuthenticatorOption::RequestAuthenticatorOption(CLI::App& command)
    : option_(command
                  .add_option("-a", text_,
                              "Authenticator of the request that the packets answer: 16 bytes")
                  ->type_name("HEX")) {}

Verda::Bytes RequestAuthenticatorOption::authenticator() const {
  if (option_->count() == 0) {
    return {};
  }
  try {
    const auto parsed = parseHex(text_);
    if (parsed.size() == 1 && parsed.front().size() == PacketConstants::authLength()) {
      return {std::span<const Verda::U8>(parsed.front())};
    }
  } catch (const BadHex&) {
    // What is no hex is as wrong as hex of another length.
  }
  throw ToolError(ExitCode::usage,
                  fmt::format("-a takes {} bytes in hex: the Request Authenticator",
                              PacketConstants::authLength()));
}

}  // namespace RadiusPacketTool
