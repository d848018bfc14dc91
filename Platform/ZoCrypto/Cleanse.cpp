#include "ZoCrypto/Cleanse.h"

#include <cstring>

#include <openssl/crypto.h>

namespace ZoCrypto {

void cleanse(std::span<Verda::U8> bytes) {
  if (!bytes.empty()) {
    explicit_bzero(bytes.data(), bytes.size());
  }
}

bool equalInConstantTime(std::span<const Verda::U8> left, std::span<const Verda::U8> right) {
  return left.size() == right.size() && CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace ZoCrypto
