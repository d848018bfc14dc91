#pragma once

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/options/PacketOptions.h"

namespace RadiusPacketTool {

/// `radius-packet explain`: says of each refused packet which bytes are to blame, and why.
class ExplainCommand final : public Command {
 public:
  explicit ExplainCommand(CLI::App& program);

  ExitCode run() override;

 private:
  PacketOptions packets_;
  bool json_ = false;
};

}  // namespace RadiusPacketTool
