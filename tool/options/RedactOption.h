#pragma once

#include <CLI/CLI.hpp>

namespace RadiusPacketTool {

/// `--redact` and `--show-secrets`: whether revealed passwords and keys are shown. They are, but on
/// a terminal, which others may look at and which keeps what it has shown.
class RedactOption {
 public:
  /// Adds the options to `command`, which must outlive the object.
  explicit RedactOption(CLI::App& command);

  /// Whether secrets are to be hidden.
  bool redacts() const;

 private:
  CLI::Option* redact_;
  CLI::Option* show_;
};

}  // namespace RadiusPacketTool
