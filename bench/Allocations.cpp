#include "bench/Allocations.h"

#include <cerrno>
#include <cstddef>

// glibc's own names for what is counted here.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
}

namespace {

thread_local std::uint64_t count = 0;

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  ++count;
  return __libc_malloc(size);
}

void* calloc(std::size_t members, std::size_t size) {
  ++count;
  return __libc_calloc(members, size);
}

void* realloc(void* block, std::size_t size) {
  ++count;
  return __libc_realloc(block, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
  ++count;
  return __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}

}  // extern "C"

namespace Bench {

std::uint64_t allocations() {
  return count;
}

}  // namespace Bench
