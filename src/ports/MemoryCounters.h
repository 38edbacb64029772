#pragma once

#include <cstdint>
#include <optional>

namespace vorli::ports {

/// The kernel's page counts, in pages, and its counters of pages moved since boot.
struct VMStatistics {
  std::uint64_t freeCount = 0;
  std::uint64_t activeCount = 0;
  std::uint64_t inactiveCount = 0;
  std::uint64_t wireCount = 0;
  std::uint64_t compressorPageCount = 0;
  std::uint64_t speculativeCount = 0;
  std::uint64_t purgeableCount = 0;
  std::uint64_t pageins = 0;
  std::uint64_t pageouts = 0;
  std::uint64_t swapins = 0;
  std::uint64_t swapouts = 0;
  std::uint64_t decompressions = 0;
  std::uint64_t compressions = 0;

  bool operator==(const VMStatistics&) const = default;
};

struct SwapUsage {
  std::uint64_t usedBytes = 0;
  std::uint64_t totalBytes = 0;

  bool operator==(const SwapUsage&) const = default;
};

/// The system's raw figures of memory pressure. A field is empty where the system has no such figure.
struct PressureReading {
  /// The kernel's own verdict: 1, 2 or 4 for normal, warning and critical.
  std::optional<std::int32_t> kernelLevel;
  /// Share of the last ten seconds in which some, or all, runnable tasks waited for memory, in percent.
  std::optional<double> someStallPercent;
  std::optional<double> fullStallPercent;
  /// Memory available to new programs without swapping, and total memory.
  std::optional<std::uint64_t> availableBytes;
  std::optional<std::uint64_t> totalBytes;

  bool operator==(const PressureReading&) const = default;
};

/// Machine-wide memory figures. Main thread; each call blocks for some tens of microseconds.
class MemoryCounters {
 public:
  virtual ~MemoryCounters() = default;

  /// Bytes per page; read at each sample.
  virtual std::uint64_t pageSizeBytes() = 0;

  /// Empty when the counters cannot be read.
  virtual std::optional<VMStatistics> readStatistics() = 0;

  /// Physical memory of the machine in bytes; 0 when unknown.
  virtual std::uint64_t physicalMemoryBytes() = 0;

  /// Empty when unreadable; zeroes on a machine without swap.
  virtual std::optional<SwapUsage> readSwapUsage() = 0;

  /// Every field may be empty.
  virtual PressureReading readPressure() = 0;
};

}  // namespace vorli::ports
