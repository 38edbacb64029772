#pragma once

#include "base/Date.h"
#include "ports/CalendarClock.h"
#include "ports/MemoryCounters.h"

#include <cstdint>
#include <optional>

namespace vorli {

/// The kernel's level of memory pressure, with its raw values.
enum class MemoryPressureLevel : std::int32_t { normal = 1, warning = 2, critical = 4 };

/// Converts a raw value; empty for any value other than the three.
std::optional<MemoryPressureLevel> memoryPressureLevel(std::int32_t rawValue);

/// One reading of the kernel's memory counters. The six cumulative ones count pages since boot.
struct MemorySnapshot {
  std::uint64_t totalBytes = 0;
  std::uint64_t freeBytes = 0;
  std::uint64_t activeBytes = 0;
  std::uint64_t inactiveBytes = 0;
  std::uint64_t wiredBytes = 0;
  std::uint64_t compressedBytes = 0;
  std::uint64_t speculativeBytes = 0;
  std::uint64_t purgeableBytes = 0;
  MemoryPressureLevel pressureLevel = MemoryPressureLevel::normal;
  std::uint64_t swapUsedBytes = 0;
  std::uint64_t swapTotalBytes = 0;
  Date capturedAt = Date::distantPast();
  std::uint64_t pageinsCumulative = 0;
  std::uint64_t pageoutsCumulative = 0;
  std::uint64_t swapinsCumulative = 0;
  std::uint64_t swapoutsCumulative = 0;
  std::uint64_t decompressionsCumulative = 0;
  std::uint64_t compressionsCumulative = 0;

  /// The snapshot before the first sample and after a failed one; its `totalBytes` is 0.
  static const MemorySnapshot empty;

  bool isEmpty() const { return totalBytes == 0; }
  /// Total minus free memory, at least 0.
  std::uint64_t usedBytes() const { return totalBytes > freeBytes ? totalBytes - freeBytes : 0; }

  bool operator==(const MemorySnapshot&) const = default;
};

/// The pressure level: the system's own verdict where it has one, otherwise derived from stalls and available
/// memory.
MemoryPressureLevel pressureLevel(const ports::PressureReading& reading);

/// Reads the machine's memory; returns the empty snapshot when the kernel's counters cannot be read.
MemorySnapshot sampleMemory(ports::MemoryCounters& counters, const ports::CalendarClock& calendar);

}  // namespace vorli
