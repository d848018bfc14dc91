#include "tool/process/StandardStreams.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include "Verda/Escape.h"

#include "tool/process/ToolError.h"

namespace RadiusPacketTool {
namespace {

[[noreturn]] void outputFailed() {
  throw ToolError(ExitCode::outputFailed,
                  "cannot write to standard output: " + std::generic_category().message(errno));
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

void complain(std::string_view message) {
  std::string line = "radius-packet: ";
  Verda::escapeTo(line, message);
  line += '\n';
  writeErrors(line);
}

void writeErrors(std::string_view text) {
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

}  // namespace RadiusPacketTool
