#include "bench/HeapCount.h"

#include <atomic>
#include <cstddef>

// The C library lets a program replace its allocator under these names. This one counts and forwards.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace {

std::atomic<std::uint64_t> allocations;

void count() {
  allocations.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  count();
  return __libc_malloc(size);
}

void* calloc(std::size_t members, std::size_t size) {
  count();
  return __libc_calloc(members, size);
}

void* realloc(void* block, std::size_t size) {
  count();
  return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  count();
  return __libc_memalign(alignment, size);
}
}

namespace vorli::bench {

std::uint64_t heapAllocations() {
  return allocations.load(std::memory_order_relaxed);
}

}  // namespace vorli::bench
