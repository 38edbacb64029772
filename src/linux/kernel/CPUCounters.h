#pragma once

#include "linux/kernel/KeptFile.h"
#include "ports/CPUCounters.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vorli::linuxhost {

/// Processor figures from /proc/stat, /proc/loadavg and /sys/devices/system/cpu.
class CPUCounters final : public ports::CPUCounters {
 public:
  /// `root` is the prefix of every path that is read; tests pass a recorded tree.
  explicit CPUCounters(const std::string& root = "");

  std::optional<ports::CPUTicks> readTicks() override;
  void readLoadAverages(std::span<double, 3> averages) override;
  int activeProcessorCount() override;
  int processorCount() override;

 private:
  std::uint64_t idleTicks(std::uint64_t reported);

  KeptFile stat_;
  KeptFile loadAverages_;
  KeptFile online_;
  KeptFile present_;
  int presentCount_ = 0;
  std::optional<std::uint64_t> reportedIdle_;  // idle and waiting time of the last reading
  std::uint64_t idle_ = 0;
};

}  // namespace vorli::linuxhost
