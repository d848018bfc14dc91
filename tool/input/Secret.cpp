#include "tool/input/Secret.h"

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include <fmt/format.h>

#include "Verda/Types.h"
#include "ZoCrypto/Cleanse.h"

#include "tool/input/InputFile.h"
#include "tool/process/ToolError.h"

namespace RadiusPacketTool {

using Verda::U8;

namespace {

/// Nobody's secret; a file that never ends.
constexpr std::size_t maxSecretFile = 65536;

/// Overwrites what a container gives back: a vector that grows leaves no copy behind.
template <typename T>
struct CleansingAllocator {
  using value_type = T;

  CleansingAllocator() = default;
  template <typename U>
  explicit CleansingAllocator(const CleansingAllocator<U>&) {}

  T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* place, std::size_t count) {
    ZoCrypto::cleanse({reinterpret_cast<U8*>(place), count * sizeof(T)});
    std::allocator<T>().deallocate(place, count);
  }

  bool operator==(const CleansingAllocator&) const = default;
};

std::string_view withoutNewline(std::string_view text) {
  if (text.ends_with('\n')) {
    text.remove_suffix(1);
  }
  return text;
}

}  // namespace

Secret::~Secret() {
  // The string reads only; that its bytes are overwritten is this class's business alone.
  const std::span<const U8> bytes = text_.bytes();
  ZoCrypto::cleanse({const_cast<U8*>(bytes.data()), bytes.size()});
}

Secret readSecretFile(const std::string& path) {
  constexpr std::size_t pieceSize = 512;
  std::array<U8, pieceSize> buffer;
  const ZoCrypto::CleanseOnExit cleanBuffer(buffer);
  std::vector<U8, CleansingAllocator<U8>> content;
  const InputFile file(path);
  while (const std::size_t count = file.read(buffer)) {
    content.insert(content.end(), buffer.begin(), buffer.begin() + count);
    if (content.size() > maxSecretFile) {
      throw ToolError(ExitCode::noInput,
                      fmt::format("the file of the secret is longer than {} bytes", maxSecretFile));
    }
  }
  return Secret(withoutNewline(
      std::string_view(reinterpret_cast<const char*>(content.data()), content.size())));
}

}  // namespace RadiusPacketTool
