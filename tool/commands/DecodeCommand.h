#pragma once

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/options/DictionaryOption.h"
#include "tool/options/PacketFilesOption.h"
#include "tool/options/RequestAuthenticatorOption.h"
#include "tool/options/SecretOption.h"
#include "tool/output/OutputOptions.h"

namespace RadiusPacketTool {

/// `radius-packet decode`: decodes received packets and prints what they hold.
class DecodeCommand final : public Command {
 public:
  explicit DecodeCommand(CLI::App& program);

  ExitCode run() override;

 private:
  SecretOption secret_;
  DictionaryOption dictionary_;
  RequestAuthenticatorOption requestAuthenticator_;
  PacketFilesOption files_;
  bool legacy_ = false;
  bool json_ = false;
  OutputOptions outputOptions_;
};

}  // namespace RadiusPacketTool
