#pragma once

#include <CLI/CLI.hpp>

#include "tool/ExitCode.h"

namespace RadiusPacketTool {

/// One command of the program. Making one adds it, with its options, to the command line.
class Command {
 public:
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  virtual ~Command() = default;

  /// Whether the command line asks for this command.
  bool isAskedFor() const { return app_.parsed(); }

  /// Does what the parsed command line asks for. Throws `ToolError` when it cannot.
  virtual ExitCode run() = 0;

 protected:
  Command(CLI::App& program, const char* name, const char* description)
      : app_(*program.add_subcommand(name, description)) {}

  CLI::App& app() { return app_; }

 private:
  CLI::App& app_;
};

}  // namespace RadiusPacketTool
