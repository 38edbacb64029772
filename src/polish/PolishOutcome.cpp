#include "polish/PolishOutcome.h"

#include "polish/PopoverLog.h"
#include "sampling/RingState.h"

#include <cstdint>

namespace vorli {

namespace {

constexpr double leastShownPercentage = 2.0;

std::int64_t signedDifference(std::uint64_t from, std::uint64_t less) {
  return static_cast<std::int64_t>(from - less);
}

}  // namespace

std::optional<int> lighterPercentage(const std::optional<MemorySnapshot>& before,
                                     const MemorySnapshot& after) {
  if (!before || after.isEmpty() || after.usedBytes() >= before->usedBytes()) return std::nullopt;
  const auto usedBefore = static_cast<double>(before->usedBytes());
  const auto usedAfter = static_cast<double>(after.usedBytes());
  const double percentage = (usedBefore - usedAfter) / usedBefore * 100.0;
  if (percentage < leastShownPercentage) return std::nullopt;
  return static_cast<int>(percentage);
}

void logSettledRing(double ringProgress, const std::optional<MemorySnapshot>& before,
                    const MemorySnapshot& now) {
  const std::string progress = twoDecimals(ringProgress);
  const auto state = description(ringState(ringProgress));
  if (!before) {
    popoverLog.log(
        "handleTap: after hold+refresh, ringProgress=%{public}s ringState=%{public}s. No before-snapshot "
        "available. Leaving cleared hold.",
        progress, state);
    return;
  }
  popoverLog.log(
      "handleTap: after hold+refresh, ringProgress=%{public}s ringState=%{public}s "
      "freedFreeDelta=%{public}lld usedDelta=%{public}lld. Leaving cleared hold.",
      progress, state, signedDifference(now.freeBytes, before->freeBytes),
      signedDifference(before->usedBytes(), now.usedBytes()));
}

}  // namespace vorli
