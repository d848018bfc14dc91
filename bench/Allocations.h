#pragma once

#include <cstdint>

#include <benchmark/benchmark.h>

namespace Bench {

/// How many blocks this thread has taken from the heap so far: by `malloc` and its kin, thus also
/// by `new`, libcrypto and the peer.
std::uint64_t allocations();

/// Counts the heap blocks of a benchmark's loop and shows them per round.
class CountAllocations {
 public:
  explicit CountAllocations(benchmark::State& state) : state_(state), before_(allocations()) {}
  CountAllocations(const CountAllocations&) = delete;
  CountAllocations& operator=(const CountAllocations&) = delete;
  ~CountAllocations() {
    state_.counters["allocations"] = benchmark::Counter(
        static_cast<double>(allocations() - before_), benchmark::Counter::kAvgIterations);
  }

 private:
  benchmark::State& state_;
  std::uint64_t before_;
};

}  // namespace Bench
