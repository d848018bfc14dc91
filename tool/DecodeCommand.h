#pragma once

#include <CLI/CLI.hpp>

#include "tool/Command.h"
#include "tool/DictionaryOption.h"
#include "tool/OutputOptions.h"
#include "tool/PacketFilesOption.h"
#include "tool/RequestAuthenticatorOption.h"
#include "tool/SecretOption.h"

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
