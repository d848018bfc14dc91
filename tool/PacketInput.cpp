#include "tool/PacketInput.h"

#include <algorithm>

#include <fmt/format.h>

#include "tool/FileBytes.h"
#include "tool/HexInput.h"
#include "tool/ToolError.h"

namespace RadiusPacketTool {
namespace {

PacketSource readSource(const std::string& name) {
  const std::string text = readFile(name);
  try {
    return {name, parseHex(text)};
  } catch (const BadHex& fault) {
    throw ToolError(ExitCode::noInput,
                    fmt::format("{}: line {}: {}", name, fault.line(), fault.what()));
  }
}

}  // namespace

bool readsStandardInput(const std::vector<std::string>& files) {
  return files.empty() || std::ranges::find(files, standardInputName) != files.end();
}

std::vector<PacketSource> readPackets(const std::vector<std::string>& files) {
  if (std::ranges::count(files, standardInputName) > 1) {
    throw ToolError(ExitCode::usage, "standard input (-) can be read only once");
  }
  std::vector<PacketSource> sources;
  if (files.empty()) {
    sources.push_back(readSource(standardInputName));
  }
  for (const std::string& file : files) {
    sources.push_back(readSource(file));
  }
  if (std::ranges::all_of(sources, [](const PacketSource& s) { return s.packets.empty(); })) {
    throw ToolError(ExitCode::noInput, "no packets in the input");
  }
  return sources;
}

}  // namespace RadiusPacketTool
