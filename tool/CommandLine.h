#pragma once

#include <span>
#include <string>
#include <vector>

#include "tool/process/ExitCode.h"

namespace RadiusPacketTool {

/// Parses the arguments behind the program's name and runs the command that they ask for. Every
/// failure is said on standard error and becomes an exit code; nothing is thrown.
ExitCode runCommandLine(std::span<const char* const> arguments);

}  // namespace RadiusPacketTool
