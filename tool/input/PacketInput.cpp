#include "tool/input/PacketInput.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include <fmt/format.h>

#include "tool/input/InputFile.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

PacketSource readSource(const std::string& name, InputFormat format) {
  constexpr std::size_t pieceSize = 65536;
  std::vector<U8> buffer(pieceSize);
  SourceReader reader(format);
  const InputFile file(name);
  while (reader.wantsMore()) {
    const std::size_t count = file.read(buffer);
    if (count == 0) {
      break;
    }
    reader.take(std::span(buffer).first(count));
  }
  try {
    return reader.finish(name);
  } catch (const BadHex& fault) {
    throw ToolError(ExitCode::noInput,
                    fmt::format("{}: line {}: {}", name, fault.line(), fault.what()));
  }
}

}  // namespace

bool readsStandardInput(const std::vector<std::string>& files) {
  return files.empty() || std::ranges::find(files, standardInputName) != files.end();
}

std::vector<PacketSource> readPackets(const std::vector<std::string>& files, InputFormat format) {
  if (std::ranges::count(files, standardInputName) > 1) {
    throw ToolError(ExitCode::usage, "standard input (-) can be read only once");
  }
  std::vector<PacketSource> sources;
  if (files.empty()) {
    sources.push_back(readSource(standardInputName, format));
  }
  for (const std::string& file : files) {
    sources.push_back(readSource(file, format));
  }
  if (std::ranges::all_of(sources, [](const PacketSource& s) { return s.packets.empty(); })) {
    throw ToolError(ExitCode::noInput, "no packets in the input");
  }
  return sources;
}

}  // namespace RadiusPacketTool
