#pragma once

#include "formats/MemInfo.h"
#include "linux/kernel/KeptFile.h"
#include "linux/kernel/SwapTraffic.h"
#include "linux/kernel/ZramSwaps.h"
#include "ports/MemoryCounters.h"

#include <string>

namespace vorli::linuxhost {

/// Memory figures from /proc/meminfo, /proc/vmstat, /proc/pressure/memory and the zram devices. Each of the
/// other readings uses the meminfo that `readStatistics` has read, but only once.
class MemoryCounters final : public ports::MemoryCounters {
 public:
  /// `root` is the prefix of every path that is read; tests pass a recorded tree.
  explicit MemoryCounters(const std::string& root = "");

  std::uint64_t pageSizeBytes() override;
  std::optional<ports::VMStatistics> readStatistics() override;
  std::uint64_t physicalMemoryBytes() override;
  std::optional<ports::SwapUsage> readSwapUsage() override;
  ports::PressureReading readPressure() override;

 private:
  enum Reader : unsigned { physicalMemory = 1, swapUsage = 2, pressure = 4, everyReader = 7 };

  void lookAtMemInfo();
  const std::optional<formats::MemInfo>& memInfoFor(Reader reader);

  KeptFile memInfoFile_;
  KeptFile vmStatFile_;
  KeptFile pressureFile_;
  ZramSwaps zramSwaps_;
  SwapTraffic swapTraffic_;
  std::optional<formats::MemInfo> memInfo_;
  unsigned servedReaders_ = everyReader;  // readers that have used the current meminfo
};

}  // namespace vorli::linuxhost
