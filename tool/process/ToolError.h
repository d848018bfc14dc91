#pragma once

#include <stdexcept>
#include <string>

#include "tool/process/ExitCode.h"

namespace RadiusPacketTool {

/// Ends a command: `what()` is said on standard error, and the process ends with `exitCode()`.
class ToolError : public std::runtime_error {
 public:
  ToolError(ExitCode exitCode, const std::string& message)
      : std::runtime_error(message), exitCode_(exitCode) {}

  ExitCode exitCode() const { return exitCode_; }

 private:
  ExitCode exitCode_;
};

}  // namespace RadiusPacketTool
