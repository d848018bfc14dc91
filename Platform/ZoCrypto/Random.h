#pragma once

#include <span>

#include "Verda/Export.h"
#include "Verda/Types.h"

namespace ZoCrypto {

/// Fills `bytes` from the cryptographic random generator; returns whether it could. On failure the
/// bytes are unspecified.
VERDA_EXPORT bool randomBytes(std::span<Verda::U8> bytes);

}  // namespace ZoCrypto
