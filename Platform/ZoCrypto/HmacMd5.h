#pragma once

#include <span>

#include "Verda/Export.h"
#include "Verda/Types.h"
#include "ZoCrypto/MessageDigest.h"

namespace ZoCrypto {

/// HMAC-MD5 of `data` under `key` (RFC 2104), one shot. Writes it to `digest` and the number of
/// bytes written to `digestLength` (0 on failure); returns whether the computation succeeded.
VERDA_EXPORT bool hmacMd5(std::span<const U8> key, std::span<const U8> data,
                          std::span<U8, md5DigestLength> digest, U32& digestLength);

}  // namespace ZoCrypto
