#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"

namespace RadiusPacketTool {

/// `radius-packet dictionary check`: says all that is wrong with a dictionary, and what it
/// holds.
class DictionaryCheckCommand final : public Command {
 public:
  explicit DictionaryCheckCommand(CLI::App& dictionaryCommands);

  ExitCode run() override;

 private:
  std::string path_;
  bool json_ = false;
};

}  // namespace RadiusPacketTool
