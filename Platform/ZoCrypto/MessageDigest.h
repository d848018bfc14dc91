#pragma once

#include <cstddef>
#include <string_view>

#include "Verda/Export.h"
#include "Verda/Types.h"

/// The cryptography library: plain digests, HMAC-MD5, random bytes, and how secrets are handled.
namespace ZoCrypto {

using Verda::U32;
using Verda::U8;

/// The digest length of MD5 in bytes.
inline constexpr U32 md5DigestLength = 16;

/// A digest method, found by name.
struct MdMethod {
  std::string_view name;  ///< as `md_find` knows it
  U32 digestLength;       ///< in bytes
};

/// The state of one digest, in the caller's storage: nothing is allocated.
struct MdContext {
  static constexpr std::size_t storageSize = 96;  ///< in bytes; enough for every method

  const MdMethod* method = nullptr;    ///< null before `md_init`
  alignas(8) U8 storage[storageSize];  ///< the digest's own state
};

/// The method of that name ("md5"), or null. It lives as long as the process.
VERDA_EXPORT const MdMethod* md_find(std::string_view name);

/// Begins a digest by `method`, which must not be null.
VERDA_EXPORT void md_init(MdContext& context, const MdMethod* method);

/// Feeds `length` bytes.
VERDA_EXPORT void md_update(MdContext& context, const void* data, std::size_t length);

/// Ends the digest: writes it to `digest` (room for 16 bytes) and its length to `digestLength`,
/// which is 0 when the computation failed.
VERDA_EXPORT void md_final(MdContext& context, U8* digest, U32* digestLength);

/// Wipes the context, which may have seen secrets.
VERDA_EXPORT void md_cleanup(MdContext& context);

}  // namespace ZoCrypto
