#pragma once

#include "base/Date.h"
#include "ports/CPUCounters.h"
#include "ports/CalendarClock.h"

#include <cstdint>

namespace vorli {

/// The share of processor time that was busy between two samples, 0 to 1. Nice time counts as busy.
struct CPUSnapshot {
  double usage = 0.0;
  Date capturedAt = Date::distantPast();

  static const CPUSnapshot empty;

  bool operator==(const CPUSnapshot&) const = default;
};

/// Converts the kernel's tick counters to usage; holds the baseline. Main thread.
class CPUStats {
 public:
  /// Usage since the last successful sample; 0 for the first one. A failed read returns the empty snapshot
  /// and keeps the baseline.
  CPUSnapshot sample(ports::CPUCounters& counters, const ports::CalendarClock& calendar);

 private:
  std::uint32_t lastUserTicks_ = 0;
  std::uint32_t lastSystemTicks_ = 0;
  std::uint32_t lastIdleTicks_ = 0;
  std::uint32_t lastNiceTicks_ = 0;
  bool hasBaseline_ = false;
};

}  // namespace vorli
