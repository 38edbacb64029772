#pragma once

#include "base/Date.h"
#include "ports/CalendarClock.h"
#include "ports/MemoryCounters.h"

#include <cstdint>
#include <optional>

namespace vorli {

/// The kernel's judgement of memory pressure; the raw values are its own.
enum class MemoryPressureLevel : std::int32_t { normal = 1, warning = 2, critical = 4 };

/// Empty for any value other than the three.
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

  /// Before the first sample, and after a failed one: `totalBytes` is 0.
  static const MemorySnapshot empty;

  bool isEmpty() const { return totalBytes == 0; }
  /// Total less free, not below 0.
  std::uint64_t usedBytes() const { return totalBytes > freeBytes ? totalBytes - freeBytes : 0; }

  bool operator==(const MemorySnapshot&) const = default;
};

/// The level from what the system offers: its own verdict where it has one; else stalls and available memory,
/// critical from 10 % full stall or under 5 % available, warning from 10 % some stall or under 10 %
/// available.
MemoryPressureLevel pressureLevel(const ports::PressureReading& reading);

/// Reads the machine's memory; the empty snapshot when the kernel's counters cannot be read.
MemorySnapshot sampleMemory(ports::MemoryCounters& counters, const ports::CalendarClock& calendar);

}  // namespace vorli
