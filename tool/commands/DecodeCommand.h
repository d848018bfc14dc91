#pragma once

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/options/PacketOptions.h"
#include "tool/options/RedactOption.h"
#include "tool/output/OutputOptions.h"

namespace RadiusPacketTool {

/// `radius-packet decode`: decodes received packets and prints what they hold.
class DecodeCommand final : public Command {
 public:
  explicit DecodeCommand(CLI::App& program);

  ExitCode run() override;

 private:
  PacketOptions packets_;
  RedactOption redact_;
  bool legacy_ = false;
  bool json_ = false;
  OutputOptions outputOptions_;
};

}  // namespace RadiusPacketTool
