#pragma once

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/options/PacketOptions.h"
#include "tool/options/RedactOption.h"

namespace RadiusPacketTool {

/// `radius-packet inspect`: takes packets apart, byte by byte, and goes on past faults.
class InspectCommand final : public Command {
 public:
  explicit InspectCommand(CLI::App& program);

  ExitCode run() override;

 private:
  PacketOptions packets_;
  RedactOption redact_;
  bool json_ = false;
};

}  // namespace RadiusPacketTool
