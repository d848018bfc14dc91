#pragma once

#include <cstddef>
#include <string>

namespace RadiusPacketTool {

/// Says on standard error how much of a file is read, on one line that is written anew and goes
/// with the object. It is there only for a large file, on a terminal, and where the terminal does
/// not show standard output, whose lines say it as well.
class ProgressLine {
 public:
  /// The files that it takes a while to read.
  static constexpr std::size_t largeSize = std::size_t{16} << 20U;

  /// @param name  the file's
  /// @param size  its length in bytes
  ProgressLine(const std::string& name, std::size_t size);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

  /// Says that so many bytes are read.
  void show(std::size_t position);

 private:
  std::string name_;
  std::size_t size_;
  bool isShown_;
  std::size_t percent_ = 0;
};

}  // namespace RadiusPacketTool
