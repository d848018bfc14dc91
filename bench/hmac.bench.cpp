#include <array>

#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include "ZoCrypto/HmacMd5.h"
#include "bench/BenchPackets.h"
#include "bench/Benchmarks.h"

#include "RadiusPacketParser/RadiusPacketConstants.h"

namespace Bench {
namespace {

using Digest = std::array<Verda::U8, ZoCrypto::md5DigestLength>;

std::span<const Verda::U8> key() {
  return {reinterpret_cast<const Verda::U8*>(secret.data()), secret.size()};
}

/// As the library does it: one call a packet.
void oneShot(benchmark::State& state, const BenchPacket& packet) {
  Digest digest;
  Verda::U32 length = 0;
  for ([[maybe_unused]] auto _ : state) {
    if (!ZoCrypto::hmacMd5(key(), packet.bytes, digest, length)) {
      state.SkipWithError("no digest");
    }
  }
}

// The low-level context is what is compared with here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

/// For the record: a context that is kept from packet to packet and gets the key anew each time.
void keptContext(benchmark::State& state, const BenchPacket& packet) {
  Digest digest;
  unsigned int length = 0;
  HMAC_CTX* context = HMAC_CTX_new();
  for ([[maybe_unused]] auto _ : state) {
    HMAC_Init_ex(context, key().data(), static_cast<int>(key().size()), EVP_md5(), nullptr);
    HMAC_Update(context, packet.bytes.data(), packet.bytes.size());
    if (HMAC_Final(context, digest.data(), &length) != 1) {
      state.SkipWithError("no digest");
    }
  }
  HMAC_CTX_free(context);
}

#pragma GCC diagnostic pop

}  // namespace

void registerHmac() {
  for (const BenchPacket& packet : benchPackets()) {
    if (packet.bytes.front() == RadiusPacketParser::RadiusCode::ACCOUNTING_REQUEST) {
      continue;  // its Message-Authenticator, had it one, would not be checked
    }
    benchmark::RegisterBenchmark(("hmac/ours/" + packet.name).c_str(), oneShot, packet);
    benchmark::RegisterBenchmark(("hmac/kept-context/" + packet.name).c_str(), keptContext, packet);
  }
}

}  // namespace Bench
