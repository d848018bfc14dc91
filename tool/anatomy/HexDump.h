#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "Verda/Types.h"

namespace RadiusPacketTool {

/// Bytes that are to be marked in a dump.
struct MarkedBytes {
  std::size_t offset = 0;
  std::size_t length = 0;
};

/// The bytes, 16 a line behind the offset of the first and in front of the characters that they
/// stand for, with carets under the marked ones; those of them that are behind the end stand as
/// `--`. Of a long packet only the lines around the marked bytes.
std::string hexDump(std::span<const Verda::U8> bytes, const MarkedBytes& marked);

}  // namespace RadiusPacketTool
