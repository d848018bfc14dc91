#pragma once

#include <atomic>

#include "Verda/Export.h"
#include "Verda/Types.h"

namespace ZoCrypto {

/// The computations that can be made to fail.
enum class Primitive : Verda::U8 { md5, hmac, random };

/// For tests alone, and not installed: makes one coming computation fail as a broken cryptographic
/// library would, so that every failure path can be walked. Armed for the whole process; unarmed it
/// costs a load and a branch. It can only make computations fail, never change what they give.
class FaultSeam {
 public:
  /// Makes the computation of `primitive` that comes after `callsBefore` more of them fail, once.
  VERDA_EXPORT static void failIs(Primitive primitive, Verda::U32 callsBefore = 0);

  /// Disarms.
  VERDA_EXPORT static void failDel();

  /// Whether the computation of `primitive` that is about to begin must fail.
  static bool failsNow(Primitive primitive) {
    return armed_.load(std::memory_order_relaxed) && takes(primitive);
  }

 private:
  static bool takes(Primitive primitive);

  static std::atomic<bool> armed_;
};

}  // namespace ZoCrypto
