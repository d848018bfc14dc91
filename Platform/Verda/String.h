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
  String(const char* text) : String(std::string_view(text)) {}
  String(std::string_view text) : store_(text.data(), text.size()) {}
  String(const std::string& text) : String(std::string_view(text)) {}
  explicit String(std::span<const U8> bytes) : store_(bytes.data(), bytes.size()) {}

  U32 size() const { return store_.size(); }
  bool empty() const { return size() == 0; }
  const char* data() const { return reinterpret_cast<const char*>(store_.data()); }
  char operator[](U32 index) const { return data()[index]; }

  /// The text with a zero byte behind it, for interfaces that want one.
  const char* cStr() const { return data(); }

  std::string_view view() const { return {data(), size()}; }
  operator std::string_view() const { return view(); }

  /// The text up to its first zero byte, or all of it: how much of a shared secret counts.
  std::string_view viewToNul() const { return view().substr(0, view().find('\0')); }

  /// The same bytes as unsigned numbers; valid while the string is unchanged.
  std::span<const U8> bytes() const { return store_.span(); }

  /// Replaces the content, within the storage at hand where that has room.
  void assign(std::span<const U8> bytes) { store_.assign(bytes.data(), bytes.size()); }

  String& operator+=(std::string_view text) {
    store_.append(text.data(), text.size());
    return *this;
  }

  template <std::convertible_to<std::string_view> Text>
  friend bool operator==(const String& left, const Text& right) {
    return left.view() == std::string_view(right);
  }
  template <std::convertible_to<std::string_view> Text>
  friend std::strong_ordering operator<=>(const String& left, const Text& right) {
    return left.view() <=> std::string_view(right);
  }

  friend std::ostream& operator<<(std::ostream& out, const String& text) {
    return out << text.view();
  }

 private:
  ByteStore store_;
};

}  // namespace Verda

template <>
struct fmt::formatter<Verda::String> : fmt::formatter<std::string_view> {
  template <typename Context>
  auto format(const Verda::String& text, Context& context) const {
    return fmt::formatter<std::string_view>::format(text.view(), context);
  }
};
