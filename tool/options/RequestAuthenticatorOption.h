#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "Verda/Bytes.h"

namespace RadiusPacketTool {

/// `-a HEX`: the authenticator of the request that a command's responses answer.
class RequestAuthenticatorOption {
 public:
  /// Adds the option to `command`, which must outlive the object.
  explicit RequestAuthenticatorOption(CLI::App& command);

  /// The 16 bytes; empty when none are given. Throws `ToolError` for anything but one authenticator
  /// in hex.
  Verda::Bytes authenticator() const;

 private:
  std::string text_;
  CLI::Option* option_;
};

}  // namespace RadiusPacketTool
