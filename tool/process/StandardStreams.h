#pragma once

#include <string_view>

namespace RadiusPacketTool {

/// Writes to standard output. Throws `ToolError` when that fails.
void writeOutput(std::string_view text);

/// Makes sure that all of standard output is written. Throws `ToolError` when it is not.
void flushOutput();

/// Says one line on standard error behind the program's name, with control bytes escaped.
void complain(std::string_view message);

/// Writes to standard error as it is. That this fails cannot be told to anybody.
void writeErrors(std::string_view text);

/// Shows a line on standard error, which must be a terminal, in the same form. The next one takes
/// its place, and so does a complaint.
void showStatus(std::string_view message);

/// Clears the line away, when there is one.
void clearStatus();

}  // namespace RadiusPacketTool
