#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/options/DictionaryOption.h"

namespace RadiusPacketTool {

/// `radius-packet dictionary show`: looks up an attribute or a vendor by name or number.
class DictionaryShowCommand final : public Command {
 public:
  explicit DictionaryShowCommand(CLI::App& dictionaryCommands);

  ExitCode run() override;

 private:
  DictionaryOption dictionary_;
  std::string word_;
  bool json_ = false;
};

}  // namespace RadiusPacketTool
