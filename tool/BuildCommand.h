#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/Command.h"
#include "tool/DictionaryOption.h"
#include "tool/InputFile.h"
#include "tool/PacketMaker.h"
#include "tool/PacketOutput.h"
#include "tool/RequestAuthenticatorOption.h"
#include "tool/SecretOption.h"

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
