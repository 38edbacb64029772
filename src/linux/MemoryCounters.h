#pragma once

#include "linux/KeptFile.h"
#include "linux/MemInfo.h"
#include "linux/SwapTraffic.h"
#include "linux/ZramSwaps.h"
#include "ports/MemoryCounters.h"

#include <string>

namespace vorli::linuxhost {

/// Memory figures of /proc/meminfo, /proc/vmstat, /proc/pressure/memory and the zram devices. The readings
/// after `readStatistics` share its look at meminfo, each of them once.
class MemoryCounters final : public ports::MemoryCounters {
 public:
  /// `root` stands before every path that is read; tests give a recorded tree.
  explicit MemoryCounters(const std::string& root = "");

  std::uint64_t pageSizeBytes() override;
  std::optional<ports::VMStatistics> readStatistics() override;
  std::uint64_t physicalMemoryBytes() override;
  std::optional<ports::SwapUsage> readSwapUsage() override;
  ports::PressureReading readPressure() override;

 private:
  enum Reader : unsigned { physicalMemory = 1, swapUsage = 2, pressure = 4, everyReader = 7 };

  void lookAtMemInfo();
  const std::optional<MemInfo>& memInfoFor(Reader reader);

  KeptFile memInfoFile_;
  KeptFile vmStatFile_;
  KeptFile pressureFile_;
  ZramSwaps zramSwaps_;
  SwapTraffic swapTraffic_;
  std::optional<MemInfo> memInfo_;
  unsigned servedReaders_ = everyReader;  // who has used the present look
};

}  // namespace vorli::linuxhost
