#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// A text that is not hex; `what()` says what is wrong with it.
class BadHex : public std::runtime_error {
 public:
  BadHex(std::size_t line, const std::string& message) : std::runtime_error(message), line_(line) {}

  /// The line at fault, from 1.
  std::size_t line() const { return line_; }

 private:
  std::size_t line_;
};

/// Reads packets written as hex digits. A line of nothing but white space separates packets; one
/// that holds a comment does not. Within a packet:
/// - digits pair up whatever white space, line ends and `:` stand between them;
/// - `0x` may stand where a pair begins;
/// - `#` begins a comment that runs to the end of its line and may hold any bytes.
///
/// What has no digits is no packet. Throws `BadHex` for anything else.
std::vector<std::vector<Verda::U8>> parseHex(std::string_view text);

}  // namespace RadiusPacketTool
