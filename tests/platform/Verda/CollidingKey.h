#pragma once

#include <compare>
#include <ostream>

#include "Verda/Types.h"

namespace TestSupport {

/// A key that falls on the same slot of a hash table as every other.
struct CollidingKey {
  Verda::U32 number = 0;

  auto operator<=>(const CollidingKey&) const = default;
  Verda::U32 hash(Verda::U32) const { return 6; }

  friend std::ostream& operator<<(std::ostream& out, const CollidingKey& key) {
    return out << key.number;
  }
};

/// Makes the key of a collection under test from a number; different numbers, different keys.
template <typename Key>
Key keyOf(Verda::U32 number) {
  return Key{number};
}

}  // namespace TestSupport
