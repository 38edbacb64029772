#pragma once

#include "macos/kernel/HostPort.h"
#include "ports/MemoryCounters.h"

namespace vorli::machost {

/// The kernel's counters of virtual memory. The kernel reports neither stalls nor available memory.
class MemoryCounters final : public ports::MemoryCounters {
 public:
  std::uint64_t pageSizeBytes() override;
  std::optional<ports::VMStatistics> readStatistics() override;
  std::uint64_t physicalMemoryBytes() override;
  std::optional<ports::SwapUsage> readSwapUsage() override;
  ports::PressureReading readPressure() override;

 private:
  const HostPort host_;
};

}  // namespace vorli::machost
