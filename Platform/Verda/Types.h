#pragma once

#include <cstdint>

/// The base library: numbers, text, bytes, reference counting, collections, trace and assertions.
/// Everything else stands on it, and it stands on the standard library and fmt alone.
namespace Verda {

using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;
using S32 = std::int32_t;
using S64 = std::int64_t;

}  // namespace Verda
