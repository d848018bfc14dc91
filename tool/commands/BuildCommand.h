#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/input/InputFile.h"
#include "tool/making/PacketMaker.h"
#include "tool/options/DictionaryOption.h"
#include "tool/options/PacketOutput.h"
#include "tool/options/RequestAuthenticatorOption.h"
#include "tool/options/SecretOption.h"

namespace RadiusPacketTool {

/// `radius-packet build`: makes packets of the text that `decode` prints.
class BuildCommand final : public Command {
 public:
  explicit BuildCommand(CLI::App& program);

  ExitCode run() override;

 private:
  void checkStandardInput() const;
  HeaderChoice headerChoice() const;

  SecretOption secret_;
  DictionaryOption dictionary_;
  RequestAuthenticatorOption requestAuthenticator_;
  PacketOutput output_;
  std::string code_;
  std::string id_;
  std::string file_ = standardInputName;
};

}  // namespace RadiusPacketTool
