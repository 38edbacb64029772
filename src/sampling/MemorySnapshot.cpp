#include "sampling/MemorySnapshot.h"

namespace vorli {

namespace {

constexpr double criticalFullStallPercent = 10.0;
constexpr double warningSomeStallPercent = 10.0;
constexpr double criticalAvailableShare = 0.05;
constexpr double warningAvailableShare = 0.1;

double availableShare(const ports::PressureReading& reading) {
  if (!reading.availableBytes || reading.totalBytes.value_or(0) == 0) return 1.0;
  return static_cast<double>(*reading.availableBytes) / static_cast<double>(*reading.totalBytes);
}

}  // namespace

constinit const MemorySnapshot MemorySnapshot::empty{};

std::optional<MemoryPressureLevel> memoryPressureLevel(std::int32_t rawValue) {
  switch (rawValue) {
    case 1:
      return MemoryPressureLevel::normal;
    case 2:
      return MemoryPressureLevel::warning;
    case 4:
      return MemoryPressureLevel::critical;
    default:
      return std::nullopt;
  }
}

MemoryPressureLevel pressureLevel(const ports::PressureReading& reading) {
  if (reading.kernelLevel) {
    return memoryPressureLevel(*reading.kernelLevel).value_or(MemoryPressureLevel::normal);
  }
  const double available = availableShare(reading);
  if (reading.fullStallPercent.value_or(0.0) >= criticalFullStallPercent ||
      available < criticalAvailableShare) {
    return MemoryPressureLevel::critical;
  }
  if (reading.someStallPercent.value_or(0.0) >= warningSomeStallPercent ||
      available < warningAvailableShare) {
    return MemoryPressureLevel::warning;
  }
  return MemoryPressureLevel::normal;
}

MemorySnapshot sampleMemory(ports::MemoryCounters& counters, const ports::CalendarClock& calendar) {
  const std::uint64_t pageSize = counters.pageSizeBytes();
  const auto statistics = counters.readStatistics();
  if (!statistics) return MemorySnapshot::empty;

  MemorySnapshot snapshot;
  snapshot.freeBytes = statistics->freeCount * pageSize;
  snapshot.activeBytes = statistics->activeCount * pageSize;
  snapshot.inactiveBytes = statistics->inactiveCount * pageSize;
  snapshot.wiredBytes = statistics->wireCount * pageSize;
  snapshot.compressedBytes = statistics->compressorPageCount * pageSize;
  snapshot.speculativeBytes = statistics->speculativeCount * pageSize;
  snapshot.purgeableBytes = statistics->purgeableCount * pageSize;
  snapshot.totalBytes = counters.physicalMemoryBytes();
  const auto swap = counters.readSwapUsage().value_or(ports::SwapUsage{});
  snapshot.swapUsedBytes = swap.usedBytes;
  snapshot.swapTotalBytes = swap.totalBytes;
  snapshot.pressureLevel = pressureLevel(counters.readPressure());
  snapshot.capturedAt = calendar.now();
  snapshot.pageinsCumulative = statistics->pageins;
  snapshot.pageoutsCumulative = statistics->pageouts;
  snapshot.swapinsCumulative = statistics->swapins;
  snapshot.swapoutsCumulative = statistics->swapouts;
  snapshot.decompressionsCumulative = statistics->decompressions;
  snapshot.compressionsCumulative = statistics->compressions;
  return snapshot;
}

}  // namespace vorli
