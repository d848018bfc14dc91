#pragma once

#include <cstdint>

/// The base library: numbers, text, bytes, reference counting, collections, trace and assertions.
/// Everything else stands on it, and it stands on the standard library and fmt alone.
namespace Verda {

using U8 = std::uint8_t;    ///< 0 to 255
using U16 = std::uint16_t;  ///< 0 to 65535
using U32 = std::uint32_t;  ///< 0 to 4294967295
using U64 = std::uint64_t;  ///< 64 bits without a sign
using S32 = std::int32_t;   ///< 32 bits with a sign
using S64 = std::int64_t;   ///< 64 bits with a sign

}  // namespace Verda
