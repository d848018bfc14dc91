#include <cstddef>
#include <span>

#include "tool/CommandLine.h"

int main(int argc, char** argv) {
  const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
  return static_cast<int>(
      RadiusPacketTool::runCommandLine(arguments.subspan(arguments.empty() ? 0 : 1)));
}
