#include "ZoCrypto/Random.h"

#include <climits>

#include <openssl/rand.h>

#include "ZoCrypto/FaultSeam.h"

namespace ZoCrypto {

bool randomBytes(std::span<Verda::U8> bytes) {
  return !FaultSeam::failsNow(Primitive::random) && bytes.size() <= INT_MAX &&
         RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) == 1;
}

}  // namespace ZoCrypto
