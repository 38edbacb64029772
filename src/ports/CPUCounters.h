#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace vorli::ports {

/// Ticks spent in each state since boot, summed over all processors. They wrap around at 32 bits.
struct CPUTicks {
  std::uint32_t user = 0;
  std::uint32_t system = 0;
  std::uint32_t idle = 0;
  std::uint32_t nice = 0;

  bool operator==(const CPUTicks&) const = default;
};

/// Machine-wide processor figures. Main thread; each call blocks for some tens of microseconds.
class CPUCounters {
 public:
  virtual ~CPUCounters() = default;

  /// Empty when the counters cannot be read.
  virtual std::optional<CPUTicks> readTicks() = 0;

  /// Writes the 1, 5 and 15 minute load averages to `averages`; values that cannot be read are left
  /// unchanged.
  virtual void readLoadAverages(std::span<double, 3> averages) = 0;

  /// Number of processors that are active now, and of all processors in the machine; 0 when unknown.
  virtual int activeProcessorCount() = 0;
  virtual int processorCount() = 0;
};

}  // namespace vorli::ports
