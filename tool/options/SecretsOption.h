#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "tool/input/Secrets.h"
#include "tool/options/SecretOption.h"

namespace RadiusPacketTool {

/// The secrets of a command that reads packets: one for all of them, and `--secrets FILE` with one
/// for each client.
class SecretsOption {
 public:
  /// Adds the options to `command`, which must outlive the object.
  explicit SecretsOption(CLI::App& command);

  /// Whether any is given.
  bool isGiven() const;

  /// Whether a file of secrets is standard input.
  bool readsStandardInput() const;

  /// The secrets, once the command line is parsed. Throws `ToolError` when none is given or a file
  /// cannot be read.
  Secrets secrets();

 private:
  SecretOption forAll_;
  CLI::Option* option_;
  std::string file_;
};

}  // namespace RadiusPacketTool
