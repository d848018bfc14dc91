#pragma once

#include <array>
#include <string>

namespace TestSupport {

/// A shared secret, and the part of it that counts.
struct SharedSecret {
  const char* name;
  std::string given;
  std::string counts;
};

/// Secrets of every kind.
inline const std::array<SharedSecret, 7> sharedSecrets{{
    {"usual", "xyzzy5461", "xyzzy5461"},
    {"empty", "", ""},
    {"of one digest block", std::string(64, 's'), std::string(64, 's')},
    {"of 10,000 bytes", std::string(10000, 's'), std::string(10000, 's')},
    {"beginning with a zero byte", std::string("\0abc", 4), ""},
    {"with a zero byte inside", std::string("ab\0cd", 5), "ab"},
    {"of bytes that are no text", "\xff\x80\x01", "\xff\x80\x01"},
}};

}  // namespace TestSupport
