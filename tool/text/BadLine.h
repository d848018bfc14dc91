#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace RadiusPacketTool {

/// A text that is not what it should be; `what()` says what is wrong with it.
class BadLine : public std::runtime_error {
 public:
  BadLine(std::size_t line, const std::string& message)
      : std::runtime_error(message), line_(line) {}

  /// The line at fault, from 1.
  std::size_t line() const { return line_; }

 private:
  std::size_t line_;
};

}  // namespace RadiusPacketTool
