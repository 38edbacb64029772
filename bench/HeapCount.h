#pragma once

#include <cstdint>

namespace vorli::bench {

/// Number of heap allocations so far, by this program and every library in it.
std::uint64_t heapAllocations();

}  // namespace vorli::bench
