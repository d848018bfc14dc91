#pragma once

#include <concepts>
#include <string_view>
#include <type_traits>

#include "Verda/String.h"
#include "Verda/Types.h"

namespace Verda {

/// One round of a multiplicative hash: every bit of `value` and `seed` reaches the result's top
/// bits.
constexpr U32 hashMix(U32 seed, U64 value) {
  const U64 mixed = (value ^ seed) * 0x9E3779B97F4A7C15U;
  return static_cast<U32>(mixed >> 32U) ^ static_cast<U32>(mixed);
}

/// The hash of a collection's key: a number is its own, so that neighbours never collide; text goes
/// byte by byte, and a key type of its own brings a `hash(seed)`.
template <typename Key>
U32 hashOf(const Key& key, U32 seed) {
  if constexpr (std::integral<Key>) {
    return static_cast<U32>(key) ^ seed;
  } else if constexpr (std::is_convertible_v<const Key&, std::string_view>) {
    return hashMix(seed, std::hash<std::string_view>{}(key));
  } else {
    return key.hash(seed);
  }
}

}  // namespace Verda
