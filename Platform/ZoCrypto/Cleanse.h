#pragma once

#include <cstddef>
#include <span>

#include "Verda/Export.h"
#include "Verda/Types.h"

namespace ZoCrypto {

/// Overwrites bytes that held a secret, in a way that no compiler leaves out.
VERDA_EXPORT void cleanse(std::span<Verda::U8> bytes);

/// Overwrites the bytes when the scope ends, on every way out.
class CleanseOnExit {
 public:
  /// Cleanses `bytes`, which must outlive the object, when it goes.
  explicit CleanseOnExit(std::span<Verda::U8> bytes) : bytes_(bytes) {}
  CleanseOnExit(const CleanseOnExit&) = delete;
  CleanseOnExit& operator=(const CleanseOnExit&) = delete;
  ~CleanseOnExit() { cleanse(bytes_); }

 private:
  std::span<Verda::U8> bytes_;
};

/// Compares in a time that depends on the length alone. Spans of different length are unequal.
VERDA_EXPORT bool equalInConstantTime(std::span<const Verda::U8> left,
                                      std::span<const Verda::U8> right);

}  // namespace ZoCrypto
