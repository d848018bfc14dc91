#include "tool/input/SecretFile.h"

#include <array>
#include <cstddef>

#include <fmt/format.h>

#include "tool/input/InputFile.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

/// Nobody's secrets; a file that never ends.
constexpr std::size_t maxSecretFile = 65536;

}  // namespace

CleansedBytes readSecretContent(const std::string& path, std::string_view what) {
  constexpr std::size_t pieceSize = 512;
  std::array<U8, pieceSize> buffer;
  const ZoCrypto::CleanseOnExit cleanBuffer(buffer);
  CleansedBytes content;
  const InputFile file(path);
  while (const std::size_t count = file.read(buffer)) {
    content.insert(content.end(), buffer.begin(), buffer.begin() + count);
    if (content.size() > maxSecretFile) {
      throw ToolError(ExitCode::noInput,
                      fmt::format("the file of {} is longer than {} bytes", what, maxSecretFile));
    }
  }
  return content;
}

}  // namespace RadiusPacketTool
