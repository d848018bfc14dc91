#include "tool/process/StandardStreams.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

#include "Verda/Escape.h"

#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

[[noreturn]] void outputFailed() {
  throw ToolError(ExitCode::outputFailed,
                  "cannot write to standard output: " + std::generic_category().message(errno));
}

/// Back to the line's start, and clear what stands behind it.
const std::string clearLine = "\r\x1b[K";

bool statusIsShown = false;

std::string lineOf(std::string_view message) {
  std::string line = "radius-packet: ";
  Verda::escapeTo(line, message);
  return line;
}

}  // namespace

void writeOutput(std::string_view text) {
  // An empty view may have no place, which is no argument for the stream.
  if (!text.empty() && std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
    outputFailed();
  }
}

void flushOutput() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    outputFailed();
  }
}

void writeErrors(std::string_view text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

void complain(std::string_view message) {
  clearStatus();
  writeErrors(lineOf(message) + '\n');
}

void showStatus(std::string_view message) {
  writeErrors(clearLine + lineOf(message));
  statusIsShown = true;
}

void clearStatus() {
  if (std::exchange(statusIsShown, false)) {
    writeErrors(clearLine);
  }
}

}  // namespace RadiusPacketTool
