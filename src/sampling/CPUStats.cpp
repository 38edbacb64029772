#include "sampling/CPUStats.h"

#include <algorithm>

namespace vorli {

constinit const CPUSnapshot CPUSnapshot::empty{};

CPUSnapshot CPUStats::sample(ports::CPUCounters& counters, const ports::CalendarClock& calendar) {
  const auto ticks = counters.readTicks();
  if (!ticks) return CPUSnapshot::empty;

  double usage = 0.0;
  if (hasBaseline_) {
    // Subtracting in 32 bits gives the right difference even when a counter has wrapped around.
    const std::uint32_t user = ticks->user - lastUserTicks_;
    const std::uint32_t system = ticks->system - lastSystemTicks_;
    const std::uint32_t idle = ticks->idle - lastIdleTicks_;
    const std::uint32_t nice = ticks->nice - lastNiceTicks_;
    const std::uint64_t busy = std::uint64_t{user} + system + nice;
    const std::uint64_t total = busy + idle;
    if (total > 0) usage = std::min(static_cast<double>(busy) / static_cast<double>(total), 1.0);
  }
  lastUserTicks_ = ticks->user;
  lastSystemTicks_ = ticks->system;
  lastIdleTicks_ = ticks->idle;
  lastNiceTicks_ = ticks->nice;
  hasBaseline_ = true;
  return {usage, calendar.now()};
}

}  // namespace vorli
