#pragma once

#include <CLI/CLI.hpp>

#include "tool/process/ExitCode.h"

namespace RadiusPacketTool {

/// Adds a word in front of commands of their own, such as `dictionary` in front of `check`.
/// @param examples  what stands at the end of its help
inline CLI::App& addCommandGroup(CLI::App& program, const char* name, const char* description,
                                 const char* examples) {
  CLI::App& group = *program.add_subcommand(name, description);
  group.footer(examples);
  group.require_subcommand(1);
  return group;
}

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
  /// @param parent  the program, or the group that the command belongs to
  Command(CLI::App& parent, const char* name, const char* description)
      : app_(*parent.add_subcommand(name, description)) {}

  CLI::App& app() { return app_; }

 private:
  CLI::App& app_;
};

}  // namespace RadiusPacketTool
