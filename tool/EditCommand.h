#pragma once

#include <CLI/CLI.hpp>

#include "tool/Change.h"
#include "tool/Command.h"
#include "tool/DictionaryOption.h"
#include "tool/PacketFilesOption.h"
#include "tool/PacketOutput.h"
#include "tool/RequestAuthenticatorOption.h"
#include "tool/SecretOption.h"

namespace RadiusPacketTool {

/// `radius-packet edit`: changes packets and signs them anew.
class EditCommand final : public Command {
 public:
  explicit EditCommand(CLI::App& program);

  ExitCode run() override;

 private:
  ChangeTexts changeTexts() const;

  SecretOption secret_;
  DictionaryOption dictionary_;
  RequestAuthenticatorOption requestAuthenticator_;
  PacketFilesOption files_;
  PacketOutput output_;
  CLI::Option* set_;
  CLI::Option* add_;
  CLI::Option* remove_;
};

}  // namespace RadiusPacketTool
