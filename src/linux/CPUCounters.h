#pragma once

#include "linux/KeptFile.h"
#include "ports/CPUCounters.h"

#include <string>

namespace vorli::linuxhost {

/// Processor figures of /proc/stat, /proc/loadavg and /sys/devices/system/cpu.
class CPUCounters final : public ports::CPUCounters {
 public:
  /// `root` stands before every path that is read; tests give a recorded tree.
  explicit CPUCounters(const std::string& root = "");

  std::optional<ports::CPUTicks> readTicks() override;
  void readLoadAverages(std::span<double, 3> averages) override;
  int activeProcessorCount() override;
  int processorCount() override;

 private:
  KeptFile stat_;
  KeptFile loadAverages_;
  KeptFile online_;
  KeptFile present_;
  int presentCount_ = 0;
};

}  // namespace vorli::linuxhost
