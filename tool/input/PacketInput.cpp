#include "tool/input/PacketInput.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

#include <fmt/format.h>

#include "tool/input/InputFile.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

PacketSource readSource(const std::string& name, PeekedFile& file, InputFormat format) {
  constexpr std::size_t pieceSize = 65536;
  std::vector<U8> buffer(pieceSize);
  SourceReader reader(format);
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

OpenedSource openSource(const std::string& name, InputFormat format) {
  auto file = std::make_unique<PeekedFile>(name);
  if (format == InputFormat::capture ||
      (format == InputFormat::automatic && isCapture(file->start()))) {
    return {.source = {.name = name, .packets = {}, .whyBinary = {}}, .capture = std::move(file)};
  }
  return {.source = readSource(name, *file, format), .capture = nullptr};
}

bool isWithoutPackets(const OpenedSource& opened) {
  return opened.capture == nullptr && opened.source.packets.empty();
}

}  // namespace

bool readsStandardInput(const std::vector<std::string>& files) {
  return files.empty() || std::ranges::find(files, standardInputName) != files.end();
}

std::vector<OpenedSource> openSources(const std::vector<std::string>& files, InputFormat format) {
  if (std::ranges::count(files, standardInputName) > 1) {
    throw ToolError(ExitCode::usage, "standard input (-) can be read only once");
  }
  std::vector<OpenedSource> sources;
  if (files.empty()) {
    sources.push_back(openSource(standardInputName, format));
  }
  for (const std::string& file : files) {
    sources.push_back(openSource(file, format));
  }
  if (std::ranges::all_of(sources, isWithoutPackets)) {
    throw ToolError(ExitCode::noInput, noPackets);
  }
  return sources;
}

}  // namespace RadiusPacketTool
