#pragma once

#include "sampling/MemorySnapshot.h"

#include <optional>

namespace vorli {

/// Percentage by which memory use has fallen, rounded down. Empty when one of the two snapshots could not be
/// read, when use has not fallen, and below 2.
std::optional<int> lighterPercentage(const std::optional<MemorySnapshot>& before,
                                     const MemorySnapshot& after);

/// Logs what the polish achieved once the hold is over.
void logSettledRing(double ringProgress, const std::optional<MemorySnapshot>& before,
                    const MemorySnapshot& now);

}  // namespace vorli
