#pragma once

#include <compare>
#include <concepts>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "Verda/ByteStore.h"
#include "Verda/Types.h"

namespace Verda {

/// Text, or any bytes where text is what they usually are. An owned value: copying copies. Holds
/// every byte including zero; compares byte by byte.
class String {
 public:
  String() = default;
  /// The text up to its zero byte.
  String(const char* text) : String(std::string_view(text)) {}
  /// A copy of `text`.
  String(std::string_view text) : store_(text.data(), text.size()) {}
  /// A copy of `text`.
  String(const std::string& text) : String(std::string_view(text)) {}
  /// A copy of `bytes`.
  explicit String(std::span<const U8> bytes) : store_(bytes.data(), bytes.size()) {}

  U32 size() const { return store_.size(); }  ///< in bytes
  bool empty() const { return size() == 0; }  ///< whether there are no bytes
  /// The first byte; valid while unchanged.
  const char* data() const { return reinterpret_cast<const char*>(store_.data()); }
  char operator[](U32 index) const { return data()[index]; }  ///< below `size()`, unchecked

  /// The text with a zero byte behind it, for interfaces that want one.
  const char* cStr() const { return data(); }

  std::string_view view() const { return {data(), size()}; }  ///< all bytes; valid while unchanged
  operator std::string_view() const { return view(); }        ///< the same

  /// The text up to its first zero byte, or all of it: how much of a shared secret counts.
  std::string_view viewToNul() const { return view().substr(0, view().find('\0')); }

  /// The same bytes as unsigned numbers; valid while the string is unchanged.
  std::span<const U8> bytes() const { return store_.span(); }

  /// Replaces the content, within the storage at hand where that has room.
  void assign(std::span<const U8> bytes) { store_.assign(bytes.data(), bytes.size()); }

  /// Appends `text`.
  String& operator+=(std::string_view text) {
    store_.append(text.data(), text.size());
    return *this;
  }

  /// Whether both hold the same bytes.
  template <std::convertible_to<std::string_view> Text>
  friend bool operator==(const String& left, const Text& right) {
    return left.view() == std::string_view(right);
  }
  /// Byte by byte; bytes count as unsigned.
  template <std::convertible_to<std::string_view> Text>
  friend std::strong_ordering operator<=>(const String& left, const Text& right) {
    return left.view() <=> std::string_view(right);
  }

  /// Prints the bytes as they are.
  friend std::ostream& operator<<(std::ostream& out, const String& text) {
    return out << text.view();
  }

 private:
  ByteStore store_;
};

}  // namespace Verda

/// @cond fmt finds it by itself
template <>
struct fmt::formatter<Verda::String> : fmt::formatter<std::string_view> {
  template <typename Context>
  auto format(const Verda::String& text, Context& context) const {
    return fmt::formatter<std::string_view>::format(text.view(), context);
  }
};
/// @endcond
