#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// The name that stands for standard input.
inline constexpr const char* standardInputName = "-";

/// A file that is open for reading from front to end, or standard input for the name `-`; a pipe
/// does as well as a file. The bytes pass through nothing but the reader's own buffer, so that who
/// reads a secret can cleanse it.
class InputFile {
 public:
  /// Throws `ToolError` when the file cannot be opened.
  explicit InputFile(const std::string& name);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  ~InputFile();

  /// Returns how many bytes were read; 0 at the end. Throws `ToolError` when the file cannot be
  /// read.
  std::size_t read(std::span<Verda::U8> to) const;

  /// The length of a file on a disk; 0 of everything else.
  std::size_t size() const;

 private:
  [[noreturn]] void fail() const;

  std::string name_;
  bool isStandardInput_;
  int descriptor_;
};

}  // namespace RadiusPacketTool
