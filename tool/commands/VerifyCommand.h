#pragma once

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/options/PacketOptions.h"

namespace RadiusPacketTool {

/// `radius-packet verify`: puts packets to all checks and prints a line for each.
class VerifyCommand final : public Command {
 public:
  explicit VerifyCommand(CLI::App& program);

  ExitCode run() override;

 private:
  PacketOptions packets_;
  bool json_ = false;
};

}  // namespace RadiusPacketTool
