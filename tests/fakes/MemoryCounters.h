#pragma once

#include "ports/MemoryCounters.h"

namespace vorli::fakes {

/// A healthy machine with 8 GiB, unless a test changes it.
class MemoryCounters final : public ports::MemoryCounters {
 public:
  std::uint64_t pageSizeBytes() override { return pageSize; }
  std::optional<ports::VMStatistics> readStatistics() override {
    ++statisticsReads;
    return statistics;
  }
  std::uint64_t physicalMemoryBytes() override { return physicalMemory; }
  std::optional<ports::SwapUsage> readSwapUsage() override { return swapUsage; }
  ports::PressureReading readPressure() override { return pressure; }

  std::uint64_t pageSize = 4096;
  std::optional<ports::VMStatistics> statistics = ports::VMStatistics{};
  std::uint64_t physicalMemory = 8ULL << 30;
  std::optional<ports::SwapUsage> swapUsage = ports::SwapUsage{};
  ports::PressureReading pressure;
  int statisticsReads = 0;
};

}  // namespace vorli::fakes
