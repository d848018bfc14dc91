#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/options/DictionaryOption.h"

namespace RadiusPacketTool {

/// `radius-packet dictionary list`: all attributes of a dictionary, or those of a vendor.
class DictionaryListCommand final : public Command {
 public:
  explicit DictionaryListCommand(CLI::App& dictionaryCommands);

  ExitCode run() override;

 private:
  DictionaryOption dictionary_;
  CLI::Option* vendorOption_;
  std::string vendor_;
  bool json_ = false;
};

}  // namespace RadiusPacketTool
