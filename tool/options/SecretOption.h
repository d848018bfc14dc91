#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/input/Secret.h"

namespace RadiusPacketTool {

/// The ways to give a command its shared secret: `-s FILE`, `--secret TEXT` or the environment.
class SecretOption {
 public:
  /// Adds the options to `command`, which must outlive the object.
  explicit SecretOption(CLI::App& command);

  /// Whether the secret's file is standard input.
  bool readsStandardInput() const;

  /// Whether there is one, in any of the ways.
  bool isGiven() const;

  /// The secret, once the command line is parsed. Throws `ToolError` when none is given or its file
  /// cannot be read.
  Secret secret();

 private:
  Secret secretFromText();

  CLI::Option* fileOption_;
  CLI::Option* textOption_;
  std::string file_;
};

}  // namespace RadiusPacketTool
