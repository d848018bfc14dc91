#pragma once

#include <cstdint>

namespace Bench {

/// How many blocks this thread has taken from the heap so far: by `malloc` and its kin, thus also
/// by `new`, libcrypto and the peer.
std::uint64_t allocations();

}  // namespace Bench
