#pragma once

#include "macos/kernel/HostPort.h"
#include "ports/CPUCounters.h"

namespace vorli::machost {

/// The kernel's tick counters, which it sums over all processors.
class CPUCounters final : public ports::CPUCounters {
 public:
  std::optional<ports::CPUTicks> readTicks() override;
  void readLoadAverages(std::span<double, 3> averages) override;
  int activeProcessorCount() override;
  int processorCount() override;

 private:
  const HostPort host_;
};

}  // namespace vorli::machost
