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

  /// Empty when the kernel gave no readable answer.
  virtual std::optional<CPUTicks> readTicks() = 0;

  /// Writes the 1, 5 and 15 minute load into the front of `averages`; what could not be read is left as it
  /// was.
  virtual void readLoadAverages(std::span<double, 3> averages) = 0;

  /// Processors that run at present, and all that the machine has; 0 when unknown.
  virtual int activeProcessorCount() = 0;
  virtual int processorCount() = 0;
};

}  // namespace vorli::ports
