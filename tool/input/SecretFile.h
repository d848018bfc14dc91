#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Verda/Types.h"
#include "ZoCrypto/Cleanse.h"

namespace RadiusPacketTool {

/// Overwrites what a container gives back: a vector that grows leaves no copy behind.
template <typename T>
struct CleansingAllocator {
  using value_type = T;

  CleansingAllocator() = default;
  template <typename U>
  explicit CleansingAllocator(const CleansingAllocator<U>&) {}

  T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* place, std::size_t count) {
    ZoCrypto::cleanse({reinterpret_cast<Verda::U8*>(place), count * sizeof(T)});
    std::allocator<T>().deallocate(place, count);
  }

  bool operator==(const CleansingAllocator&) const = default;
};

/// Bytes that are overwritten when they go.
using CleansedBytes = std::vector<Verda::U8, CleansingAllocator<Verda::U8>>;

/// The content of a file that holds secrets. Throws `ToolError` when it cannot be read, or is
/// longer than any such file.
/// @param what  the file's part, for messages
CleansedBytes readSecretContent(const std::string& path, std::string_view what);

/// The same bytes as text.
inline std::string_view textView(const CleansedBytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace RadiusPacketTool
