#include "ZoCrypto/HmacMd5.h"

#include <climits>

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include "ZoCrypto/FaultSeam.h"

namespace ZoCrypto {

bool hmacMd5(std::span<const U8> key, std::span<const U8> data,
             std::span<U8, md5DigestLength> digest, U32& digestLength) {
  digestLength = 0;
  if (FaultSeam::failsNow(Primitive::hmac) || key.size() > INT_MAX) {
    return false;
  }
  // A null key would mean "the key of the call before" to the library; an empty one is a key.
  static constexpr U8 emptyKey = 0;
  const U8* keyBytes = key.empty() ? &emptyKey : key.data();
  unsigned int length = 0;
  const unsigned char* result = HMAC(EVP_md5(), keyBytes, static_cast<int>(key.size()), data.data(),
                                     data.size(), digest.data(), &length);
  digestLength = length;
  return result != nullptr;
}

}  // namespace ZoCrypto
