#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Verda/Types.h"

#include "tool/input/HexInput.h"
#include "tool/input/InputFormat.h"
#include "tool/input/TextInput.h"

namespace RadiusPacketTool {

/// The packets of one source.
struct PacketSource {
  std::string name;  ///< the file's name, `-` for standard input
  std::vector<std::vector<Verda::U8>> packets;
  /// Of a source that nobody called binary: why it is not hex.
  std::optional<BadHex> whyBinary;
};

/// Makes packets of a source's bytes, which come in pieces. However long the source, of a binary
/// packet no more is kept than the greatest packet has: the rest is padding, whatever its header
/// says.
///
/// A source whose format is to be found out is binary when it is none of the texts that
/// `TextReader` knows. In hex text every character has its place, and no comment holds a control
/// byte: the first bytes of a binary packet may well be white space and `#`, but not those behind
/// them.
class SourceReader {
 public:
  explicit SourceReader(InputFormat format);

  /// Whether further bytes can change anything.
  bool wantsMore() const;

  void take(std::span<const Verda::U8> piece);

  /// Ends the source. Throws `BadHex` for bad hex.
  PacketSource finish(const std::string& name);

 private:
  InputFormat format_;
  TextReader text_;
  std::vector<Verda::U8> start_;  ///< the source's first bytes, as many as a packet may have
};

}  // namespace RadiusPacketTool
