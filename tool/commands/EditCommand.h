#pragma once

#include <CLI/CLI.hpp>

#include "tool/commands/Command.h"
#include "tool/making/Change.h"
#include "tool/options/PacketOptions.h"
#include "tool/options/PacketOutput.h"

namespace RadiusPacketTool {

/// `radius-packet edit`: changes packets and signs them anew.
class EditCommand final : public Command {
 public:
  explicit EditCommand(CLI::App& program);

  ExitCode run() override;

 private:
  ChangeTexts changeTexts() const;

  PacketOptions packets_;
  PacketOutput output_;
  CLI::Option* set_;
  CLI::Option* add_;
  CLI::Option* remove_;
};

}  // namespace RadiusPacketTool
