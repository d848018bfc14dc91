#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "tool/input/PacketStream.h"
#include "tool/options/SecretsOption.h"

namespace RadiusPacketTool {

/// `-f FORMAT`, `--port N` and `FILE...`: the packets that a command reads.
class PacketFilesOption {
 public:
  /// Adds the option and the arguments to `command`, which must outlive the object.
  explicit PacketFilesOption(CLI::App& command);

  /// Throws `ToolError` when both the secret and packets would come from standard input.
  void checkStandardInput(const SecretsOption& secret) const;

  /// Opens the files. Throws as `PacketStream`.
  PacketStream open() const;

 private:
  UdpPorts ports() const;

  std::string format_ = "auto";
  std::vector<std::string> portTexts_;
  std::vector<std::string> files_;
};

}  // namespace RadiusPacketTool
