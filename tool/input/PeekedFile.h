#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>

#include "Verda/Types.h"

#include "tool/capture/CaptureFile.h"
#include "tool/input/InputFile.h"

namespace RadiusPacketTool {

/// An input file whose first bytes are known before it is read.
class PeekedFile {
 public:
  /// Throws as `InputFile`.
  explicit PeekedFile(const std::string& name);

  /// The first bytes, as many as tell a capture; fewer when the file ends.
  std::span<const Verda::U8> start() const { return std::span(start_).first(startLength_); }

  /// Reads from the file's first byte on. Returns how many bytes were read; 0 at the end. Throws as
  /// `InputFile::read`.
  std::size_t read(std::span<Verda::U8> to);

  /// How many bytes were read so far.
  std::size_t position() const { return position_; }

  /// The length of the file; 0 where it has none, as a pipe.
  std::size_t size() const { return file_.size(); }

 private:
  InputFile file_;
  std::array<Verda::U8, captureMagicLength> start_{};
  std::size_t startLength_ = 0;
  std::size_t position_ = 0;
};

}  // namespace RadiusPacketTool
